// King and pawn against king: a win/draw bitbase built by retrograde analysis.
#pragma once

#include "board/types.h"

namespace vx {

// Builds both tables (strong side to move, weak side to move). Start-up.
void InitKpk();

// Squares normalised so that White is the strong side and the pawn stands on
// files a-d, ranks 2-7. True when the strong side wins with best play.
bool kpk_probe(Square strong_king, Square weak_king, Square pawn, bool strong_to_move);

}  // namespace vx

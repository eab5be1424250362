// Piece-square table: material plus placement, by piece code and square, as a
// middlegame/endgame pair. Built by init_eval; the position sums it.
#pragma once

#include "board/types.h"

namespace vx {

extern ValuePair PSQ[16][64];

// Material values (middlegame, endgame) by piece type, king 0.
extern const int PieceValueMg[8];
extern const int PieceValueEg[8];

// Rebuilds PSQ: white entries from the placement tables plus the material
// values, black entries the negated white entries of the rank-mirrored square.
// With noise > 0 every entry of both colours is then perturbed by independent
// random amounts in -noise..noise per half, so Black no longer mirrors White.
void init_psq(int noise);

}  // namespace vx

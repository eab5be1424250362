// Piece-square table: material plus placement, by piece code and square, as a
// middlegame/endgame pair. Built by init_eval; the position sums it.
#pragma once

#include "board/types.h"

namespace vx {

extern ValuePair PSQ[16][64];

}  // namespace vx

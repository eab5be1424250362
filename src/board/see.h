// Static exchange test: does the capture sequence on a move's destination,
// each side recapturing with its least valuable piece, leave the mover no
// worse than half a pawn down?
#pragma once

#include "board/position.h"

namespace vx {

// Exchange values by piece type, 100 per pawn.
constexpr int SEE_VALUE[8] = {0, 100, 325, 325, 325, 500, 950, 10000};

// True when the exchange that the move starts keeps our balance at -50 or
// better (Us is the side playing the move).
template <Color Us> bool SeeNotLosing(const Position& pos, Move m, const AttackInfo& ai);

}  // namespace vx

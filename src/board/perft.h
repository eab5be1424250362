// Move-path enumeration: counts the leaves of the legal move tree. Every ply
// makes and unmakes moves except the last, whose legal moves are counted.
#pragma once

#include <utility>
#include <vector>

#include "board/movegen.h"

namespace vx {

struct PerftResult {
  uint64_t nodes = 0;
  std::vector<std::pair<Move, uint64_t>> divide;  // per root move, generation order
};

template <bool HwPopcnt> uint64_t Perft(Position& pos, int depth);
template <bool HwPopcnt> PerftResult PerftDivide(Position& pos, int depth);

}  // namespace vx

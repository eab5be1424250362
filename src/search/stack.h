// One ply of the search path: what the node at that ply is doing and what it
// remembers for its neighbours (killers, the excluded move of a singular
// test, where its principal variation goes).
#pragma once

#include <cstdint>

#include "board/types.h"

namespace vx {

constexpr int MAX_PLY = 128;
// Two entries before the root, the root, and room for the deepest ply plus two.
constexpr int SEARCH_STACK_SIZE = 142;
constexpr int ROOT_ENTRY = 2;
// A principal-variation array holds up to MAX_PLY moves and its terminating 0.
constexpr int PV_ARRAY_SIZE = MAX_PLY + 2;

struct SearchStack {
  int32_t ply;
  int32_t static_eval;
  uint32_t current_move;
  uint32_t excluded_move;
  uint32_t killers[2];
  Move* pv;
};

}  // namespace vx

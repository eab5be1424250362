// The root of the search: iterative deepening with aspiration windows,
// MultiPV lines, root output and the final "bestmove".
#pragma once

#include "board/position.h"
#include "engine/output.h"
#include "search/stack.h"
#include "search/thread.h"

namespace vx {

constexpr int MAX_MULTIPV = 20;
constexpr int ASPIRATION_DELTA = 18;
constexpr Value WINDOW_LIMIT = VALUE_MATE + 1;  // 32501

// One aspiration step after a failed search at score v: the new window and
// the widened delta. Returns false when v was inside the window.
struct Window {
  Value alpha, beta;
  int delta;
};
bool WidenWindow(Window& w, Value v);
// First window of a line at depth d given its last score (32767 = none).
Window InitialWindow(int depth, bool has_record, Value last_score);

// Runs the whole search of one "go" on the state's thread and writes
// "bestmove". root_tb_score is 32767 unless a tablebase resolved the root.
// Limited: the strength-limited search (full windows, root move bonuses,
// the shuffled first iteration); the launch has set up its bonuses, node
// budget and shuffled root move list.
template <bool HwPopcnt, bool Limited>
void RootSearch(SearchState& st, Position& pos, Move prev, Move last, Value root_tb_score);

// The line records the last RootSearch left (best first).
const PvRecord* RootLines(int& count);

}  // namespace vx

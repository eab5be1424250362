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

// Per-thread root data: the lines found and the root's search stack.
// Allocated with each SearchState.
struct RootState;
RootState* NewRootState();
void DeleteRootState(RootState* root);

// Runs the iterative deepening of one "go" on the state's thread. The main
// thread (index 0) writes the search output, sends the time events, checks
// the limits and, when pondering or infinite, waits for "ponderhit" or
// "stop"; helpers search silently, leaving out some iterations, until their
// stop flag is set. root_tb_score is 32767 unless a tablebase resolved the
// root. Limited: the strength-limited search (full windows, root move
// bonuses, the shuffled first iteration); the launch has set up its bonuses,
// node budget and shuffled root move list.
template <bool HwPopcnt, bool Limited>
void RootSearch(SearchState& st, Position& pos, Move prev, Move last, Value root_tb_score);

// Writes "bestmove" (and "ponder") from the state's best line. The launch
// passes the main thread's: the move played is the one its last "info" line
// showed. (Measured at two threads, 500 ms a move: a helper had finished a
// deeper iteration in 21 of 120 searches and preferred another move with a
// better score in 3, too rare to be worth a move that no line explains.)
void PrintSearchResult(const SearchState& st);

// Whether helper thread_index (0: the main thread, never) leaves out the
// iteration of that many plies.
bool HelperSkipsIteration(int thread_index, int plies);

}  // namespace vx

// Starting a search: the per-search reset of a thread's state, the choice of
// endgame-database prober, the root tablebase probe and the root search.
#pragma once

#include <vector>

#include "board/types.h"

namespace vx {

class ThreadPool;
struct SearchState;
struct Position;

// Returns when "bestmove" has been written. With `helpers` the pool's helper
// threads search beside the main thread (never in strength-limited play);
// "bestmove" follows once every helper has stopped.
void LaunchSearch(ThreadPool& pool, Move prev, Move last, std::vector<Move>& searchMoves, bool helpers = true);

// Per-search reset: table generation, Gains, CounterMoves, material and pawn
// caches, the table and History when hash tables are not kept, start time.
void PrepareSearch(SearchState& st);

// The moves whose resulting position the prober scores exactly -w for the
// opponent, in their original order.
std::vector<Move> FilterRootMovesByTablebase(Position& pos, const std::vector<Move>& moves, int w);

}  // namespace vx

// The work the search does every 25,000 nodes: command polling, the limit
// check and the periodic "info" lines.
#pragma once

#include "search/stack.h"
#include "search/thread.h"

namespace vx {

constexpr int64_t CHECK_INTERVAL = 25000;

// The pool whose input the running search polls; set by each search launch
// (null when a search runs without a command loop, as in tests).
extern ThreadPool* search_pool;

// Limited: the check of a strength-limited search (CheckLimitsLimited).
template <bool Limited>
void PeriodicCheck(SearchState& st, SearchStack* ss);

// Counters summed over the threads of the state's pool.
uint64_t TotalNodes(const SearchState& st);
uint64_t TotalTbHits(const SearchState& st);
uint64_t TotalSbHits(const SearchState& st);

}  // namespace vx

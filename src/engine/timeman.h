// Time allocation of a search: a planned and a hard time per move, adjusted
// while the search runs by events from the root, and the limit check that
// ends a search.
#pragma once

#include <cstdint>

#include "search/thread.h"

namespace vx {

// The three settings the allocation reads, with the options' defaults.
struct TimeSettings {
  bool ponder = false;
  int buffer_sec = 1;
  int usage_percent = 100;
};
TimeSettings TimeSettingsFromOptions();

// Process-wide: one search at a time.
struct TimeManager {
  int32_t target = 0;      // planned thinking time, ms
  int32_t maximum = 0;     // hard limit, ms
  int32_t extra = 0;       // added to the target by root events, ms
  int32_t count = 0;       // accumulating events since the last iteration end
  double factor = 1.0;     // soft-limit multiplier after a score drop
  int32_t last_score = VALUE_INFINITE;  // score of the last iteration, 32767 = none
  bool active = false;     // when clear only the maximum stops the search
  bool unresolved = false; // a new best root move is being confirmed
};
extern TimeManager time_manager;

// Phases of TimeUp / CheckLimits.
enum : int { PHASE_ITERATION = 0, PHASE_ROOT_MOVE = 1, PHASE_TREE = 2 };

// Events of TimeEvent, sent by the root search.
enum : int {
  EVENT_ITERATION_END = 0,   // score = the iteration's score
  EVENT_NEW_BEST = 1,        // a later root move became the best move
  EVENT_RESEARCH = 2,        // a later root move failed high and is searched again
  EVENT_NOT_CONFIRMED = 3,   // that re-search did not confirm it
  EVENT_FIRST_EXACT = 4,     // the first root move ended with an exact score
  EVENT_FIRST_FAIL_HIGH = 5,
  EVENT_FIRST_FAIL_LOW = 6,
};

void AllocateTime(const SearchLimits& limits, Color side, const Position& pos, const TimeSettings& settings);
void AllocateTime(const SearchLimits& limits, Color side, const Position& pos);
bool TimeUp(int phase, int elapsed);
void TimeEvent(int event, int elapsed, int score);
// Sets the stop flags (to 2) when a limit of the search is reached.
void CheckLimits(SearchState& state, int phase);

// Milliseconds a strength-limited search that has spent its node budget
// still waits, so that it does not answer at once: a random 33-200 % of the
// target time, less the time already used.
int32_t ThinkDelay(int32_t elapsed);
// The limit check of a strength-limited search: movetime, the node budget
// (followed, under a clock, by the ThinkDelay wait, which keeps executing
// commands) and the clock. Pondering does not suspend it.
void CheckLimitsLimited(SearchState& state, int phase);

template <bool Limited> inline void CheckSearchLimits(SearchState& state, int phase) {
  if constexpr (Limited) CheckLimitsLimited(state, phase);
  else CheckLimits(state, phase);
}

}  // namespace vx

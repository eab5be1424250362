// Time allocation and its adjustment by root events.
#include <gtest/gtest.h>

#include <tuple>

#include "engine/timeman.h"
#include "test_util.h"

namespace vx {
namespace {

const char* const KINGS_ONLY = "4k3/8/8/8/8/8/8/4K3 w - - 0 1";

SearchLimits clock_limits(int wtime, int winc = 0, int movestogo = 0) {
  return {.time = {wtime, -1}, .inc = {winc, 0}, .movestogo = movestogo};
}

using Budget = std::pair<int, int>;

// Target and maximum for White to move, and a fresh event state.
TEST(AllocateTime, TargetAndMaximum) {
  const TimeSettings ponder{.ponder = true}, no_buffer{.buffer_sec = 0}, less{.usage_percent = 50};
  const struct { SearchLimits limits; const char* fen; TimeSettings settings; Budget expected; } cases[] = {
      {clock_limits(60000), test::START_FEN, {}, {1038, 19470}},
      {clock_limits(60000, 1000), test::START_FEN, {}, {1944, 19470}},
      {clock_limits(60000, -500), test::START_FEN, {}, {1038, 19470}},  // negative increments count as none
      {clock_limits(500), test::START_FEN, {}, {10, 20}},                // below the buffer: the floors
      // Only the other side's clock given: still a clock, with no time of ours.
      {{.time = {-1, 60000}}, test::START_FEN, {}, {10, 20}},
      // A repeating control with increment: 9/10 of the increment joins the
      // share of the remaining time, (299000 / 42 + 1800) * 0.8.
      {clock_limits(300000, 2000, 40), test::START_FEN, {}, {7135, 89190}},
      {clock_limits(60000), KINGS_ONLY, {}, {1557, 19470}},              // less material, more time
      // The Ponder, Time Buffer and Time Usage Percent options.
      {clock_limits(60000), test::START_FEN, ponder, {1297, 19470}},
      {clock_limits(60000), test::START_FEN, no_buffer, {1056, 19800}},
      {clock_limits(60000), test::START_FEN, less, {519, 19470}},
  };
  const TimeManager& t = time_manager;
  for (const auto& c : cases) {
    // The events of the last search leave nothing behind.
    TimeEvent(EVENT_ITERATION_END, 100, 50);
    TimeEvent(EVENT_RESEARCH, 300, 50);
    AllocateTime(c.limits, WHITE, test::from_fen(c.fen), c.settings);
    EXPECT_EQ(Budget(t.target, t.maximum), c.expected)
        << c.fen << " " << c.limits.time[WHITE] << "+" << c.limits.inc[WHITE] << "/" << c.limits.movestogo;
    EXPECT_EQ(std::tuple(t.factor, t.extra, t.count, t.last_score, t.active, t.unresolved),
              std::tuple(1.0, 0, 0, VALUE_INFINITE, false, false));
  }
}

// A manager with target 1000 and maximum 10000, active after one iteration
// that scored 100.
void start_manager() {
  time_manager = TimeManager{};
  time_manager.target = 1000;
  time_manager.maximum = 10000;
  TimeEvent(EVENT_ITERATION_END, 0, 100);
}

TEST(TimeEvent, ScoreDropStretchesTheSoftLimit) {
  time_manager = TimeManager{};
  TimeEvent(EVENT_FIRST_EXACT, 0, -5000);  // no reference score yet
  EXPECT_DOUBLE_EQ(time_manager.factor, 1.0);
  start_manager();
  TimeEvent(EVENT_FIRST_EXACT, 0, 100 - 128);  // half a pawn down
  EXPECT_DOUBLE_EQ(time_manager.factor, 6.0);
  TimeEvent(EVENT_FIRST_EXACT, 0, -5000);
  EXPECT_DOUBLE_EQ(time_manager.factor, 31.0);
  TimeEvent(EVENT_FIRST_EXACT, 0, 400);  // a gain changes nothing
  EXPECT_DOUBLE_EQ(time_manager.factor, 1.0);
  // The iteration end resets the factor and takes the new score as reference.
  TimeEvent(EVENT_FIRST_EXACT, 0, 100 - 128);
  TimeEvent(EVENT_ITERATION_END, 0, -28);
  EXPECT_DOUBLE_EQ(time_manager.factor, 1.0);
  TimeEvent(EVENT_FIRST_EXACT, 0, -28);
  EXPECT_DOUBLE_EQ(time_manager.factor, 1.0);
}

// A new best move, a re-search or a first-move fail low adds time (elapsed /
// events this iteration, at most the target); each iteration end halves it.
// A fail low switches the soft limit off until the first move is resolved.
TEST(TimeEvent, UnsettledRootAddsTime) {
  start_manager();
  TimeEvent(EVENT_NEW_BEST, 3000, 100);  // min(3000 / 1, 1000)
  TimeEvent(EVENT_RESEARCH, 1501, 100);  // 1501 / 2
  EXPECT_TRUE(time_manager.unresolved);
  TimeEvent(EVENT_NOT_CONFIRMED, 1600, 100);
  EXPECT_FALSE(time_manager.unresolved);
  TimeEvent(EVENT_FIRST_FAIL_LOW, 1800, 100);  // 1800 / 3
  EXPECT_FALSE(time_manager.active);
  EXPECT_EQ(time_manager.extra, 1000 + 750 + 600);
  TimeEvent(EVENT_ITERATION_END, 2000, 100);
  EXPECT_EQ(time_manager.extra, 1175);
  EXPECT_EQ(time_manager.count, 0);
  EXPECT_TRUE(time_manager.active);
  for (int resolving : {EVENT_FIRST_FAIL_HIGH, EVENT_FIRST_EXACT, EVENT_NEW_BEST}) {
    TimeEvent(EVENT_FIRST_FAIL_LOW, 10, 100);
    TimeEvent(resolving, 10, 100);
    EXPECT_TRUE(time_manager.active) << resolving;
  }
  TimeEvent(EVENT_RESEARCH, 10, 100);
  TimeEvent(EVENT_NEW_BEST, 10, 100);  // a new best move resolves a re-search too
  EXPECT_FALSE(time_manager.unresolved);
}

TEST(TimeUp, FirstMillisecondThatEndsTheSearch) {
  const struct { int phase; bool unresolved; int extra; double factor; bool active; int first; } cases[] = {
      {PHASE_ITERATION, false, 0, 1.0, true, 750},
      {PHASE_ROOT_MOVE, false, 0, 1.0, true, 1000},
      {PHASE_TREE, false, 0, 1.0, true, 2000},
      {PHASE_TREE, true, 0, 1.0, true, 4000},
      {PHASE_ROOT_MOVE, false, 333, 6.0, true, 7998},  // trunc(6 x 1333)
      {PHASE_TREE, false, 333, 6.0, true, 10000},      // the maximum caps everything
      {PHASE_ITERATION, false, 333, 1.0, false, 10000},
  };
  for (const auto& c : cases) {
    start_manager();
    time_manager.unresolved = c.unresolved;
    time_manager.extra = c.extra;
    time_manager.factor = c.factor;
    time_manager.active = c.active;
    EXPECT_FALSE(TimeUp(c.phase, c.first - 1)) << c.phase << " " << c.first;
    EXPECT_TRUE(TimeUp(c.phase, c.first)) << c.phase << " " << c.first;
  }
}

}  // namespace
}  // namespace vx

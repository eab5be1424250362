// Time allocation and its adjustment by root events.
#include <gtest/gtest.h>

#include "engine/timeman.h"
#include "test_util.h"

namespace vx {
namespace {

const char* const KINGS_ONLY = "4k3/8/8/8/8/8/8/4K3 w - - 0 1";
const char* const QUEENS_ONLY = "3qk3/8/8/8/8/8/8/3QK3 w - - 0 1";

SearchLimits clock_limits(int wtime, int winc = 0, int movestogo = 0) {
  SearchLimits l;
  l.time[WHITE] = wtime;
  l.inc[WHITE] = winc;
  l.movestogo = movestogo;
  return l;
}

// Target and maximum for White with the given settings.
std::pair<int, int> allocate(const SearchLimits& l, const Position& pos, TimeSettings s = {}) {
  AllocateTime(l, WHITE, pos, s);
  return {time_manager.target, time_manager.maximum};
}

using Budget = std::pair<int, int>;

TEST(AllocateTime, SuddenDeathAndIncrement) {
  const Position start = test::startpos();
  EXPECT_EQ(allocate(clock_limits(60000), start), Budget(1038, 19470));
  EXPECT_EQ(allocate(clock_limits(60000, 1000), start), Budget(1944, 19470));
  // Negative increments count as none.
  EXPECT_EQ(allocate(clock_limits(60000, -500), start), Budget(1038, 19470));
  // Below the buffer: the floors.
  EXPECT_EQ(allocate(clock_limits(500), start), Budget(10, 20));
  // Only the other side's clock given: still a clock, with no time of ours.
  SearchLimits black_only;
  black_only.time[BLACK] = 60000;
  EXPECT_EQ(allocate(black_only, start), Budget(10, 20));
}

TEST(AllocateTime, MovesToGo) {
  const Position start = test::startpos();
  EXPECT_EQ(allocate(clock_limits(300000, 0, 40), start), Budget(5695, 71190));
  // At most 50 moves are planned for; the maximum is at most ten targets.
  EXPECT_EQ(allocate(clock_limits(60000, 0, 100), start), Budget(907, 11340));
  // One move left: the maximum is 65% of the clock.
  EXPECT_EQ(allocate(clock_limits(10000, 0, 1), start), Budget(2400, 5850));
  EXPECT_EQ(allocate(clock_limits(20000, 5000, 5), start), Budget(5771, 12350));
}

TEST(AllocateTime, LessMaterialMoreTime) {
  EXPECT_EQ(allocate(clock_limits(60000), test::from_fen(KINGS_ONLY)), Budget(1557, 19470));
  EXPECT_EQ(allocate(clock_limits(60000), test::from_fen(QUEENS_ONLY)), Budget(1411, 19470));
}

TEST(AllocateTime, Settings) {
  const Position start = test::startpos();
  TimeSettings ponder;
  ponder.ponder = true;
  EXPECT_EQ(allocate(clock_limits(60000), start, ponder), Budget(1297, 19470));
  TimeSettings no_buffer;
  no_buffer.buffer_sec = 0;
  EXPECT_EQ(allocate(clock_limits(60000), start, no_buffer), Budget(1056, 19800));
  TimeSettings more, less;
  more.usage_percent = 150;
  less.usage_percent = 50;
  EXPECT_EQ(allocate(clock_limits(60000), start, more), Budget(1557, 19470));
  EXPECT_EQ(allocate(clock_limits(60000), start, less), Budget(519, 19470));
}

TEST(AllocateTime, ResetsTheEventState) {
  const Position start = test::startpos();
  AllocateTime(clock_limits(60000), WHITE, start, {});
  TimeEvent(EVENT_ITERATION_END, 100, 50);
  TimeEvent(EVENT_RESEARCH, 300, 50);
  AllocateTime(clock_limits(60000), WHITE, start, {});
  EXPECT_EQ(time_manager.factor, 1.0);
  EXPECT_EQ(time_manager.extra, 0);
  EXPECT_EQ(time_manager.count, 0);
  EXPECT_EQ(time_manager.last_score, VALUE_INFINITE);
  EXPECT_FALSE(time_manager.active);
  EXPECT_FALSE(time_manager.unresolved);
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
  start_manager();
  TimeEvent(EVENT_FIRST_EXACT, 0, 100 - 128);  // half a pawn down
  EXPECT_DOUBLE_EQ(time_manager.factor, 6.0);
  TimeEvent(EVENT_FIRST_EXACT, 0, 100 - 3 * 256);
  EXPECT_DOUBLE_EQ(time_manager.factor, 31.0);
  TimeEvent(EVENT_FIRST_EXACT, 0, -5000);
  EXPECT_DOUBLE_EQ(time_manager.factor, 31.0);
  TimeEvent(EVENT_FIRST_EXACT, 0, 400);  // a gain changes nothing
  EXPECT_DOUBLE_EQ(time_manager.factor, 1.0);
  // The iteration end resets the factor and takes the new score as reference.
  TimeEvent(EVENT_FIRST_EXACT, 0, 100 - 128);
  TimeEvent(EVENT_ITERATION_END, 0, -28);
  EXPECT_DOUBLE_EQ(time_manager.factor, 1.0);
  EXPECT_EQ(time_manager.last_score, -28);
  TimeEvent(EVENT_FIRST_EXACT, 0, -28);
  EXPECT_DOUBLE_EQ(time_manager.factor, 1.0);
}

TEST(TimeEvent, NoReferenceScoreNoFactor) {
  time_manager = TimeManager{};
  TimeEvent(EVENT_FIRST_EXACT, 0, -5000);
  EXPECT_DOUBLE_EQ(time_manager.factor, 1.0);
}

TEST(TimeEvent, UnsettledRootAddsTimeHalvedEachIteration) {
  start_manager();
  TimeEvent(EVENT_NEW_BEST, 3000, 100);  // min(3000 / 1, 1000)
  EXPECT_EQ(time_manager.count, 1);
  EXPECT_EQ(time_manager.extra, 1000);
  TimeEvent(EVENT_RESEARCH, 1501, 100);  // 1501 / 2
  EXPECT_TRUE(time_manager.unresolved);
  EXPECT_EQ(time_manager.extra, 1750);
  TimeEvent(EVENT_NOT_CONFIRMED, 1600, 100);
  EXPECT_FALSE(time_manager.unresolved);
  EXPECT_EQ(time_manager.extra, 1750);
  TimeEvent(EVENT_FIRST_FAIL_LOW, 1800, 100);  // 1800 / 3
  EXPECT_FALSE(time_manager.active);
  EXPECT_EQ(time_manager.extra, 2350);
  EXPECT_EQ(time_manager.count, 3);
  TimeEvent(EVENT_ITERATION_END, 2000, 100);
  EXPECT_EQ(time_manager.extra, 1175);
  EXPECT_EQ(time_manager.count, 0);
  EXPECT_TRUE(time_manager.active);
}

TEST(TimeEvent, FirstMoveEventsSwitchTheSoftLimit) {
  start_manager();
  TimeEvent(EVENT_FIRST_FAIL_LOW, 10, 100);
  EXPECT_FALSE(time_manager.active);
  TimeEvent(EVENT_FIRST_FAIL_HIGH, 10, 100);
  EXPECT_TRUE(time_manager.active);
  TimeEvent(EVENT_FIRST_FAIL_LOW, 10, 100);
  TimeEvent(EVENT_FIRST_EXACT, 10, 100);
  EXPECT_TRUE(time_manager.active);
  TimeEvent(EVENT_FIRST_FAIL_LOW, 10, 100);
  TimeEvent(EVENT_NEW_BEST, 10, 100);
  EXPECT_TRUE(time_manager.active);
  TimeEvent(EVENT_RESEARCH, 10, 100);
  TimeEvent(EVENT_NEW_BEST, 10, 100);
  EXPECT_FALSE(time_manager.unresolved);
}

TEST(TimeUp, MultipliersByPhase) {
  start_manager();
  EXPECT_FALSE(TimeUp(PHASE_ITERATION, 749));
  EXPECT_TRUE(TimeUp(PHASE_ITERATION, 750));
  EXPECT_FALSE(TimeUp(PHASE_ROOT_MOVE, 999));
  EXPECT_TRUE(TimeUp(PHASE_ROOT_MOVE, 1000));
  EXPECT_FALSE(TimeUp(PHASE_TREE, 1999));
  EXPECT_TRUE(TimeUp(PHASE_TREE, 2000));
  time_manager.unresolved = true;
  EXPECT_FALSE(TimeUp(PHASE_TREE, 3999));
  EXPECT_TRUE(TimeUp(PHASE_TREE, 4000));
  EXPECT_FALSE(TimeUp(PHASE_ITERATION, 749));
}

TEST(TimeUp, ExtraFactorAndMaximum) {
  start_manager();
  time_manager.extra = 333;
  EXPECT_FALSE(TimeUp(PHASE_ITERATION, 998));  // trunc(0.75 * 1333) = 999
  EXPECT_TRUE(TimeUp(PHASE_ITERATION, 999));
  time_manager.factor = 6.0;
  EXPECT_FALSE(TimeUp(PHASE_ROOT_MOVE, 7997));
  EXPECT_TRUE(TimeUp(PHASE_ROOT_MOVE, 7998));
  EXPECT_TRUE(TimeUp(PHASE_TREE, 10000));  // the maximum caps everything
  // Without an active soft limit only the maximum counts.
  time_manager.factor = 1.0;
  time_manager.active = false;
  EXPECT_FALSE(TimeUp(PHASE_ITERATION, 9999));
  EXPECT_TRUE(TimeUp(PHASE_ITERATION, 10000));
}

}  // namespace
}  // namespace vx

// The search threads: the pool growing and shrinking, helpers searching the
// main thread's root and being counted, and the searches that keep to one
// thread. Commands during multi-thread searches are driven through the binary
// in tests/protocol/test_threads.py.
#include <gtest/gtest.h>

#include "engine/commands.h"
#include "engine_test_util.h"
#include "search/root.h"

namespace vx {
namespace {

struct ThreadsTest : ::testing::Test, test::EngineFixture {};

TEST_F(ThreadsTest, PoolGrowsAndShrinksWithHelpersOnTheMainRoot) {
  position.SetFromFen(test::KIWIPETE);
  for (int n : {4, 2, 5, 1, 3}) {
    SetOption("Threads", std::to_string(n));
    ASSERT_EQ(pool.threads.size(), size_t(n));
    EXPECT_EQ(pool.threads[0]->state, state);
    for (size_t i = 1; i < pool.threads.size(); ++i) {
      const SearchState& h = *pool.threads[i]->state;
      EXPECT_EQ(h.thread_index, int(i));
      EXPECT_EQ(h.table, &tt);
      EXPECT_EQ(pool.threads[i]->position->state->key, position.state->key);
    }
  }
  std::istringstream args("startpos moves e2e4");
  GameMoves game;
  ASSERT_TRUE(SetupPosition(pool, args, game));
  for (const Thread* t : pool.threads) EXPECT_EQ(t->position->state->key, position.state->key);
}

TEST_F(ThreadsTest, HelpersSearchAndTheOutputCountsTheirNodes) {
  position.SetFromFen("r1bq1rk1/pp2bppp/2n1pn2/2pp4/3P4/2PBPN2/PP1N1PPP/R2QK2R w KQ - 0 8");
  SetOption("Threads", "3");
  const std::string out = search({.depth = 13});
  for (size_t i = 1; i < pool.threads.size(); ++i) EXPECT_GT(uint64_t(pool.threads[i]->state->nodes), 0u);
  // The last iteration summary is written just before the search ends: by
  // then the helpers' nodes are in it, so it exceeds the main thread's own.
  const size_t summary = out.rfind("info time ");
  ASSERT_NE(summary, std::string::npos) << out;
  EXPECT_GT(std::stoull(out.substr(out.find(" nodes ", summary) + 7)), uint64_t(state->nodes));
}

// Bench searches with one thread too: tests/protocol/test_threads.py.
TEST_F(ThreadsTest, StrengthLimitSearchesWithOneThread) {
  SetOption("Threads", "2");
  SetOption("UCI_LimitStrength", "true");
  position.SetFromFen(test::START_FEN);
  search({.depth = 6});
  EXPECT_EQ(uint64_t(pool.threads[1]->state->nodes), 0u);
  EXPECT_GT(uint64_t(state->nodes), 0u);
  SetOption("UCI_LimitStrength", "false");
}

TEST(HelperIterations, EveryDepthIsSearchedBySomeHelpersAndSkippedByOthers) {
  for (int plies = 1; plies <= 100; ++plies) {
    EXPECT_FALSE(HelperSkipsIteration(0, plies));
    int skipping = 0;
    for (int helper = 1; helper <= 20; ++helper) skipping += HelperSkipsIteration(helper, plies);
    EXPECT_GT(skipping, 0) << plies;
    EXPECT_LT(skipping, 20) << plies;
  }
  // One helper beside the main thread takes the depths the main thread
  // reaches second: every other one.
  EXPECT_TRUE(HelperSkipsIteration(1, 1));
  EXPECT_FALSE(HelperSkipsIteration(1, 2));
}

}  // namespace
}  // namespace vx

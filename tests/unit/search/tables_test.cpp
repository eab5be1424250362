// Start-up tables of the search and the arithmetic of its learning rules.
#include <gtest/gtest.h>

#include "search/history.h"
#include "search/search.h"
#include "test_util.h"

namespace vx {
namespace {

TEST(SearchTables, Reductions) {
  test::init();
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 16, 5), 6);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 2, 63), -3);  // ln(d / 4) < 0 for the first plies
  for (int d = 1; d < 256; ++d) EXPECT_EQ(Reduction(REDUCTION_NONPV, d, 1), 1) << d;
  EXPECT_EQ(Reduction(REDUCTION_PV, 16, 5), 6);
  EXPECT_EQ(Reduction(REDUCTION_PV, 64, 63), 16);  // capped; 23 in the non-PV table
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 64, 63), 23);
  // A move count of 64 or more reads entry 0 of the next row; depth 0 and
  // the rows past the last are empty, however deep the search goes.
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 100, 64), 0);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 100, 200), 0);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 0, 30), 0);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 300, 30), 0);
  EXPECT_EQ(Reduction(REDUCTION_PV, 1000, 10), 0);
}

TEST(SearchTables, NullMoveDepth) {
  EXPECT_EQ(NullMoveDepth(32, 200, 0), 9);
  EXPECT_EQ(NullMoveDepth(8, 0, 0), -6);  // below one ply: the null move is answered by QSearch
}

TEST(SearchNodeHelpers, NonPawnMaterialAndAdvancedPawnsArePerSide) {
  const Position kp = test::from_fen("4k3/8/8/8/8/8/4P3/4K2N b - - 0 1");
  EXPECT_TRUE(HasNonPawnMaterial<WHITE>(kp));
  EXPECT_FALSE(HasNonPawnMaterial<BLACK>(kp));
  EXPECT_TRUE(HasNonPawnMaterial<WHITE>(test::from_fen("4k3/8/8/8/8/8/8/2B1K3 w - - 0 1")));  // dark bishop
  const Position pos = test::from_fen("4k3/8/1P6/p7/P7/2p5/8/4K3 w - - 0 1");
  EXPECT_TRUE(IsAdvancedPawnMove<WHITE>(pos, make_move(SQ_B6, SQ_B7)));
  EXPECT_FALSE(IsAdvancedPawnMove<WHITE>(pos, make_move(SQ_E1, SQ_E2)));
  EXPECT_TRUE(IsAdvancedPawnMove<BLACK>(pos, make_move(SQ_C3, SQ_C2)));
  EXPECT_FALSE(IsAdvancedPawnMove<BLACK>(pos, make_move(SQ_E8, SQ_E7)));
}

// From neutral, repeated updates settle at 2017 and 31 (where a 32nd of the
// way no longer moves them) and stay there.
TEST(SearchHistory, RewardsAndPenaltiesSaturate) {
  int32_t up = 1024, down = 1024;
  for (int i = 0; i < 1000; ++i) {
    HistoryBonus(up);
    HistoryMalus(down);
  }
  EXPECT_EQ(up, 2017);
  EXPECT_EQ(down, 31);
}

TEST(SearchHistory, PairsKeepNewestFirstWithoutDuplicates) {
  uint32_t slot[2] = {0, 0};
  PushPair(slot, 100);
  PushPair(slot, 200);
  PushPair(slot, 200);
  EXPECT_EQ(slot[0], 200u);
  EXPECT_EQ(slot[1], 100u);
}

}  // namespace
}  // namespace vx

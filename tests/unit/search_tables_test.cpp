// Start-up tables of the search and the arithmetic of its learning rules.
#include <gtest/gtest.h>

#include "search/history.h"
#include "search/search.h"
#include "test_util.h"

namespace vx {
namespace {

TEST(SearchTables, ReductionSamples) {
  test::init();
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 16, 2), 3);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 16, 5), 6);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 16, 16), 9);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 16, 63), 12);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 64, 5), 10);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 64, 63), 23);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 2, 63), -3);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 12, 5), 5);
  for (int d = 1; d < 256; ++d) EXPECT_EQ(Reduction(REDUCTION_NONPV, d, 1), 1) << d;
}

TEST(SearchTables, PvReductionsAreCappedAndEdgesReadZero) {
  test::init();
  EXPECT_EQ(Reduction(REDUCTION_PV, 64, 63), 16);
  EXPECT_EQ(Reduction(REDUCTION_PV, 16, 5), 6);
  // A move count of 64 or more reads entry 0 of the next row; depth 0 and the
  // row past the last are empty.
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 100, 64), 0);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 100, 200), 0);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 0, 30), 0);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 300, 30), 0);
  EXPECT_EQ(Reduction(REDUCTION_PV, 1000, 10), 0);
}

TEST(SearchTables, MoveCountLimitSamples) {
  test::init();
  const int xs[5] = {4, 8, 16, 32, 63};
  const int expected[6][5] = {{3, 4, 9, 26, 82},  {4, 6, 13, 36, 106}, {2, 4, 8, 23, 70},
                              {3, 5, 12, 31, 91}, {4, 6, 13, 37, 115}, {6, 9, 19, 50, 149}};
  for (int row = 0; row < 6; ++row)
    for (int i = 0; i < 5; ++i) EXPECT_EQ(MoveCountLimits[row][xs[i]], expected[row][i]) << row << " " << xs[i];
}

TEST(SearchTables, NullMoveDepth) {
  EXPECT_EQ(NullMoveDepth(32, 200, 0), 9);
  EXPECT_EQ(NullMoveDepth(8, 0, 0), -6);  // below one ply: the null move is answered by QSearch
  EXPECT_EQ(NullMoveDepth(40, 5000, 100), 40 - 22 - 12);
}

TEST(SearchNodeHelpers, NonPawnMaterialIsReadPerSide) {
  const Position kp = test::from_fen("4k3/8/8/8/8/8/4P3/4K2N b - - 0 1");
  EXPECT_TRUE(HasNonPawnMaterial<WHITE>(kp));
  EXPECT_FALSE(HasNonPawnMaterial<BLACK>(kp));
  const Position pawns = test::from_fen("4k3/pppppppp/8/8/8/8/PPPPPPPP/4K3 w - - 0 1");
  EXPECT_FALSE(HasNonPawnMaterial<WHITE>(pawns));
  EXPECT_FALSE(HasNonPawnMaterial<BLACK>(pawns));
  for (const char* fen : {"4k3/8/8/8/8/8/8/3QK3 w - - 0 1", "4k3/8/8/8/8/8/8/3RK3 w - - 0 1",
                          "4k3/8/8/8/8/8/8/3BK3 w - - 0 1", "4k3/8/8/8/8/8/8/2B1K3 w - - 0 1"})
    EXPECT_TRUE(HasNonPawnMaterial<WHITE>(test::from_fen(fen))) << fen;
}

TEST(SearchNodeHelpers, AdvancedPawnMovesReachTheSixthRankOrBeyond) {
  const Position pos = test::from_fen("4k3/8/1P6/p7/P7/2p5/8/4K3 w - - 0 1");
  EXPECT_TRUE(IsAdvancedPawnMove<WHITE>(pos, make_move(SQ_B6, SQ_B7)));
  EXPECT_FALSE(IsAdvancedPawnMove<WHITE>(pos, make_move(SQ_E1, SQ_E2)));
  EXPECT_TRUE(IsAdvancedPawnMove<BLACK>(pos, make_move(SQ_C3, SQ_C2)));
  EXPECT_FALSE(IsAdvancedPawnMove<BLACK>(pos, make_move(SQ_E8, SQ_E7)));
  const Position fifth = test::from_fen("4k3/8/8/1P6/8/8/8/4K3 w - - 0 1");
  EXPECT_TRUE(IsAdvancedPawnMove<WHITE>(fifth, make_move(SQ_B5, SQ_B6)));
}

TEST(SearchHistory, RewardsAndPenaltiesSaturate) {
  int32_t h = 2017;
  HistoryBonus(h);
  EXPECT_EQ(h, 2017);
  h = 2016;
  HistoryBonus(h);
  EXPECT_EQ(h, 2017);
  h = 31;
  HistoryMalus(h);
  EXPECT_EQ(h, 31);
  h = 32;
  HistoryMalus(h);
  EXPECT_EQ(h, 31);
  h = 1024;
  HistoryBonus(h);
  EXPECT_EQ(h, 1056);
  // From neutral, repeated updates settle at 2017 and 31.
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
  EXPECT_EQ(slot[0], 200u);
  EXPECT_EQ(slot[1], 100u);
  PushPair(slot, 200);
  EXPECT_EQ(slot[0], 200u);
  EXPECT_EQ(slot[1], 100u);
}

}  // namespace
}  // namespace vx

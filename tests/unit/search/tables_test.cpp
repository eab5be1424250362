// Start-up tables of the search and the arithmetic of its learning rules.
// The node helpers (material, advanced pawns) and the killer and counter
// slots show in the pinned bench total.
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
  EXPECT_EQ(Reduction(REDUCTION_PV, 64, 63), 16);  // capped; 23 in the non-PV table
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 64, 63), 23);
  // A move count of 64 or more reads entry 0 of the next row; depth 0 and
  // the rows past the last are empty, however deep the search goes.
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 100, 64), 0);
  EXPECT_EQ(Reduction(REDUCTION_NONPV, 0, 30), 0);
  EXPECT_EQ(Reduction(REDUCTION_PV, 1000, 10), 0);
}

TEST(SearchTables, NullMoveDepth) {
  EXPECT_EQ(NullMoveDepth(32, 200, 0), 9);
  EXPECT_EQ(NullMoveDepth(8, 0, 0), -6);  // below one ply: the null move is answered by QSearch
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

}  // namespace
}  // namespace vx

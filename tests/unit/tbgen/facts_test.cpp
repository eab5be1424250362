// The generator's values against facts known without it: the evaluation's
// KPK bitbase, and every value consistent with its moves. The larger
// materials are compared with the Syzygy tables by "make test-tables".
#include <gtest/gtest.h>

#include "eval/kpk.h"
#include "tbgen_test_util.h"

namespace vx {
namespace {

using tbgen::V_DRAW;
using tbgen::V_LOSS;
using tbgen::V_WIN;

TEST(BasesFacts, KpkAgreesWithTheBitbaseEverywhere) {
  const tbgen::SolutionStore store = test::solve({"kpk"});
  int compared = 0, differing = 0;
  test::for_each_legal(test::solution(store, "kpk"), [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
    const int flip = file_of(p.sq[2]) > 3 ? 7 : 0;  // the bitbase wants the pawn on files a-d
    const bool won = kpk_probe(p.sq[0] ^ flip, p.sq[1] ^ flip, p.sq[2] ^ flip, stm == WHITE);
    differing += v != (won ? (stm == WHITE ? V_WIN : V_LOSS) : V_DRAW);
    ++compared;
  });
  EXPECT_EQ(differing, 0);
  EXPECT_GT(compared, 150000);
}

// Won when a move leaves the opponent lost, lost when every move leaves the opponent won.
TEST(BasesFacts, SolvedValuesAgreeWithTheirMoves) {
  const tbgen::SolutionStore store = test::solve({"kqkr", "kpk"});
  for (const char* name : {"kqkr", "kpk", "krk"})
    EXPECT_EQ(tbgen::CountInconsistencies(test::solution(store, name), store, 2), 0u) << name;
}

}  // namespace
}  // namespace vx

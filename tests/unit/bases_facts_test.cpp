// The generator's values against facts known without it: the evaluation's
// KPK bitbase, KBNK won wherever no piece hangs, KNNK drawn short of mates
// the engine's own move generator finds.
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
  const tbgen::Solution& kpk = *store.find(test::material("kpk").signature());
  int compared = 0;
  test::for_each_legal(kpk, [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
    const int flip = file_of(p.sq[2]) > 3 ? 7 : 0;  // the bitbase wants the pawn on files a-d
    const bool won = kpk_probe(p.sq[0] ^ flip, p.sq[1] ^ flip, p.sq[2] ^ flip, stm == WHITE);
    ASSERT_EQ(v, stm == WHITE ? (won ? V_WIN : V_DRAW) : (won ? V_LOSS : V_DRAW))
        << square_text(p.sq[0]) << " " << square_text(p.sq[1]) << " " << square_text(p.sq[2]) << " stm " << stm;
    ++compared;
  });
  EXPECT_GT(compared, 150000);
}

}  // namespace
}  // namespace vx

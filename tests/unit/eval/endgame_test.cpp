// Endgame functions: KPK through the bitbase, wrong bishop and rook pawns (the
// trivial draws: material_test; the bitbase against the generator: tbgen/facts_test).
#include <gtest/gtest.h>

#include "eval/endgame.h"
#include "eval_test_util.h"

namespace vx {
namespace {

using EndgameTest = test::EvalTest;

TEST_F(EndgameTest, KpkUsesTheBitbase) {
  // Rook pawn with the defender in the corner: drawn, leaning one unit to the strong side.
  EXPECT_EQ(eval_fen("k7/P7/8/2K5/8/8/8/8 b - - 0 1"), -1);
  // Winning: 20 x (64 + relative rank), also for Black as the strong side.
  EXPECT_EQ(eval_fen("8/8/8/3p4/8/3k4/8/3K4 b - - 0 1"), 20 * (64 + 3));
  // Files e-h give the value of the mirrored position, the e-file too. King in front
  // of its pawn: the defender with the opposition holds (White to move), without it he loses.
  EXPECT_EQ(eval_fen("8/4k3/8/4K3/4P3/8/8/8 w - - 0 1"), 1);
  EXPECT_EQ(eval_fen("8/4k3/8/4K3/4P3/8/8/8 b - - 0 1"), -20 * (64 + 3));
}

TEST_F(EndgameTest, WrongBishopAndRookPawns) {
  const struct { int fn; const char* fen; int scale; } cases[] = {
      {1, "1k6/8/8/P7/P7/8/8/2B1K3 w - - 0 1", 0},  // dark bishop, a8 light: the corner holds
      {2, "4kb2/8/8/8/7p/8/8/6K1 b - - 0 1", 0},  // h1 is light, a light bishop does not control it
      {3, "8/1k6/8/P7/P7/8/8/4K3 w - - 0 1", 0},
      {3, "8/2k5/8/P7/P7/8/8/4K3 w - - 0 1", SCALE_NO_VERDICT},  // c7 is two steps from a8
      {3, "7k/8/8/P6P/8/8/8/4K3 w - - 0 1", SCALE_NO_VERDICT},
      {4, "4k3/8/8/8/7p/7p/6K1/8 b - - 0 1", 0},
  };
  for (const auto& c : cases) EXPECT_EQ(ScaleFunctions[c.fn](test::from_fen(c.fen)), c.scale) << c.fen;
  // The verdict reaches the evaluation; without one the material factor applies.
  EXPECT_EQ(eval_fen("1k6/8/8/P7/P7/8/8/2B1K3 w - - 0 1"), 0);
  EXPECT_GT(eval_fen("1k6/8/8/P7/P7/8/8/4KB2 w - - 0 1"), 0);
}

}  // namespace
}  // namespace vx

// Endgame functions: trivial draws, KPK, wrong bishop and rook pawns.
#include <gtest/gtest.h>

#include "eval/endgame.h"
#include "eval_test_util.h"

namespace vx {
namespace {

class EndgameTest : public ::testing::Test, public test::EvalFixture {
 protected:
  void SetUp() override { test::init(); }
};

TEST_F(EndgameTest, TrivialMaterialIsExactlyZero) {
  for (const char* placement : {"8/8/8/4k3/8/8/8/4K3", "8/8/8/4k3/8/8/8/4KN2", "8/8/8/4k3/8/8/8/3NKN2",
                                "8/8/8/4k3/8/8/8/4KB2", "8/8/8/4k3/8/8/8/2B1K3", "2b5/8/8/4k3/8/8/8/4K3",
                                "5b2/8/8/4k3/8/8/8/4K3", "1n3n2/8/8/4k3/8/8/8/4K3"})
    for (const char* side : {" w - - 0 1", " b - - 0 1"}) {
      const std::string fen = std::string(placement) + side;
      EXPECT_EQ(eval_fen(fen), 0) << fen;
    }
}

TEST_F(EndgameTest, KpkUsesTheBitbase) {
  // Rook pawn with the defender in the corner: drawn, leaning one unit.
  EXPECT_EQ(eval_fen("k7/P7/8/2K5/8/8/8/8 w - - 0 1"), 1);
  EXPECT_EQ(eval_fen("k7/P7/8/2K5/8/8/8/8 b - - 0 1"), -1);
  // Winning: 20 x (64 + relative rank).
  EXPECT_EQ(eval_fen("3k4/8/3K4/8/3P4/8/8/8 w - - 0 1"), 20 * (64 + 3));
  EXPECT_EQ(eval_fen("3k4/8/3K4/8/3P4/8/8/8 b - - 0 1"), -20 * (64 + 3));
  // Black the strong side.
  EXPECT_EQ(eval_fen("8/8/8/3p4/8/3k4/8/3K4 b - - 0 1"), 20 * (64 + 3));
  // Files e-h give the value of the mirrored position.
  EXPECT_EQ(eval_fen("4k3/8/4K3/8/4P3/8/8/8 w - - 0 1"), eval_fen("3k4/8/3K4/8/3P4/8/8/8 w - - 0 1"));
  EXPECT_EQ(eval_fen("7k/7P/8/5K2/8/8/8/8 b - - 0 1"), eval_fen("k7/P7/8/2K5/8/8/8/8 b - - 0 1"));
}

TEST_F(EndgameTest, WrongBishopRookPawns) {
  // Dark-squared bishop, a8 is light: the corner holds.
  const Position dark = test::from_fen("1k6/8/8/P7/P7/8/8/2B1K3 w - - 0 1");
  EXPECT_EQ(ScaleFunctions[1](dark), 0);
  EXPECT_EQ(eval(dark), 0);
  // Light-squared bishop controls a8: no verdict, the material factor applies.
  const Position light = test::from_fen("1k6/8/8/P7/P7/8/8/4KB2 w - - 0 1");
  EXPECT_EQ(ScaleFunctions[1](light), SCALE_NO_VERDICT);
  EXPECT_GT(eval(light), 0);
  // Black's version: h1 is light, a light bishop does not control it.
  EXPECT_EQ(ScaleFunctions[2](test::from_fen("4kb2/8/8/8/7p/8/8/6K1 b - - 0 1")), 0);
}

TEST_F(EndgameTest, RookPawnsAgainstTheBareKing) {
  EXPECT_EQ(ScaleFunctions[3](test::from_fen("k7/8/8/P7/8/P7/8/4K3 w - - 0 1")), 0);
  EXPECT_EQ(ScaleFunctions[3](test::from_fen("8/1k6/8/P7/P7/8/8/4K3 w - - 0 1")), 0);
  EXPECT_EQ(ScaleFunctions[3](test::from_fen("8/2k5/8/P7/P7/8/8/4K3 w - - 0 1")), SCALE_NO_VERDICT);
  EXPECT_EQ(ScaleFunctions[3](test::from_fen("7k/8/8/P6P/8/8/8/4K3 w - - 0 1")), SCALE_NO_VERDICT);
  EXPECT_EQ(ScaleFunctions[4](test::from_fen("4k3/8/8/8/7p/7p/6K1/8 b - - 0 1")), 0);
  EXPECT_EQ(eval_fen("8/1k6/8/P7/P7/8/8/4K3 w - - 0 1"), 0);
}

}  // namespace
}  // namespace vx

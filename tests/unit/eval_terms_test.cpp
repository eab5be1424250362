// Piece, king-safety, threat and passed-pawn terms, read from the trace, on
// the worked cases where a rule starts or stops applying. The remaining table
// values are guarded by the bench signature.
#include <gtest/gtest.h>

#include "eval/kingsafety.h"
#include "eval_test_util.h"

namespace vx {
namespace {

using EvalTermsTest = test::EvalTest;

// The accumulated curve: zero up to index 4, its first step, a middle value and the end.
TEST(KingSafetyTables, DangerCurve) {
  test::init();
  for (int i = 0; i <= 4; ++i) EXPECT_EQ(king_danger_value(i), 0) << i;
  EXPECT_EQ(king_danger_value(5), make_pair(-1, 0));
  EXPECT_EQ(king_danger_value(200), make_pair(-1838, 0));
  EXPECT_EQ(king_danger_value(384), make_pair(-2494, 0));
}

TEST_F(EvalTermsTest, GroupValuesOfWorkedPositions) {
  const struct {
    const char* fen;
    EvalGroup group;
    ValuePair white;
  } cases[] = {
      // Passer on the seventh, path free and covered by the king: k = 252 + 178, 354 * 430 / 256.
      {"k7/3KP3/8/8/8/8/8/7n w - - 0 1", GROUP_PASSED, make_pair(594, 594)},
      // The unstoppable bonus (endgame half) only against a bare king.
      {"7k/8/1P6/7p/8/8/8/K7 w - - 0 1", GROUP_PASSED, make_pair(221, 221 + 221)},
      {"7k/8/1P6/7p/8/8/8/K6n w - - 0 1", GROUP_PASSED, make_pair(221, 221)},
      // The rule of the square: the king on f5 is outside the b5 pawn's square
      // with White to move (free path 116 * 252 / 256, unstoppable 195); with
      // Black to move it steps in (...Ke5) and the pawn can be caught.
      {"8/8/8/1P3k1p/8/8/8/K7 w - - 0 1", GROUP_PASSED, make_pair(114, 114 + 195)},
      {"8/8/8/1P3k1p/8/8/8/K7 b - - 0 1", GROUP_PASSED, make_pair(114, 114)},
      // An enemy rook behind makes every path square unsafe: only the defence addition.
      {"k7/3K4/4P3/8/8/8/8/4r3 w - - 0 1", GROUP_PASSED, make_pair(156, 156)},
      {"k7/3Kn3/4P3/8/8/8/8/8 w - - 0 1", GROUP_PASSED, 0},  // blocked
      // A safe pawn attacking a knight: ThreatBySafePawn + Hanging; a pawn
      // that itself hangs: ThreatByHangingPawn + Hanging only.
      {"r5k1/8/8/3n4/4P3/8/8/6K1 w - - 0 1", GROUP_THREATS, make_pair(104 + 28, 128 + 22)},
      {"4r1k1/8/8/3n4/4P3/8/8/6K1 w - - 0 1", GROUP_THREATS, make_pair(36 + 28, 58 + 22)},
      // Rook on an open file reaching the seventh with the queen behind: mobility, open file, (11, 9) twice.
      {"7k/8/8/8/8/8/4R3/K3Q3 w - - 0 1", GROUP_ROOKS, make_pair(65 + 47 + 22, 124 + 33 + 18)},
      // A rook shut in by its king: mobility and the trap; with eight moves no trap.
      {"4k3/8/8/8/8/8/6PP/6KR w - - 0 1", GROUP_ROOKS, make_pair(-42 - 161, -62)},
      {"k7/8/8/5P1P/8/6P1/6R1/4K3 w - - 0 1", GROUP_ROOKS, make_pair(49, 99)},
      // No attackers: king safety is the shelter alone (no shield -64 - 72 - 59,
      // far storm rows -17 - 28 - 36, nothing on c2 -12).
      {"6k1/5ppp/8/8/8/8/8/1K6 w - - 0 1", GROUP_KING_SAFETY, make_pair(-288, 0)},
  };
  for (const auto& c : cases) {
    EvalTrace t;
    trace(test::from_fen(c.fen), t);
    ASSERT_FALSE(t.endgame_function) << c.fen;
    EXPECT_EQ(t.rows[c.group].white, c.white) << c.fen;
  }
}

// A king's safety is about that king: the queen and rook bearing on White's
// castled king cost White the same wherever the black king stands, as long as
// it stays on its own wing; the attack itself does cost White.
TEST_F(EvalTermsTest, KingSafetyReadsTheKingUnderAttack) {
  auto white_king_safety = [&](const char* fen) {
    EvalTrace t;
    trace(test::from_fen(fen), t);
    return t.rows[GROUP_KING_SAFETY].white;
  };
  const ValuePair attacked = white_king_safety("k7/pp6/8/2q5/8/7r/5PPP/R5K1 w - - 0 1");
  EXPECT_LT(mg_value(attacked), mg_value(white_king_safety("k7/pp6/8/8/8/8/5PPP/R5K1 w - - 0 1")));
  for (const char* elsewhere : {"1k6/pp6/8/2q5/8/7r/5PPP/R5K1 w - - 0 1", "8/ppk5/8/2q5/8/7r/5PPP/R5K1 w - - 0 1"})
    EXPECT_EQ(white_king_safety(elsewhere), attacked) << elsewhere;
}

TEST_F(EvalTermsTest, BishopLinesAndPins) {
  // Bishop b5 pins the knight on c6: the knight becomes a blocker of the black king.
  AttackInfo pin{};
  evaluate<false>(ss, test::from_fen("4k3/8/2n5/1B6/8/8/8/4K3 w - - 0 1"), pin);
  EXPECT_EQ(pin.black_king_blockers, test::squares({SQ_C6}));
  // A bishop giving check has nothing between: no line bonus, no blocker.
  AttackInfo check{};
  evaluate<false>(ss, test::from_fen("4k3/8/8/1B6/8/8/8/4K3 b - - 0 1"), check);
  EXPECT_EQ(check.black_king_blockers, 0u);
}

}  // namespace
}  // namespace vx

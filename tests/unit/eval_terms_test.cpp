// Piece, king-safety, threat and passed-pawn terms, read from the trace.
#include <gtest/gtest.h>

#include "eval/kingsafety.h"
#include "eval_test_util.h"

namespace vx {
namespace {

class EvalTermsTest : public ::testing::Test, public test::EvalFixture {
 protected:
  void SetUp() override { test::init(); }
  EvalTrace::Row row(const std::string& fen, EvalGroup g) {
    EvalTrace t;
    trace(test::from_fen(fen), t);
    EXPECT_FALSE(t.endgame_function) << fen;
    return t.rows[g];
  }
};

TEST(KingSafetyTables, DangerCurveAndPatterns) {
  test::init();
  for (int i = 0; i <= 4; ++i) EXPECT_EQ(king_danger_value(i), 0) << i;
  EXPECT_EQ(king_danger_value(5), make_pair(-1, 0));
  EXPECT_EQ(king_danger_value(20), make_pair(-19, 0));
  EXPECT_EQ(king_danger_value(40), make_pair(-79, 0));
  EXPECT_EQ(king_danger_value(80), make_pair(-316, 0));
  EXPECT_EQ(king_danger_value(120), make_pair(-712, 0));
  EXPECT_EQ(king_danger_value(200), make_pair(-1838, 0));
  EXPECT_EQ(king_danger_value(384), make_pair(-2494, 0));
  // index = pawns + 2 knights + 8 bishops + 32 rooks + 128 queen
  EXPECT_EQ(attack_pattern_value(128 + 32 + 2), 7);
  EXPECT_EQ(attack_pattern_value(128), 0);
  EXPECT_EQ(attack_pattern_value(1 + 2 + 8 + 32), 0);
  EXPECT_EQ(attack_pattern_value(2 + 8 + 32), 2);
  EXPECT_EQ(attack_pattern_value(1 + 2 + 16), 1);
  EXPECT_EQ(attack_pattern_value(2 + 8), 3);
  EXPECT_EQ(attack_pattern_value(2 + 1), 0);
}

TEST_F(EvalTermsTest, FreePasserOnTheSeventh) {
  // Nothing on e8, not attacked by Black, covered by the king: 252 + 178 = 430,
  // 354 * 430 / 256 = 594 in both halves.
  const auto r = row("k7/3KP3/8/8/8/8/8/7n w - - 0 1", GROUP_PASSED);
  EXPECT_EQ(r.white, make_pair(594, 594));
  EXPECT_EQ(r.black, 0);
}

TEST_F(EvalTermsTest, UnstoppablePasserOnlyAgainstABareKing) {
  // b6: 225 * 252 / 256 = 221, the king on h8 is too far: + Unstoppable[5]
  // (221) in the endgame half.
  EXPECT_EQ(row("7k/8/1P6/7p/8/8/8/K7 w - - 0 1", GROUP_PASSED).white, make_pair(221, 221 + 221));
  // On the seventh rank: 354 * 252 / 256 = 348, Unstoppable[6] = 247.
  EXPECT_EQ(row("7k/1P6/8/7p/8/8/8/K7 w - - 0 1", GROUP_PASSED).white, make_pair(348, 348 + 247));
  EXPECT_EQ(row("7k/8/1P6/7p/8/8/8/K6n w - - 0 1", GROUP_PASSED).white, make_pair(221, 221));
}

TEST_F(EvalTermsTest, EnemyRookBehindMakesThePathUnsafe) {
  // Base 0, every path square covered by the king: 225 * 178 / 256 = 156.
  EXPECT_EQ(row("k7/3K4/4P3/8/8/8/8/4r3 w - - 0 1", GROUP_PASSED).white, make_pair(156, 156));
}

TEST_F(EvalTermsTest, BlockedPasserAndRookInFront) {
  EXPECT_EQ(row("k7/3Kn3/4P3/8/8/8/8/8 w - - 0 1", GROUP_PASSED).white, 0);
  EXPECT_EQ(row("4R3/4P3/8/8/8/8/8/k1K4n w - - 0 1", GROUP_PASSED).white, make_pair(-23, -22));
}

TEST_F(EvalTermsTest, PawnThreatsDependOnThePawnsSafety) {
  // e4 attacks the undefended knight; safe pawn: ThreatBySafePawn + Hanging.
  EXPECT_EQ(row("r5k1/8/8/3n4/4P3/8/8/6K1 w - - 0 1", GROUP_THREATS).white, make_pair(104 + 28, 128 + 22));
  // The pawn itself hangs to the rook: only ThreatByHangingPawn + Hanging.
  EXPECT_EQ(row("4r1k1/8/8/3n4/4P3/8/8/6K1 w - - 0 1", GROUP_THREATS).white, make_pair(36 + 28, 58 + 22));
}

TEST_F(EvalTermsTest, RookOnOpenFileBackedByTheQueen) {
  // Mobility 14 (65, 124); open file two files from the king (47, 33);
  // reaching the seventh (11, 9), twice with the queen behind.
  EXPECT_EQ(row("7k/8/8/8/8/8/4R3/K3Q3 w - - 0 1", GROUP_ROOKS).white,
            make_pair(65 + 47 + 22, 124 + 33 + 18));
}

TEST_F(EvalTermsTest, SupportedKnightOutpost) {
  // Knight d5 (a light square) supported by e4: (160, 35) when Black has no
  // knight and no light-squared bishop, (92, 20) when it has one.
  const auto unchallengeable = row("4k3/8/8/3N4/4P3/6b1/8/4K3 w - - 0 1", GROUP_KNIGHTS).white;
  const auto challengeable = row("4k3/8/8/3N4/4P3/7b/8/4K3 w - - 0 1", GROUP_KNIGHTS).white;
  EXPECT_EQ(unchallengeable - challengeable, make_pair(160 - 92, 35 - 20));
}

TEST_F(EvalTermsTest, RookShutInByItsKing) {
  // h1 rook behind its h2 pawn, no moves: mobility (-42, -62) + trap (-161, 0).
  EXPECT_EQ(row("4k3/8/8/8/8/8/6PP/6KR w - - 0 1", GROUP_ROOKS).white, make_pair(-42 - 161, -62));
  // King f1: one move left (g1), TrappedRook[1].
  EXPECT_EQ(row("4k3/8/8/8/8/8/6PP/5K1R w - - 0 1", GROUP_ROOKS).white, make_pair(-8 - 122, -9));
  // g2 lies in the trap area of the e1 king but the rook has eight moves.
  EXPECT_EQ(row("k7/8/8/5P1P/8/6P1/6R1/4K3 w - - 0 1", GROUP_ROOKS).white, make_pair(49, 99));
}

TEST_F(EvalTermsTest, PinnedKnightAndDiscoveredChecks) {
  // Bishop b5 pins the knight on c6: mobility 7 (73, 70), outpost b5 (8, 2),
  // undefended pinned knight (34, 42).
  EvalTrace t;
  AttackInfo ai{};
  const Position pos = test::from_fen("4k3/8/2n5/1B6/8/8/8/4K3 w - - 0 1");
  evaluate_trace(ss, pos, ai, t);
  EXPECT_EQ(t.rows[GROUP_BISHOPS].white, make_pair(73 + 8 + 34, 70 + 2 + 42));
  EXPECT_EQ(ai.black_king_blockers, test::squares({SQ_C6}));
  // A bishop giving check has nothing between: no line bonus, no blocker.
  AttackInfo check{};
  evaluate<false>(ss, test::from_fen("4k3/8/8/1B6/8/8/8/4K3 b - - 0 1"), check);
  EXPECT_EQ(check.black_king_blockers, 0u);
}

TEST_F(EvalTermsTest, KingSafetyIsOnlyTheShelterWithoutAttackers) {
  const auto r = row("6k1/5ppp/8/8/8/8/8/1K6 w - - 0 1", GROUP_KING_SAFETY);
  EXPECT_EQ(r.black, make_pair(81, 0));  // Black's shelter -81, seen from White
  // White's bare king on b1: no shield (-64 - 72 - 59), far storm rows for
  // empty files (-17 - 28 - 36), nothing on c2 (-12).
  EXPECT_EQ(r.white, make_pair(-288, 0));
}

}  // namespace
}  // namespace vx

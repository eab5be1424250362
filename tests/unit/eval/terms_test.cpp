// Piece, king-safety, threat and passed-pawn terms, read from the trace, on
// the worked cases where a rule starts or stops applying. The remaining table
// values are guarded by the bench signature.
#include <gtest/gtest.h>

#include "eval/endgame.h"
#include "eval_test_util.h"

namespace vx {
namespace {

using EvalTermsTest = test::EvalTest;

TEST_F(EvalTermsTest, GroupValuesOfWorkedPositions) {
  const struct { const char* fen; EvalGroup group; ValuePair white; } cases[] = {
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

// Terms of White's that read a king or a piece set of a named side. Each
// row moves that named piece (the term moves as chess says: named_sign) and
// then, from the same start, the other side's counterpart (the term stays, or
// moves the other way: other_sign). A slip of Us and Them in one of them
// turns this round; the colour-mirror test cannot see it, since a slip made
// for both colours is still symmetric.
TEST_F(EvalTermsTest, TermsFollowTheSideTheyRead) {
  constexpr int SCALE = -1;  // the wrong-bishop scale function instead of a trace group
  const struct {
    int group;
    bool eg;
    const char *base, *named, *other;
    int named_sign, other_sign;
  } rows[] = {
      // King safety: our king steps towards the queen and rook; their king steps aside.
      {GROUP_KING_SAFETY, false, "k7/pp6/8/2q5/8/7r/5PPP/R5K1 w - - 0 1", "k7/pp6/8/2q5/8/7r/5PPP/R4K2 w - - 0 1",
       "1k6/pp6/8/2q5/8/7r/5PPP/R5K1 w - - 0 1", -1, 0},
      // Safe checks: our bishop comes to cover d1, one of the queen's two; their king moves.
      {GROUP_KING_SAFETY, false, "k7/pp6/8/8/3q4/8/5PPP/6K1 w - - 0 1", "k7/pp6/8/8/3q4/5B2/5PPP/6K1 w - - 0 1",
       "1k6/pp6/8/8/3q4/8/5PPP/6K1 w - - 0 1", +1, 0},
      // Passer d4: our king from d7 to e4 (equal distances, now beside the
      // front square); their king comes ahead of it.
      {GROUP_PAWNS, true, "7k/3K4/8/8/3P4/8/8/7n b - - 0 1", "7k/8/8/8/3PK3/8/8/7n b - - 0 1",
       "8/3K4/8/2k5/3P4/8/8/7n b - - 0 1", +1, -1},
      // Blockade: their king comes ahead of the d4 passer, (3, -25), whose
      // middlegame half moves alone; our king there does not count.
      {GROUP_PAWNS, false, "7k/8/8/8/3P4/8/8/K6n b - - 0 1", "8/8/3k4/8/3P4/8/8/K6n b - - 0 1",
       "7k/8/3K4/8/3P4/8/8/7n b - - 0 1", +1, 0},
      // Rule of the square: their king steps into the b5 pawn's square; ours moves.
      {GROUP_PASSED, true, "8/8/8/1P3k1p/8/8/8/K7 w - - 0 1", "8/8/8/1P2k2p/8/8/8/K7 w - - 0 1",
       "8/8/8/1P3k1p/8/8/K7/8 w - - 0 1", -1, 0},
      // Our king stops attacking the loose knight on d3 (the c2 pawn still
      // does, so only the king threat goes); their king moves.
      {GROUP_THREATS, true, "4k3/p7/8/8/8/3n4/2P1K2P/8 w - - 0 1", "4k3/p7/8/8/8/3n4/2P4P/5K2 w - - 0 1",
       "8/p2k4/8/8/8/3n4/2P1K2P/8 w - - 0 1", -1, 0},
      // Mobility area: our king takes a square of the d4 knight, theirs stands on one.
      {GROUP_KNIGHTS, true, "4k3/p7/8/8/3N4/8/7P/K7 b - - 0 1", "4k3/p7/8/8/3N4/8/2K4P/8 b - - 0 1",
       "8/p7/8/5k2/3N4/8/7P/K7 b - - 0 1", -1, 0},
      // Outpost d5: our c-pawn comes to support it; their h-pawn moves.
      {GROUP_KNIGHTS, false, "4k3/7p/8/3N4/8/8/2P5/4K3 w - - 0 1", "4k3/7p/8/3N4/2P5/8/8/4K3 w - - 0 1",
       "4k3/8/7p/3N4/8/8/2P5/4K3 w - - 0 1", +1, 0},
      // Blockade: their passer stops in front of the d3 knight; our passer stands there.
      {GROUP_KNIGHTS, true, "4k3/8/8/8/1p6/3N4/P7/4K3 w - - 0 1", "4k3/8/8/8/3p4/3N4/P7/4K3 w - - 0 1",
       "4k3/8/8/8/1p1P4/3N4/8/4K3 w - - 0 1", +1, 0},
      // Wrong bishop: the defending king leaves the corner; the strong king moves.
      {SCALE, false, "1k6/8/8/P7/P7/8/8/2B1K3 w - - 0 1", "8/2k5/8/P7/P7/8/8/2B1K3 w - - 0 1",
       "1k6/8/8/P7/P7/8/8/2BK4 w - - 0 1", +1, 0},
  };
  auto term = [&](int group, bool eg, const char* fen) {
    const Position pos = test::from_fen(fen);
    if (group == SCALE) return int(ScaleFunctions[1](pos));
    EvalTrace t;
    trace(pos, t);
    const ValuePair v = t.rows[group].white;
    return eg ? eg_value(v) : mg_value(v);
  };
  auto sign = [](int x) { return (x > 0) - (x < 0); };
  for (const auto& r : rows) {
    const int base = term(r.group, r.eg, r.base);
    EXPECT_EQ(sign(term(r.group, r.eg, r.named) - base), r.named_sign) << r.named;
    EXPECT_EQ(sign(term(r.group, r.eg, r.other) - base), r.other_sign) << r.other;
  }
}

}  // namespace
}  // namespace vx

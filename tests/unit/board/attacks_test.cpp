// Attack tables and attack queries. Perft counts guard the leaper and pawn
// tables, the pinned bench total the evaluation's masks; here the sliders,
// lines and the king zone.
#include <gtest/gtest.h>

#include "test_util.h"

namespace vx {
namespace {

using test::squares;

// Squares reached from s stepping by d until the edge or the first occupied square.
Bitboard ray_walk(Square s, int d, Bitboard occ) {
  Bitboard r = 0;
  for (Square t = s + d, p = s; t >= 0 && t < 64 && distance(t, p) == 1; p = t, t += d) {
    r |= sq_bb(t);
    if (occ & sq_bb(t)) break;
  }
  return r;
}

TEST(Attacks, BetweenAndLineMatchTheRayWalk) {
  test::init();
  for (Square a = 0; a < 64; ++a)
    for (Square b = 0; b < 64; ++b) {
      if (a == b) continue;
      Bitboard expected_between = 0, expected_line = 0;  // stay empty when a and b share no line
      for (int d : {1, 7, 8, 9, -1, -7, -8, -9})
        if (ray_walk(a, d, 0) & sq_bb(b)) {
          expected_between = ray_walk(a, d, sq_bb(b)) & ~sq_bb(b);
          expected_line = ray_walk(a, d, 0) | ray_walk(a, -d, 0) | sq_bb(a);
        }
      ASSERT_EQ(between[a][b], expected_between) << a << " " << b;
      ASSERT_EQ(line[a][b], expected_line) << a << " " << b;
    }
}

TEST(Attacks, SliderLookupsMatchTheRayWalk) {
  test::init();
  uint64_t x = 12345;
  for (int i = 0; i < 20000; ++i) {
    Bitboard occ = xorshift_step(x) & xorshift_step(x);
    Square s = Square(xorshift_step(x) & 63);
    Bitboard rook = 0, bishop = 0;
    for (int d : {8, 1, -8, -1}) rook |= ray_walk(s, d, occ);
    for (int d : {9, 7, -9, -7}) bishop |= ray_walk(s, d, occ);
    ASSERT_EQ(RookAttacks(s, occ), rook);
    ASSERT_EQ(BishopAttacks(s, occ), bishop);
  }
}

// The king zone reaches one rank further on the back ranks.
TEST(Attacks, KingZone) {
  test::init();
  EXPECT_EQ(king_zone[WHITE][SQ_G1], squares({SQ_F1, SQ_H1, SQ_F2, SQ_G2, SQ_H2, SQ_G1, SQ_F3, SQ_G3, SQ_H3}));
  EXPECT_EQ(king_zone[BLACK][SQ_G8], squares({SQ_F8, SQ_H8, SQ_F7, SQ_G7, SQ_H7, SQ_G8, SQ_F6, SQ_G6, SQ_H6}));
  EXPECT_EQ(king_zone[WHITE][SQ_E4], king_attacks[SQ_E4] | sq_bb(SQ_E4));
}

TEST(Attacks, BlockersHoldPinnedPiecesAndDiscoveredCheckCandidates) {
  // The white rook on e1 pins the black knight on e5; the white bishop on c2
  // shields its king on d1 from the queen on a4.
  AttackInfo ai;
  ComputeAttackInfo(test::from_fen("4k3/8/8/4n3/q7/8/2B5/3KR3 w - - 0 1"), ai);
  EXPECT_EQ(ai.white_king_blockers, sq_bb(SQ_C2));
  EXPECT_EQ(ai.black_king_blockers, sq_bb(SQ_E5));
  ComputeAttackInfo(test::from_fen("q3k3/8/8/4n3/8/8/2B5/1K2R3 w - - 0 1"), ai);
  EXPECT_EQ(ai.white_king_blockers, 0u);  // a8-b7-c6-d5-e4: the queen does not see b1
}

TEST(Attacks, AttackQueriesIgnoreKings) {
  Position pos = test::from_fen("4k3/8/8/8/8/2n5/8/R3K3 w - - 0 1");
  EXPECT_FALSE(IsAttackedByBlack(pos, SQ_E7));
  EXPECT_TRUE(IsAttackedByBlack(pos, SQ_E2));
  EXPECT_TRUE(IsAttackedByWhite(pos, SQ_A8));
  EXPECT_FALSE(IsAttackedByWhite(pos, SQ_F1));  // the king blocks the rook
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  EXPECT_TRUE(ai.attacked_by_white & sq_bb(SQ_F1));  // ... but the king attacks it
}

}  // namespace
}  // namespace vx

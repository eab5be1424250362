// Attack tables and attack queries.
#include <gtest/gtest.h>

#include "test_util.h"

namespace vx {
namespace {

using test::squares;

Bitboard slow_between(Square a, Square b) {
  int df = (file_of(b) > file_of(a)) - (file_of(b) < file_of(a));
  int dr = (rank_of(b) > rank_of(a)) - (rank_of(b) < rank_of(a));
  int fd = file_of(b) - file_of(a), rd = rank_of(b) - rank_of(a);
  if (a == b || !(fd == 0 || rd == 0 || fd == rd || fd == -rd)) return 0;
  Bitboard r = 0;
  for (Square s = a + df + 8 * dr; s != b; s += df + 8 * dr) r |= sq_bb(s);
  return r;
}

TEST(Attacks, BetweenMatchesSquareBySquareWalk) {
  test::init();
  for (Square a = 0; a < 64; ++a)
    for (Square b = 0; b < 64; ++b) ASSERT_EQ(between[a][b], slow_between(a, b)) << a << " " << b;
  EXPECT_EQ(between[SQ_A1][SQ_H8], squares({SQ_B2, SQ_C3, SQ_D4, SQ_E5, SQ_F6, SQ_G7}));
  EXPECT_EQ(between[SQ_A1][SQ_B3], 0u);
}

TEST(Attacks, LineSpansTheWholeRayThroughBothSquares) {
  test::init();
  EXPECT_EQ(line[SQ_B2][SQ_D4], 0x8040201008040201ULL);
  EXPECT_EQ(line[SQ_A1][SQ_B3], 0u);
  EXPECT_EQ(line[SQ_C3][SQ_C6], file_bb(2));
  for (Square a = 0; a < 64; ++a) {
    for (Square b = 0; b < 64; ++b) {
      if (between[a][b]) {
        EXPECT_EQ(line[a][b] & between[a][b], between[a][b]);
      }
    }
  }
}

TEST(Attacks, SliderLookupsMatchTheRayWalk) {
  test::init();
  EXPECT_EQ(RookAttacks(SQ_A1, squares({SQ_A3, SQ_C1})), squares({SQ_A2, SQ_A3, SQ_B1, SQ_C1}));
  // Random occupancies: every magic index agrees with a direct walk.
  uint64_t x = 12345;
  for (int i = 0; i < 20000; ++i) {
    Bitboard occ = xorshift_step(x) & xorshift_step(x);
    Square s = Square(xorshift_step(x) & 63);
    Bitboard rook = 0, bishop = 0;
    for (int d : {8, 1, -8, -1})
      for (Square t = s + d, p = s; t >= 0 && t < 64 && distance(t, p) == 1; p = t, t += d) {
        rook |= sq_bb(t);
        if (occ & sq_bb(t)) break;
      }
    for (int d : {9, 7, -9, -7})
      for (Square t = s + d, p = s; t >= 0 && t < 64 && distance(t, p) == 1; p = t, t += d) {
        bishop |= sq_bb(t);
        if (occ & sq_bb(t)) break;
      }
    ASSERT_EQ(RookAttacks(s, occ), rook);
    ASSERT_EQ(BishopAttacks(s, occ), bishop);
  }
}

TEST(Attacks, LeaperAndPawnTablesStopAtTheEdge) {
  test::init();
  EXPECT_EQ(pawn_attacks[WHITE][SQ_H4], sq_bb(SQ_G5));
  EXPECT_EQ(pawn_attacks[BLACK][SQ_A5], sq_bb(SQ_B4));
  EXPECT_EQ(knight_attacks[SQ_A1], squares({SQ_B3, SQ_C2}));
  EXPECT_EQ(king_attacks[SQ_H8], squares({SQ_G8, SQ_G7, SQ_H7}));
  Bitboard two = knight_two[SQ_A1];
  EXPECT_TRUE(two & sq_bb(SQ_A1));
  EXPECT_TRUE(two & sq_bb(SQ_C1));
  EXPECT_TRUE(two & sq_bb(SQ_E3));
  EXPECT_TRUE(two & sq_bb(SQ_D4));
  EXPECT_FALSE(two & sq_bb(SQ_B2));
  EXPECT_FALSE(two & sq_bb(SQ_C3));
}

TEST(Attacks, KingZoneReachesOneRankFurtherOnTheBackRanks) {
  test::init();
  EXPECT_EQ(king_zone[WHITE][SQ_G1],
            squares({SQ_F1, SQ_H1, SQ_F2, SQ_G2, SQ_H2, SQ_G1, SQ_F3, SQ_G3, SQ_H3}));
  EXPECT_EQ(king_zone[BLACK][SQ_G8],
            squares({SQ_F8, SQ_H8, SQ_F7, SQ_G7, SQ_H7, SQ_G8, SQ_F6, SQ_G6, SQ_H6}));
  EXPECT_EQ(king_zone[WHITE][SQ_E4], king_attacks[SQ_E4] | sq_bb(SQ_E4));
}

TEST(Attacks, PawnMasks) {
  test::init();
  EXPECT_EQ(forward_file[WHITE][SQ_E6], squares({SQ_E7, SQ_E8}));
  EXPECT_EQ(pawn_attack_span[BLACK][SQ_A3], squares({SQ_B2, SQ_B1}));
  EXPECT_EQ(passed_pawn_mask[WHITE][SQ_H7], squares({SQ_H8, SQ_G8}));
  EXPECT_EQ(forward_ranks[WHITE][0], ~RANK_1_BB);
  EXPECT_EQ(forward_ranks[BLACK][0], 0u);
}

TEST(Attacks, BlockersHoldPinnedPiecesAndDiscoveredCheckCandidates) {
  // The white rook on e1 pins the black knight on e5 to the black king.
  Position pos = test::from_fen("4k3/8/8/4n3/8/8/2b5/1K2R3 w - - 0 1");
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  EXPECT_EQ(ai.black_king_blockers, sq_bb(SQ_E5));
  EXPECT_EQ(ai.white_king_blockers, 0u);
  Position pos2 = test::from_fen("4k3/8/8/4n3/8/8/2B5/1K1qR3 w - - 0 1");
  ComputeAttackInfo(pos2, ai);
  EXPECT_EQ(ai.black_king_blockers, sq_bb(SQ_E5));
  Position pos3 = test::from_fen("q3k3/8/8/4n3/8/8/2B5/1K2R3 w - - 0 1");
  ComputeAttackInfo(pos3, ai);
  EXPECT_EQ(ai.white_king_blockers, 0u);  // a8-b7-c6-d5-e4: the queen does not see b1
  // The white bishop on c2 shields its king on d1 from the queen on a4.
  Position pos4 = test::from_fen("4k3/8/8/4n3/q7/8/2B5/3KR3 w - - 0 1");
  ComputeAttackInfo(pos4, ai);
  EXPECT_EQ(ai.white_king_blockers, sq_bb(SQ_C2));
  EXPECT_EQ(ai.black_king_blockers, sq_bb(SQ_E5));
}

TEST(Attacks, AttackQueriesIgnoreKings) {
  Position pos = test::from_fen("4k3/8/8/8/8/8/8/4K3 w - - 0 1");
  EXPECT_FALSE(IsAttackedByWhite(pos, SQ_E2));
  EXPECT_FALSE(IsAttackedByBlack(pos, SQ_E7));
  Position pos2 = test::from_fen("4k3/8/8/8/8/2n5/8/R3K3 w - - 0 1");
  EXPECT_TRUE(IsAttackedByBlack(pos2, SQ_E2));
  EXPECT_TRUE(IsAttackedByWhite(pos2, SQ_A8));
  EXPECT_FALSE(IsAttackedByWhite(pos2, SQ_F1));  // the king blocks the rook
  AttackInfo ai;
  ComputeAttackInfo(pos2, ai);
  EXPECT_TRUE(ai.attacked_by_white & sq_bb(SQ_F1));  // ... but the king attacks it
}

}  // namespace
}  // namespace vx

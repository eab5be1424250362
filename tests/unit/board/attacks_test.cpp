// Attack tables. Perft counts guard the leaper and pawn tables, the pins and
// the attack queries, the pinned bench total the evaluation's masks (the
// king zone among them); here the sliders and lines.
#include <gtest/gtest.h>

#include "test_util.h"

namespace vx {
namespace {

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

}  // namespace
}  // namespace vx

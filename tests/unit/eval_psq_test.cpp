// Piece-square tables and their strength-limitation noise.
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "eval/evaluate.h"
#include "eval/psq.h"
#include "search/random.h"
#include "test_util.h"

namespace vx {
namespace {

class PsqTest : public ::testing::Test {
 protected:
  void SetUp() override { test::init(); }
  void TearDown() override { init_eval(false); }
};

TEST_F(PsqTest, FilesMirrorAndBlackMirrorsWhite) {
  for (Piece p = W_PAWN; p <= W_KING; ++p) {
    EXPECT_EQ(PSQ[p][SQ_E4], PSQ[p][SQ_D4]) << p;
    EXPECT_EQ(PSQ[p + 8][SQ_D5], -PSQ[p][SQ_D4]) << p;
    for (Square s = 0; s < 64; ++s) {
      EXPECT_EQ(PSQ[p][s], PSQ[p][s ^ 7]);
      EXPECT_EQ(PSQ[p + 8][s], -PSQ[p][s ^ 56]);
    }
  }
  for (Square s = 0; s < 64; ++s) {
    EXPECT_EQ(PSQ[W_BISHOP_L][s], PSQ[W_BISHOP_D][s]);
    EXPECT_EQ(PSQ[NO_PIECE][s], 0);
    EXPECT_EQ(PSQ[8][s], 0);
  }
}

TEST_F(PsqTest, MaterialIsPartOfTheEntries) {
  EXPECT_EQ(PSQ[W_KNIGHT][SQ_A8], make_pair(625, 710));
  EXPECT_EQ(PSQ[W_KING][SQ_G1], make_pair(33, -31));
  EXPECT_EQ(PSQ[W_PAWN][SQ_D5], make_pair(157 + 47, 215 - 9));
  EXPECT_EQ(PSQ[W_QUEEN][SQ_D1], make_pair(2567 + 17, 2597 - 11));
  // The start position is balanced.
  EXPECT_EQ(test::startpos().state->psq, 0);
}

TEST_F(PsqTest, NoiseOnlyBelow2150Elo) {
  EXPECT_EQ(psq_noise_for_elo(2150), 0);
  EXPECT_EQ(psq_noise_for_elo(2800), 0);
  EXPECT_EQ(psq_noise_for_elo(2125), 0);  // 25 Elo are less than one unit
  EXPECT_EQ(psq_noise_for_elo(1400), 29);
  EXPECT_EQ(psq_noise_for_elo(850), 51);

  ValuePair clean[16][64];
  std::memcpy(clean, PSQ, sizeof(PSQ));
  init_eval(true, 2150);
  EXPECT_EQ(std::memcmp(clean, PSQ, sizeof(PSQ)), 0);
  init_eval(true, 2800);
  EXPECT_EQ(std::memcmp(clean, PSQ, sizeof(PSQ)), 0);

  init_eval(true, 1400);
  int changed = 0, unmirrored = 0;
  for (Piece p = W_PAWN; p <= W_KING; ++p)
    for (Square s = 0; s < 64; ++s) {
      const int dmg = mg_value(PSQ[p][s]) - mg_value(clean[p][s]);
      const int deg = eg_value(PSQ[p][s]) - eg_value(clean[p][s]);
      EXPECT_LE(std::abs(dmg), 29);
      EXPECT_LE(std::abs(deg), 29);
      changed += dmg != 0 || deg != 0;
      unmirrored += PSQ[p + 8][s ^ 56] != -PSQ[p][s];
    }
  EXPECT_GT(changed, 400);
  EXPECT_GT(unmirrored, 400);
  for (Square s = 0; s < 64; ++s) EXPECT_EQ(PSQ[NO_PIECE][s], 0);

  init_eval(false);
  EXPECT_EQ(std::memcmp(clean, PSQ, sizeof(PSQ)), 0);
}

TEST(RandomTest, StaysInRangeAndCoversIt) {
  std::set<int> seen;
  for (int i = 0; i < 2000; ++i) {
    const int r = Random(-3, 3);
    ASSERT_GE(r, -3);
    ASSERT_LE(r, 3);
    seen.insert(r);
  }
  EXPECT_EQ(seen.size(), 7u);
  EXPECT_EQ(Random(42, 42), 42);
}

}  // namespace
}  // namespace vx

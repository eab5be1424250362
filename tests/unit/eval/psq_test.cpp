// Piece-square tables and their strength-limitation noise, drawn by Random.
#include <gtest/gtest.h>

#include <cstring>

#include "eval/evaluate.h"
#include "eval/psq.h"
#include "test_util.h"

namespace vx {
namespace {

class PsqTest : public ::testing::Test {
 protected:
  void SetUp() override { test::init(); }
  void TearDown() override { init_eval(false); }
};

TEST_F(PsqTest, FilesMirrorAndBlackMirrorsWhite) {
  for (Square s = 0; s < 64; ++s) {
    for (Piece p = W_PAWN; p <= W_KING; ++p) {
      EXPECT_EQ(PSQ[p][s], PSQ[p][s ^ 7]) << p << " " << s;
      EXPECT_EQ(PSQ[p + 8][s], -PSQ[p][s ^ 56]) << p << " " << s;
    }
    EXPECT_EQ(PSQ[W_BISHOP_L][s], PSQ[W_BISHOP_D][s]);
    EXPECT_EQ(PSQ[NO_PIECE][s], 0);
    EXPECT_EQ(PSQ[8][s], 0);
  }
}

// Strength limitation adds noise of at most psq_noise_for_elo units to every
// entry, breaking the mirror symmetry; from 2150 Elo on the tables stay clean.
// Over 768 draws each end of Random's range comes up (each is missed with a
// chance of about 2e-6), and Random(0, 0) is 0.
TEST_F(PsqTest, NoiseOnlyBelow2150Elo) {
  EXPECT_EQ(psq_noise_for_elo(2125), 0);  // 25 Elo are less than one unit
  ASSERT_EQ(psq_noise_for_elo(1400), 29);
  ValuePair clean[16][64];
  std::memcpy(clean, PSQ, sizeof(PSQ));
  init_eval(true, 2150);
  EXPECT_EQ(std::memcmp(clean, PSQ, sizeof(PSQ)), 0);
  init_eval(true, 1400);
  int unmirrored = 0, lowest = 0, highest = 0;
  for (Piece p = W_PAWN; p <= W_KING; ++p)
    for (Square s = 0; s < 64; ++s) {
      const int dmg = mg_value(PSQ[p][s]) - mg_value(clean[p][s]);
      const int deg = eg_value(PSQ[p][s]) - eg_value(clean[p][s]);
      lowest = std::min({lowest, dmg, deg}), highest = std::max({highest, dmg, deg});
      unmirrored += PSQ[p + 8][s ^ 56] != -PSQ[p][s];
    }
  EXPECT_EQ(lowest, -29);
  EXPECT_EQ(highest, 29);
  EXPECT_GT(unmirrored, 400);
  init_eval(false);
  EXPECT_EQ(std::memcmp(clean, PSQ, sizeof(PSQ)), 0);
}

}  // namespace
}  // namespace vx

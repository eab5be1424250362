// King and pawn against king bitbase.
#include <gtest/gtest.h>

#include "eval/kpk.h"
#include "test_util.h"

namespace vx {
namespace {

TEST(Kpk, SetBitCountsOfBothTables) {
  test::init();
  InitKpk();
  EXPECT_EQ(kpk_count(0), 62480);
  EXPECT_EQ(kpk_count(1), 48802);
}

TEST(Kpk, KnownVerdicts) {
  test::init();
  InitKpk();
  // Rook pawn with the defending king in the corner: a draw either way.
  EXPECT_FALSE(kpk_probe(SQ_C5, SQ_A8, SQ_A7, true));
  EXPECT_FALSE(kpk_probe(SQ_C5, SQ_A8, SQ_A7, false));
  // Key squares: king two ranks in front of its pawn wins whoever moves.
  EXPECT_TRUE(kpk_probe(SQ_D6, SQ_D8, SQ_D4, true));
  EXPECT_TRUE(kpk_probe(SQ_D6, SQ_D8, SQ_D4, false));
  // Opposition: king directly in front, the defender to move... holds only
  // when the attacker has to move.
  EXPECT_FALSE(kpk_probe(SQ_D5, SQ_D7, SQ_D4, true));
  EXPECT_TRUE(kpk_probe(SQ_D5, SQ_D7, SQ_D4, false));
  // The defender takes an undefended pawn.
  EXPECT_FALSE(kpk_probe(SQ_A1, SQ_C4, SQ_B3, false));
  // Promotion that cannot be stopped.
  EXPECT_TRUE(kpk_probe(SQ_A1, SQ_H1, SQ_B7, true));
}

}  // namespace
}  // namespace vx

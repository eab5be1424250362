// The evaluation as a whole: final steps, symmetry, the two builds, the attack
// sets it hands back and the trace.
#include <gtest/gtest.h>

#include "eval_test_util.h"

namespace vx {
namespace {

using test::EvalTest;

// A worked example through the final steps, then the boundaries: a complexity
// term below -|v / 2| never flips the sign, few files never pull a score past zero.
TEST(EvalFinish, WorkedExampleAndSigns) {
  EXPECT_EQ(blend_phases(make_pair(100, 50), 64), 75);
  EXPECT_EQ(apply_complexity(75, 10), 55);
  EXPECT_EQ(apply_few_files(55, 35), 25);
  EXPECT_EQ(apply_scale_factor(25, 57), 22);
  EXPECT_EQ(apply_complexity(-10, 0), -5);
  EXPECT_EQ(apply_complexity(11, 0), 6);
  EXPECT_EQ(apply_complexity(1, 0), 1);
  EXPECT_EQ(apply_complexity(0, 30), 0);
  EXPECT_EQ(apply_few_files(-300, 35), -300 + 70);
}

TEST_F(EvalTest, ContemptIsAddedForWhite) {
  const Position pos = test::startpos();
  const Value base = eval(pos);
  ss.contempt[WHITE] = make_pair(256, 0);
  ss.contempt[BLACK] = make_pair(-256, 0);
  EXPECT_GT(eval(pos), base + 200);
}

std::vector<Bitboard> sets(const AttackInfo& ai) {
  return {ai.attacked_by_white, ai.attacked_by_black, ai.white_king_blockers, ai.black_king_blockers};
}

// Over positions of random games: both builds agree (the second reading the
// table entries the first stored: a hit scores as the miss did), the colour-
// and file-mirrored twins score the same, the attack sets handed back equal
// ComputeAttackInfo's (also where an endgame function gives the score), and
// the trace rows add up to the score. Every evaluation probes the material
// table once.
TEST_F(EvalTest, PropertiesOverRandomGames) {
  auto fens = test::random_game_fens(60, 120, 12345);
  ASSERT_GT(fens.size(), 3000u);
  fens.push_back("8/8/8/4k3/8/8/4P3/4K3 w - - 0 1");
  int file_mirrored = 0;
  for (const std::string& fen : fens) {
    const Position pos = test::from_fen(fen);
    AttackInfo expected{}, hw{~0ULL, ~0ULL, ~0ULL, ~0ULL}, sw = hw;  // stale contents are overwritten
    ComputeAttackInfo(pos, expected);
    const Value v = evaluate<true>(ss, pos, hw);
    ASSERT_EQ(v, evaluate<false>(ss, pos, sw)) << fen;
    ASSERT_EQ(sets(hw), sets(expected)) << fen;
    ASSERT_EQ(sets(sw), sets(expected)) << fen;
    const std::string mirrored = test::colour_mirror(fen);
    ASSERT_NE(mirrored, fen);  // the side to move always changes
    ASSERT_EQ(v, eval(test::from_fen(mirrored))) << fen << " / " << mirrored;
    if (pos.state->castling_rights == 0) {
      const std::string flipped = test::file_mirror(fen);
      ASSERT_EQ(v, eval(test::from_fen(flipped))) << fen << " / " << flipped;
      ++file_mirrored;
    }
    EvalTrace t;
    ASSERT_EQ(trace(pos, t), v) << fen;
    if (t.endgame_function) continue;
    ValuePair sum = 0;
    for (const auto& row : t.rows) {
      sum += row.total;
      if (row.split) {
        ASSERT_EQ(row.white + row.black, row.total) << fen;
      }
    }
    ASSERT_EQ(sum, t.sum) << fen;
  }
  EXPECT_GT(file_mirrored, 500);
  EXPECT_EQ(ss.material_probes, 4 * fens.size() + size_t(file_mirrored));
  EXPECT_GE(ss.material_hits, 2 * fens.size());
  EXPECT_GT(ss.pawn_hits, 0u);
}

}  // namespace
}  // namespace vx

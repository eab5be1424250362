// Material table: phase, imbalance, scale factors and endgame routing. The
// individual factors and hints are guarded by the bench signature; here the
// worked examples and the boundaries where a rule starts or stops applying.
#include <gtest/gtest.h>

#include "eval/material.h"
#include "eval_test_util.h"

namespace vx {
namespace {

MaterialEntry entry_of(const std::string& fen) {
  const Position pos = test::from_fen(fen);
  MaterialEntry e;
  compute_material_entry(e, pos.state->material_key);
  return e;
}

TEST(Material, PhaseAndImbalance) {
  const MaterialEntry start = entry_of(test::START_FEN);
  EXPECT_EQ(start.phase, 128);
  EXPECT_EQ(start.value, 0);
  EXPECT_EQ(entry_of("4k3/pppp4/8/8/8/8/PPPP4/4K3 w - - 0 1").phase, 0);
  // Eight pawns and both bishops against eight pawns, bishop and knight:
  // imbalances 1640 and 579, (1640 - 579) / 16 = 66 in both halves.
  EXPECT_EQ(entry_of("2b1k1n1/pppppppp/8/8/8/8/PPPPPPPP/2B1KB2 w - - 0 1").value, make_pair(66, 66));
  // Two bishops on squares of one colour (one of them promoted) are no pair.
  EXPECT_GT(mg_value(entry_of("4k3/ppp5/8/8/8/8/PPP5/2B1KB2 w - - 0 1").value),
            mg_value(entry_of("4k3/ppp5/8/8/8/4B3/PPP5/2B1K3 w - - 0 1").value));
}

// Bare kings, one or two knights, a bishop of either colour (f1 light, f8
// dark): the trivial draw function, which scores exactly 0 whoever is to move.
TEST(Material, EndgameRouting) {
  test::EvalFixture f;
  for (const char* placement : {"8/8/8/4k3/8/8/8/4K3", "8/8/8/4k3/8/8/8/4KN2", "1n3n2/8/8/4k3/8/8/8/4K3",
                                "8/8/8/4k3/8/8/8/4KB2", "5b2/8/8/4k3/8/8/8/4K3"})
    for (const char* side : {" w - - 0 1", " b - - 0 1"}) {
      const std::string fen = std::string(placement) + side;
      EXPECT_EQ(entry_of(fen).evalFn, 1) << fen;
      EXPECT_EQ(f.eval_fen(fen), 0) << fen;
    }
  EXPECT_EQ(entry_of("8/8/8/4k3/8/8/4P3/4K3 w - - 0 1").evalFn, 2);  // KPK, either side
  EXPECT_EQ(entry_of("8/4p3/8/4k3/8/8/8/4K3 w - - 0 1").evalFn, 3);
  EXPECT_EQ(entry_of("8/8/8/4k3/8/8/8/3BKB2 w - - 0 1").evalFn, 0);  // the bishop pair can mate
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/P7/2B1K3 w - - 0 1").scaleFn[WHITE], 1);  // bishop and rook pawns
  EXPECT_EQ(entry_of("4kb2/p7/8/8/8/8/8/4K3 w - - 0 1").scaleFn[BLACK], 2);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/PP6/4K3 w - - 0 1").scaleFn[WHITE], 3);  // rook pawns alone
  EXPECT_EQ(entry_of("4k3/pp6/8/8/8/8/8/4K3 w - - 0 1").scaleFn[BLACK], 4);
  EXPECT_EQ(entry_of("4k3/p7/8/8/8/8/PP6/4K3 w - - 0 1").scaleFn[WHITE], 0);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/P7/1NB1K3 w - - 0 1").scaleFn[WHITE], 0);
}

TEST(Material, ScaleFactors) {
  const struct { const char* fen; Color side; int scale; } cases[] = {
      // Pawn endings; rook endings with pawn differences 0/1/2 (57/59/62) and 3.
      {"4k3/pp6/8/8/8/8/PPP5/4K3 w - - 0 1", BLACK, 73},
      {"r3k3/pp6/8/8/8/8/PPP5/R3K3 w - - 0 1", BLACK, 59},
      {"r3k3/p7/8/8/8/8/PPPP4/R3K3 w - - 0 1", WHITE, 64},
      // Opposite-coloured bishops alone with a pawn each (c1 dark, c8 light),
      // three pawns against two; same-coloured bishops are not drawish.
      {"2b1k3/8/8/8/8/8/4P3/2B1K3 w - - 0 1", BLACK, 1},
      {"2b1k3/pp6/8/8/8/8/PPP5/2B1K3 w - - 0 1", WHITE, 32},
      {"4kb2/pp6/8/8/8/8/PPP5/2B1K3 w - - 0 1", WHITE, 64},
      // Without pawns symmetric material is a draw; the side with pawns keeps 64.
      {"r3k3/8/8/8/8/8/8/R3K3 w - - 0 1", WHITE, 0},
      {"b3k3/p7/8/8/8/8/8/R3K3 w - - 0 1", BLACK, 64},
  };
  for (const auto& c : cases) EXPECT_EQ(entry_of(c.fen).scale[c.side], c.scale) << c.fen << " " << c.side;
}

TEST(Material, DrawHintAndPawnUpCode) {
  EXPECT_EQ(entry_of("b3k3/8/8/8/8/8/8/R3K3 w - - 0 1").drawHint, 1);
  EXPECT_EQ(entry_of("r3k3/p7/8/8/8/8/8/R3K3 w - - 0 1").drawHint, -1);
  EXPECT_EQ(entry_of("r3k3/pp6/8/8/8/8/PPP5/R3K3 w - - 0 1").drawHint, 0);  // more than four men
  EXPECT_EQ(entry_of("r3k3/ppp5/8/8/8/8/PP6/R3K3 w - - 0 1").pawnUpCode, 6);
  // Four against three, or unequal pieces: none.
  EXPECT_EQ(entry_of("r3k3/ppp5/8/8/8/8/PPPP4/R3K3 w - - 0 1").pawnUpCode, 0);
  EXPECT_EQ(entry_of("r3k3/8/8/8/8/8/P7/R2QK3 w - - 0 1").pawnUpCode, 0);
}

}  // namespace
}  // namespace vx

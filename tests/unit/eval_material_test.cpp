// Material table: phase, imbalance, scale factors, hints and endgame routing.
#include <gtest/gtest.h>

#include "eval/material.h"
#include "test_util.h"

namespace vx {
namespace {

MaterialEntry entry_of(const std::string& fen) {
  const Position pos = test::from_fen(fen);
  MaterialEntry e;
  compute_material_entry(e, pos.state->material_key);
  return e;
}

TEST(Material, KeyCountersMatchTheBoard) {
  const Position pos = test::startpos();
  const Key key = pos.state->material_key;
  const MaterialCount w = count_material(key, WHITE), b = count_material(key, BLACK);
  EXPECT_EQ(w.pawns, 8);
  EXPECT_EQ(w.knights, 2);
  EXPECT_EQ(w.lightBishops, 1);
  EXPECT_EQ(w.darkBishops, 1);
  EXPECT_EQ(b.rooks, 2);
  EXPECT_EQ(b.queens, 1);
  EXPECT_TRUE(b.bishopPair);
  EXPECT_EQ(w.npm, 8448);
}

TEST(Material, StartPositionHasFullPhaseAndNoImbalance) {
  const MaterialEntry e = entry_of("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
  EXPECT_EQ(e.phase, 128);
  EXPECT_EQ(e.value, 0);
  EXPECT_EQ(e.scale[WHITE], 64);
  EXPECT_EQ(e.scale[BLACK], 64);
  EXPECT_EQ(e.evalFn, 0);
  EXPECT_EQ(e.pawnUpCode, 0);
  EXPECT_EQ(e.drawHint, 0);
}

TEST(Material, PhaseFollowsNonPawnMaterial) {
  // Two rooks a side: 5120 - 2816 = 2304 -> 2304 * 128 / 12544 = 23.
  EXPECT_EQ(entry_of("r3k2r/8/8/8/8/8/8/R3K2R w - - 0 1").phase, 23);
  // Queen against rook: 1280 above the endgame limit.
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/r7/Q3K3 w - - 0 1").phase, 13);
  EXPECT_EQ(entry_of("4k3/pppp4/8/8/8/8/PPPP4/4K3 w - - 0 1").phase, 0);
}

TEST(Material, WorkedImbalanceExample) {
  // Eight pawns and both bishops against eight pawns, bishop and knight.
  const MaterialEntry e = entry_of("2b1k1n1/pppppppp/8/8/8/8/PPPPPPPP/2B1KB2 w - - 0 1");
  EXPECT_EQ(e.value, make_pair(66, 66));
  // Colour-reversed material gives the negated term.
  EXPECT_EQ(entry_of("2b1kb2/pppppppp/8/8/8/8/PPPPPPPP/2B1K1N1 w - - 0 1").value, make_pair(-66, -66));
}

TEST(Material, RegistryRoutesTrivialEndings) {
  for (const char* fen : {"8/8/8/4k3/8/8/8/4K3 w - - 0 1", "8/8/8/4k3/8/8/8/4KN2 w - - 0 1",
                          "8/8/8/4k3/8/8/8/3NKN2 b - - 0 1", "8/8/8/4k3/8/8/8/4KB2 w - - 0 1",
                          "8/8/8/4k3/8/8/8/2B1K3 w - - 0 1", "2b5/8/8/4k3/8/8/8/4K3 w - - 0 1",
                          "5b2/8/8/4k3/8/8/8/4K3 w - - 0 1", "1n3n2/8/8/4k3/8/8/8/4K3 w - - 0 1"})
    EXPECT_EQ(entry_of(fen).evalFn, 1) << fen;
  EXPECT_EQ(entry_of("8/8/8/4k3/8/8/4P3/4K3 w - - 0 1").evalFn, 2);
  EXPECT_EQ(entry_of("8/4p3/8/4k3/8/8/8/4K3 w - - 0 1").evalFn, 3);
  EXPECT_EQ(entry_of("8/8/8/4k3/8/8/8/3BKB2 w - - 0 1").evalFn, 0);
  EXPECT_EQ(entry_of("8/8/8/4k3/8/8/8/3NKB2 w - - 0 1").evalFn, 0);
}

TEST(Material, OppositeColouredBishops) {
  // Only the bishops and at most one pawn each.
  // (c1 is a dark square, c8 a light one, f8 a dark one.)
  EXPECT_EQ(entry_of("2b1k3/8/8/8/8/8/4P3/2B1K3 w - - 0 1").scale[WHITE], 1);
  EXPECT_EQ(entry_of("2b1k3/8/8/8/8/8/4P3/2B1K3 w - - 0 1").scale[BLACK], 1);
  // Three pawns against two: d = 1, bishop only column.
  const MaterialEntry e = entry_of("2b1k3/pp6/8/8/8/8/PPP5/2B1K3 w - - 0 1");
  EXPECT_EQ(e.scale[WHITE], 32);
  EXPECT_EQ(e.scale[BLACK], 32);
  // With a rook each, equal pawns: 0.66 * 64.
  EXPECT_EQ(entry_of("r1b1k3/pp6/8/8/8/8/PP6/2B1K2R w - - 0 1").scale[WHITE], 42);
  // Same-coloured bishops are not drawish.
  EXPECT_EQ(entry_of("4kb2/pp6/8/8/8/8/PPP5/2B1K3 w - - 0 1").scale[WHITE], 64);
}

TEST(Material, RookKnightAndPawnEndings) {
  EXPECT_EQ(entry_of("r3k3/pp6/8/8/8/8/PP6/R3K3 w - - 0 1").scale[WHITE], 57);
  EXPECT_EQ(entry_of("r3k3/pp6/8/8/8/8/PPP5/R3K3 w - - 0 1").scale[BLACK], 59);
  EXPECT_EQ(entry_of("r3k3/pp6/8/8/8/8/PPPP4/R3K3 w - - 0 1").scale[WHITE], 62);
  EXPECT_EQ(entry_of("r3k3/p7/8/8/8/8/PPPP4/R3K3 w - - 0 1").scale[WHITE], 64);
  EXPECT_EQ(entry_of("n3k3/pp6/8/8/8/8/PP6/N3K3 w - - 0 1").scale[WHITE], 70);
  EXPECT_EQ(entry_of("4k3/pp6/8/8/8/8/PP6/4K3 w - - 0 1").scale[WHITE], 73);
  EXPECT_EQ(entry_of("4k3/pp6/8/8/8/8/PPP5/4K3 w - - 0 1").scale[BLACK], 73);
}

TEST(Material, PawnlessScaleFactors) {
  // Symmetric pawnless material is a draw.
  EXPECT_EQ(entry_of("r3k3/8/8/8/8/8/8/R3K3 w - - 0 1").scale[WHITE], 0);
  EXPECT_EQ(entry_of("n3k3/8/8/8/8/8/8/2B1K3 w - - 0 1").scale[BLACK], 0);
  // A minor up with rooks on: 5.
  EXPECT_EQ(entry_of("r3k3/8/8/8/8/8/8/R1B1K3 w - - 0 1").scale[WHITE], 5);
  // Bishop pair against a knight, nothing else: 63.
  EXPECT_EQ(entry_of("n3k3/8/8/8/8/8/8/2B1KB2 w - - 0 1").scale[WHITE], 63);
  // Bishop and knight against a bishop: 3.
  EXPECT_EQ(entry_of("b3k3/8/8/8/8/8/8/2B1KN2 w - - 0 1").scale[WHITE], 3);
  // Rook against a bishop (within a minor's value): 5 for a single piece.
  EXPECT_EQ(entry_of("b3k3/8/8/8/8/8/8/R3K3 w - - 0 1").scale[WHITE], 5);
  // Queen against rook is far ahead: unchanged.
  EXPECT_EQ(entry_of("r3k3/8/8/8/8/8/8/Q3K3 w - - 0 1").scale[WHITE], 64);
  // The side with pawns keeps its factor.
  EXPECT_EQ(entry_of("b3k3/p7/8/8/8/8/8/R3K3 w - - 0 1").scale[BLACK], 64);
}

TEST(Material, DrawHint) {
  EXPECT_EQ(entry_of("b3k3/8/8/8/8/8/8/R3K3 w - - 0 1").drawHint, 1);
  EXPECT_EQ(entry_of("r3k3/p7/8/8/8/8/8/R3K3 w - - 0 1").drawHint, -1);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/P7/2B1K3 w - - 0 1").drawHint, 1);
  EXPECT_EQ(entry_of("4k3/p7/8/8/8/8/P7/4K3 w - - 0 1").drawHint, 0);
  // A lone minor does not win without pawns.
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/8/2B1KN2 w - - 0 1").drawHint, 1);
  EXPECT_EQ(entry_of("n3k3/8/8/8/8/8/8/2B1K3 w - - 0 1").drawHint, 0);
  // More than four men: no hint.
  EXPECT_EQ(entry_of("r3k3/pp6/8/8/8/8/PPP5/R3K3 w - - 0 1").drawHint, 0);
}

TEST(Material, PawnUpCode) {
  EXPECT_EQ(entry_of("r3k3/8/8/8/8/8/P7/R3K3 w - - 0 1").pawnUpCode, 1);
  EXPECT_EQ(entry_of("n3k3/p7/8/8/8/8/8/1N2K3 w - - 0 1").pawnUpCode, 2);
  EXPECT_EQ(entry_of("r3k3/p7/8/8/8/8/PP6/R3K3 w - - 0 1").pawnUpCode, 3);
  EXPECT_EQ(entry_of("r3k3/ppp7/8/8/8/8/PP6/R3K3 w - - 0 1").pawnUpCode, 6);
  // Four against three, unequal pieces, or no pieces at all: none.
  EXPECT_EQ(entry_of("r3k3/ppp5/8/8/8/8/PPPP4/R3K3 w - - 0 1").pawnUpCode, 0);
  EXPECT_EQ(entry_of("r3k3/8/8/8/8/8/P7/R2QK3 w - - 0 1").pawnUpCode, 0);
  EXPECT_EQ(entry_of("4k3/p7/8/8/8/8/PP6/4K3 w - - 0 1").pawnUpCode, 0);
}

TEST(Material, ScaleFunctionAssignment) {
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/P7/2B1K3 w - - 0 1").scaleFn[WHITE], 1);
  EXPECT_EQ(entry_of("4kb2/p7/8/8/8/8/8/4K3 w - - 0 1").scaleFn[BLACK], 2);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/PP6/4K3 w - - 0 1").scaleFn[WHITE], 3);
  EXPECT_EQ(entry_of("4k3/pp6/8/8/8/8/8/4K3 w - - 0 1").scaleFn[BLACK], 4);
  EXPECT_EQ(entry_of("4k3/p7/8/8/8/8/PP6/4K3 w - - 0 1").scaleFn[WHITE], 0);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/P7/1NB1K3 w - - 0 1").scaleFn[WHITE], 0);
}

}  // namespace
}  // namespace vx

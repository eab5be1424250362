// Pawn structure entries: shelter and storm, files, passers, wedges, outposts
// and rook traps.
#include <gtest/gtest.h>

#include "eval/pawns.h"
#include "test_util.h"

namespace vx {
namespace {

PawnEntry entry_of(const std::string& fen) {
  const Position pos = test::from_fen(fen);
  PawnEntry e;
  compute_pawn_entry(e, pos);
  return e;
}

int32_t shelter_of(const std::string& fen, Color c, Square k) { return king_shelter(test::from_fen(fen), c, k); }

TEST(PawnShelter, StormFromAFarKing) {
  // The storm rows for a near king and no enemy pawn are all zero.
  EXPECT_EQ(shelter_of("4k3/8/8/8/8/8/5PPP/6K1 w - - 0 1", WHITE, SQ_G1), 0);
  // A king three files or more away: -17 - 28 - 36.
  EXPECT_EQ(shelter_of("1k6/8/8/8/8/8/5PPP/6K1 w - - 0 1", WHITE, SQ_G1), -81);
  // The same for Black, mirrored.
  EXPECT_EQ(shelter_of("6k1/5ppp/8/8/8/8/8/1K6 w - - 0 1", BLACK, SQ_G8), -81);
  EXPECT_EQ(shelter_of("6k1/5ppp/8/8/8/8/8/4K3 w - - 0 1", BLACK, SQ_G8), 0);
}

TEST(PawnShelter, AdvancedKingAndCastlingSquares) {
  EXPECT_EQ(shelter_of("4k3/8/8/4K3/8/8/5PPP/8 w - - 0 1", WHITE, SQ_E5), -256);
  // King e1 without its pawns: no pawn on d or e (-64 - 72), f2 in place,
  // nothing in front and nothing on d2 (-12).
  EXPECT_EQ(shelter_of("4k3/8/8/8/8/8/5PPP/4K2R w - - 0 1", WHITE, SQ_E1), -148);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/5PPP/4K2R w - - 0 1").shelter[WHITE], -148);
  // With the king-side right the shelter of g1 counts.
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/5PPP/4K2R w K - 0 1").shelter[WHITE], 0);
  // An enemy pawn in front of the king softens the missing shield.
  EXPECT_EQ(shelter_of("4k3/8/8/8/8/8/4p3/4K3 w - - 0 1", WHITE, SQ_E1) -
                shelter_of("4k3/8/8/8/8/8/8/4K3 w - - 0 1", WHITE, SQ_E1),
            16);
}

TEST(PawnFiles, FewFilesAndSpan) {
  const PawnEntry e = entry_of("4k3/8/8/8/8/8/PPP5/4K3 w - - 0 1");
  EXPECT_EQ(e.fewFiles[BLACK], 35);       // no pawns
  EXPECT_EQ(e.fewFiles[WHITE], 5 * 2);    // three files, width 2
  EXPECT_EQ(e.fileSpan, 3);
  EXPECT_EQ(entry_of("4k3/7p/8/8/8/8/P7/4K3 w - - 0 1").fileSpan, 8);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/8/4K3 w - - 0 1").fileSpan, 0);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/8/4K3 w - - 0 1").score, 0);
  EXPECT_EQ(entry_of("4k3/pppppppp/8/8/8/8/PPPPPPPP/4K3 w - - 0 1").fewFiles[WHITE], 0);
}

TEST(PawnPassers, DoubledRearPawnIsNeverPassed) {
  const PawnEntry e = entry_of("4k3/8/8/8/8/4P3/4P3/4K3 w - - 0 1");
  EXPECT_EQ(e.passed[WHITE], test::squares({SQ_E3}));
  const PawnEntry blocked = entry_of("4k3/3p4/8/8/8/4P3/8/4K3 w - - 0 1");
  EXPECT_EQ(blocked.passed[WHITE], 0u);
  EXPECT_EQ(blocked.passed[BLACK], 0u);
  EXPECT_EQ(entry_of("4k3/8/8/3p4/8/8/6P1/4K3 w - - 0 1").passed[BLACK], test::squares({SQ_D5}));
}

TEST(PawnPassers, KingSupportAndKingDistances) {
  // Passer e4, black king a8 (enemy sum 4 + 4 + 2 x (4 + 2 x 4) = 32).
  // King f4: own sum 1 + 1 + 4 + 2 x 1 = 8 -> (56 x 32 - 80 x 8) / 32 = 36,
  // plus PassedKingSupport (0, 6) for standing next to e5.
  // King f2: own sum 2 + 1 + 6 + 2 x 3 = 15 -> (1792 - 1200) / 32 = 18.
  const PawnEntry near = entry_of("k7/8/8/8/4PK2/8/8/8 w - - 0 1");
  const PawnEntry far = entry_of("k7/8/8/8/4P3/8/5K2/8 w - - 0 1");
  EXPECT_EQ(near.passed[WHITE], test::squares({SQ_E4}));
  EXPECT_EQ(near.score - far.score, make_pair(0, 36 + 6 - 18));
}

TEST(PawnWedge, RammedPawnNextToTheEnemyKing) {
  EXPECT_EQ(entry_of("6k1/7p/7P/8/8/8/8/4K3 w - - 0 1").kingDanger[WHITE], 6);
  EXPECT_EQ(entry_of("4k3/7p/7P/8/8/8/8/4K3 w - - 0 1").kingDanger[WHITE], 0);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/7p/7P/6K1 b - - 0 1").kingDanger[BLACK], 6);
}

TEST(PawnOutposts, EnemyPawnsThatCanChallenge) {
  const PawnEntry e = entry_of("4k3/2p5/8/8/8/8/8/4K3 w - - 0 1");
  EXPECT_EQ(e.outposts[WHITE] & test::squares({SQ_B5, SQ_D5, SQ_B4, SQ_D6}), 0u);
  EXPECT_EQ(e.outposts[WHITE] & test::squares({SQ_C5, SQ_E5, SQ_G6}), test::squares({SQ_C5, SQ_E5, SQ_G6}));
  EXPECT_EQ(e.outposts[WHITE] & (FILE_A_BB | FILE_H_BB | rank_bb(2) | rank_bb(6)), 0u);
  EXPECT_EQ(e.outposts[BLACK], (rank_bb(2) | rank_bb(3) | rank_bb(4)) & ~(FILE_A_BB | FILE_H_BB));
}

TEST(PawnRookTraps, FilesBetweenKingAndEdgeAllBlocked) {
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/7P/6K1 w - - 0 1").rookTraps, test::squares({SQ_H1, SQ_H2}));
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/6P1/5K2 w - - 0 1").rookTraps, 0u);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/6PP/5K2 w - - 0 1").rookTraps,
            test::squares({SQ_G1, SQ_H1, SQ_G2, SQ_H2}));
  EXPECT_EQ(entry_of("1k6/pp6/8/8/8/8/8/4K3 w - - 0 1").rookTraps, test::squares({SQ_A8, SQ_A7}));
}

}  // namespace
}  // namespace vx

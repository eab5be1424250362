// Pawn structure entries: shelter and storm, files, passers, wedges, outposts
// and rook traps, on the worked cases where a rule starts or stops applying.
#include <gtest/gtest.h>

#include "eval/pawns.h"
#include "eval_test_util.h"

namespace vx {
namespace {

using test::squares;

PawnEntry entry_of(const std::string& fen) {
  const Position pos = test::from_fen(fen);
  PawnEntry e;
  compute_pawn_entry(e, pos);
  return e;
}

int32_t shelter_of(const std::string& fen, Color c, Square k) { return king_shelter(test::from_fen(fen), c, k); }

TEST(PawnShelter, StormKingPositionAndCastlingSquares) {
  // No enemy pawn: the storm rows are zero for a near king, -17 - 28 - 36
  // for one three files or more away.
  EXPECT_EQ(shelter_of("4k3/8/8/8/8/8/5PPP/6K1 w - - 0 1", WHITE, SQ_G1), 0);
  EXPECT_EQ(shelter_of("6k1/5ppp/8/8/8/8/8/1K6 w - - 0 1", BLACK, SQ_G8), -81);
  // A king on its fifth rank has no shelter at all.
  EXPECT_EQ(shelter_of("4k3/8/8/4K3/8/8/5PPP/8 w - - 0 1", WHITE, SQ_E5), -256);
  // With the king-side right the better shelter of g1 counts.
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/5PPP/4K2R w - - 0 1").shelter[WHITE], -148);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/5PPP/4K2R w K - 0 1").shelter[WHITE], 0);
}

TEST(PawnFiles, FewFilesAndSpan) {
  const PawnEntry e = entry_of("4k3/8/8/8/8/8/PPP5/4K3 w - - 0 1");
  EXPECT_EQ(e.fewFiles[BLACK], 35);  // no pawns
  EXPECT_EQ(e.fewFiles[WHITE], 10);
  EXPECT_EQ(e.fileSpan, 3);
  EXPECT_EQ(entry_of("4k3/7p/8/8/8/8/P7/4K3 w - - 0 1").fileSpan, 8);
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/8/4K3 w - - 0 1").fileSpan, 0);
}

TEST(PawnPassers, DoubledRearPawnIsNeverPassed) {
  EXPECT_EQ(entry_of("4k3/8/8/8/8/4P3/4P3/4K3 w - - 0 1").passed[WHITE], squares({SQ_E3}));
  EXPECT_EQ(entry_of("4k3/3p4/8/8/8/4P3/8/4K3 w - - 0 1").passed[WHITE], 0u);  // d7 guards e6
  EXPECT_EQ(entry_of("4k3/8/8/3p4/8/8/6P1/4K3 w - - 0 1").passed[BLACK], squares({SQ_D5}));
}

TEST(PawnWedge, RammedPawnNextToTheEnemyKing) {
  EXPECT_EQ(entry_of("6k1/7p/7P/8/8/8/8/4K3 w - - 0 1").kingDanger[WHITE], 6);
  EXPECT_EQ(entry_of("4k3/7p/7P/8/8/8/8/4K3 w - - 0 1").kingDanger[WHITE], 0);
}

TEST(PawnOutposts, OnlyWhereNoEnemyPawnCanChallenge) {
  const PawnEntry e = entry_of("4k3/2p5/8/8/8/8/8/4K3 w - - 0 1");
  EXPECT_EQ(e.outposts[WHITE] & squares({SQ_B5, SQ_D5, SQ_B4, SQ_D6, SQ_C5, SQ_E5}), squares({SQ_C5, SQ_E5}));
  EXPECT_EQ(e.outposts[BLACK], (rank_bb(2) | rank_bb(3) | rank_bb(4)) & ~(FILE_A_BB | FILE_H_BB));
}

TEST(PawnRookTraps, FilesBetweenKingAndEdgeAllBlocked) {
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/7P/6K1 w - - 0 1").rookTraps, squares({SQ_H1, SQ_H2}));
  EXPECT_EQ(entry_of("4k3/8/8/8/8/8/6P1/5K2 w - - 0 1").rookTraps, 0u);
}

std::vector<int64_t> fields_of(const PawnEntry& e) {
  std::vector<int64_t> v{int64_t(e.key), e.score, e.complexity, e.fileSpan, int64_t(e.rookTraps)};
  for (Color c : {WHITE, BLACK})
    v.insert(v.end(), {e.shelter[c], e.zoneAttacks[c], e.ringAttacks[c], e.kingDanger[c], e.attackWeight[c],
                       e.fewFiles[c], int64_t(e.passed[c]), int64_t(e.outposts[c])});
  return v;
}

// The table keeps each pawn structure apart from the king terms, so that a
// king move reuses the structure. Along random games, with the tables kept
// from one position to the next, every probed entry must equal the entry
// built from scratch, field by field.
TEST(PawnTable, CachedEntriesEqualEntriesBuiltFromScratch) {
  test::EvalFixture f;
  int positions = 0, structure_reuses = 0;
  test::random_walks({test::START_FEN, "r3k2r/pp3ppp/2n5/3p4/3P4/2N5/PP3PPP/R3K2R w KQkq - 0 1"}, 60, 160, 2611,
                     [&](const Position& pos, const MoveList&) {
                       const bool had_structure =
                           f.ss.pawn_table->structures[structure_key(pos) & (PAWN_STRUCTURE_TABLE_SIZE - 1)].key ==
                           structure_key(pos);
                       const Key key = pos.state->pawn_key;
                       const bool had_entry = f.ss.pawn_table->entries[key & (PAWN_TABLE_SIZE - 1)].key == key;
                       structure_reuses += had_structure && !had_entry;
                       const PawnEntry& cached = PawnTable::probe(pos, f.ss);
                       PawnEntry fresh;
                       compute_pawn_entry(fresh, pos);
                       ++positions;
                       ASSERT_EQ(fields_of(cached), fields_of(fresh)) << test::fen_of(pos);
                     });
  EXPECT_GT(positions, 5000);
  EXPECT_GT(structure_reuses, 500);
}

}  // namespace
}  // namespace vx

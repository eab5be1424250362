// The staged move picker: stage order, skips and the quiet-move partition.
// The order of the quiet moves beyond that shows in the pinned bench total.
#include <gtest/gtest.h>

#include "search/movepick.h"
#include "test_util.h"

namespace vx {
namespace {

using test::from_fen;
using test::move_of;

MoveEntry Quiet(int history, Move m) { return (MoveEntry(history) << 16) | m; }

// Quiet moves 1, 2, ... with history above 1024 go first; the two-ended
// exchange fixes the order of the rest.
TEST(PickerPartition, TwoEndedExchange) {
  const struct { std::vector<int> history; std::vector<Move> order; int good; } cases[] = {
      {{1200, 1000, 1100, 900, 1300}, {1, 5, 3, 4, 2}, 3},  // q2 exchanged with q5, then the cursors meet
      {{1024, 1025, 1024}, {2, 1, 3}, 1},                  // neutral history is not good
      {{1000, 1024, 31}, {1, 2, 3}, 0},
  };
  for (const auto& c : cases) {
    std::vector<MoveEntry> list;
    for (size_t i = 0; i < c.history.size(); ++i) list.push_back(Quiet(c.history[i], Move(i + 1)));
    EXPECT_EQ(PartitionGoodQuiets(list.data(), list.data() + list.size()) - list.data(), c.good);
    std::vector<Move> order(list.begin(), list.end());
    EXPECT_EQ(order, c.order);
  }
}

// Moves the main-search picker yields (qdepth unset), or the quiescence picker's at qdepth.
// A picker that prefetches the children's table entries must yield the same moves as one that does not.
std::vector<Move> Picked(const Position& pos, const HistoryTable& h, int depth, Move tt, Move k0 = MOVE_NONE,
                         Move k1 = MOVE_NONE, Move c0 = MOVE_NONE, Move c1 = MOVE_NONE, int qdepth = 1) {
  static TranspositionTable table;
  if (!table.cluster_count()) table.resize(1);
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  static MovePicker mp;
  std::vector<Move> runs[2];
  for (int prefetching = 0; prefetching < 2; ++prefetching) {
    const TranspositionTable* t = prefetching ? &table : nullptr;
    if (qdepth <= 0) StartQPicker<WHITE>(mp, pos, ai, h, t, qdepth, tt);
    else StartPicker<WHITE>(mp, pos, ai, h, t, depth, tt, k0, k1, c0, c1);
    while (const Move m = NextMove<WHITE>(mp)) runs[prefetching].push_back(m);
  }
  EXPECT_EQ(runs[0], runs[1]);
  return runs[0];
}

// Ra1 takes an undefended knight (winning), Nc3 takes a pawn defended by a
// pawn (losing).
const char* PICKER_FEN = "n3k3/8/4p3/3p4/8/2N5/8/R3K3 w - - 0 1";

// Completeness and the absence of duplicates over many positions are checked
// by the perft self-test, which walks its trees through the picker.
TEST(Picker, StagesComeInOrder) {
  const Position pos = from_fen(PICKER_FEN);
  const Move tt = move_of(pos, "e1e2"), win = move_of(pos, "a1a8"), lose = move_of(pos, "c3d5");
  const Move k0 = move_of(pos, "a1a7"), k1 = move_of(pos, "c3e4"), c0 = move_of(pos, "c3b5");
  // A counter move equal to a killer is skipped.
  const std::vector<Move> moves = Picked(pos, neutral_history, 8, tt, k0, k1, c0, k0);
  ASSERT_GE(moves.size(), 6u);
  EXPECT_EQ(std::vector<Move>(moves.begin(), moves.begin() + 5), (std::vector<Move>{tt, win, k0, k1, c0}));
  EXPECT_EQ(moves.back(), lose);
  EXPECT_EQ(std::count(moves.begin(), moves.end(), k0), 1);
  // A TT move or killer from another position (no piece on d1) is dropped.
  const Move bogus = make_move(SQ_D1, SQ_D4);
  const std::vector<Move> clean = Picked(pos, neutral_history, 8, bogus, bogus);
  EXPECT_EQ(clean[0], win);
  EXPECT_EQ(std::count(clean.begin(), clean.end(), bogus), 0);
}

TEST(Picker, QuiescenceDropsLosingCapturesAndAddsChecksOnlyAtDepthZero) {
  // As above plus a knight on e4 that can check from d6 and f6.
  const Position pos = from_fen("n3k3/8/4p3/3p4/4N3/2N5/8/R3K3 w - - 0 1");
  const std::vector<Move> at0 = Picked(pos, neutral_history, 0, MOVE_NONE, {}, {}, {}, {}, 0);
  const std::vector<Move> below = Picked(pos, neutral_history, 0, MOVE_NONE, {}, {}, {}, {}, -1);
  EXPECT_EQ(below, std::vector<Move>{move_of(pos, "a1a8")});
  ASSERT_EQ(at0.size(), 3u);
  EXPECT_EQ(at0[0], move_of(pos, "a1a8"));
  EXPECT_EQ(std::count(at0.begin(), at0.end(), move_of(pos, "e4d6")), 1);
  EXPECT_EQ(std::count(at0.begin(), at0.end(), move_of(pos, "e4f6")), 1);
}

}  // namespace
}  // namespace vx

// The staged move picker: stage order, skips, the quiet-move partition and sort.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "search/movepick.h"
#include "test_util.h"

namespace vx {
namespace {

using test::from_fen;
using test::move_of;

MoveEntry Quiet(int history, Move m) { return (MoveEntry(history) << 16) | m; }

TEST(PickerPartition, TwoEndedExchangeKeepsTheDocumentedPermutation) {
  // q1 (good), q2, q3 (good), q4, q5 (good) becomes q1, q5, q3 | q4, q2.
  MoveEntry list[5] = {Quiet(1200, 1), Quiet(1000, 2), Quiet(1100, 3), Quiet(900, 4), Quiet(1300, 5)};
  MoveEntry* split = PartitionGoodQuiets(list, list + 5);
  ASSERT_EQ(split - list, 3);
  const Move order[5] = {1, 5, 3, 4, 2};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Move(list[i]), order[i]) << i;
}

TEST(PickerPartition, NeutralHistoryIsNotGood) {
  MoveEntry list[3] = {Quiet(1024, 1), Quiet(1025, 2), Quiet(1024, 3)};
  MoveEntry* split = PartitionGoodQuiets(list, list + 3);
  ASSERT_EQ(split - list, 1);
  EXPECT_EQ(Move(list[0]), 2);
  EXPECT_EQ(Move(list[1]), 1);  // exchanged with the good entry, so it takes its place
  EXPECT_EQ(Move(list[2]), 3);
}

TEST(PickerPartition, NoGoodOrAllGoodLeavesTheOrder) {
  MoveEntry none[3] = {Quiet(1000, 1), Quiet(1024, 2), Quiet(31, 3)};
  EXPECT_EQ(PartitionGoodQuiets(none, none + 3), none);
  EXPECT_EQ(Move(none[0]), 1);
  EXPECT_EQ(Move(none[2]), 3);
  MoveEntry all[2] = {Quiet(1500, 1), Quiet(2000, 2)};
  EXPECT_EQ(PartitionGoodQuiets(all, all + 2), all + 2);
  EXPECT_EQ(Move(all[0]), 1);
}

TEST(PickerSort, LargestFirstAndEqualEntriesKeepTheirOrder) {
  MoveEntry list[5] = {5, 9, 5, 1, 9};
  InsertionSortDescending(list, list + 5);
  EXPECT_EQ(std::vector<MoveEntry>(list, list + 5), (std::vector<MoveEntry>{9, 9, 5, 5, 1}));
}

struct PickerRun {
  std::vector<Move> moves;
};

PickerRun RunPicker(const Position& pos, const HistoryTable& h, int depth, Move tt, Move k0, Move k1, Move c0,
                    Move c1) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  static MovePicker mp;
  StartPicker<WHITE>(mp, pos, ai, h, depth, tt, k0, k1, c0, c1);
  PickerRun run;
  while (const Move m = NextMove<WHITE>(mp)) run.moves.push_back(m);
  return run;
}

// Ra1 takes an undefended knight (winning), Nc3 takes a pawn defended by a
// pawn (losing).
const char* PICKER_FEN = "n3k3/8/4p3/3p4/8/2N5/8/R3K3 w - - 0 1";

TEST(Picker, StagesComeInOrderWithoutDuplicates) {
  const Position pos = from_fen(PICKER_FEN);
  const Move tt = move_of(pos, "e1e2"), win = move_of(pos, "a1a8"), lose = move_of(pos, "c3d5");
  const Move k0 = move_of(pos, "a1a7"), k1 = move_of(pos, "c3e4"), c0 = move_of(pos, "c3b5");
  const Move c1 = k0;  // a counter move equal to a killer is skipped
  const PickerRun run = RunPicker(pos, neutral_history, 8, tt, k0, k1, c0, c1);
  ASSERT_GE(run.moves.size(), 6u);
  EXPECT_EQ(run.moves[0], tt);
  EXPECT_EQ(run.moves[1], win);
  EXPECT_EQ(run.moves[2], k0);
  EXPECT_EQ(run.moves[3], k1);
  EXPECT_EQ(run.moves[4], c0);
  EXPECT_EQ(run.moves.back(), lose);
  std::vector<Move> sorted = run.moves;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_TRUE(std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end());

  MoveList legal;
  GenerateLegal(pos, legal);
  EXPECT_EQ(run.moves.size(), size_t(legal.size));  // no pinned pieces: pseudo-legal = legal here
}

TEST(Picker, IllegalTtMoveAndKillersAreDropped) {
  const Position pos = from_fen(PICKER_FEN);
  const Move bogus = make_move(SQ_D1, SQ_D4);  // no piece on d1
  const PickerRun run = RunPicker(pos, neutral_history, 8, bogus, bogus, MOVE_NONE, MOVE_NONE, MOVE_NONE);
  EXPECT_EQ(run.moves[0], move_of(pos, "a1a8"));
  EXPECT_EQ(std::count(run.moves.begin(), run.moves.end(), bogus), 0);
}

TEST(Picker, QuietOrderDependsOnDepth) {
  const Position pos = from_fen(PICKER_FEN);
  static HistoryTable h;
  std::copy(&neutral_history[0][0], &neutral_history[0][0] + 16 * 64, &h[0][0]);
  h[W_KNIGHT][SQ_A4] = 1500;  // a good quiet
  h[W_KING][SQ_F2] = 1020;
  h[W_ROOK][SQ_A3] = 1010;
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  MoveEntry generated[MAX_MOVES];
  MoveEntry* end = GenerateQuiets<WHITE>(pos, ai, h, generated);

  const PickerRun shallow = RunPicker(pos, h, 4, MOVE_NONE, MOVE_NONE, MOVE_NONE, MOVE_NONE, MOVE_NONE);
  const PickerRun deep = RunPicker(pos, h, 5, MOVE_NONE, MOVE_NONE, MOVE_NONE, MOVE_NONE, MOVE_NONE);
  // The winning capture, then the good quiet, then the others, then the losing capture.
  ASSERT_EQ(shallow.moves.size(), size_t(end - generated) + 2);
  EXPECT_EQ(shallow.moves[1], move_of(pos, "c3a4"));
  EXPECT_EQ(deep.moves[1], move_of(pos, "c3a4"));

  // At one ply the rest comes in the partition's order, from two plies on sorted.
  std::vector<MoveEntry> rest(generated, end);
  MoveEntry* split = PartitionGoodQuiets(rest.data(), rest.data() + rest.size());
  ASSERT_EQ(split - rest.data(), 1);
  for (size_t i = 1; i < rest.size(); ++i) EXPECT_EQ(shallow.moves[i + 1], Move(rest[i])) << i;
  const size_t n = deep.moves.size();
  EXPECT_EQ(deep.moves[n - 3], move_of(pos, "e1f2"));
  EXPECT_EQ(deep.moves[n - 2], move_of(pos, "a1a3"));
  auto entry_of = [&](Move m) {
    return *std::find_if(generated, end, [&](MoveEntry e) { return Move(e) == m; });
  };
  for (size_t i = 2; i + 2 < n; ++i) EXPECT_GT(entry_of(deep.moves[i]), entry_of(deep.moves[i + 1])) << i;
}

TEST(Picker, QuiescenceDropsLosingCapturesAndAddsChecksOnlyAtDepthZero) {
  // As above plus a knight on e4 that can check from d6 and f6.
  const Position pos = from_fen("n3k3/8/4p3/3p4/4N3/2N5/8/R3K3 w - - 0 1");
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  static MovePicker mp;
  std::vector<Move> at0, below;
  StartQPicker<WHITE>(mp, pos, ai, neutral_history, 0, MOVE_NONE);
  while (const Move m = NextMove<WHITE>(mp)) at0.push_back(m);
  StartQPicker<WHITE>(mp, pos, ai, neutral_history, -1, MOVE_NONE);
  while (const Move m = NextMove<WHITE>(mp)) below.push_back(m);
  EXPECT_EQ(below, std::vector<Move>{move_of(pos, "a1a8")});
  ASSERT_EQ(at0.size(), 3u);
  EXPECT_EQ(at0[0], move_of(pos, "a1a8"));
  EXPECT_EQ(std::count(at0.begin(), at0.end(), move_of(pos, "e4d6")), 1);
  EXPECT_EQ(std::count(at0.begin(), at0.end(), move_of(pos, "e4f6")), 1);
}

TEST(Picker, InCheckYieldsTacticalEvasionsFirst) {
  // The black rook on e2 checks; Kxe2 is illegal (defended by the knight on c3),
  // Nxe2 and Qxe2 capture, the king may also step aside.
  const Position pos = from_fen("4k3/8/8/8/8/2n5/4r3/3QK3 w - - 0 1");
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  static MovePicker mp;
  StartPicker<WHITE>(mp, pos, ai, neutral_history, 8, MOVE_NONE, MOVE_NONE, MOVE_NONE, MOVE_NONE, MOVE_NONE);
  std::vector<Move> moves;
  while (const Move m = NextMove<WHITE>(mp)) moves.push_back(m);
  ASSERT_FALSE(moves.empty());
  size_t first_quiet = 0;
  while (first_quiet < moves.size() && is_tactical(moves[first_quiet])) ++first_quiet;
  EXPECT_GE(first_quiet, 1u);
  for (size_t i = first_quiet; i < moves.size(); ++i) EXPECT_FALSE(is_tactical(moves[i]));
}

}  // namespace
}  // namespace vx

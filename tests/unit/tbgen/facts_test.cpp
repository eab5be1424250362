// The generator's values against facts known without it: the evaluation's
// KPK bitbase, KBNK won wherever the defending king is far from both
// pieces, KNNK drawn except for short forced mates that the engine's own
// move generator finds, and every value consistent with its moves.
#include <gtest/gtest.h>

#include "eval/kpk.h"
#include "tbgen_test_util.h"

namespace vx {
namespace {

using tbgen::V_DRAW;
using tbgen::V_LOSS;
using tbgen::V_WIN;

bool IsForcedLoss(Position& pos, int plies);

// The side to move mates within `plies` plies whatever the defence.
bool ForcesMate(Position& pos, int plies) {
  MoveList moves;
  GenerateLegal(pos, moves);
  for (int i = 0; plies > 0 && i < moves.size; ++i) {
    test::play(pos, moves.moves[i]);
    const bool mates = IsForcedLoss(pos, plies - 1);
    test::unplay(pos, moves.moves[i]);
    if (mates) return true;
  }
  return false;
}

// Mated now, or every move runs into a forced mate.
bool IsForcedLoss(Position& pos, int plies) {
  MoveList moves;
  GenerateLegal(pos, moves);
  bool lost = moves.size > 0 || InCheck(pos);
  for (int i = 0; lost && i < moves.size; ++i) {
    test::play(pos, moves.moves[i]);
    lost = ForcesMate(pos, plies - 1);
    test::unplay(pos, moves.moves[i]);
  }
  return lost;
}

TEST(BasesFacts, KpkAgreesWithTheBitbaseEverywhere) {
  const tbgen::SolutionStore store = test::solve({"kpk"});
  int compared = 0, differing = 0;
  test::for_each_legal(test::solution(store, "kpk"), [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
    const int flip = file_of(p.sq[2]) > 3 ? 7 : 0;  // the bitbase wants the pawn on files a-d
    const bool won = kpk_probe(p.sq[0] ^ flip, p.sq[1] ^ flip, p.sq[2] ^ flip, stm == WHITE);
    differing += v != (won ? (stm == WHITE ? V_WIN : V_LOSS) : V_DRAW);
    ++compared;
  });
  EXPECT_EQ(differing, 0);
  EXPECT_GT(compared, 150000);
}

TEST(BasesFacts, KbnkIsWonWheneverTheDefendingKingIsFarFromBothPieces) {
  const tbgen::SolutionStore store = test::solve({"kbnk"});
  int far = 0, not_won = 0, black_wins = 0;
  test::for_each_legal(test::solution(store, "kbnk"), [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
    black_wins += stm == BLACK && v == V_WIN;
    if (stm != WHITE || distance(p.sq[1], p.sq[2]) < 3 || distance(p.sq[1], p.sq[3]) < 3) return;
    ++far;
    not_won += v != V_WIN;
  });
  EXPECT_EQ(not_won, 0);
  EXPECT_EQ(black_wins, 0);
  EXPECT_GT(far, 800000);
}

// Every decided position is a mate within five plies; every thousandth
// draw has no mate within three.
TEST(BasesFacts, KnnkIsDrawnExceptForShortForcedMates) {
  const tbgen::SolutionStore store = test::solve({"knnk"});
  const tbgen::Solution& s = test::solution(store, "knnk");
  int decided = 0, unconfirmed = 0, draws = 0, false_draws = 0;
  test::for_each_legal(s, [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
    if (v == V_DRAW && ++draws % 1000) return;
    CChessPosition lib;
    tbgen::SetLibraryPosition(s.layout, p, stm, lib);
    Position pos = test::from_fen(LibraryFen(lib));
    if (v == V_DRAW)
      false_draws += ForcesMate(pos, 3) || IsForcedLoss(pos, 3);
    else
      ++decided, unconfirmed += !(v == V_WIN ? ForcesMate(pos, 5) : IsForcedLoss(pos, 5));
  });
  EXPECT_EQ(unconfirmed, 0);
  EXPECT_EQ(false_draws, 0);
  EXPECT_GT(decided, 0);
  EXPECT_LT(decided * 10000, draws);  // under one position in ten thousand
  EXPECT_GT(draws, 1000000);
}

// Won when a move leaves the opponent lost, lost when every move leaves the opponent won.
TEST(BasesFacts, SolvedValuesAgreeWithTheirMoves) {
  const tbgen::SolutionStore store = test::solve({"kqkr", "kpk"});
  for (const char* name : {"kqkr", "kpk", "krk"})
    EXPECT_EQ(tbgen::CountInconsistencies(test::solution(store, name), store, 2), 0u) << name;
}

}  // namespace
}  // namespace vx

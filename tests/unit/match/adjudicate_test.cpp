// The match referee: mate and stalemate, threefold repetition over the full
// position identity, the fifty-move rule, and dead positions.
#include <gtest/gtest.h>

#include "test_util.h"
#include "tools/match/adjudicate.h"

namespace vx::dev {
namespace {

Game start(const std::string& fen) {
  test::init();
  Game g;
  if (!StartGame(g, fen)) throw std::runtime_error("bad test FEN: " + fen);
  return g;
}

// Plays the moves (UCI text, blank-separated); returns the verdict after the last.
Verdict play(Game& g, const std::string& moves) {
  std::istringstream in(moves);
  Verdict v;
  for (std::string text; in >> text;) {
    EXPECT_EQ(v.result, GameResult::NONE) << "game already over before " << text;
    PlayMove(g, test::move_of(g.pos, text));
    v = Adjudicate(g);
  }
  return v;
}

// Games played from a position: no verdict before the last move, then the
// expected one. A repetition counted too early or too late shows as a verdict
// before the last move or none after it.
TEST(Adjudicate, VerdictsAfterTheLastMove) {
  const std::string knights = " g1f3 g8f6 f3g1 f6g8";
  const struct { std::string fen, moves; GameResult result; const char* reason; } cases[] = {
      {test::START_FEN, "f2f3 e7e5 g2g4 d8h4", GameResult::BLACK_WINS, "checkmate"},
      {"7k/8/5Q2/6K1/8/8/8/8 w - - 0 1", "f6f7", GameResult::DRAW, "stalemate"},
      // The start position counts as the first occurrence.
      {test::START_FEN, knights + knights, GameResult::DRAW, "threefold repetition"},
      // After ...e5 White may take d5xe6: that position never recurs.
      {"4k3/4p3/8/3P4/8/8/8/4K3 b - - 0 1", "e7e5 e1e2 e8e7 e2e1 e7e8 e1e2 e8e7 e2e1 e7e8 e1e2", GameResult::DRAW,
       "threefold repetition"},
      // The d5 pawn is pinned along the fifth rank: the square after ...e5 is no right.
      {"4k3/4p3/8/K2P3r/8/8/8/8 b - - 0 1", "e7e5 a5a4 e8e7 a4a5 e7e8 a5a4 e8e7 a4a5 e7e8", GameResult::DRAW,
       "threefold repetition"},
      // Same placement with the queen-side rights gone is another position.
      {"r3k1nr/8/8/8/8/8/8/R3K1NR w KQkq - 0 1", knights + " a1b1 a8b8 b1a1 b8a8" + knights + knights,
       GameResult::DRAW, "threefold repetition"},
      {"7k/8/6K1/8/8/8/8/R7 w - - 98 80", "a1b1 h8g8", GameResult::DRAW, "fifty-move rule"},
      {"7k/8/6K1/8/8/8/8/R7 w - - 99 80", "a1a8", GameResult::WHITE_WINS, "checkmate"},  // mate on the 100th ply
      {"4k3/8/8/8/8/8/8/4K2R w K - 99 60", "e1g1", GameResult::DRAW, "fifty-move rule"},  // castling keeps the count
      {"4k3/8/8/8/8/8/3q4/4K3 w - - 0 1", "e1d2", GameResult::DRAW, "insufficient material"},
  };
  for (const auto& c : cases) {
    Game g = start(c.fen);
    const Verdict v = play(g, c.moves);
    EXPECT_EQ(v.result, c.result) << c.fen << " " << c.moves;
    EXPECT_EQ(v.reason, c.reason) << c.fen << " " << c.moves;
    EXPECT_EQ(v.termination, c.result == GameResult::NONE ? "" : "normal");
  }
}

TEST(Adjudicate, PawnMoveRestartsTheCountAndFullmovesFollowTheFen) {
  Game pawn = start("7k/8/6K1/8/8/8/P7/R7 w - - 99 80");
  EXPECT_EQ(play(pawn, "a2a3").result, GameResult::NONE);
  EXPECT_EQ(pawn.halfmove_clock, 0);
  EXPECT_EQ(CurrentFullmove(pawn), 80);
  play(pawn, "h8g8");
  EXPECT_EQ(CurrentFullmove(pawn), 81);
  EXPECT_EQ(CurrentFullmove(start("4k3/8/8/8/8/8/8/4K3 b - - 3 12")), 12);
}

TEST(Adjudicate, InsufficientMaterial) {
  const std::pair<const char*, bool> cases[] = {
      {"4k3/8/8/8/8/8/8/4K3 w - - 0 1", true},
      {"4k3/8/8/8/8/8/8/2N1K3 w - - 0 1", true},
      {"2b1k3/8/8/8/8/8/8/4KB2 w - - 0 1", true},   // c8 and f1: both light squares
      {"1b2k3/8/8/8/8/8/8/4KB2 w - - 0 1", false},  // b8 dark, f1 light
      {"4k3/8/8/8/8/8/8/1NN1K3 w - - 0 1", false},
      {"1n2k3/8/8/8/8/8/8/2N1K3 w - - 0 1", false},
      {"4k3/8/8/8/8/8/8/2B1KN2 w - - 0 1", false},
      {"4k3/8/8/8/8/8/P7/4K3 w - - 0 1", false},
  };
  for (const auto& [fen, dead] : cases) EXPECT_EQ(InsufficientMaterial(test::from_fen(fen)), dead) << fen;
}

}  // namespace
}  // namespace vx::dev

// The match referee: mate and stalemate, threefold repetition over the full
// position identity, the fifty-move rule, and dead positions.
#include <gtest/gtest.h>

#include <sstream>

#include "test_util.h"
#include "tools/adjudicate.h"

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

const std::string START = test::START_FEN;

TEST(Adjudicate, CheckmateAndStalemate) {
  Game g = start(START);
  EXPECT_EQ(play(g, "f2f3 e7e5 g2g4").result, GameResult::NONE);
  const Verdict mate = play(g, "d8h4");
  EXPECT_EQ(mate.result, GameResult::BLACK_WINS);
  EXPECT_EQ(mate.reason, "checkmate");
  EXPECT_EQ(mate.termination, "normal");

  Game s = start("7k/8/5Q2/6K1/8/8/8/8 w - - 0 1");
  const Verdict stalemate = play(s, "f6f7");
  EXPECT_EQ(stalemate.result, GameResult::DRAW);
  EXPECT_EQ(stalemate.reason, "stalemate");

  Game check = start("7k/8/5Q2/6K1/8/8/8/8 w - - 0 1");
  EXPECT_EQ(play(check, "f6f8").result, GameResult::NONE);  // check, but the king escapes to h7
}

TEST(Adjudicate, ThreefoldRepetitionCountsTheStartPosition) {
  Game g = start(START);
  EXPECT_EQ(play(g, "g1f3 g8f6 f3g1 f6g8").result, GameResult::NONE);  // second occurrence
  EXPECT_EQ(play(g, "g1f3 g8f6 f3g1").result, GameResult::NONE);
  const Verdict v = play(g, "f6g8");
  EXPECT_EQ(v.result, GameResult::DRAW);
  EXPECT_EQ(v.reason, "threefold repetition");
}

TEST(Adjudicate, LegalEnPassantRightMakesADifferentPosition) {
  // After ...e5 White may take d5xe6: that position never recurs, so two king
  // shuffles back to the same placement give only its second occurrence
  // without the right; the third shuffle repeats its first position a third time.
  Game g = start("4k3/4p3/8/3P4/8/8/8/4K3 b - - 0 1");
  play(g, "e7e5");
  const Key with_right = g.identities.back();
  EXPECT_EQ(play(g, "e1e2 e8e7 e2e1 e7e8").result, GameResult::NONE);
  EXPECT_NE(g.identities.back(), with_right);
  EXPECT_EQ(play(g, "e1e2 e8e7 e2e1 e7e8").result, GameResult::NONE);
  EXPECT_EQ(play(g, "e1e2").reason, "threefold repetition");
}

TEST(Adjudicate, EnPassantSquareWithoutLegalCaptureIsNoRight) {
  // The d5 pawn is pinned along the fifth rank (taking en passant would
  // uncover the rook), so the square the board keeps after ...e5 is no right.
  Game g = start("4k3/4p3/8/K2P3r/8/8/8/8 b - - 0 1");
  play(g, "e7e5");
  ASSERT_NE(g.pos.state->ep_square, 0u);
  EXPECT_FALSE(HasLegalEnPassant(g.pos));
  EXPECT_NE(g.pos.state->key, g.identities.back());  // the board key carries the square, the identity not
  const Key first = g.identities.back();
  EXPECT_EQ(play(g, "a5a4 e8e7 a4a5 e7e8").result, GameResult::NONE);
  EXPECT_EQ(g.identities.back(), first);
  EXPECT_EQ(play(g, "a5a4 e8e7 a4a5 e7e8").reason, "threefold repetition");
}

TEST(Adjudicate, LostCastlingRightsMakeADifferentPosition) {
  Game g = start("r3k1nr/8/8/8/8/8/8/R3K1NR w KQkq - 0 1");
  const std::string knights = "g1f3 g8f6 f3g1 f6g8", rooks = "a1b1 a8b8 b1a1 b8a8";
  EXPECT_EQ(play(g, knights).result, GameResult::NONE);  // start position twice
  EXPECT_EQ(play(g, rooks).result, GameResult::NONE);    // same placement, queen-side rights gone
  EXPECT_EQ(play(g, knights).result, GameResult::NONE);  // its second occurrence
  EXPECT_EQ(play(g, "g1f3 g8f6 f3g1").result, GameResult::NONE);
  EXPECT_EQ(play(g, "f6g8").reason, "threefold repetition");
}

TEST(Adjudicate, FiftyMoveRule) {
  Game quiet = start("7k/8/6K1/8/8/8/8/R7 w - - 98 80");
  EXPECT_EQ(play(quiet, "a1b1").result, GameResult::NONE);  // 99 plies
  const Verdict fifty = play(quiet, "h8g8");
  EXPECT_EQ(fifty.result, GameResult::DRAW);
  EXPECT_EQ(fifty.reason, "fifty-move rule");

  Game mate = start("7k/8/6K1/8/8/8/8/R7 w - - 99 80");
  const Verdict v = play(mate, "a1a8");  // the hundredth ply gives mate: mate counts
  EXPECT_EQ(v.result, GameResult::WHITE_WINS);
  EXPECT_EQ(v.reason, "checkmate");

  Game pawn = start("7k/8/6K1/8/8/8/P7/R7 w - - 99 80");
  EXPECT_EQ(play(pawn, "a2a3").result, GameResult::NONE);  // a pawn move restarts the count
  EXPECT_EQ(pawn.halfmove_clock, 0);
  EXPECT_EQ(CurrentFullmove(pawn), 80);
  play(pawn, "h8g8");
  EXPECT_EQ(CurrentFullmove(pawn), 81);
  EXPECT_EQ(CurrentFullmove(start("4k3/8/8/8/8/8/8/4K3 b - - 3 12")), 12);

  Game castle = start("4k3/8/8/8/8/8/8/4K2R w K - 99 60");
  EXPECT_EQ(play(castle, "e1g1").reason, "fifty-move rule");  // castling does not restart it
}

TEST(Adjudicate, InsufficientMaterial) {
  const std::pair<const char*, bool> cases[] = {
      {"4k3/8/8/8/8/8/8/4K3 w - - 0 1", true},
      {"4k3/8/8/8/8/8/8/2N1K3 w - - 0 1", true},
      {"4k3/8/8/8/8/8/8/2B1K3 b - - 0 1", true},
      {"2b1k3/8/8/8/8/8/8/4KB2 w - - 0 1", true},   // c8 and f1: both light squares
      {"4k3/8/8/8/8/8/8/B1B1K3 w - - 0 1", true},   // a1 and c1: both dark
      {"1b2k3/8/8/8/8/8/8/4KB2 w - - 0 1", false},  // b8 dark, f1 light
      {"4k3/8/8/8/8/8/8/1NN1K3 w - - 0 1", false},
      {"1n2k3/8/8/8/8/8/8/2N1K3 w - - 0 1", false},
      {"4k3/8/8/8/8/8/8/2B1KN2 w - - 0 1", false},
      {"4k3/8/8/8/8/8/P7/4K3 w - - 0 1", false},
      {"4k3/8/8/8/8/8/8/R3K3 w - - 0 1", false},
  };
  for (const auto& [fen, dead] : cases) EXPECT_EQ(InsufficientMaterial(test::from_fen(fen)), dead) << fen;
  Game g = start("4k3/8/8/8/8/8/3q4/4K3 w - - 0 1");
  const Verdict v = play(g, "e1d2");
  EXPECT_EQ(v.result, GameResult::DRAW);
  EXPECT_EQ(v.reason, "insufficient material");
}

}  // namespace
}  // namespace vx::dev

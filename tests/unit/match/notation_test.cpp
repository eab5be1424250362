// Notation written and read by the match runner: SAN for its PGN, FEN for
// its opening positions, and the checks on opening lines.
#include <gtest/gtest.h>

#include <set>

#include "test_util.h"
#include "tools/match/fen.h"
#include "tools/match/pgn_reader.h"
#include "tools/match/san.h"

namespace vx::dev {
namespace {

const std::string START = test::START_FEN;

TEST(DevNotation, SanOfMoves) {
  const struct { const char* fen; const char* move; const char* san; } cases[] = {
      {test::START_FEN, "g1f3", "Nf3"},
      {"4k3/8/8/8/8/8/8/1N1NK3 w - - 0 1", "b1c3", "Nbc3"},
      {"4k3/8/8/R7/8/8/8/R3K3 w - - 0 1", "a1a3", "R1a3"},
      {"4k3/8/8/8/8/Q7/8/Q1Q1K3 w - - 0 1", "a1b2", "Qa1b2"},
      {"4r2k/8/8/1N6/8/8/4N3/4K3 w - - 0 1", "b5d4", "Nd4"},  // the e2 knight is pinned
      {"4k3/8/8/8/8/8/8/B1B1K3 w - - 0 1", "a1b2", "Bab2"},   // both bishop codes are "B"
      {"4k3/8/8/3Pp3/8/8/8/4K3 w - e6 0 1", "d5e6", "dxe6"},
      {"4k3/1P6/8/8/8/8/8/4K3 w - - 0 1", "b7b8q", "b8=Q+"},
      {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", "e1g1", "O-O"},
      {"4k3/8/8/8/8/8/8/RK6 w A - 0 1", "b1a1", "O-O-O"},  // Chess960: king takes rook
      {"rnbqkbnr/pppp1ppp/8/4p3/6P1/5P2/PPPPP2P/RNBQKBNR b KQkq - 0 2", "d8h4", "Qh4#"},
  };
  for (const auto& c : cases) {
    const Position pos = test::from_fen(c.fen);
    EXPECT_EQ(MoveSan(pos, test::move_of(pos, c.move)), c.san) << c.fen << " " << c.move;
    EXPECT_EQ(ParseSan(pos, c.san), test::move_of(pos, c.move)) << c.san;
  }
  // What other programs write: no "=", zeros for castling, annotations.
  const Position castle = test::from_fen("r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1");
  EXPECT_EQ(ParseSan(castle, "0-0-0!?"), test::move_of(castle, "e1c1"));
  const Position promo = test::from_fen("4k3/1P6/8/8/8/8/8/4K3 w - - 0 1");
  EXPECT_EQ(ParseSan(promo, "b8Q"), test::move_of(promo, "b7b8q"));
  EXPECT_EQ(ParseSan(promo, "b8=K"), MOVE_NONE);
  EXPECT_EQ(ParseSan(promo, ""), MOVE_NONE);
}

// Along random games every legal move must get its own SAN (too little
// disambiguation would give two moves one name).
TEST(DevNotation, SanNamesEveryLegalMoveApart) {
  test::random_walks({test::START_FEN, test::KIWIPETE, "1rqbkrbn/1ppppp1p/1n6/p1N3p1/8/2P4P/PP1PPPP1/1RQBKRBN w FBfb - 0 9"},
                     1, 200, 12345, [](const Position& pos, const MoveList& list) {
                       std::set<std::string> names;
                       for (Move m : list) {
                         names.insert(MoveSan(pos, m));
                         ASSERT_EQ(ParseSan(pos, MoveSan(pos, m)), m);
                       }
                       ASSERT_EQ(int(names.size()), list.size);
                     });
}

// PGN as people and other programs write it: tags, comments before and after
// moves, variations, NAGs, "1..." numbers, two games, a missing result.
TEST(DevNotation, PgnGamesReadBack) {
  test::init();  // the reader plays the moves: the attack tables must be there when run alone
  std::istringstream text(
      "[Event \"x\"]\n[FEN \"4k3/8/8/8/8/8/4P3/4K3 b - - 0 1\"]\n\n"
      "{opening} 1... Kd7 {+0.50/3 0.10s} 2. e4 $1 (2. e3 Kc6) Ke6 ; a remark\n3.Kd2 1/2-1/2\n\n"
      "[Event \"y\"]\n1. e4 e5 2. Nf3 {-0.12/9} Nc6 *\n"
      "[Event \"z\"]\n1. d4\n");
  std::vector<PgnGame> games;
  std::string error;
  ASSERT_TRUE(ReadPgn(text, games, error)) << error;
  ASSERT_EQ(games.size(), 3u);
  EXPECT_EQ(games[0].fen, "4k3/8/8/8/8/8/4P3/4K3 b - - 0 1");
  ASSERT_EQ(games[0].moves.size(), 4u);
  EXPECT_EQ(move_text(games[0].moves[3]), "e1d2");
  EXPECT_EQ(games[0].comments[0], "+0.50/3 0.10s");
  EXPECT_EQ(games[0].comments[1], "");
  EXPECT_EQ(games[0].result, "1/2-1/2");
  EXPECT_EQ(games[2].moves.size(), 1u);
  // An illegal move's message: test_match.py, through the match runner.
}

TEST(DevNotation, FenWrittenBack) {
  Position pos = test::startpos();
  EXPECT_EQ(PositionFen(pos, 0, 1), START);
  pos.ApplyGameMove(test::move_of(pos, "e2e4"));
  // No black pawn beside e4: no en-passant field.
  EXPECT_EQ(PositionFen(pos, 0, 1), "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq - 0 1");
  const std::string ep = "rnbqkbnr/ppp1p1pp/8/3pPp2/8/8/PPPP1PPP/RNBQKBNR w KQkq f6 0 3";
  EXPECT_EQ(PositionFen(test::from_fen(ep), 0, 3), ep);
  EXPECT_EQ(PositionFen(test::from_fen("4k3/8/8/8/8/8/8/RK6 w A - 0 1"), 7, 40), "4k3/8/8/8/8/8/8/RK6 w A - 7 40");
}

TEST(DevNotation, OpeningLineChecks) {
  test::init();
  EXPECT_EQ(FenError(START), "");
  EXPECT_EQ(FenError("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm e4; id \"x\";"), "");  // EPD
  for (const char* bad : {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq",
                          "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNX w KQkq -",
                          "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkx -",
                          "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq e5",
                          "8/8/8/8/8/8/8/4K3 w - -",     // no black king
                          "7k/5Q2/6K1/8/8/8/8/8 b - -"})  // stalemate: nothing to play
    EXPECT_NE(FenError(bad), "") << bad;
  EXPECT_TRUE(IsChess960Fen("4k3/8/8/8/8/8/8/RK6 w A - 0 1"));
  EXPECT_FALSE(IsChess960Fen(START));
}

}  // namespace
}  // namespace vx::dev

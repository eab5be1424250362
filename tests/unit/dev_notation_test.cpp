// Notation written and read by the match runner: SAN for its PGN, FEN for
// its opening positions, and the checks on opening lines.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "test_util.h"
#include "tools/fen.h"
#include "tools/san.h"

namespace vx::dev {
namespace {

std::string san(const std::string& fen, const std::string& move) {
  const Position pos = test::from_fen(fen);
  return MoveSan(pos, test::move_of(pos, move));
}

const std::string START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

TEST(DevNotation, SanOfOrdinaryMovesAndDisambiguation) {
  EXPECT_EQ(san(START, "g1f3"), "Nf3");
  EXPECT_EQ(san(START, "e2e4"), "e4");
  EXPECT_EQ(san("4k3/8/8/8/8/8/8/1N1NK3 w - - 0 1", "b1c3"), "Nbc3");
  EXPECT_EQ(san("4k3/8/8/R7/8/8/8/R3K3 w - - 0 1", "a1a3"), "R1a3");
  EXPECT_EQ(san("4k3/8/8/8/8/Q7/8/Q1Q1K3 w - - 0 1", "a1b2"), "Qa1b2");
  EXPECT_EQ(san("4r2k/8/8/1N6/8/8/4N3/4K3 w - - 0 1", "b5d4"), "Nd4");  // the e2 knight is pinned
  EXPECT_EQ(san("4k3/8/8/8/8/8/8/B1B1K3 w - - 0 1", "a1b2"), "Bab2");  // both bishop codes are "B"
}

TEST(DevNotation, SanOfCapturesPromotionsCastlingAndMate) {
  EXPECT_EQ(san("4k3/8/8/3Pp3/8/8/8/4K3 w - e6 0 1", "d5e6"), "dxe6");
  EXPECT_EQ(san("4k3/1P6/8/8/8/8/8/4K3 w - - 0 1", "b7b8q"), "b8=Q+");
  EXPECT_EQ(san("2r1k3/1P6/8/8/8/8/8/4K3 w - - 0 1", "b7c8n"), "bxc8=N");
  EXPECT_EQ(san("r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", "e1g1"), "O-O");
  EXPECT_EQ(san("r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 0 1", "e8c8"), "O-O-O");
  EXPECT_EQ(san("4k3/8/8/8/8/8/8/RK6 w A - 0 1", "b1a1"), "O-O-O");  // Chess960: king takes rook
  EXPECT_EQ(san("rnbqkbnr/pppp1ppp/8/4p3/6P1/5P2/PPPPP2P/RNBQKBNR b KQkq - 0 2", "d8h4"), "Qh4#");
}

// Along random games every legal move must get its own SAN (too little
// disambiguation would give two moves one name).
TEST(DevNotation, SanNamesEveryLegalMoveApart) {
  std::mt19937 rng(12345);
  for (const char* fen : {START.c_str(), "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
                          "1rqbkrbn/1ppppp1p/1n6/p1N3p1/8/2P4P/PP1PPPP1/1RQBKRBN w FBfb - 0 9"}) {
    Position pos = test::from_fen(fen);
    for (int ply = 0; ply < 200; ++ply) {
      MoveList list;
      GenerateLegal(pos, list);
      if (!list.size) break;
      std::set<std::string> names;
      for (Move m : list) names.insert(MoveSan(pos, m));
      ASSERT_EQ(int(names.size()), list.size) << fen << " after " << ply << " plies";
      pos.ApplyGameMove(list.moves[rng() % list.size]);
    }
  }
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
  EXPECT_NE(FenError("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq"), "");
  EXPECT_NE(FenError("rnbqkbnr/ppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -"), "");
  EXPECT_NE(FenError("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNX w KQkq -"), "");
  EXPECT_NE(FenError("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR x KQkq -"), "");
  EXPECT_NE(FenError("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkx -"), "");
  EXPECT_NE(FenError("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq e5"), "");
  EXPECT_NE(FenError("8/8/8/8/8/8/8/4K3 w - -"), "");           // no black king
  EXPECT_NE(FenError("7k/5Q2/6K1/8/8/8/8/8 b - -"), "");        // stalemate: nothing to play
  EXPECT_TRUE(IsChess960Fen("4k3/8/8/8/8/8/8/RK6 w A - 0 1"));
  EXPECT_TRUE(IsChess960Fen("bqnbrkrn/pppppppp/8/8/8/8/PPPPPPPP/BQNBRKRN w GEge - 0 1"));
  EXPECT_FALSE(IsChess960Fen(START));
}

}  // namespace
}  // namespace vx::dev

// Static exchange test on hand-built positions.
#include <gtest/gtest.h>

#include "board/see.h"
#include "test_util.h"

namespace vx {
namespace {

bool see(const Position& pos, Move m) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  return pos.side_to_move == WHITE ? SeeNotLosing<WHITE>(pos, m, ai) : SeeNotLosing<BLACK>(pos, m, ai);
}

TEST(See, ExchangesOnHandBuiltPositions) {
  const struct { const char* fen; const char* move; bool not_losing; } cases[] = {
      // Cheap answers: a rook takes a pawn defended by a pawn, a queen a rook
      // defended by a knight; an undefended piece.
      {"4k3/8/4p3/3p4/8/8/8/3R2K1 w - - 0 1", "d1d5", false},
      {"3r2k1/8/8/8/3P4/4P3/8/6K1 b - - 0 1", "d8d4", false},
      {"4k3/8/1n6/3r4/8/8/8/3Q2K1 w - - 0 1", "d1d5", false},
      {"4k3/8/8/3r4/8/8/8/3Q2K1 w - - 0 1", "d1d5", true},
      // Equal trades onto a defended square: the exchange variation of the
      // Ruy Lopez (Bxc6, dxc6), and a rook for a rook guarded by a rook.
      {"r1bqkbnr/1ppp1ppp/p1n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQK2R w KQkq - 0 4", "b5c6", true},
      {"3r2k1/3r4/8/8/8/8/3R4/6K1 w - - 0 1", "d2d7", true},
      // A quiet move onto a guarded square.
      {"4k3/8/4p3/8/8/2N5/8/6K1 w - - 0 1", "c3d5", false},
      // Nxd6 loses the knight to c7xd6 but uncovers the rook on e1.
      {"4k3/2p5/3p4/8/4N3/8/8/4R1K1 w - - 0 1", "e4d6", true},
      {"4k3/2p5/3p4/8/4N3/8/8/6K1 w - - 0 1", "e4d6", false},
      // Rook takes a knight guarded by a bishop, the second rook retakes: 325 - 500 + 325.
      {"6k1/8/4b3/3n4/8/8/3R4/3R2K1 w - - 0 1", "d2d5", true},
      {"6k1/8/4b3/3n4/8/8/8/3R2K1 w - - 0 1", "d1d5", false},
      // Hidden attackers: their queen behind their bishop, their second rook
      // behind the first; our queen behind our bishop wins the last recapture.
      {"6k1/5q2/4b3/3n4/8/8/3R4/3R2K1 w - - 0 1", "d2d5", false},
      {"3r2k1/3r4/8/3n4/8/8/3R4/3R2K1 w - - 0 1", "d2d5", false},
      {"3r3k/8/4b3/3n4/2B5/1Q1R4/8/6K1 w - - 0 1", "d3d5", true},
      {"3r3k/8/4b3/3n4/2B5/3R4/8/6K1 w - - 0 1", "d3d5", false},
      {"3r3k/8/4b3/3n4/2B5/3R4/3Q4/6K1 w - - 0 1", "d3d5", true},  // a slider behind the mover
      {"6k1/8/4b3/3n4/8/8/3R4/3B2K1 w - - 0 1", "d2d5", false},     // a bishop behind a rook on a file
      {"3r3k/8/4b3/3n4/2B5/1N1R4/Q7/6K1 w - - 0 1", "d3d5", false},  // a hidden slider blocked
  };
  for (const auto& c : cases) {
    const Position pos = test::from_fen(c.fen);
    EXPECT_EQ(see(pos, test::move_of(pos, c.move)), c.not_losing) << c.fen << " " << c.move;
  }
}

TEST(See, KingCaptureIsAlwaysSafe) {
  // The pawn on d2 is guarded; king captures are only generated onto
  // unattacked squares, so the test does not look further.
  Position pos = test::from_fen("4k3/8/8/8/8/2p5/3p4/4K3 w - - 0 1");
  EXPECT_TRUE(see(pos, make_move(SQ_E1, SQ_D2) | CAPTURE_FLAG));
}

}  // namespace
}  // namespace vx

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

bool see(const std::string& fen, const std::string& move) {
  Position pos = test::from_fen(fen);
  return see(pos, test::move_of(pos, move));
}

TEST(See, CheapAnswers) {
  // Rook takes a pawn defended by a pawn.
  EXPECT_FALSE(see("4k3/8/4p3/3p4/8/8/8/3R2K1 w - - 0 1", "d1d5"));
  EXPECT_FALSE(see("3r2k1/8/8/8/3P4/4P3/8/6K1 b - - 0 1", "d8d4"));
  // Queen takes a rook defended only by a knight.
  EXPECT_FALSE(see("4k3/8/1n6/3r4/8/8/8/3Q2K1 w - - 0 1", "d1d5"));
  // Undefended piece, and a capture of a piece worth at least the mover.
  EXPECT_TRUE(see("4k3/8/8/3r4/8/8/8/3Q2K1 w - - 0 1", "d1d5"));
  EXPECT_TRUE(see("4k3/8/4p3/3q4/8/8/8/3R2K1 w - - 0 1", "d1d5"));
}

TEST(See, QuietMoveOntoGuardedSquare) {
  EXPECT_FALSE(see("4k3/8/4p3/8/8/2N5/8/6K1 w - - 0 1", "c3d5"));
  EXPECT_TRUE(see("4k3/8/8/8/8/2N5/8/6K1 w - - 0 1", "c3d5"));
}

TEST(See, KingCaptureIsAlwaysSafe) {
  // The pawn on d2 is guarded; king captures are only generated onto
  // unattacked squares, so the test does not look further.
  Position pos = test::from_fen("4k3/8/8/8/8/2p5/3p4/4K3 w - - 0 1");
  EXPECT_TRUE(see(pos, make_move(SQ_E1, SQ_D2) | CAPTURE_FLAG));
}

TEST(See, DiscoveredAttackOnTheKing) {
  // Nxd6 loses the knight to c7xd6 but uncovers the rook on e1.
  EXPECT_TRUE(see("4k3/2p5/3p4/8/4N3/8/8/4R1K1 w - - 0 1", "e4d6"));
  EXPECT_FALSE(see("4k3/2p5/3p4/8/4N3/8/8/6K1 w - - 0 1", "e4d6"));
}

TEST(See, ExchangeSequences) {
  // Rook takes a knight guarded by a bishop; the second rook stands behind
  // the first and retakes: 325 - 500 + 325.
  EXPECT_TRUE(see("6k1/8/4b3/3n4/8/8/3R4/3R2K1 w - - 0 1", "d2d5"));
  EXPECT_FALSE(see("6k1/8/4b3/3n4/8/8/8/3R2K1 w - - 0 1", "d1d5"));
  // The same for Black.
  EXPECT_TRUE(see("3r2k1/3r4/8/8/3N4/4B3/8/6K1 b - - 0 1", "d7d4"));
  EXPECT_FALSE(see("3r2k1/8/8/8/3N4/4B3/8/6K1 b - - 0 1", "d8d4"));
}

TEST(See, HiddenAttackers) {
  // Their queen behind their bishop joins once the bishop has taken.
  EXPECT_FALSE(see("6k1/5q2/4b3/3n4/8/8/3R4/3R2K1 w - - 0 1", "d2d5"));
  // Their second rook behind the first.
  EXPECT_FALSE(see("3r2k1/3r4/8/3n4/8/8/3R4/3R2K1 w - - 0 1", "d2d5"));
  // Our queen behind our bishop wins the last recapture.
  EXPECT_TRUE(see("3r3k/8/4b3/3n4/2B5/1Q1R4/8/6K1 w - - 0 1", "d3d5"));
  EXPECT_FALSE(see("3r3k/8/4b3/3n4/2B5/3R4/8/6K1 w - - 0 1", "d3d5"));
  // A slider behind the piece that moves attacks from the start.
  EXPECT_TRUE(see("3r3k/8/4b3/3n4/2B5/3R4/3Q4/6K1 w - - 0 1", "d3d5"));
  // A bishop behind a rook on a file is no hidden attacker.
  EXPECT_FALSE(see("6k1/8/4b3/3n4/8/8/3R4/3B2K1 w - - 0 1", "d2d5"));
  // A hidden slider blocked by another piece stays out.
  EXPECT_FALSE(see("3r3k/8/4b3/3n4/2B5/1N1R4/Q7/6K1 w - - 0 1", "d3d5"));
}

}  // namespace
}  // namespace vx

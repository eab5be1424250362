// Position set-up, make/unmake, incremental keys and draw tests.
#include <gtest/gtest.h>

#include <cstring>

#include "test_util.h"

namespace vx {
namespace {

using test::move_of;

struct Snapshot {
  Piece board[64];
  Bitboard pieces[16];
  PositionState st;
  Color side;
  long history;
  explicit Snapshot(const Position& p) : st(*p.state), side(p.side_to_move), history(p.key_history_top - p.key_history) {
    std::memcpy(board, p.board, sizeof(board));
    std::memcpy(pieces, p.pieces, sizeof(pieces));
  }
  bool operator==(const Snapshot& o) const {
    return !std::memcmp(board, o.board, sizeof(board)) && !std::memcmp(pieces, o.pieces, sizeof(pieces)) &&
           !std::memcmp(&st, &o.st, sizeof(st)) && side == o.side && history == o.history;
  }
};

// Long random games (castling, en passant, promotions and null moves occur):
// after every move the incremental state equals a recomputation, and undoing
// restores every field. The Chess960 starts include a king and rook that
// swap squares (f1, g1) and castlings onto the rook's square.
TEST(Position, RandomGamesKeepIncrementalStateExact) {
  uint64_t rng = 99;
  int castles = 0, en_passants = 0, promotions = 0;
  for (const char* fen : {test::START_FEN, test::KIWIPETE, test::CHESS960, "4r3/3k4/8/8/8/8/6PP/qR1K1R2 w FB -",
                          "4k3/8/8/8/8/8/8/5KR1 w G - 0 1", test::PROMOTIONS}) {
    for (int game = 0; game < 40; ++game) {
      Position pos = test::from_fen(fen);
      std::vector<std::pair<Move, Snapshot>> path;
      for (int ply = 0; ply < 120 && pos.ply_count() < STATE_STACK_SIZE - 2; ++ply) {
        MoveList moves;
        GenerateLegal(pos, moves);
        if (!moves.size) break;
        Snapshot before(pos);
        Move m = moves.moves[xorshift_step(rng) % moves.size];
        if (!InCheck(pos) && xorshift_step(rng) % 16 == 0) {
          pos.DoNullMove();
          m = MOVE_NULL;
        } else {
          castles += is_castling(m);
          en_passants += is_en_passant(m);
          promotions += is_promotion(m) != 0;
          test::play(pos, m);
        }
        ASSERT_TRUE(test::state_is_exact(pos)) << fen << " " << move_text(m);
        path.emplace_back(m, before);
      }
      for (; !path.empty(); path.pop_back()) {
        auto& [m, before] = path.back();
        if (m == MOVE_NULL) pos.UndoNullMove();
        else test::unplay(pos, m);
        ASSERT_TRUE(Snapshot(pos) == before);
      }
    }
  }
  EXPECT_GT(castles, 0);
  EXPECT_GT(en_passants, 0);
  EXPECT_GT(promotions, 0);
}

TEST(Position, EnPassantSquareOnlyWhenAnEnemyPawnIsBeside) {
  Position pos = test::startpos();
  pos.ApplyGameMove(move_of(pos, "e2e4"));
  EXPECT_EQ(pos.state->ep_square, 0u);
  Position fen = test::from_fen("rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3 0 1");
  EXPECT_EQ(fen.state->ep_square, uint32_t(SQ_E3));
  EXPECT_NE(fen.state->key, pos.state->key);
  Position beside = test::from_fen("4k3/8/8/8/3p4/8/4P3/4K3 w - - 0 1");
  beside.ApplyGameMove(move_of(beside, "e2e4"));
  EXPECT_EQ(beside.state->ep_square, uint32_t(SQ_E3));
  // A wrong rank for the side to move is ignored.
  EXPECT_EQ(test::from_fen("4k3/8/8/8/4P3/8/8/4K3 w - e3 0 1").state->ep_square, 0u);
}

TEST(Position, FenDialect) {
  test::init();
  Position pos;
  for (const char* bad : {"4k3/8/8/8/8/8/8/4K3 x - -", "4k3/8/8/8/8/8/8/4X3 w - -", "4k3/8/8/8/8/8/8/4K3",
                          "4k3/8/8/8/8/8/8/4K3p w - -", ""})
    EXPECT_FALSE(pos.SetFromFen(bad)) << bad;
  EXPECT_TRUE(pos.SetFromFen("4k3/8/8/8/8/8/8/4K3 w"));
  EXPECT_EQ(pos.state->castling_rights, 0u);
  EXPECT_TRUE(pos.SetFromFen("4k3/8/8/8/8/8/8/4K3 b - - 45 80"));
  EXPECT_EQ(pos.state->rule50, 0u);
  EXPECT_EQ(pos.side_to_move, BLACK);
  // Bishop codes follow the square colour.
  EXPECT_TRUE(pos.SetFromFen("2b1kb2/8/8/8/8/8/8/2B1KB2 w - -"));
  EXPECT_EQ(pos.board[SQ_C1], W_BISHOP_D);
  EXPECT_EQ(pos.board[SQ_F8], B_BISHOP_D);
  // "K" in a position whose king is not on e1 grants nothing.
  EXPECT_TRUE(pos.SetFromFen("4k3/8/8/8/8/8/8/5K1R w K -"));
  EXPECT_EQ(pos.state->castling_rights, 0u);
}

TEST(Position, RepetitionWithinTheFiftyMoveWindow) {
  Position pos = test::startpos();
  for (const char* m : {"g1f3", "g8f6", "f3g1"}) pos.ApplyGameMove(move_of(pos, m));
  EXPECT_FALSE(pos.IsRepetition());
  pos.ApplyGameMove(move_of(pos, "f6g8"));
  EXPECT_TRUE(pos.IsRepetition());
  // An irreversible move starts the key list afresh, so nothing before it is compared.
  pos.ApplyGameMove(move_of(pos, "e2e4"));
  EXPECT_EQ(pos.key_history_top, pos.key_history);
  EXPECT_FALSE(pos.IsRepetition());
}

TEST(Position, FiftyMoveDrawExceptWhenMated) {
  // 99 reversible plies, then a rook move on the 100th: mate is no draw.
  Position pos = test::from_fen("7k/8/6K1/8/8/n7/8/3R4 b - - 0 1");
  const char* cycle[] = {"a3b5", "d1d2", "b5a3", "d2d1"};
  for (int ply = 0; ply < 99; ++ply) pos.ApplyGameMove(move_of(pos, cycle[ply % 4]));
  ASSERT_EQ(pos.state->rule50, 99u);
  EXPECT_FALSE(pos.IsRule50Draw());
  Position mated = pos, quiet = pos;
  mated.ApplyGameMove(move_of(mated, "d2d8"));
  quiet.ApplyGameMove(move_of(quiet, "d2e2"));
  EXPECT_EQ(mated.state->rule50, 100u);
  EXPECT_FALSE(mated.IsRule50Draw());
  EXPECT_TRUE(quiet.IsRule50Draw());
}

TEST(Position, AnyNumberOfReversibleGameMovesFits) {
  Position pos = test::startpos();
  const char* cycle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
  for (int i = 0; i < 2000; ++i) pos.ApplyGameMove(move_of(pos, cycle[i % 4]));
  EXPECT_TRUE(pos.IsRepetition());
  EXPECT_LT(pos.key_history_top - pos.key_history, KEY_HISTORY_COMPACT);
  EXPECT_EQ(pos.state->rule50, 2000u);
}

}  // namespace
}  // namespace vx

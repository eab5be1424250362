// Random positions of every kind that "position fen" accepts (odd placements,
// pieces next to the kings, castling letters and en-passant fields that may or
// may not fit): every legal move leaves the mover's king safe (by an attack
// test written from scratch), the incremental state exact, and both kings on the board.
#include <gtest/gtest.h>

#include "board/perft.h"
#include "engine_test_util.h"
#include "tools/match/fen.h"

namespace vx {
namespace {

// Is square s attacked by a piece of colour c? Board walk, no tables.
bool AttackedFromScratch(const Position& pos, Square s, Color c) {
  const int f = file_of(s), r = rank_of(s);
  auto piece_at = [&](int ff, int rr) { return ff < 0 || ff > 7 || rr < 0 || rr > 7 ? -1 : pos.board[rr * 8 + ff]; };
  auto is = [&](int p, PieceType t) { return p > 0 && color_of(p) == c && type_of(p) == t; };
  const int back = c == WHITE ? -1 : 1;  // an attacking pawn stands one rank behind s, seen from c
  if (is(piece_at(f - 1, r + back), PAWN) || is(piece_at(f + 1, r + back), PAWN)) return true;
  for (auto [df, dr] : {std::pair{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}})
    if (is(piece_at(f + df, r + dr), KNIGHT)) return true;
  for (int df = -1; df <= 1; ++df)
    for (int dr = -1; dr <= 1; ++dr) {
      if (!df && !dr) continue;
      if (is(piece_at(f + df, r + dr), KING)) return true;
      const bool diagonal = df && dr;
      for (int k = 1;; ++k) {
        const int p = piece_at(f + k * df, r + k * dr);
        if (p < 0) break;
        if (p == NO_PIECE) continue;
        if (is(p, QUEEN) || (diagonal ? is(p, BISHOP_L) || is(p, BISHOP_D) : is(p, ROOK))) return true;
        break;
      }
    }
  return false;
}

struct FenMaker {
  uint64_t rng;
  int below(int n) { return int(xorshift_step(rng) % uint64_t(n)); }

  // A square near s (within two files and ranks) or anywhere.
  Square square_near(Square s) {
    if (below(2)) return below(64);
    const int f = file_of(s) + below(5) - 2, r = rank_of(s) + below(5) - 2;
    return f < 0 || f > 7 || r < 0 || r > 7 ? below(64) : make_square(f, r);
  }

  std::string make() {
    constexpr PieceType TYPES[7] = {PAWN, KNIGHT, BISHOP_L, ROOK, QUEEN, PAWN, PAWN};
    Piece board[64] = {};
    const Square wk = below(64), bk = below(64);
    board[wk] = W_KING;
    board[bk] = B_KING;
    for (int n = below(14); n > 0; --n) {
      const PieceType t = TYPES[below(7)];
      const Square s = square_near(below(2) ? wk : bk);
      if (!board[s]) board[s] = make_piece(Color(below(2)), t == BISHOP_L ? bishop_type_on(s) : t);
    }
    const bool black = below(2);
    std::string ep = "-";
    if (below(2)) {  // set up a double step (or something like it) for the mover to capture
      const int file = below(8), fwd = black ? 8 : -8;
      const Square target = make_square(file, black ? 2 : 5);
      if (below(4)) board[target + fwd] = black ? W_PAWN : B_PAWN;
      if (below(4) && type_of(board[target]) != KING) board[target] = NO_PIECE;
      const int side = file == 0 ? 1 : file == 7 ? -1 : below(2) ? 1 : -1;
      if (!board[target + fwd + side]) board[target + fwd + side] = black ? B_PAWN : W_PAWN;
      ep = square_text(below(8) ? target : below(64));
    }
    std::string castling;
    for (char c : std::string("KQkqAHah"))
      if (below(3) == 0) castling += c;
    return dev::PlacementFen(board) + (black ? " b " : " w ") + (castling.empty() ? "-" : castling) + " " + ep + " 0 1";
  }
};

void WalkChecked(Position& pos, int depth, const std::string& fen) {
  MoveList list;
  GenerateLegal(pos, list);
  for (Move m : list) {
    const Color us = pos.side_to_move;
    test::play(pos, m);
    const std::string at = fen + " " + move_text(m);
    ASSERT_TRUE(__builtin_popcountll(pos.of(WHITE, KING)) == 1 && __builtin_popcountll(pos.of(BLACK, KING)) == 1) << at;
    ASSERT_FALSE(AttackedFromScratch(pos, pos.king_square(us), ~us)) << at;
    ASSERT_TRUE(test::state_is_exact(pos)) << at;
    if (depth > 1) WalkChecked(pos, depth - 1, fen);
    test::unplay(pos, m);
  }
}

TEST(RandomPositions, LegalMovesNeverExposeTheKing) {
  FenMaker maker{0x9E3779B97F4A7C15ULL};
  int accepted = 0, with_ep = 0;
  for (int i = 0; i < 40000; ++i) {
    const std::string fen = maker.make();
    Position pos = test::from_fen(fen);  // the placement is always well formed
    if (PositionDefect(pos)) continue;
    ++accepted;
    if (pos.state->ep_square) {
      ++with_ep;
      // A kept en-passant square has the double-stepped pawn in front of it.
      const Square ep = Square(pos.state->ep_square);
      ASSERT_EQ(pos.board[pos.side_to_move == WHITE ? ep - 8 : ep + 8], make_piece(~pos.side_to_move, PAWN)) << fen;
    }
    WalkChecked(pos, 2, fen);
    if (HasFailure()) return;
  }
  EXPECT_GT(accepted, 5000);
  EXPECT_GT(with_ep, 300);
}

// Short searches on accepted random positions: a captured king would end in
// an empty king set (undefined under the sanitizers) or a wrong perft.
TEST(RandomPositions, ShortSearchesStayOnTheBoard) {
  test::EngineFixture f;
  FenMaker maker{0xD1B54A32D192ED03ULL};
  int searched = 0;
  while (searched < 150) {
    const std::string fen = maker.make();
    if (!f.position.SetFromFen(fen) || PositionDefect(f.position)) continue;
    ASSERT_EQ(Perft<true>(f.position, 3), Perft<false>(f.position, 3)) << fen;
    ASSERT_NE(f.search(SearchLimits{.nodes = 3000}).find("bestmove "), std::string::npos) << fen;
    ++searched;
  }
}

}  // namespace
}  // namespace vx

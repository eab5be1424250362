// Positions of a Syzygy table's material for the tablebase tests, the
// benchmark and the fuzz target: random ones (en-passant rights too) and all.
#pragma once

#include <cstdlib>

#include "egdb/syzygy/material.h"
#include "test_util.h"
#include "tools/match/fen.h"

#ifndef VORLAXEN_SYZYGY_DIR
#define VORLAXEN_SYZYGY_DIR "../shared/syzygy"
#endif

namespace vx::test {

// The Syzygy tables the tests read: $VORLAXEN_SYZYGY_DIR, else the shared
// directory beside the source tree.
inline std::string SyzygyDir() {
  const char* env = std::getenv("VORLAXEN_SYZYGY_DIR");
  return env ? env : VORLAXEN_SYZYGY_DIR;
}

inline bool HasTable(const std::string& dir, const std::string& name) {
  return std::filesystem::exists(dir + "/" + name + ".rtbw");
}

// FEN of a board, with an en-passant square when ep is non-zero.
inline std::string BoardFen(const Piece* board, Color stm, Square ep = 0) {
  return dev::PlacementFen(board) + (stm == WHITE ? " w - " : " b - ") + (ep ? square_text(ep) : "-") + " 0 1";
}

// Sets the position when the engine accepts it for a search.
inline bool SetIfSearchable(Position& pos, const Piece* board, Color stm, Square ep = 0) {
  return pos.SetFromFen(BoardFen(board, stm, ep)) && !PositionDefect(pos);
}

// The piece types by the material's piece codes (their colour bit masked off).
constexpr PieceType TABLE_TYPES[7] = {NO_PIECE_TYPE, PAWN, KNIGHT, BISHOP_L, ROOK, QUEEN, KING};

// Places the men of the table's material on free squares; the name's first
// side is White unless black_first.
inline void PlaceRandomly(std::mt19937_64& rng, const syzygy::TableMaterial& mat, bool black_first, Piece* board) {
  for (int code = 1; code < 16; ++code)
    for (int n = 0; n < mat.count[code]; ++n) {
      const PieceType t = TABLE_TYPES[code & 7];
      Square s;
      do s = Square(rng() % 64);
      while (board[s] || (t == PAWN && (s < 8 || s >= 56)));
      board[s] = make_piece(Color((code >> 3) ^ int(black_first)), t == BISHOP_L ? bishop_type_on(s) : t);
    }
}

// The squares behind enemy pawns that may just have advanced two squares next
// to a pawn of the side to move: where it may capture en passant.
inline Bitboard EnPassantSquares(const Piece* board, Color us) {
  Bitboard squares = 0;
  const int dir = us == WHITE ? 8 : -8;
  for (int f = 0; f < 8; ++f) {
    const Square pushed = make_square(f, us == WHITE ? 4 : 3), ep = pushed + dir;
    const bool beside = (f > 0 && board[pushed - 1] == make_piece(us, PAWN)) ||
                        (f < 7 && board[pushed + 1] == make_piece(us, PAWN));
    if (board[pushed] == make_piece(~us, PAWN) && beside && !board[ep] && !board[ep + dir]) squares |= sq_bb(ep);
  }
  return squares;
}

// A random position of the material; with en_passant (pawns on both sides
// wanted), one with an en-passant capture open to the side to move.
inline Position RandomTablePosition(std::mt19937_64& rng, const syzygy::TableMaterial& mat, bool black_first = false,
                                    bool en_passant = false) {
  Position pos;
  for (;;) {
    Piece board[64] = {};
    PlaceRandomly(rng, mat, black_first, board);
    const Color us = Color(rng() & 1);
    const Bitboard eps = en_passant ? EnPassantSquares(board, us) : 0;
    if ((eps || !en_passant) && SetIfSearchable(pos, board, us, eps ? lsb(eps) : 0)) return pos;
  }
}

// Every position of the table's material that the engine accepts, both sides
// to move, each followed by its variants with an en-passant capture open to
// the side to move; visit(pos) is called for each. Like men stand on
// increasing squares, so no placement comes twice.
template <class Visit>
void ForEachTablePosition(const syzygy::TableMaterial& mat, Visit&& visit) {
  std::vector<int> codes;
  for (int code = 1; code < 16; ++code) codes.insert(codes.end(), size_t(mat.count[code]), code);
  Piece board[64] = {};
  Position pos;
  auto leaf = [&] {
    for (const Color us : {WHITE, BLACK}) {
      if (SetIfSearchable(pos, board, us)) visit(pos);
      for (Bitboard eps = EnPassantSquares(board, us); eps;)
        if (SetIfSearchable(pos, board, us, pop_lsb(eps))) visit(pos);
    }
  };
  auto place = [&](auto&& self, size_t i, Square first) -> void {
    if (i == codes.size()) return leaf();
    const PieceType t = TABLE_TYPES[codes[i] & 7];
    const bool same = i + 1 < codes.size() && codes[i + 1] == codes[i];
    for (Square s = first; s < 64; ++s) {
      if (board[s] || (t == PAWN && (s < 8 || s >= 56))) continue;
      board[s] = make_piece(Color(codes[i] >> 3), t == BISHOP_L ? bishop_type_on(s) : t);
      self(self, i + 1, same ? s + 1 : 0);
      board[s] = NO_PIECE;
    }
  };
  place(place, 0, 0);
}

// The i-th position of a random series: every fourth one with an en-passant
// capture when both sides have pawns, the others with the name's first side
// White and Black in turn.
inline Position RandomSeriesPosition(std::mt19937_64& rng, const syzygy::TableMaterial& mat, uint64_t i) {
  return RandomTablePosition(rng, mat, i % 2, i % 4 == 0 && mat.pawns(WHITE) && mat.pawns(BLACK));
}

}  // namespace vx::test

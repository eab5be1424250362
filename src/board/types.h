// Shared value types of the engine: colours, squares, piece codes, bitboards,
// moves, move-list entries and scores.
#pragma once

#include <cstdint>
#include <string>

namespace vx {

using Bitboard = uint64_t;
using Move = uint16_t;
using MoveEntry = uint32_t;
using Value = int32_t;
using ValuePair = int32_t;  // middlegame in the high half, endgame in the low half
using Key = uint64_t;

enum Color : int { WHITE = 0, BLACK = 1 };
constexpr Color operator~(Color c) { return Color(c ^ 1); }

constexpr int SQUARE_NB = 64;
using Square = int;

enum SquareName : int {
  SQ_A1, SQ_B1, SQ_C1, SQ_D1, SQ_E1, SQ_F1, SQ_G1, SQ_H1,
  SQ_A2, SQ_B2, SQ_C2, SQ_D2, SQ_E2, SQ_F2, SQ_G2, SQ_H2,
  SQ_A3, SQ_B3, SQ_C3, SQ_D3, SQ_E3, SQ_F3, SQ_G3, SQ_H3,
  SQ_A4, SQ_B4, SQ_C4, SQ_D4, SQ_E4, SQ_F4, SQ_G4, SQ_H4,
  SQ_A5, SQ_B5, SQ_C5, SQ_D5, SQ_E5, SQ_F5, SQ_G5, SQ_H5,
  SQ_A6, SQ_B6, SQ_C6, SQ_D6, SQ_E6, SQ_F6, SQ_G6, SQ_H6,
  SQ_A7, SQ_B7, SQ_C7, SQ_D7, SQ_E7, SQ_F7, SQ_G7, SQ_H7,
  SQ_A8, SQ_B8, SQ_C8, SQ_D8, SQ_E8, SQ_F8, SQ_G8, SQ_H8,
};

constexpr int file_of(Square s) { return s & 7; }
constexpr int rank_of(Square s) { return s >> 3; }
constexpr Square make_square(int file, int rank) { return rank * 8 + file; }
// Rank seen from the given side (0 = its own first rank).
constexpr int relative_rank(Color c, Square s) { return c == WHITE ? rank_of(s) : 7 - rank_of(s); }

constexpr Bitboard DARK_SQUARES = 0xAA55AA55AA55AA55ULL;
constexpr bool is_dark(Square s) { return (DARK_SQUARES >> s) & 1; }

// Piece codes: bit 3 is the colour, the low three bits the type.
using Piece = int;
using PieceType = int;
enum : int {
  NO_PIECE_TYPE = 0, PAWN = 1, KNIGHT = 2, BISHOP_L = 3, BISHOP_D = 4, ROOK = 5, QUEEN = 6, KING = 7
};
enum : int {
  NO_PIECE = 0,
  W_PAWN = 1, W_KNIGHT, W_BISHOP_L, W_BISHOP_D, W_ROOK, W_QUEEN, W_KING,
  B_PAWN = 9, B_KNIGHT, B_BISHOP_L, B_BISHOP_D, B_ROOK, B_QUEEN, B_KING,
};
constexpr PieceType type_of(Piece p) { return p & 7; }
constexpr Color color_of(Piece p) { return Color(p >> 3); }
constexpr Piece make_piece(Color c, PieceType t) { return (c << 3) | t; }
// Bishop code for a bishop that stands on square s.
constexpr PieceType bishop_type_on(Square s) { return is_dark(s) ? BISHOP_D : BISHOP_L; }
constexpr bool is_bishop(Piece p) { return type_of(p) == BISHOP_L || type_of(p) == BISHOP_D; }

constexpr char PIECE_LETTERS[] = " PNBBRQK pnbbrqk";

// ---- Moves ----
constexpr Move MOVE_NONE = 0;
constexpr Move MOVE_NULL = 0xFFF;
constexpr Move CAPTURE_FLAG = 0x8000;
constexpr Move KIND_SPECIAL = 0x1000;
constexpr Move CASTLING = 0x1000;   // kind 1, no capture flag
constexpr Move EN_PASSANT = 0x9000; // kind 1 with capture flag

constexpr Square from_sq(Move m) { return m & 63; }
constexpr Square to_sq(Move m) { return (m >> 6) & 63; }
constexpr int move_kind(Move m) { return (m >> 12) & 7; }
constexpr bool is_capture(Move m) { return m & CAPTURE_FLAG; }
constexpr bool is_promotion(Move m) { return m & 0x6000; }
constexpr bool is_tactical(Move m) { return m & 0xE000; }
constexpr bool is_castling(Move m) { return (m & 0xF000) == CASTLING; }
constexpr bool is_en_passant(Move m) { return (m & 0xF000) == EN_PASSANT; }
constexpr PieceType promotion_type(Move m) { return move_kind(m); }
constexpr Move make_move(Square from, Square to) { return Move(from | (to << 6)); }

// ---- Scores ----
constexpr Value VALUE_DRAW = 0;
constexpr Value VALUE_KNOWN_WIN = 31000;
constexpr Value VALUE_MATE_BOUND = 32000;
constexpr Value VALUE_MATE = 32500;
constexpr Value VALUE_INFINITE = 32767;

constexpr ValuePair make_pair(int mg, int eg) { return ValuePair(uint32_t(mg) * 0x10000u + uint32_t(eg)); }
constexpr int eg_value(ValuePair v) { return (v & 0x7FFF) - (v & 0x8000); }
constexpr int mg_value(ValuePair v) { return int32_t(uint32_t(v) + 0x8000u) >> 16; }

inline int distance(Square a, Square b) {
  int df = file_of(a) - file_of(b), dr = rank_of(a) - rank_of(b);
  df = df < 0 ? -df : df;
  dr = dr < 0 ? -dr : dr;
  return df > dr ? df : dr;
}

// Text forms.
std::string square_text(Square s);
std::string move_text(Move m);

}  // namespace vx

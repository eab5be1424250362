// The small position classes the Vorlaxenbases probe works on: a move stack
// with a side-to-move flag, and a chess board in the databases' own piece
// codes that can play and take back moves for the probe's one-ply search.
#pragma once

#include <cstdint>
#include <string>

#include "board/bitboard.h"
#include "board/types.h"

namespace vx {

// Library piece codes: White 1 king, 2 queen, 3 rook, 4 bishop, 5 knight,
// 6 pawn; Black the same plus 6; 0 empty.
enum : uint8_t { LIB_EMPTY = 0, LIB_KING = 1, LIB_QUEEN, LIB_ROOK, LIB_BISHOP, LIB_KNIGHT, LIB_PAWN };
constexpr uint8_t LIB_BLACK = 6;
constexpr int LIB_CODES = 13;

// Engine piece code to library code.
uint8_t LibraryCode(Piece p);
constexpr bool IsWhiteCode(uint8_t code) { return code >= 1 && code <= 6; }
constexpr uint8_t LibraryType(uint8_t code) { return code > LIB_BLACK ? uint8_t(code - LIB_BLACK) : code; }
constexpr uint8_t LibraryColored(uint8_t type, bool white) { return white ? type : uint8_t(type + LIB_BLACK); }

// A library move: one square (the destination) in bits 0-5, the promotion
// piece's library code in bits 6-9, the other square (the origin) from bit 16.
constexpr uint32_t LibraryMove(Square from, Square to, uint8_t promotion = LIB_EMPTY) {
  return uint32_t(to) | uint32_t(promotion) << 6 | uint32_t(from) << 16;
}
constexpr Square LibraryMoveTo(uint32_t m) { return Square(m & 63); }
constexpr Square LibraryMoveFrom(uint32_t m) { return Square((m >> 16) & 63); }
constexpr uint8_t LibraryMovePromotion(uint32_t m) { return uint8_t((m >> 6) & 15); }

constexpr int LIBRARY_STACK = 257;

class CGamePosition {
 public:
  virtual void reset();
  virtual int query() const = 0;
  // Stores the move and passes the turn; returns the old move count, or -1
  // (nothing done) when the stack is full.
  virtual int push(uint32_t move);
  virtual void pop();
  virtual ~CGamePosition() = default;

  bool white_to_move() const { return side_ == 1; }
  int move_count() const { return count_; }

 protected:
  int side_ = 1;  // 1: White to move
  uint32_t moves_[LIBRARY_STACK];
  int count_ = 0;
};

class CChessPosition : public CGamePosition {
 public:
  uint8_t board[64] = {};
  uint8_t counts[LIB_CODES] = {};
  Square king[2] = {};  // [0] White's, [1] Black's
  Square ep_square = 0;  // 0: none
  int men = 0;
  bool counts_valid = false;
  // The board again as bitboards, kept with it for the attack tests.
  Bitboard occupied = 0;
  Bitboard squares_of[LIB_CODES] = {};

  int query() const override { return 0; }
  // Also play the move on the board (captures, en passant, promotions, the
  // en-passant square of a double step) and take it back.
  int push(uint32_t move) override;
  void pop() override;

  // An empty board with White to move.
  void clear();
  void put(uint8_t code, Square s);
  void set_white_to_move(bool white) { side_ = white ? 1 : 0; }
};

// The board turned upside down with the colours exchanged (and the side to
// move): the same position seen from the other side.
void MirrorColours(const CChessPosition& p, CChessPosition& out);

// FEN of a library position (no castling rights).
std::string LibraryFen(const CChessPosition& p);

// Whether a man of the given colour attacks the square.
bool LibraryAttacks(const CChessPosition& p, Square s, bool by_white);
bool LibraryInCheck(const CChessPosition& p);
// The legal moves of the side to move (at most 256); returns their number.
int GenerateLibraryMoves(CChessPosition& p, uint32_t* moves);

}  // namespace vx

// The board the search works on: placement (array and bitboards), side to
// move, castling geometry, a stack of per-ply states with incremental keys and
// a history of keys for repetition detection.
#pragma once

#include <string>

#include "board/attacks.h"
#include "board/types.h"

namespace vx {

constexpr int STATE_STACK_SIZE = 139;
// Keys since the last irreversible game move plus the search path. Game moves
// compact the list when it grows past KEY_HISTORY_COMPACT (the repetition test
// never looks further back than the 50-move counter, and a counter of 100 is a
// draw by itself), so any number of reversible game moves fits.
constexpr int KEY_HISTORY_SIZE = 512;
constexpr int KEY_HISTORY_COMPACT = 300;
constexpr int KEY_HISTORY_KEEP = 128;

extern Key zobrist_psq[16][64];
extern Key zobrist_side;
extern Key zobrist_ep[8];
extern Key zobrist_castle[16];
extern Key exclusion_key[64];
extern Key material_key_table[16];

void InitPositionKeys();  // zobrist tables
void InitMaterialKeys();  // material_key_table

// Castling rights bits.
enum : uint32_t { WHITE_OO = 1, WHITE_OOO = 2, BLACK_OO = 4, BLACK_OOO = 8 };

struct PositionState {
  Key key;
  Key material_key;
  Key pawn_key;
  ValuePair psq;
  uint32_t ep_square;
  uint32_t castling_rights;
  uint32_t captured;
  uint32_t rule50;
};

struct CastlingRecord {
  Square rook_from, rook_to, king_from, king_to, move_to;
};

struct Position {
  Bitboard castle_empty[16];
  Bitboard castle_safe[16];
  Bitboard castle_xray[16];
  uint32_t castle_mask[64];
  CastlingRecord castling[4];  // rights 1, 2, 4, 8 in this order
  Color side_to_move;
  Piece board[64];
  Bitboard pieces[16];  // slot 0 all white pieces, slot 8 all black pieces
  PositionState* state;
  PositionState states[STATE_STACK_SIZE];
  uint32_t* key_history_top;
  uint32_t key_history[KEY_HISTORY_SIZE];

  Position();
  Position(const Position& other);
  Position& operator=(const Position& other);

  bool SetFromFen(const std::string& fen);
  bool CanBeEnPassantSquare(Square s) const;

  template <Color Us> void DoMove(Move m);
  template <Color Us> void UndoMove(Move m);
  void DoNullMove();
  void UndoNullMove();
  // Plays a game move (either side) and makes the result the new root.
  void ApplyGameMove(Move m);
  // The key after a plain move or capture (castling, en passant and
  // promotion are approximations), for prefetching the child's table entry.
  Key KeyAfter(Move m) const {
    const Square from = from_sq(m), to = to_sq(m);
    const Piece pc = board[from];
    return state->key ^ zobrist_side ^ zobrist_psq[pc][from] ^ zobrist_psq[pc][to] ^ zobrist_psq[board[to]][to];
  }

  // The current position occurred before since the last capture or pawn
  // move, with the same side to move.
  bool IsRepetition() const {
    const long top = key_history_top - key_history;
    long bound = top - long(state->rule50);
    if (bound < 0) bound = 0;
    const uint32_t current = key_history[top];
    for (long i = top - 4; i >= bound; i -= 2)
      if (key_history[i] == current) return true;
    return false;
  }
  // A hundred plies without capture or pawn move, unless the last one mated.
  bool IsRule50Draw() const { return state->rule50 >= 100 && Rule50EndsInDraw(); }

  // ---- read access ----
  Bitboard by_color(Color c) const { return pieces[c << 3]; }
  Bitboard occupied() const { return pieces[0] | pieces[8]; }
  Bitboard of(Color c, PieceType t) const { return pieces[(c << 3) | t]; }
  Bitboard bishops(Color c) const { return pieces[(c << 3) | BISHOP_L] | pieces[(c << 3) | BISHOP_D]; }
  Bitboard diagonal_sliders(Color c) const { return bishops(c) | of(c, QUEEN); }
  Bitboard straight_sliders(Color c) const { return of(c, ROOK) | of(c, QUEEN); }
  Square king_square(Color c) const { return lsb(of(c, KING)); }
  Piece piece_on(Square s) const { return board[s]; }
  const CastlingRecord& castling_of(uint32_t right) const { return castling[__builtin_ctz(right)]; }
  int ply_count() const { return int(state - states); }

  // The same four values computed from scratch (set-up and tests).
  Key compute_key() const;
  Key compute_pawn_key() const;
  Key compute_material_key() const;
  ValuePair compute_psq() const;

 private:
  bool Rule50EndsInDraw() const;
  void put_piece(Piece p, Square s);
  void remove_piece(Square s);
  void move_piece(Square from, Square to);
  void fix_pointers(const Position& other);
};

// Text of a move and matching of text against the legal moves.
Move ParseMove(const Position& pos, const std::string& token);

}  // namespace vx

namespace vx {

// Why a position cannot be searched (wrong king count, pawn on the first or
// eighth rank, more than 16 pieces of a colour, side not to move in check), or
// nullptr when it can.
const char* PositionDefect(const Position& pos);

}  // namespace vx

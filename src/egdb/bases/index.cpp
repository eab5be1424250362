#include "egdb/bases/index.h"

#include "board/attacks.h"
#include "egdb/bases/library_position.h"
#include "egdb/bases/material.h"

namespace vx {

Square MarkablePawn(const CChessPosition& p) {
  const Square ep = p.ep_square;
  const bool white = p.white_to_move();
  if (!ep || rank_of(ep) != (white ? 5 : 2)) return -1;
  const Square pawn = white ? ep - 8 : ep + 8, origin = white ? ep + 8 : ep - 8;
  const uint8_t their_pawn = white ? LIB_PAWN + LIB_BLACK : LIB_PAWN, our_pawn = white ? LIB_PAWN : LIB_PAWN + LIB_BLACK;
  if (p.board[pawn] != their_pawn || p.board[ep] || p.board[origin]) return -1;
  for (Bitboard b = pawn_attacks[white ? BLACK : WHITE][ep]; b;)
    if (p.board[pop_lsb(b)] == our_pawn) return pawn;
  return -1;
}

BaseMen CollectBaseMen(const CChessPosition& p, bool lead_white) {
  BaseMen m;
  m.lead = p.king[lead_white ? 0 : 1];
  m.other = p.king[lead_white ? 1 : 0];
  const Square marked = MarkablePawn(p);
  // In square order, then stably into signature order.
  for (Bitboard b = p.occupied; b && m.pieces < MAX_BASE_PIECES;) {
    const Square s = pop_lsb(b);
    const uint8_t code = p.board[s];
    if (code == LIB_EMPTY || LibraryType(code) == LIB_KING || code >= LIB_CODES) continue;
    const uint8_t slot = uint8_t(LibraryType(code) - LIB_QUEEN + (IsWhiteCode(code) ? 0 : BASE_KINDS));
    int j = m.pieces++;
    for (; j > 0 && m.slot[j - 1] > slot; --j) {
      m.slot[j] = m.slot[j - 1];
      m.square[j] = m.square[j - 1];
    }
    m.slot[j] = slot;
    m.square[j] = s != marked ? s : p.white_to_move() ? s + 24 : s - 24;
  }
  return m;
}

}  // namespace vx

#include "egdb/base_index.h"

#include "board/attacks.h"
#include "egdb/base_material.h"
#include "egdb/library_position.h"

namespace vx {

namespace {

constexpr Square TRIANGLE[10] = {SQ_A1, SQ_B1, SQ_C1, SQ_D1, SQ_B2, SQ_C2, SQ_D2, SQ_C3, SQ_D3, SQ_D4};

void SortRuns(BaseMen& m) {
  for (int i = 1; i < m.pieces; ++i)
    for (int j = i; j > 0 && m.slot[j - 1] == m.slot[j] && m.square[j - 1] > m.square[j]; --j) {
      const Square s = m.square[j];
      m.square[j] = m.square[j - 1];
      m.square[j - 1] = s;
    }
}

}  // namespace

int BaseTransform(bool pawns, Square lead) {
  int t = 0;
  if (file_of(lead) > 3) t |= 1, lead ^= 7;
  if (pawns) return t;
  if (rank_of(lead) > 3) t |= 2, lead ^= 56;
  if (rank_of(lead) > file_of(lead)) t |= 4;
  return t;
}

Square Transformed(int transform, Square s) {
  if (transform & 1) s ^= 7;
  if (transform & 2) s ^= 56;
  if (transform & 4) s = (s >> 3) | ((s & 7) << 3);
  return s;
}

int BaseKingIndex(bool pawns, Square lead) {
  if (pawns) return rank_of(lead) * 4 + file_of(lead);
  for (int k = 0; k < 10; ++k)
    if (TRIANGLE[k] == lead) return k;
  return 0;
}

Square BaseKingSquare(bool pawns, int k) { return pawns ? make_square(k & 3, k >> 2) : TRIANGLE[k]; }

uint64_t BaseIndex(BaseMen m, bool pawns) {
  const int t = BaseTransform(pawns, m.lead);
  uint64_t index = uint64_t(BaseKingIndex(pawns, Transformed(t, m.lead))) * 64 + uint64_t(Transformed(t, m.other));
  for (int i = 0; i < m.pieces; ++i) m.square[i] = Transformed(t, m.square[i]);
  SortRuns(m);
  for (int i = 0; i < m.pieces; ++i) index = index * 64 + uint64_t(m.square[i]);
  return index;
}

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
  for (Square s = 0; s < 64 && m.pieces < MAX_BASE_PIECES; ++s) {
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

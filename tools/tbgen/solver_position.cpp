#include "tools/tbgen/solver_position.h"

#include <utility>

#include "board/attacks.h"
#include "egdb/bases/index.h"

namespace vx::tbgen {

namespace {

constexpr PieceType KIND_TYPE[BASE_KINDS] = {QUEEN, ROOK, BISHOP_L, KNIGHT, PAWN};

// The rank a marked pawn is entered on, seen from the side to move: Black's
// pawns on the eighth rank with White to move, White's on the first.
constexpr int MarkRank(Color stm) { return stm == WHITE ? 7 : 0; }
constexpr int MarkShift(Color stm) { return stm == WHITE ? 24 : -24; }

// The men as the probe collects them, the marked pawn entered.
BaseMen MenOf(const SolverLayout& l, const SolverPosition& p, Color stm, bool lead_white) {
  BaseMen m;
  m.lead = p.sq[lead_white ? 0 : 1];
  m.other = p.sq[lead_white ? 1 : 0];
  m.pieces = l.men - 2;
  for (int i = 2; i < l.men; ++i) {
    m.slot[i - 2] = l.slot[i];
    m.square[i - 2] = i == p.ep ? p.sq[i] + MarkShift(stm) : p.sq[i];
  }
  return m;
}

}  // namespace

SolverLayout LayoutOf(const BaseMaterial& m) {
  SolverLayout l;
  l.material = m;
  l.pawns = m.has_pawns();
  l.piece[l.men] = W_KING, l.slot[l.men++] = 0;
  l.piece[l.men] = B_KING, l.slot[l.men++] = 0;
  for (int c = 0; c < 2; ++c)
    for (int kind = 0; kind < BASE_KINDS; ++kind)
      for (int n = 0; n < m.count[c][kind] && l.men < MAX_SOLVER_MEN; ++n) {
        l.piece[l.men] = make_piece(Color(c), KIND_TYPE[kind]);
        l.slot[l.men++] = uint8_t(c * BASE_KINDS + kind);
      }
  l.size = uint64_t(BaseKingIndices(l.pawns)) << (6 * (l.men - 1));
  for (int i = 3; i < l.men; ++i) l.like_men |= l.slot[i] == l.slot[i - 1];
  return l;
}

SolverPosition Decode(const SolverLayout& l, uint64_t index, Color stm) { return DecodeLed(l, index, stm, true); }

SolverPosition DecodeLed(const SolverLayout& l, uint64_t index, Color stm, bool lead_white) {
  SolverPosition p;
  const int k = int(index >> (6 * (l.men - 1)));
  p.sq[0] = BaseKingSquare(l.pawns, k < BaseKingIndices(l.pawns) ? k : 0);
  for (int i = 1; i < l.men; ++i) p.sq[i] = Square((index >> (6 * (l.men - 1 - i))) & 63);
  if (!lead_white) std::swap(p.sq[0], p.sq[1]);
  const Piece marked = make_piece(~stm, PAWN);
  for (int i = 2; i < l.men && p.ep < 0; ++i)
    if (l.piece[i] == marked && rank_of(p.sq[i]) == MarkRank(stm)) {
      p.sq[i] -= MarkShift(stm);
      p.ep = i;
    }
  return p;
}

uint64_t CanonicalIndex(const SolverLayout& l, const SolverPosition& p, Color stm) {
  // The squares normalised around the white king, the marked pawn entered.
  const uint8_t* apply = BASE_INDEX_TABLES.apply[BaseTransform(l.pawns, p.sq[0])];
  Square sq[MAX_SOLVER_MEN] = {};
  for (int i = 0; i < l.men; ++i) sq[i] = apply[i == p.ep ? p.sq[i] + MarkShift(stm) : p.sq[i]];
  auto index_of = [&](Square* s) {
    if (l.like_men)
      for (int i = 3; i < l.men; ++i)
        for (int j = i; j > 2 && l.slot[j - 1] == l.slot[j] && s[j - 1] > s[j]; --j) std::swap(s[j], s[j - 1]);
    uint64_t index = uint64_t(BaseKingIndex(l.pawns, s[0]));
    for (int i = 1; i < l.men; ++i) index = index * 64 + uint64_t(s[i]);
    return index;
  };
  const uint64_t index = index_of(sq);
  if (l.pawns || rank_of(sq[0]) != file_of(sq[0])) return index;
  // The white king on the diagonal: its mirror image is the same position.
  for (int i = 1; i < l.men; ++i) sq[i] = Transformed(4, sq[i]);
  const uint64_t twin = index_of(sq);
  return twin < index ? twin : index;
}

SolverBoards BoardsOf(const Piece* piece, const Square* sq, int n) {
  SolverBoards b;
  for (int i = 0; i < n; ++i) {
    const Bitboard bb = sq_bb(sq[i]);
    const Color c = color_of(piece[i]);
    b.occupied |= bb;
    b.by_color[c] |= bb;
    switch (type_of(piece[i])) {
      case KING: b.king[c] = sq[i]; break;
      case PAWN: b.pawns[c] |= bb; break;
      case KNIGHT: b.knights[c] |= bb; break;
      case ROOK: b.straight[c] |= bb; break;
      case QUEEN: b.straight[c] |= bb; b.diagonal[c] |= bb; break;
      default: b.diagonal[c] |= bb; break;
    }
  }
  return b;
}

bool Attacked(const SolverBoards& b, Square s, Color by) {
  return (pawn_attacks[~by][s] & b.pawns[by]) || (knight_attacks[s] & b.knights[by]) ||
         (king_attacks[s] & sq_bb(b.king[by])) || (BishopAttacks(s, b.occupied) & b.diagonal[by]) ||
         (RookAttacks(s, b.occupied) & b.straight[by]);
}

bool EnPassantPossible(const SolverBoards& b, Square pawn, Color pawn_color) {
  const Square passed = pawn_color == WHITE ? pawn - 8 : pawn + 8;
  const Square origin = pawn_color == WHITE ? pawn - 16 : pawn + 16;
  if (passed < 0 || passed > 63 || origin < 0 || origin > 63) return false;
  if (b.occupied & (sq_bb(passed) | sq_bb(origin))) return false;
  return pawn_attacks[pawn_color][passed] & b.pawns[~pawn_color];
}

uint64_t ProbeIndex(const SolverLayout& l, const SolverPosition& p, Color stm, bool lead_white) {
  return BaseIndex(MenOf(l, p, stm, lead_white), l.pawns);
}

bool IsLegalIndex(const SolverLayout& l, uint64_t index, Color stm, SolverPosition& p) {
  if (int(index >> (6 * (l.men - 1))) >= BaseKingIndices(l.pawns)) return false;
  p = Decode(l, index, stm);
  return CanonicalIndex(l, p, stm) == index && IsLegalPosition(l, p, stm);
}

bool IsLegalPosition(const SolverLayout& l, const SolverPosition& p, Color stm) {
  const SolverBoards b = BoardsOf(l, p);
  if (__builtin_popcountll(b.occupied) != l.men) return false;
  if ((b.pawns[WHITE] | b.pawns[BLACK]) & (RANK_1_BB | RANK_8_BB)) return false;
  if (p.ep >= 0 && (rank_of(p.sq[p.ep]) != (stm == WHITE ? 4 : 3) || !EnPassantPossible(b, p.sq[p.ep], ~stm)))
    return false;
  return !Attacked(b, b.king[~stm], stm);
}

}  // namespace vx::tbgen

#include "board/see.h"

namespace vx {

namespace {

// One side's pieces in the exchange: those attacking the square now, and the
// sliders on the square's lines that may join once a piece in front leaves.
struct ExchangeSide {
  Bitboard attackers;
  Bitboard diagonal_hidden;
  Bitboard straight_hidden;
};

ExchangeSide exchange_side(const Position& pos, Color c, Square to, Bitboard occ, Bitboard excluded) {
  const Bitboard diagonal = pos.diagonal_sliders(c) & ~excluded;
  const Bitboard straight = pos.straight_sliders(c) & ~excluded;
  Bitboard attackers = (pawn_attacks[~c][to] & pos.of(c, PAWN)) | (knight_attacks[to] & pos.of(c, KNIGHT)) |
                       (king_attacks[to] & pos.of(c, KING)) | (BishopAttacks(to, occ) & diagonal) |
                       (RookAttacks(to, occ) & straight);
  return {attackers & ~excluded, diagonal & bishop_pseudo[to], straight & rook_pseudo[to]};
}

// Takes the side's least valuable attacker off the board, lets the slider
// behind it (if any) join the attackers, and returns its exchange value, or
// -1 when the side has no attacker left.
int take_least_valuable(const Position& pos, Color c, ExchangeSide& side, Square to, Bitboard& occ) {
  constexpr PieceType order[] = {PAWN, KNIGHT, BISHOP_L, ROOK, QUEEN, KING};
  for (PieceType t : order) {
    const Bitboard of_type = t == BISHOP_L ? pos.bishops(c) : pos.of(c, t);
    const Bitboard candidates = side.attackers & of_type;
    if (!candidates) continue;
    const Square from = lsb(candidates);
    side.attackers ^= sq_bb(from);
    occ ^= sq_bb(from);
    Bitboard hidden = 0;
    if (t == PAWN || t == BISHOP_L || t == QUEEN) hidden |= side.diagonal_hidden;
    if (t == ROOK || t == QUEEN) hidden |= side.straight_hidden;
    for (Bitboard b = hidden & line[to][from] & occ & ~side.attackers; b;) {
      const Square x = pop_lsb(b);
      if (!(between[to][x] & occ)) {
        side.attackers |= sq_bb(x);
        break;
      }
    }
    return SEE_VALUE[t];
  }
  return -1;
}

}  // namespace

template <Color Us>
bool SeeNotLosing(const Position& pos, Move m, const AttackInfo& ai) {
  constexpr Color Them = ~Us;
  const Square from = from_sq(m), to = to_sq(m);
  const PieceType mover = type_of(pos.piece_on(from));
  const int a = SEE_VALUE[mover];
  const int v = SEE_VALUE[type_of(pos.piece_on(to))];

  // Cheap answers first: unattacked square, king move, capture of a piece
  // worth at least the mover, en passant, and a discovered attack on the king.
  if (!(ai.attacked_by(Them) & sq_bb(to)) || mover == KING || a - v < 1 || is_en_passant(m) ||
      (ai.king_blockers(Them) & sq_bb(from)))
    return true;

  const Bitboard occ_start = pos.occupied() ^ sq_bb(from);
  const bool pawn_defends = pawn_attacks[Us][to] & pos.of(Them, PAWN);
  if (pawn_defends && a - v > 100) return false;
  if (a - v > 325 && (pawn_defends || (knight_attacks[to] & pos.of(Them, KNIGHT)) ||
                      (BishopAttacks(to, occ_start) & pos.bishops(Them))))
    return false;

  Bitboard occ = occ_start;
  ExchangeSide theirs = exchange_side(pos, Them, to, occ, 0);
  ExchangeSide ours = exchange_side(pos, Us, to, occ, sq_bb(from));
  int balance = v, last = a;
  while (true) {
    const int b1 = balance - last;
    const int w = take_least_valuable(pos, Them, theirs, to, occ);
    if (w < 0) return true;
    if (b1 < -5000 || b1 + w < -50) return false;
    balance = b1 + w;
    last = take_least_valuable(pos, Us, ours, to, occ);
    if (last < 0) return false;
    if (balance >= 5001 || balance - last >= -50) return true;
  }
}

template bool SeeNotLosing<WHITE>(const Position&, Move, const AttackInfo&);
template bool SeeNotLosing<BLACK>(const Position&, Move, const AttackInfo&);

}  // namespace vx

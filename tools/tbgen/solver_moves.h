// Moves and take-backs of the solver's positions. Moves that keep the
// material go to the caller as positions of the same layout; captures and
// promotions as plain lists of men, whose values come from smaller tables.
#pragma once

#include "board/attacks.h"
#include "tools/tbgen/solver_position.h"

namespace vx::tbgen {

// Calls same(position) for every legal move that keeps the material (the
// result marked when it can be answered en passant) and convert(men) for
// every legal capture and promotion. Returns the number of legal moves.
template <typename Same, typename Convert>
int ForEachMove(const SolverLayout& l, const SolverPosition& p, Color stm, Same&& same, Convert&& convert) {
  ManList m;
  m.n = l.men;
  for (int i = 0; i < l.men; ++i) m.piece[i] = l.piece[i], m.sq[i] = p.sq[i];
  const SolverBoards b = BoardsOf(m);
  const Bitboard enemies = b.by_color[~stm] & ~sq_bb(b.king[~stm]);
  int legal = 0;

  // Plays man i to `to`, removing man `taken` (or none) and promoting to `promo` (or not).
  auto play = [&](int i, Square to, int taken, Piece promo) {
    ManList r = m;
    r.sq[i] = to;
    if (promo) r.piece[i] = promo;
    if (taken >= 0) {
      for (int j = taken; j + 1 < r.n; ++j) r.piece[j] = r.piece[j + 1], r.sq[j] = r.sq[j + 1];
      --r.n;
    }
    const SolverBoards after = BoardsOf(r);
    if (Attacked(after, after.king[stm], ~stm)) return;
    ++legal;
    if (taken >= 0 || promo) return convert(r);
    SolverPosition q;
    for (int j = 0; j < l.men; ++j) q.sq[j] = r.sq[j];
    if (type_of(l.piece[i]) == PAWN && (to ^ p.sq[i]) == 16 && EnPassantPossible(after, to, stm)) q.ep = i;
    same(q);
  };
  auto man_on = [&](Square s) {
    for (int j = 0; j < l.men; ++j)
      if (p.sq[j] == s) return j;
    return -1;
  };
  auto pawn_to = [&](int i, Square to, int taken) {
    if (rank_of(to) != (stm == WHITE ? 7 : 0)) return play(i, to, taken, NO_PIECE);
    for (PieceType t : {QUEEN, ROOK, BISHOP_L, KNIGHT}) play(i, to, taken, make_piece(stm, t));
  };

  for (int i = 0; i < l.men; ++i) {
    if (color_of(l.piece[i]) != stm) continue;
    const Square from = p.sq[i];
    const PieceType type = type_of(l.piece[i]);
    if (type == PAWN) {
      const int up = stm == WHITE ? 8 : -8;
      if (!(b.occupied & sq_bb(from + up))) {
        pawn_to(i, from + up, -1);
        if (rank_of(from) == (stm == WHITE ? 1 : 6) && !(b.occupied & sq_bb(from + 2 * up))) play(i, from + 2 * up, -1, NO_PIECE);
      }
      for (Bitboard t = pawn_attacks[stm][from] & enemies; t;) {
        const Square to = pop_lsb(t);
        pawn_to(i, to, man_on(to));
      }
      if (p.ep >= 0 && (pawn_attacks[stm][from] & sq_bb(p.sq[p.ep] + up))) play(i, p.sq[p.ep] + up, p.ep, NO_PIECE);
      continue;
    }
    Bitboard targets = type == KING     ? king_attacks[from]
                       : type == KNIGHT ? knight_attacks[from]
                       : type == ROOK   ? RookAttacks(from, b.occupied)
                       : type == QUEEN  ? QueenAttacks(from, b.occupied)
                                        : BishopAttacks(from, b.occupied);
    for (targets &= ~b.by_color[stm] & ~sq_bb(b.king[~stm]); targets;) {
      const Square to = pop_lsb(targets);
      play(i, to, (enemies & sq_bb(to)) ? man_on(to) : -1, NO_PIECE);
    }
  }
  return legal;
}

// Calls pred(position) for every position, with the other side to move, from
// which a move that keeps the material leads to p (Black to move after White's
// move when stm is BLACK). Predecessors that are illegal themselves are not
// weeded out here.
template <typename Pred>
void ForEachPredecessor(const SolverLayout& l, const SolverPosition& p, Color stm, Pred&& pred) {
  const Color mover = ~stm;
  // The position before the move, and the same with each pawn of stm that
  // may have made a double step just before marked.
  auto emit = [&](const SolverPosition& x) {
    pred(x);
    if (!l.pawns) return;
    const SolverBoards bx = BoardsOf(l.piece, x.sq, l.men);
    if (!bx.pawns[mover]) return;
    for (int k = 2; k < l.men; ++k)
      if (l.piece[k] == make_piece(stm, PAWN) && rank_of(x.sq[k]) == (stm == WHITE ? 3 : 4) &&
          EnPassantPossible(bx, x.sq[k], stm)) {
        SolverPosition marked = x;
        marked.ep = k;
        pred(marked);
      }
  };
  const SolverBoards b = BoardsOf(l.piece, p.sq, l.men);
  const int back = mover == WHITE ? -8 : 8;
  if (p.ep >= 0) {
    SolverPosition x = p;
    x.ep = -1;
    x.sq[p.ep] += 2 * back;
    return emit(x);
  }
  for (int i = 0; i < l.men; ++i) {
    if (color_of(l.piece[i]) != mover) continue;
    const Square to = p.sq[i];
    const PieceType type = type_of(l.piece[i]);
    SolverPosition x = p;
    if (type == PAWN) {
      const Square one = to + back;
      if (b.occupied & sq_bb(one) || rank_of(one) == (mover == WHITE ? 0 : 7)) continue;
      x.sq[i] = one;
      emit(x);
      if (rank_of(to) == (mover == WHITE ? 3 : 4) && !(b.occupied & sq_bb(one + back)) &&
          !EnPassantPossible(b, to, mover)) {
        x.sq[i] = one + back;
        emit(x);
      }
      continue;
    }
    Bitboard sources = type == KING     ? king_attacks[to]
                       : type == KNIGHT ? knight_attacks[to]
                       : type == ROOK   ? RookAttacks(to, b.occupied)
                       : type == QUEEN  ? QueenAttacks(to, b.occupied)
                                        : BishopAttacks(to, b.occupied);
    for (sources &= ~b.occupied; sources;) {
      x.sq[i] = pop_lsb(sources);
      emit(x);
    }
  }
}

}  // namespace vx::tbgen

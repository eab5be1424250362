// Positions of one material as the retrograde solver sees them: the index
// space of the databases with the white king leading (k * 64^(men-1) + ...),
// where of two positions that are mirror images through the a1-h8 diagonal
// only the one with the smaller index is used.
#pragma once

#include <cstdint>

#include "board/attacks.h"
#include "board/types.h"
#include "egdb/bases/material.h"

namespace vx::tbgen {

constexpr int MAX_SOLVER_MEN = 6;

// The men of a material in index order: white king, black king, then the
// pieces in signature order.
struct SolverLayout {
  BaseMaterial material;
  int men = 0;
  bool pawns = false;
  Piece piece[MAX_SOLVER_MEN] = {};
  uint8_t slot[MAX_SOLVER_MEN] = {};  // signature slot of each piece (entries 2 on)
  uint64_t size = 0;                   // indices per side to move
  bool like_men = false;               // two pieces of one kind and colour
};
SolverLayout LayoutOf(const BaseMaterial& m);

// Real squares in layout order; ep names the man (a pawn of the side not to
// move) that has just made a double step and can be taken en passant.
struct SolverPosition {
  Square sq[MAX_SOLVER_MEN] = {};
  int ep = -1;
};

// The position an index stands for, before any legality test.
SolverPosition Decode(const SolverLayout& l, uint64_t index, Color stm);
// The index of a position: symmetry, sorting of like men, the en-passant
// marking and, on the diagonal, the smaller of the two mirror images.
uint64_t CanonicalIndex(const SolverLayout& l, const SolverPosition& p, Color stm);

// Bitboards of a position.
struct SolverBoards {
  Bitboard occupied = 0;
  Bitboard by_color[2] = {};
  Bitboard pawns[2] = {}, knights[2] = {}, diagonal[2] = {}, straight[2] = {};
  Square king[2] = {};
};
// Any set of men (after a capture or a promotion).
struct ManList {
  int n = 0;
  Piece piece[MAX_SOLVER_MEN] = {};
  Square sq[MAX_SOLVER_MEN] = {};
};

SolverBoards BoardsOf(const Piece* piece, const Square* sq, int n);
inline SolverBoards BoardsOf(const ManList& m) { return BoardsOf(m.piece, m.sq, m.n); }
inline SolverBoards BoardsOf(const SolverLayout& l, const SolverPosition& p) { return BoardsOf(l.piece, p.sq, l.men); }
bool Attacked(const SolverBoards& b, Square s, Color by);
// The same after a move: `occupied` the squares then taken, `removed` the
// square of a man of `by` just captured.
inline bool AttackedAfter(const SolverBoards& b, Square s, Color by, Bitboard occupied, Bitboard removed) {
  const Bitboard keep = ~removed;
  return (pawn_attacks[~by][s] & b.pawns[by] & keep) || (knight_attacks[s] & b.knights[by] & keep) ||
         (king_attacks[s] & sq_bb(b.king[by])) || (BishopAttacks(s, occupied) & b.diagonal[by] & keep) ||
         (RookAttacks(s, occupied) & b.straight[by] & keep);
}
// The double step of the pawn on `pawn` can be answered en passant: the
// squares behind it are empty and an enemy pawn attacks the passed square.
bool EnPassantPossible(const SolverBoards& b, Square pawn, Color pawn_color);

// The index the probe computes for a position: around the white king
// (lead_white) or the black king, without choosing between diagonal twins.
uint64_t ProbeIndex(const SolverLayout& l, const SolverPosition& p, Color stm, bool lead_white);
// The position of a probe index around the given king.
SolverPosition DecodeLed(const SolverLayout& l, uint64_t index, Color stm, bool lead_white);

// Men on distinct squares, pawns off the first and last ranks, a marked pawn
// that can be taken en passant, and the side not to move not in check.
bool IsLegalPosition(const SolverLayout& l, const SolverPosition& p, Color stm);
// An index that stands for a legal position with that side to move, in the
// form CanonicalIndex gives it.
bool IsLegalIndex(const SolverLayout& l, uint64_t index, Color stm, SolverPosition& p);

}  // namespace vx::tbgen

// Legal moves of a library position, played one after the other on it.
#pragma once

#include "board/attacks.h"
#include "egdb/bases/library_position.h"

namespace vx {

// Calls f(move) for every legal move of the side to move, with the move
// played on the position, and takes it back; f returns false to stop.
template <typename F>
void ForEachLegalLibraryMove(CChessPosition& p, F&& f) {
  const bool white = p.white_to_move();
  const Color us = white ? WHITE : BLACK;
  bool go_on = true;
  auto play = [&](Square from, Square to, uint8_t promotion) {
    const uint32_t move = LibraryMove(from, to, promotion);
    if (!go_on || p.push(move) < 0) return;
    if (!LibraryAttacks(p, p.king[us], !white)) go_on = f(move);
    p.pop();
  };
  auto pawn_to = [&](Square from, Square to) {
    if (rank_of(to) != (white ? 7 : 0)) return play(from, to, LIB_EMPTY);
    for (uint8_t t : {LIB_QUEEN, LIB_ROOK, LIB_BISHOP, LIB_KNIGHT}) play(from, to, LibraryColored(t, white));
  };
  Bitboard own = 0, enemies = 0;
  for (uint8_t t = LIB_KING; t <= LIB_PAWN; ++t) {
    own |= p.squares_of[LibraryColored(t, white)];
    if (t != LIB_KING) enemies |= p.squares_of[LibraryColored(t, !white)];
  }
  const Bitboard targets = ~own & ~p.squares_of[LibraryColored(LIB_KING, !white)];
  const Square ep = p.ep_square, victim = white ? ep - 8 : ep + 8;
  const bool ep_open = ep && victim >= 0 && victim < 64 && !p.board[ep] &&
                       p.board[victim] == LibraryColored(LIB_PAWN, !white);
  for (Bitboard b = own; b && go_on;) {
    const Square s = pop_lsb(b);
    switch (LibraryType(p.board[s])) {
      case LIB_PAWN: {
        const int up = white ? 8 : -8;
        const Square one = s + up;
        if (one >= 0 && one < 64 && !(p.occupied & sq_bb(one))) {
          pawn_to(s, one);
          if (rank_of(s) == (white ? 1 : 6) && !(p.occupied & sq_bb(one + up))) play(s, one + up, LIB_EMPTY);
        }
        Bitboard caps = pawn_attacks[us][s] & (enemies | (ep_open ? sq_bb(ep) : 0));
        while (caps) pawn_to(s, pop_lsb(caps));
        break;
      }
      case LIB_KING: for (Bitboard t = king_attacks[s] & targets; t;) play(s, pop_lsb(t), LIB_EMPTY); break;
      case LIB_QUEEN: for (Bitboard t = QueenAttacks(s, p.occupied) & targets; t;) play(s, pop_lsb(t), LIB_EMPTY); break;
      case LIB_ROOK: for (Bitboard t = RookAttacks(s, p.occupied) & targets; t;) play(s, pop_lsb(t), LIB_EMPTY); break;
      case LIB_BISHOP: for (Bitboard t = BishopAttacks(s, p.occupied) & targets; t;) play(s, pop_lsb(t), LIB_EMPTY); break;
      default: for (Bitboard t = knight_attacks[s] & targets; t;) play(s, pop_lsb(t), LIB_EMPTY); break;
    }
  }
}

}  // namespace vx

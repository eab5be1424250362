// Helpers shared by the unit tests.
#pragma once

#include <random>
#include <string>

#include "board/movegen.h"
#include "board/random.h"
#include "engine/startup.h"

namespace vx::test {

inline void init() { InitStaticTables(); }

inline Position from_fen(const std::string& fen) {
  init();
  Position pos;
  if (!pos.SetFromFen(fen)) throw std::runtime_error("bad test FEN: " + fen);
  return pos;
}

inline Position startpos() { return from_fen("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"); }

// Legal move by its text; throws when the position has no such move.
inline Move move_of(const Position& pos, const std::string& text) {
  Move m = ParseMove(pos, text);
  if (!m) throw std::runtime_error("no legal move " + text);
  return m;
}

inline void play(Position& pos, Move m) {
  if (pos.side_to_move == WHITE) pos.DoMove<WHITE>(m);
  else pos.DoMove<BLACK>(m);
}

inline void unplay(Position& pos, Move m) {
  if (pos.side_to_move == BLACK) pos.UndoMove<WHITE>(m);
  else pos.UndoMove<BLACK>(m);
}

inline Bitboard squares(std::initializer_list<Square> list) {
  Bitboard b = 0;
  for (Square s : list) b |= sq_bb(s);
  return b;
}

}  // namespace vx::test

// Helpers shared by the unit tests.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <string>

#include "board/movegen.h"
#include "board/random.h"
#include "engine/startup.h"

namespace vx::test {

inline constexpr const char* START_FEN = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
// Castling both ways, pins, en passant and promotions within a few plies.
inline constexpr const char* KIWIPETE = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1";
inline constexpr const char* CHESS960 = "r1k1r2q/p1ppp1pp/8/8/8/8/P1PPP1PP/R1K1R2Q w AEae - 0 1";
inline constexpr const char* PROMOTIONS = "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - 0 1";
inline constexpr const char* ROOK_ENDING = "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1";

inline void init() { InitStaticTables(); }

inline Position from_fen(const std::string& fen) {
  init();
  Position pos;
  if (!pos.SetFromFen(fen)) throw std::runtime_error("bad test FEN: " + fen);
  return pos;
}

inline Position startpos() { return from_fen(START_FEN); }

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

// Calls visit(pos, legal_moves) on every position along `games` random games
// of up to `plies` plies from each start, the start itself included; stops at
// the first fatal failure. The seed must not be 0.
template <class Visit>
void random_walks(std::initializer_list<const char*> starts, int games, int plies, uint64_t seed, Visit visit) {
  for (const char* fen : starts)
    for (int game = 0; game < games; ++game) {
      Position pos = from_fen(fen);
      for (int ply = 0; ply < plies; ++ply) {
        MoveList list;
        GenerateLegal(pos, list);
        visit(pos, list);
        if (!list.size || ::testing::Test::HasFatalFailure()) break;
        pos.ApplyGameMove(list.moves[xorshift_step(seed) % list.size]);
      }
    }
}

// A fresh directory under the system's temporary directory.
inline std::string temp_dir(const std::string& name) {
  const auto dir = std::filesystem::temp_directory_path() / ("vorlaxen-" + name + "-" + std::to_string(::getpid()));
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir.string();
}

}  // namespace vx::test

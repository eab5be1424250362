// Helpers shared by the unit tests.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

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

inline std::vector<std::string> split(const std::string& text, char separator = ' ') {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

inline std::string swap_case(std::string s) {
  for (char& c : s) c = std::isupper(c) ? char(std::tolower(c)) : char(std::toupper(c));
  return s;
}

// Board turned top to bottom; colours, castling rights, side to move and
// the en-passant square's rank swapped.
inline std::string colour_mirror(const std::string& fen) {
  const auto parts = split(fen);
  const auto ranks = split(parts[0], '/');
  std::string placement;
  for (auto r = ranks.rbegin(); r != ranks.rend(); ++r) placement += swap_case(*r) + (r + 1 != ranks.rend() ? "/" : "");
  std::string rights;  // in the usual KQkq order
  for (char c : std::string("KQkq"))
    if (parts[2].find(char(std::isupper(c) ? std::tolower(c) : std::toupper(c))) != std::string::npos) rights += c;
  std::string ep = parts[3];
  if (ep != "-") ep[1] = char('0' + '9' - ep[1]);
  return placement + (parts[1] == "w" ? " b " : " w ") + (rights.empty() ? "-" : rights) + " " + ep + " 0 1";
}

// Board turned left to right (only for positions without castling rights).
inline std::string file_mirror(const std::string& fen) {
  const auto parts = split(fen);
  std::string placement;
  for (std::string rank : split(parts[0], '/')) {
    std::reverse(rank.begin(), rank.end());
    placement += (placement.empty() ? "" : "/") + rank;
  }
  std::string ep = parts[3];
  if (ep != "-") ep[0] = char('a' + 'h' - ep[0]);
  return placement + " " + parts[1] + " - " + ep + " 0 1";
}

// The incrementally kept keys, scores and piece sets equal their recomputation.
inline bool state_is_exact(const Position& pos) {
  bool exact = pos.state->key == pos.compute_key() && pos.state->pawn_key == pos.compute_pawn_key() &&
               pos.state->material_key == pos.compute_material_key() && pos.state->psq == pos.compute_psq();
  for (Color c : {WHITE, BLACK}) {
    Bitboard all = 0;
    for (int t = 1; t < 8; ++t) all |= pos.pieces[8 * c + t];
    exact &= pos.pieces[8 * c] == all;
  }
  for (Square s = 0; s < 64; ++s) exact &= !pos.board[s] || (pos.pieces[pos.board[s]] & sq_bb(s));
  return exact;
}

// What f writes to standard output.
template <class F>
std::string output_of(F&& f) {
  ::testing::internal::CaptureStdout();
  f();
  return ::testing::internal::GetCapturedStdout();
}

// A fresh directory under the system's temporary directory.
inline std::string temp_dir(const std::string& name) {
  const auto dir = std::filesystem::temp_directory_path() / ("vorlaxen-" + name + "-" + std::to_string(::getpid()));
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir.string();
}

}  // namespace vx::test

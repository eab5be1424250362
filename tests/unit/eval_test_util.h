// Helpers shared by the evaluation tests: a search state to evaluate with,
// FEN text of a position and its mirrored twins, and random game positions.
#pragma once

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <vector>

#include "board/movegen.h"
#include "eval/evaluate.h"
#include "search/thread.h"
#include "test_util.h"
#include "tools/fen.h"

namespace vx::test {

struct EvalFixture {
  bool tables_ready = (init(), true);
  SearchState ss{0, nullptr, nullptr};

  template <bool Hw = false>
  Value eval(const Position& pos) {
    AttackInfo ai{};
    return evaluate<Hw>(ss, pos, ai);
  }
  Value eval_fen(const std::string& fen) { return eval(from_fen(fen)); }
  Value trace(const Position& pos, EvalTrace& t) {
    AttackInfo ai{};
    return evaluate_trace(ss, pos, ai, t);
  }
};

struct EvalTest : ::testing::Test, EvalFixture {};

inline std::vector<std::string> split_fen(const std::string& fen, char separator = ' ') {
  std::vector<std::string> parts;
  std::istringstream in(fen);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

// Placement, side to move and castling rights of a position, without an
// en-passant square.
inline std::string fen_of(const Position& pos) {
  auto parts = split_fen(dev::PositionFen(pos, 0, 1));
  return parts[0] + " " + parts[1] + " " + parts[2] + " - 0 1";
}

inline std::string swap_case(std::string s) {
  for (char& c : s) c = std::isupper(c) ? char(std::tolower(c)) : char(std::toupper(c));
  return s;
}

// Board turned top to bottom, colours, castling rights and side to move swapped.
inline std::string colour_mirror(const std::string& fen) {
  const auto parts = split_fen(fen);
  const auto ranks = split_fen(parts[0], '/');
  std::string placement;
  for (auto r = ranks.rbegin(); r != ranks.rend(); ++r) placement += swap_case(*r) + (r + 1 != ranks.rend() ? "/" : "");
  std::string rights;  // in the usual KQkq order
  for (char c : std::string("KQkq"))
    if (parts[2].find(char(std::isupper(c) ? std::tolower(c) : std::toupper(c))) != std::string::npos) rights += c;
  return placement + (parts[1] == "w" ? " b " : " w ") + (rights.empty() ? "-" : rights) + " - 0 1";
}

// Board turned left to right (only for positions without castling rights).
inline std::string file_mirror(const std::string& fen) {
  const auto parts = split_fen(fen);
  std::string placement;
  for (std::string rank : split_fen(parts[0], '/')) {
    std::reverse(rank.begin(), rank.end());
    placement += (placement.empty() ? "" : "/") + rank;
  }
  return placement + " " + parts[1] + " - - 0 1";
}

// FEN of every position along random games from the start position.
inline std::vector<std::string> random_game_fens(int games, int max_plies, unsigned seed) {
  std::vector<std::string> out;
  random_walks({START_FEN}, games, max_plies, seed, [&](const Position& pos, const MoveList&) { out.push_back(fen_of(pos)); });
  return out;
}

}  // namespace vx::test

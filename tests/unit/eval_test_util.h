// Helpers shared by the evaluation tests: a search state to evaluate with,
// FEN text of a position, and random game positions.
#pragma once

#include "eval/evaluate.h"
#include "search/thread.h"
#include "test_util.h"
#include "tools/match/fen.h"

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

// Placement, side to move and castling rights of a position, without an
// en-passant square.
inline std::string fen_of(const Position& pos) {
  auto parts = split(dev::PositionFen(pos, 0, 1));
  return parts[0] + " " + parts[1] + " " + parts[2] + " - 0 1";
}

// FEN of every position along random games from the start position.
inline std::vector<std::string> random_game_fens(int games, int max_plies, unsigned seed) {
  std::vector<std::string> out;
  random_walks({START_FEN}, games, max_plies, seed, [&](const Position& pos, const MoveList&) { out.push_back(fen_of(pos)); });
  return out;
}

}  // namespace vx::test

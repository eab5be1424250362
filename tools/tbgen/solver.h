// Retrograde analysis: win, draw or loss for the side to move of every
// position of a material, without the 50-move rule and without castling.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "tools/tbgen/solver_position.h"

namespace vx::tbgen {

// Final values; smaller bytes are counters of moves not yet refuted while
// the analysis runs.
enum : uint8_t { V_WIN = 250, V_LOSS = 251, V_DRAW = 252, V_INVALID = 253 };

struct Solution {
  SolverLayout layout;
  std::vector<uint8_t> value[2];  // per side to move, by solver index
};

// The solved materials that captures and promotions lead into.
class SolutionStore {
 public:
  const Solution* find(uint32_t signature) const;
  void add(std::unique_ptr<Solution> s);
  void drop(uint32_t signature);
  // V_WIN, V_DRAW or V_LOSS for the side to move of any legal position whose
  // material (in either colour orientation) is solved; bare kings draw.
  // V_INVALID when the material is missing.
  uint8_t ValueOf(const ManList& men, Color stm) const;

 private:
  std::map<uint32_t, std::unique_ptr<Solution>> solved_;
};

struct SolveStats {
  int passes = 0;
  uint64_t legal = 0;  // legal positions, both sides to move
};

// Solves one material; every material it converts into must be in `subs`.
std::unique_ptr<Solution> Solve(const SolverLayout& l, const SolutionStore& subs, int threads, SolveStats& stats);

// Positions whose value disagrees with the values of their moves (for checks).
uint64_t CountInconsistencies(const Solution& s, const SolutionStore& subs, int threads);

// The material of a list of men, and the list mirrored with colours exchanged.
BaseMaterial MaterialOf(const ManList& men);

}  // namespace vx::tbgen

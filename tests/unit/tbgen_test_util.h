// Solving small materials for the database tests.
#pragma once

#include <string>
#include <vector>

#include "test_util.h"
#include "tools/tbgen/materials.h"
#include "tools/tbgen/solver.h"

namespace vx::test {

inline BaseMaterial material(const std::string& name) {
  BaseMaterial m;
  std::string error;
  if (!tbgen::ParseMaterialArgument(name, m, error)) throw std::runtime_error(error);
  return m;
}

// Solves the materials and everything they convert into.
inline tbgen::SolutionStore solve(const std::vector<std::string>& names) {
  init();
  std::vector<BaseMaterial> wanted;
  for (const std::string& n : names) wanted.push_back(material(n));
  tbgen::SolutionStore store;
  for (const BaseMaterial& m : tbgen::SolveOrder(wanted)) {
    tbgen::SolveStats stats;
    store.add(tbgen::Solve(tbgen::LayoutOf(m), store, 2, stats));
  }
  return store;
}

// Calls f(position, side to move, value) for every legal position of a solved material.
template <typename F>
void for_each_legal(const tbgen::Solution& s, F&& f) {
  for (Color stm : {WHITE, BLACK})
    for (uint64_t i = 0; i < s.layout.size; ++i) {
      tbgen::SolverPosition p;
      if (tbgen::IsLegalIndex(s.layout, i, stm, p)) f(p, stm, s.value[stm][i]);
    }
}

}  // namespace vx::test

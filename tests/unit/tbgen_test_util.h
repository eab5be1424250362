// Solving and writing small materials for the database tests.
#pragma once

#include "egdb/bases/library_position.h"
#include "test_util.h"
#include "tools/tbgen/diagram_builder.h"
#include "tools/tbgen/encoder.h"
#include "tools/tbgen/materials.h"
#include "tools/tbgen/solver.h"
#include "tools/tbgen/verify.h"

namespace vx::test {

inline BaseMaterial material(const std::string& name) {
  BaseMaterial m;
  std::string error;
  if (!tbgen::ParseMaterialArgument(name, m, error)) throw std::runtime_error(error);
  return m;
}

inline void solve_into(tbgen::SolutionStore& store, const BaseMaterial& m) {
  tbgen::SolveStats stats;
  store.add(tbgen::Solve(tbgen::LayoutOf(m), store, 2, stats));
}

// Solves the materials and everything they convert into.
inline tbgen::SolutionStore solve(const std::vector<std::string>& names) {
  init();
  std::vector<BaseMaterial> wanted;
  for (const std::string& n : names) wanted.push_back(material(n));
  tbgen::SolutionStore store;
  for (const BaseMaterial& m : tbgen::SolveOrder(wanted)) solve_into(store, m);
  return store;
}

// A material whose every position is a draw: stands in for the materials
// a capture or promotion leads to where their real values do not matter.
inline void add_stand_in(tbgen::SolutionStore& store, const std::string& name) {
  auto s = std::make_unique<tbgen::Solution>();
  s->layout = tbgen::LayoutOf(material(name));
  for (auto& v : s->value) v.assign(s->layout.size, tbgen::V_DRAW);
  store.add(std::move(s));
}

inline const tbgen::Solution& solution(const tbgen::SolutionStore& store, const std::string& name) {
  return *store.find(material(name).signature());
}

// Encodes a solved material (quickly: one variable order, no refinement)
// and writes its file, leaving out a side-to-move part when asked.
inline void write_material(const tbgen::Solution& s, const std::string& path, int left_out = -1) {
  const tbgen::EncodeOptions o{2, 0, 1};
  std::vector<tbgen::TableRecord> records;
  for (const Color c : {WHITE, BLACK})
    if (c != left_out)
      for (tbgen::TableRecord& r : tbgen::EncodePart(s, c, o).records) records.push_back(std::move(r));
  std::string error;
  if (!tbgen::WriteBaseFile(path, records, error)) throw std::runtime_error(error);
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

inline int expected_result(uint8_t v) { return v == tbgen::V_WIN ? 1 : v == tbgen::V_DRAW ? 0 : -1; }

}  // namespace vx::test

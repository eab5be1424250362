// The loaded Vorlaxenbases: one table per material, each with up to eight
// king sub-tables per side to move, found by material signature.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "egdb/bases/decision_diagram.h"
#include "egdb/bases/material.h"

namespace vx {

constexpr int MAX_BASE_TABLES = 1024;
constexpr int MAX_BASE_SUBTABLES = 8;

// One side-to-move part of one king sub-table: the bit permutation (byte i is
// the target position of index bit i) and the diagram over the permuted index.
struct BasePart {
  uint8_t perm[32] = {};
  DecisionDiagram diagram;
};

struct BaseTable {
  BaseMaterial material;
  int men = 0;
  bool pawns = false;
  int subtables = 0;
  BasePart part[MAX_BASE_SUBTABLES][2];  // [sub-table][0 White to move, 1 Black to move]
  bool lead_white[2] = {true, false};     // per side to move: the index is built around the white king

  // A side-to-move part exists when sub-table 0 has its diagram.
  bool has_part(int black_to_move) const { return part[0][black_to_move].diagram.present(); }
};

class BaseRegistry {
 public:
  // Empties the registry.
  void clear();
  // The table of a material, created when new; nullptr when the registry is full.
  BaseTable* table_for(const BaseMaterial& m);
  const BaseTable* find(uint32_t signature) const;
  const BaseTable* at(int i) const { return table_[i].get(); }
  int largest_men() const { return largest_men_; }
  int size() const { return count_; }
  // Bytes the loaded tables occupy, as the load message reports them.
  uint64_t estimated_memory() const;

 private:
  uint32_t signature_[MAX_BASE_TABLES] = {};
  std::unique_ptr<BaseTable> table_[MAX_BASE_TABLES];
  int count_ = 0;
  int largest_men_ = 0;
};

// The one registry, made on first use: a global object would be built and
// destroyed in every processor-level build of the program, also in the one
// the processor cannot run.
BaseRegistry& base_registry();

}  // namespace vx

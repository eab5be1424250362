// Encoding a solved material: per side-to-move part and king sub-table the
// truth table, the variable order and the diagram; and the table the
// records make, as the loader would build it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "egdb/bases/registry.h"
#include "tools/tbgen/solver.h"
#include "tools/tbgen/tbe_writer.h"

namespace vx::tbgen {

struct EncodeOptions {
  int threads = 1;
  // Rounds of variable-order refinement per diagram; -1: one round up to four
  // men, none for five (a five-men diagram takes seconds to build).
  int refine = -1;
  int candidates = 4;  // candidate variable orders tried (1 to 4)
};

struct EncodedPart {
  std::vector<TableRecord> records;  // one per king sub-table
  uint64_t bytes = 0;                // of the records in a file
};

// White to move tries both kings as the leading king and keeps the one
// whose best candidate orders give the smaller total; a Black-to-move part
// is always led by the black king (its record name cannot say otherwise).
EncodedPart EncodePart(const Solution& s, Color stm, const EncodeOptions& o);

// The table the loader makes of the records.
std::unique_ptr<BaseTable> TableOf(const BaseMaterial& m, const std::vector<TableRecord>& records);

}  // namespace vx::tbgen

// Building the levelled decision diagram of one truth table: equal
// sub-functions merged level by level, don't-care entries used where they
// merge nodes, and each level's nodes ordered so that as many parents as
// possible have consecutive children (stored once, above the threshold).
#pragma once

#include <cstdint>
#include <vector>

#include "egdb/decision_diagram.h"

namespace vx::tbgen {

// Truth-table values: the stored values 0 win, 1 draw, 2 loss, and entries
// no probe reaches.
constexpr uint8_t DONT_CARE = 3;

// The diagram of a table of 2^bits values indexed by the permuted index
// (level i tests bit i).
DecisionDiagram BuildDiagram(const std::vector<uint8_t>& table, int bits);

// Bytes the diagram takes in a file record (levels with their headers and
// thresholds, without the name and permutation).
uint64_t DiagramBytes(const DecisionDiagram& d);

}  // namespace vx::tbgen

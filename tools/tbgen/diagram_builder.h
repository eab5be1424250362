// Building the levelled decision diagram of one truth table: equal
// sub-functions merged level by level, don't-care entries used where they
// merge nodes, and each level's nodes ordered so that as many parents as
// possible have consecutive children (stored once, above the threshold).
#pragma once

#include <cstdint>
#include <vector>

#include "egdb/bases/decision_diagram.h"

namespace vx::tbgen {

// Truth-table values: the stored values 0 win, 1 draw, 2 loss, and entries
// no probe reaches.
constexpr uint8_t DONT_CARE = 3;
// The same in the builder's input.
constexpr uint32_t DONT_CARE_ENTRY = UINT32_MAX;

// The diagram of 2^bits values indexed by the permuted index (level i tests
// bit i): 0, 1, 2 or DONT_CARE_ENTRY. The values are used up as work space.
DecisionDiagram BuildDiagram(std::vector<uint32_t>& values, int bits);

// Bytes the diagram takes in a file record (levels with their headers and
// thresholds, without the name and permutation).
uint64_t DiagramBytes(const DecisionDiagram& d);

}  // namespace vx::tbgen

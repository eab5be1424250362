// Choosing the bit permutation (the variable order of the diagram) of one
// part table: a handful of orders built from the structure of the index,
// refined by exchanging neighbouring groups of bits, keeping the smallest.
#pragma once

#include <cstdint>
#include <vector>

#include "egdb/decision_diagram.h"

namespace vx::tbgen {

struct PermutedDiagram {
  uint8_t perm[32] = {};  // target position of each index bit
  DecisionDiagram diagram;
  uint64_t bytes = UINT64_MAX;
};

// A table indexed by the permuted index.
std::vector<uint8_t> Permuted(const std::vector<uint8_t>& table, const uint8_t* perm, int bits);

// Candidate orders for an index of `bits` bits whose low 6 * fields bits are
// squares (rank in the high three bits of each) under a king-index head.
std::vector<std::vector<int>> CandidateOrders(int bits, int fields);

// The smallest diagram over the candidate orders, then `refine` rounds of
// exchanging neighbouring groups in the best order found.
PermutedDiagram SmallestDiagram(const std::vector<uint8_t>& table, int bits, int fields, int refine);

// The diagram of a table under a given permutation.
PermutedDiagram DiagramWithOrder(const std::vector<uint8_t>& table, int bits, const std::vector<int>& top_down);

}  // namespace vx::tbgen

// Choosing the bit permutation (the variable order of the diagram) of one
// part table: a handful of orders built from the structure of the index,
// refined by exchanging neighbouring groups of bits, keeping the smallest.
#pragma once

#include <cstdint>
#include <vector>

#include "egdb/bases/decision_diagram.h"

namespace vx::tbgen {

struct PermutedDiagram {
  uint8_t perm[32] = {};  // target position of each index bit
  DecisionDiagram diagram;
  uint64_t bytes = UINT64_MAX;
};

// The builder's input for a table under a permutation (bit i of an index
// moves to perm[i]).
void PermutedValues(const std::vector<uint8_t>& table, const uint8_t* perm, int bits, std::vector<uint32_t>& out);

// Candidate orders for an index of `bits` bits whose low 6 * fields bits are
// squares (rank in the high three bits of each) under a king-index head.
std::vector<std::vector<int>> CandidateOrders(int bits, int fields);

// The diagram of a table under an order (index bits, the first tested first).
PermutedDiagram DiagramWithOrder(const std::vector<uint8_t>& table, int bits, const std::vector<int>& top_down);

// The smallest diagram over some orders, with its order.
PermutedDiagram BestCandidate(const std::vector<uint8_t>& table, int bits, const std::vector<std::vector<int>>& orders,
                              std::vector<int>& order);
// Rounds of exchanging neighbouring groups of bits in the order while that
// makes the diagram smaller.
void Refine(const std::vector<uint8_t>& table, int bits, int fields, int rounds, PermutedDiagram& best,
            std::vector<int>& order);

}  // namespace vx::tbgen

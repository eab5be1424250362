// The values one side-to-move part of a table stores, per king sub-table, in
// the probe's index order: 0 win, 1 draw, 2 loss for the side to move, and
// DONT_CARE for indices no legal position reaches.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/tbgen/solver.h"

namespace vx::tbgen {

std::vector<uint8_t> PartTable(const Solution& s, Color stm, bool lead_white, int subtable, int threads);

// The stored value (0 win, 1 draw, 2 loss) of a solver value.
constexpr uint8_t StoredValue(uint8_t v) { return v == V_WIN ? 0 : v == V_DRAW ? 1 : 2; }

}  // namespace vx::tbgen

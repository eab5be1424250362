// Which side-to-move parts the generator leaves out. A left-out part is
// answered by the probe's one-ply search, through the other part of its
// table and, for captures and promotions, through the parts of smaller
// tables, which must then be kept. The choice that leaves out the most bytes
// is searched over all materials of a run at once.
#pragma once

#include <cstdint>
#include <vector>

#include "egdb/bases/material.h"

namespace vx::tbgen {

// Parts under this size are always kept.
constexpr uint64_t MIN_LEFT_OUT = 2048;

struct PartSizes {
  BaseMaterial material;
  uint64_t bytes[2] = {};  // White to move, Black to move
};

// Per material the part to leave out (0 White to move, 1 Black to move) or -1.
std::vector<int> ChoosePartsToLeaveOut(const std::vector<PartSizes>& materials);

}  // namespace vx::tbgen

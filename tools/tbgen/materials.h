// Which materials the generator makes and in what order: names from the
// command line, every material up to a number of men, and the materials a
// capture or promotion leads to, which are solved first.
#pragma once

#include <string>
#include <vector>

#include "egdb/bases/material.h"

namespace vx::tbgen {

constexpr int MAX_GENERATED_MEN = 5;

// The material in the colour orientation its table is stored in.
inline BaseMaterial Stored(const BaseMaterial& m) { return m.stored_swapped() ? m.swapped() : m; }

// Reads a name such as "krk" or "kqkr" (either colour first; upper case
// allowed). False with a message for anything that is not a material of
// three to five men.
bool ParseMaterialArgument(const std::string& text, BaseMaterial& out, std::string& error);

// Every material of three to max_men men, by number of men, then by name.
std::vector<BaseMaterial> AllMaterials(int max_men);

// The materials (in this material's colours, possibly bare kings) that one
// capture or promotion by `mover` leads to.
std::vector<BaseMaterial> ConversionsBy(const BaseMaterial& m, int mover);
// The materials of at least three men, stored orientation, that one capture
// or promotion by either side leads to.
std::vector<BaseMaterial> Conversions(const BaseMaterial& m);

// The wanted materials and all they convert into, each after its conversions.
std::vector<BaseMaterial> SolveOrder(const std::vector<BaseMaterial>& wanted);

}  // namespace vx::tbgen

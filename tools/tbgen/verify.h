// Checking a written table against the solver: the file is read with the
// engine's own loader and every legal position is probed.
#pragma once

#include <cstdint>
#include <string>

#include "tools/tbgen/solver.h"

namespace vx {
class CChessPosition;
struct BaseTable;
}

namespace vx::tbgen {

struct VerifyResult {
  uint64_t probed = 0;
  uint64_t mismatches = 0;
  std::string first;  // the first mismatch, described
};

// Probes, through the tables loaded in the engine, every legal position of
// the material (one per symmetry class); in a stored part also its mirror
// image through the diagonal where the index keeps the two apart (no pawns,
// the leading king on the diagonal) and every eighth with the colours
// exchanged; a sample through the engine's
// Position. Compares with the solver's values.
VerifyResult VerifyMaterial(const Solution& s, int threads);

// Probes every legal position of a part that the file leaves out through
// the loaded tables (the one-ply search) and compares with the part's own
// diagrams in `full` (verified against the solver before).
VerifyResult VerifyLeftOutPart(const SolverLayout& l, const BaseTable& full, Color stm, int threads);

// The library position of a solver position.
void SetLibraryPosition(const SolverLayout& l, const SolverPosition& p, Color stm, CChessPosition& out);

}  // namespace vx::tbgen

// Checking a written table against the solver: the file is read with the
// engine's own loader and every legal position is probed.
#pragma once

#include <cstdint>
#include <string>

#include "tools/tbgen/solver.h"

namespace vx {
class CChessPosition;
}

namespace vx::tbgen {

struct VerifyResult {
  uint64_t probed = 0;
  uint64_t mismatches = 0;
  std::string first;  // the first mismatch, described
};

// Probes, through the tables loaded in the engine, every legal position of
// the material (and without pawns its mirror image through the diagonal,
// which the index keeps apart), every eighth also with the colours
// exchanged, and a sample through the engine's Position; compares with the
// solver's values.
VerifyResult VerifyMaterial(const Solution& s, int threads);

// The library position of a solver position.
void SetLibraryPosition(const SolverLayout& l, const SolverPosition& p, Color stm, CChessPosition& out);
// FEN of a library position.
std::string LibraryFen(const CChessPosition& p);

}  // namespace vx::tbgen

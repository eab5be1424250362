// The whole run of the generator: solve each material after the ones it
// converts into, encode its parts, write its file, read it back through the
// engine's loader and probe every position, and list the files in bases.ini.
#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "egdb/bases/material.h"

namespace vx::tbgen {

struct GeneratorOptions {
  std::string out_dir = ".";
  int threads = 1;
  int refine = -1;           // rounds of variable-order refinement per diagram; -1: by size
  bool keep_both = false;    // never leave a side-to-move part out
  std::ostream* log = nullptr;  // progress lines, or none
};

struct MaterialReport {
  std::string name;
  uint64_t legal = 0;      // legal positions, both sides to move
  uint64_t file_bytes = 0;
  int passes = 0;
  double solve_seconds = 0, encode_seconds = 0, verify_seconds = 0;
  uint64_t probed = 0;
  int left_out = -1;  // the side-to-move part left out (WHITE, BLACK) or -1
};

// False with a message on the first failure (directory, file, verification).
bool GenerateBases(const std::vector<BaseMaterial>& wanted, const GeneratorOptions& options,
                   std::vector<MaterialReport>& reports, std::string& error);

}  // namespace vx::tbgen

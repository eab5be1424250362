// Writing ".tbe" files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "egdb/bases/decision_diagram.h"
#include "egdb/bases/format.h"

namespace vx::tbgen {

struct TableRecord {
  BaseRecordName name;
  uint8_t perm[32] = {};
  DecisionDiagram diagram;
};

// The bytes of a file holding the records, header and checksum included.
std::vector<uint8_t> BaseFileBytes(const std::vector<TableRecord>& records);
// False with a message when the file cannot be written.
bool WriteBaseFile(const std::string& path, const std::vector<TableRecord>& records, std::string& error);

}  // namespace vx::tbgen

#include "tools/tbgen/tbe_writer.h"

#include <fstream>

namespace vx::tbgen {

namespace {

void Put32(std::vector<uint8_t>& out, uint32_t v) {
  for (int b = 0; b < 4; ++b) out.push_back(uint8_t(v >> (8 * b)));
}

void PutRecord(std::vector<uint8_t>& out, const TableRecord& r) {
  const std::string name = MakeBaseRecordName(r.name);
  out.push_back(uint8_t(name.size()));
  for (const char c : name) out.push_back(uint8_t(c) ^ BASE_NAME_SCRAMBLE);
  Put32(out, 0);
  out.insert(out.end(), r.perm, r.perm + 32);
  out.push_back(0);
  Put32(out, uint32_t(r.diagram.levels.size()));
  for (const DiagramLevel& l : r.diagram.levels) {
    Put32(out, l.count);
    Put32(out, l.width);
    for (uint64_t w = 0; w < PackedWords(l.count, l.width); ++w) Put32(out, l.words[size_t(w)]);
  }
  for (const DiagramLevel& l : r.diagram.levels) Put32(out, l.threshold);
}

}  // namespace

std::vector<uint8_t> BaseFileBytes(const std::vector<TableRecord>& records) {
  std::vector<uint8_t> out;
  Put32(out, BASE_MAGIC);
  Put32(out, BASE_VERSION);
  Put32(out, 0);
  for (const TableRecord& r : records) PutRecord(out, r);
  const uint32_t sum = BaseChecksum(out.data(), out.size());
  for (int b = 0; b < 4; ++b) out[size_t(8 + b)] = uint8_t(sum >> (8 * b));
  return out;
}

bool WriteBaseFile(const std::string& path, const std::vector<TableRecord>& records, std::string& error) {
  const std::vector<uint8_t> bytes = BaseFileBytes(records);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
  out.close();
  if (!out) error = "cannot write " + path;
  return bool(out);
}

}  // namespace vx::tbgen

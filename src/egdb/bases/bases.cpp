// Loading of the Vorlaxenbases: the path forms, file validation and the
// table records.
#include "egdb/bases/bases.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "egdb/bases/format.h"
#include "egdb/bases/registry.h"
#include "engine/output.h"
#include "platform/platform.h"

namespace vx {

namespace {

// One table record read from a file, not yet entered in the registry.
struct BaseRecord {
  BaseMaterial material;
  BaseRecordName name;
  BasePart part;
};

// Bounds-checked reading of a file's bytes.
struct ByteReader {
  const std::vector<uint8_t>& bytes;
  size_t at = BASE_HEADER_SIZE;

  size_t left() const { return bytes.size() - at; }
  bool read(void* out, size_t n) {
    if (n > left()) return false;
    std::copy_n(bytes.data() + at, n, static_cast<uint8_t*>(out));
    at += n;
    return true;
  }
  bool skip(size_t n) {
    if (n > left()) return false;
    at += n;
    return true;
  }
  bool u32(uint32_t& v) {
    if (left() < 4) return false;
    v = ReadLe32(bytes.data() + at);
    at += 4;
    return true;
  }
};

bool EndsWithIgnoringCase(const std::string& s, const char* suffix) {
  const std::string end(suffix);
  if (s.size() < end.size()) return false;
  for (size_t i = 0; i < end.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(s[s.size() - end.size() + i])) != end[i]) return false;
  return true;
}

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

bool ReadWholeFile(const std::string& path, std::vector<uint8_t>& bytes) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec)) return false;
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return true;
}

// Magic, version and checksum. The other three magic numbers belong to
// layouts this reader does not accept.
bool HeaderIsValid(const std::vector<uint8_t>& bytes) {
  if (bytes.size() < BASE_HEADER_SIZE) return false;
  const uint32_t magic = ReadLe32(bytes.data());
  if (magic == BASE_MAGIC_SWAPPED || magic == BASE6_MAGIC || magic == BASE6_MAGIC_SWAPPED) return false;
  return magic == BASE_MAGIC && ReadLe32(bytes.data() + 4) == BASE_VERSION &&
         ReadLe32(bytes.data() + 8) == BaseChecksum(bytes.data(), bytes.size());
}

bool ReadLevels(ByteReader& in, DecisionDiagram& d) {
  uint32_t n = 0;
  if (!in.u32(n) || n < 1 || n > BASE_MAX_LEVELS) return false;
  d.levels.resize(n);
  for (DiagramLevel& level : d.levels) {
    if (!in.u32(level.count) || !in.u32(level.width) || level.width > 31) return false;
    const uint64_t words = PackedWords(level.count, level.width);
    if (words * 4 > in.left()) return false;
    level.mask = (1u << level.width) - 1;
    level.words.assign(size_t(PaddedWords(level.count, level.width)), 0);
    for (uint64_t w = 0; w < words; ++w) in.u32(level.words[size_t(w)]);
  }
  for (DiagramLevel& level : d.levels)
    if (!in.u32(level.threshold)) return false;
  return DiagramIsSound(d);
}

enum class RecordStatus { OK, BROKEN, MEN_OUT_OF_RANGE };

RecordStatus ReadRecord(ByteReader& in, BaseRecord& r) {
  uint8_t length = 0;
  std::string name;
  if (!in.read(&length, 1)) return RecordStatus::BROKEN;
  name.resize(length);
  if (!in.read(name.data(), length)) return RecordStatus::BROKEN;
  for (char& c : name) c = char(uint8_t(c) ^ BASE_NAME_SCRAMBLE);
  if (!in.skip(4) || !in.read(r.part.perm, 32) || !in.skip(1)) return RecordStatus::BROKEN;
  for (uint8_t target : r.part.perm)
    if (target > 31) return RecordStatus::BROKEN;
  if (!ParseBaseRecordName(name, r.name) || !ParseBaseMaterial(r.name.material, r.material))
    return RecordStatus::BROKEN;
  const int men = int(r.name.material.size());
  if (men < 3 || men > 6) return RecordStatus::MEN_OUT_OF_RANGE;
  if (r.name.subtable >= BaseSubTables(men, r.material.has_pawns())) return RecordStatus::BROKEN;
  return ReadLevels(in, r.part.diagram) ? RecordStatus::OK : RecordStatus::BROKEN;
}

// Room in the registry for the materials the records add.
bool RegistryHasRoom(const std::vector<BaseRecord>& records) {
  std::vector<uint32_t> added;
  for (const BaseRecord& r : records) {
    const uint32_t sig = r.material.signature();
    if (!base_registry().find(sig) && std::find(added.begin(), added.end(), sig) == added.end()) added.push_back(sig);
  }
  return base_registry().size() + int(added.size()) <= MAX_BASE_TABLES;
}

void EnterRecords(std::vector<BaseRecord>& records) {
  for (BaseRecord& r : records) {
    BaseTable* t = base_registry().table_for(r.material);
    const int black_to_move = r.name.white_to_move ? 0 : 1;
    t->part[r.name.subtable][black_to_move] = std::move(r.part);
    t->lead_white[black_to_move] = r.name.lead_white;
  }
}

void LoadOneFile(const std::string& path) {
  switch (LoadBaseFile(path)) {
    case BaseFileStatus::LOADED:
      WriteLine("info string loading vorlaxenbases " + path);
      break;
    case BaseFileStatus::NOT_FOUND:
      WriteLine("info string vorlaxenbases not found: " + path);
      break;
    case BaseFileStatus::INVALID:
      WriteLine("info string error in vorlaxenbases " + path);
      break;
    case BaseFileStatus::MEN_OUT_OF_RANGE:
      // Tables of fewer than three or more than six men end the program.
      WriteLine("info string error in vorlaxenbases " + path);
      std::exit(0);
  }
}

// Each line names a file: a line with a directory separator as it stands,
// any other line inside the list file's own directory.
void LoadListFile(const std::string& path) {
  std::ifstream in(path);
  const size_t last = path.find_last_of("/\\");
  const std::string dir = last == std::string::npos ? "" : path.substr(0, last + 1);
  for (std::string line; std::getline(in, line);) {
    if (line.size() > 255) line.resize(255);
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.pop_back();
    if (line.empty() || line[0] == '#') continue;
    LoadOneFile(line.find_first_of("/\\") != std::string::npos ? line : dir + line);
  }
}

void LoadDirectory(std::string dir) {
  if (dir.empty() || !IsSeparator(dir.back())) dir += '/';
  for (const std::string& name : platform::list_directory(dir))
    if (EndsWithIgnoringCase(name, ".tbe")) LoadOneFile(dir + name);
}

}  // namespace

void FreeVorlaxenbases() { base_registry().clear(); }

int VorlaxenbasesLargestMen() { return base_registry().largest_men(); }

BaseFileStatus LoadBaseFile(const std::string& path) {
  std::vector<uint8_t> bytes;
  if (!ReadWholeFile(path, bytes)) return BaseFileStatus::NOT_FOUND;
  if (!HeaderIsValid(bytes)) return BaseFileStatus::INVALID;
  std::vector<BaseRecord> records;
  for (ByteReader in{bytes}; in.left() > 0;) {
    records.emplace_back();
    switch (ReadRecord(in, records.back())) {
      case RecordStatus::OK: break;
      case RecordStatus::BROKEN: return BaseFileStatus::INVALID;
      case RecordStatus::MEN_OUT_OF_RANGE: return BaseFileStatus::MEN_OUT_OF_RANGE;
    }
  }
  if (!RegistryHasRoom(records)) return BaseFileStatus::INVALID;
  EnterRecords(records);
  return BaseFileStatus::LOADED;
}

void LoadVorlaxenbases(const std::string& path) {
  FreeVorlaxenbases();
  if (path.empty()) return;
  if (path.size() > 4 && EndsWithIgnoringCase(path, ".tbe"))
    LoadOneFile(path);
  else if (path.size() > 4 && EndsWithIgnoringCase(path, ".ini"))
    LoadListFile(path);
  else
    LoadDirectory(path);
  const uint64_t megabytes = (base_registry().estimated_memory() + 8) / 1048576;
  WriteLine("info string vorlaxenbasses with " + std::to_string(base_registry().largest_men()) + " men found (" +
            std::to_string(megabytes) + " MB)");
}

}  // namespace vx

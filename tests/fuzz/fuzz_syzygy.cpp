// Broken Syzygy tables: the input makes a ".rtbw" file, either arbitrary bytes
// after the WDL magic or a real small table with bytes flipped and its end cut
// off. The file is registered through InitSyzygy and probed at random
// positions of its material, then read once more from an exactly sized heap
// copy so that the address sanitizer sees any read past its end. Nothing may
// crash or read outside the file; a broken table only fails its probes.
//
// Input: byte 0 picks the material, byte 1 the mode (0 raw bytes, 1 edits
// of the real table, 2 the real table cut short, then edits); the rest is the
// file (raw) or 4-byte edits: a 24-bit offset and a byte to XOR there.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "../unit/tablebase_util.h"
#include "egdb/syzygy.h"
#include "egdb/syzygy_value.h"

namespace {

using namespace vx;

const char* const MATERIALS[] = {"KRvK",  "KQvK",  "KPvK",  "KBvKB", "KNNvK",
                                 "KRvKR", "KPPvK", "KBNvK", "KPvKP", "KQvKR"};
constexpr int POSITIONS = 24;

const std::string& Directory() {
  static const std::string dir = [] {
    std::freopen("/dev/null", "w", stdout);
    InitStaticTables();
    const auto path = std::filesystem::temp_directory_path() / ("vorlaxen_fuzz_syzygy_" + std::to_string(getpid()));
    std::filesystem::create_directories(path);
    return path.string();
  }();
  return dir;
}

// The real table of that name, or nothing when the tables are not at hand.
const std::vector<uint8_t>& RealTable(const std::string& name) {
  static std::map<std::string, std::vector<uint8_t>> cache;
  auto [it, added] = cache.try_emplace(name);
  if (added) {
    std::ifstream in(test::SyzygyDir() + "/" + name + ".rtbw", std::ios::binary);
    it->second.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  return it->second;
}

std::vector<uint8_t> MakeFile(const std::string& name, int mode, const uint8_t* data, size_t size) {
  std::vector<uint8_t> file = RealTable(name);
  if (mode == 0 || file.empty()) {
    file = {0x71, 0xE8, 0x23, 0x5D};
    file.insert(file.end(), data, data + size);
    return file;
  }
  size_t i = 0;
  if (mode == 2 && size >= 3) {
    file.resize((data[0] | data[1] << 8 | data[2] << 16) % (file.size() + 1));
    i = 3;
  }
  for (; i + 4 <= size && !file.empty(); i += 4)
    file[(data[i] | data[i + 1] << 8 | data[i + 2] << 16) % file.size()] ^= data[i + 3];
  return file;
}

// Probes through the registry: the file mapped as the engine maps it.
void ProbeRegistered(const std::string& name, const std::vector<uint8_t>& file, std::vector<Position>& positions) {
  const std::string path = Directory() + "/" + name + ".rtbw";
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(file.data()), std::streamsize(file.size()));
  InitSyzygy(Directory());
  for (Position& pos : positions) {
    int success = 0;
    const int v = ProbeWdl(pos, success);
    if (success && (v < -2 || v > 2)) std::abort();
  }
  InitSyzygy("<empty>");
  std::filesystem::remove(path);
}

// Reads the table from a heap copy of exactly the file's size.
void ProbeHeapCopy(const syzygy::TableMaterial& mat, const std::vector<uint8_t>& file,
                   const std::vector<Position>& positions) {
  const std::vector<uint8_t> copy(file);
  syzygy::TableEntry table;
  table.key = syzygy::TableKey(mat, false);
  table.info = syzygy::DescribeTable(mat, table.key == syzygy::TableKey(mat, true));
  if (!syzygy::ReadWdlLayout({copy.data(), copy.size()}, table.info, table.layout)) return;
  for (const Position& pos : positions) {
    const int v = syzygy::StoredValue(table, pos, syzygy::PositionTableKey(pos));
    if (v < -1 || v > 4) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2 || size > (1 << 16)) return 0;
  Directory();
  const std::string name = MATERIALS[data[0] % std::size(MATERIALS)];
  const std::vector<uint8_t> file = MakeFile(name, data[1] % 3, data + 2, size - 2);

  syzygy::TableMaterial mat;
  syzygy::ParseTableName(name, mat);
  std::mt19937_64 rng(std::hash<std::string>()(std::string(data, data + size)));
  std::vector<Position> positions;
  for (int i = 0; i < POSITIONS; ++i) positions.push_back(test::RandomSeriesPosition(rng, mat, uint64_t(i)));

  ProbeRegistered(name, file, positions);
  ProbeHeapCopy(mat, file, positions);
  return 0;
}

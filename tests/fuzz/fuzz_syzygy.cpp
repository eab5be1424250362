// Broken Syzygy tables: byte 0 picks a material, byte 1 the mode, the rest
// makes the ".rtbw" file: in mode 0 the bytes behind the WDL magic, else the
// real table (when at hand) cut short (mode 2: to the length in the next three
// bytes) and then edited by 4-byte groups (a 24-bit offset, a byte to XOR
// there). The file is registered and probed at random positions, then read
// from an exactly sized heap copy so that the address sanitizer sees any read
// past its end. A broken table may only fail its probes.
#include <fstream>
#include <iterator>
#include <map>

#include "../unit/tablebase_util.h"
#include "egdb/syzygy/syzygy.h"
#include "egdb/syzygy/value.h"

namespace {

using namespace vx;

const char* const MATERIALS[] = {"KRvK", "KQvK", "KPvK", "KBvKB", "KNNvK", "KRvKR", "KPPvK", "KBNvK", "KPvKP", "KQvKR"};

std::vector<uint8_t> MakeFile(const std::string& name, int mode, const uint8_t* data, size_t size) {
  static std::map<std::string, std::vector<uint8_t>> real;
  if (!real.count(name)) {
    std::ifstream in(test::SyzygyDir() + "/" + name + ".rtbw", std::ios::binary);
    real[name].assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  std::vector<uint8_t> file = real[name];
  if (mode == 0 || file.empty()) {
    file = {0x71, 0xE8, 0x23, 0x5D};
    file.insert(file.end(), data, data + size);
    return file;
  }
  size_t i = 0;
  if (mode == 2 && size >= 3) file.resize((data[0] | data[1] << 8 | data[2] << 16) % (file.size() + 1)), i = 3;
  for (; i + 4 <= size && !file.empty(); i += 4)
    file[(data[i] | data[i + 1] << 8 | data[i + 2] << 16) % file.size()] ^= data[i + 3];
  return file;
}

// Through the registry: the file mapped as the engine maps it.
void ProbeRegistered(const std::string& dir, const std::string& name, const std::vector<uint8_t>& file,
                     std::vector<Position>& positions) {
  std::ofstream(dir + "/" + name + ".rtbw", std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(file.data()), std::streamsize(file.size()));
  InitSyzygy(dir);
  for (Position& pos : positions) {
    int success = 0;
    const int v = ProbeWdl(pos, success);
    if (success && (v < -2 || v > 2)) std::abort();
  }
  InitSyzygy("<empty>");
  std::filesystem::remove(dir + "/" + name + ".rtbw");
}

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
  static const std::string dir = [] {
    std::freopen("/dev/null", "w", stdout);
    test::init();
    return test::temp_dir("fuzz-syzygy");
  }();
  if (size < 2 || size > (1 << 16)) return 0;
  const std::string name = MATERIALS[data[0] % std::size(MATERIALS)];
  const std::vector<uint8_t> file = MakeFile(name, data[1] % 3, data + 2, size - 2);
  syzygy::TableMaterial mat;
  syzygy::ParseTableName(name, mat);
  std::mt19937_64 rng(std::hash<std::string>()(std::string(data, data + size)));
  std::vector<Position> positions;
  for (int i = 0; i < 24; ++i) positions.push_back(test::RandomSeriesPosition(rng, mat, uint64_t(i)));
  ProbeRegistered(dir, name, file, positions);
  ProbeHeapCopy(mat, file, positions);
  return 0;
}

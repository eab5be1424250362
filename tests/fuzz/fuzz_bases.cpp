// The Vorlaxenbases loader and prober: the input becomes a ".tbe" file, as
// it is or (odd first byte) behind a valid header with a fitting checksum so
// that the record reader itself is fuzzed; positions of every table loaded
// are probed.
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "egdb/bases/bases.h"
#include "egdb/bases/format.h"
#include "egdb/bases/library_position.h"
#include "egdb/bases/registry.h"
#include "engine/startup.h"

namespace {

using namespace vx;

std::vector<uint8_t> FileBytes(const uint8_t* data, size_t size) {
  if (size == 0 || data[0] % 2 == 0) return {data + (size ? 1 : 0), data + size};
  std::vector<uint8_t> b(BASE_HEADER_SIZE, 0);
  for (int i = 0; i < 4; ++i) b[size_t(i)] = uint8_t(BASE_MAGIC >> (8 * i)), b[size_t(4 + i)] = uint8_t(BASE_VERSION >> (8 * i));
  b.insert(b.end(), data + 1, data + size);
  const uint32_t sum = BaseChecksum(b.data(), b.size());
  for (int i = 0; i < 4; ++i) b[size_t(8 + i)] = uint8_t(sum >> (8 * i));
  return b;
}

// A position of the table's material, men on squares taken from the input.
void Place(const BaseTable& t, const uint8_t* data, size_t size, int salt, CChessPosition& p) {
  p.clear();
  uint64_t used = 0;
  size_t k = size_t(salt) * 7;
  auto put = [&](uint8_t code) {
    Square s = size ? data[k++ % size] % 64 : 0;
    while (used >> s & 1) s = (s + 1) % 64;
    used |= uint64_t(1) << s;
    p.put(code, s);
  };
  put(LIB_KING);
  put(LIB_KING + LIB_BLACK);
  for (int c = 0; c < 2; ++c)
    for (int kind = 0; kind < BASE_KINDS; ++kind)
      for (int n = 0; n < t.material.count[c][kind]; ++n) put(uint8_t(LIB_QUEEN + kind + (c ? LIB_BLACK : 0)));
  p.set_white_to_move(salt % 2 == 0);
  p.ep_square = salt % 3 == 0 ? (p.white_to_move() ? SQ_E6 : SQ_E3) : 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  InitStaticTables();
  static const std::string path = "/tmp/fuzz_bases_" + std::to_string(getpid()) + ".tbe";
  const std::vector<uint8_t> bytes = FileBytes(data, size);
  std::ofstream(path, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
  FreeVorlaxenbases();
  LoadBaseFile(path);
  for (int i = 0; i < base_registry().size(); ++i)
    for (int salt = 0; salt < 6; ++salt) {
      CChessPosition p;
      Place(*base_registry().at(i), data, size, salt, p);
      int result = 0;
      ProbeLibraryPosition(p, result);
    }
  unlink(path.c_str());  // the loader is done with it: nothing is left behind in /tmp
  return 0;
}

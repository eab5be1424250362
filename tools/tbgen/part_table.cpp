#include "tools/tbgen/part_table.h"

#include "egdb/bases/index.h"
#include "tools/tbgen/diagram_builder.h"
#include "tools/tbgen/parallel.h"

namespace vx::tbgen {

std::vector<uint8_t> PartTable(const Solution& s, Color stm, bool lead_white, int subtable, int threads) {
  const SolverLayout& l = s.layout;
  const int bits = BaseIndexBits(l.men, l.pawns);
  const uint64_t base = l.men == 3 ? 0 : uint64_t(subtable) << bits;
  const int kings = BaseKingIndices(l.pawns);
  std::vector<uint8_t> table(uint64_t(1) << bits, DONT_CARE);
  ParallelFor(table.size(), 1 << 14, threads, [&](uint64_t b, uint64_t e) {
    for (uint64_t local = b; local < e; ++local) {
      const uint64_t full = base | local;
      if (int(full >> (6 * (l.men - 1))) >= kings) continue;
      const SolverPosition p = DecodeLed(l, full, stm, lead_white);
      if (ProbeIndex(l, p, stm, lead_white) != full || !IsLegalPosition(l, p, stm)) continue;
      table[local] = StoredValue(s.value[stm][CanonicalIndex(l, p, stm)]);
    }
  });
  return table;
}

}  // namespace vx::tbgen

#include "tools/tbgen/encoder.h"

#include <algorithm>

#include "egdb/bases/index.h"
#include "tools/tbgen/parallel.h"
#include "tools/tbgen/part_table.h"
#include "tools/tbgen/variable_order.h"

namespace vx::tbgen {

EncodedPart EncodePart(const Solution& s, Color stm, const EncodeOptions& o) {
  const SolverLayout& l = s.layout;
  const int bits = BaseIndexBits(l.men, l.pawns), fields = l.men - 1;
  const int subtables = BaseSubTables(l.men, l.pawns);
  const size_t count = size_t(subtables);
  const int rounds = o.refine >= 0 ? o.refine : l.men <= 4 ? 1 : 0;
  std::vector<PermutedDiagram> best(count);
  std::vector<std::vector<int>> order(count);
  std::vector<std::vector<int>> candidates = CandidateOrders(bits, fields);
  candidates.resize(size_t(std::clamp(o.candidates, 1, int(candidates.size()))));
  // The sub-tables in parallel, each built by one thread. Five men try only
  // the first candidate order when choosing the leading king.
  auto encode = [&](bool lead_white, bool refine) {
    const std::vector<std::vector<int>> orders(candidates.begin(), l.men >= 5 && !refine ? candidates.begin() + 1 : candidates.end());
    ParallelFor(count, 1, o.threads, [&](uint64_t b, uint64_t e) {
      for (uint64_t sub = b; sub < e; ++sub) {
        const std::vector<uint8_t> table = PartTable(s, stm, lead_white, int(sub), 1);
        best[sub] = BestCandidate(table, bits, orders, order[sub]);
        if (refine) Refine(table, bits, fields, rounds, best[sub], order[sub]);
      }
    });
    uint64_t total = 0;
    for (const PermutedDiagram& d : best) total += d.bytes;
    return total;
  };
  bool lead_white = false;
  if (stm == WHITE) {
    const uint64_t white_led = encode(true, false), black_led = encode(false, false);
    lead_white = white_led <= black_led;
  }
  EncodedPart part;
  encode(lead_white, true);
  for (int sub = 0; sub < subtables; ++sub) {
    TableRecord r;
    r.name = {l.material.name(), sub, lead_white, stm == WHITE};
    std::copy(best[size_t(sub)].perm, best[size_t(sub)].perm + 32, r.perm);
    r.diagram = std::move(best[size_t(sub)].diagram);
    part.records.push_back(std::move(r));
  }
  part.bytes = BaseFileBytes(part.records).size() - BASE_HEADER_SIZE;
  return part;
}

std::unique_ptr<BaseTable> TableOf(const BaseMaterial& m, const std::vector<TableRecord>& records) {
  auto t = std::make_unique<BaseTable>();
  t->material = m;
  t->men = m.men();
  t->pawns = m.has_pawns();
  t->subtables = BaseSubTables(t->men, t->pawns);
  for (const TableRecord& r : records) {
    const int black_to_move = r.name.white_to_move ? 0 : 1;
    BasePart& p = t->part[r.name.subtable][black_to_move];
    std::copy(r.perm, r.perm + 32, p.perm);
    p.diagram = r.diagram;
    t->lead_white[black_to_move] = r.name.lead_white;
  }
  return t;
}

}  // namespace vx::tbgen

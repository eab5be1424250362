#include "tools/tbgen/variable_order.h"

#include <algorithm>

#include "tools/tbgen/diagram_builder.h"

namespace vx::tbgen {

namespace {

// Index bits of square field f (0 = the field below the king index), the
// rank bits first, most significant first.
std::vector<int> FieldBits(int fields, int f) {
  const int low = 6 * (fields - 1 - f);
  return {low + 5, low + 4, low + 3, low + 2, low + 1, low};
}

std::vector<int> HeadBits(int bits, int fields) {
  std::vector<int> head;
  for (int b = bits - 1; b >= 6 * fields; --b) head.push_back(b);
  return head;
}

void Append(std::vector<int>& to, const std::vector<int>& bits) { to.insert(to.end(), bits.begin(), bits.end()); }

// Groups of an order for refinement: runs of bits of the king index or of
// one rank or file.
std::vector<std::vector<int>> Groups(const std::vector<int>& order, int fields) {
  std::vector<std::vector<int>> groups;
  int last = -2;
  for (const int b : order) {
    const int key = b >= 6 * fields ? -1 : b / 3;
    if (key != last) groups.push_back({});
    groups.back().push_back(b);
    last = key;
  }
  return groups;
}

std::vector<int> Flatten(const std::vector<std::vector<int>>& groups) {
  std::vector<int> order;
  for (const auto& g : groups) Append(order, g);
  return order;
}

}  // namespace

std::vector<uint8_t> Permuted(const std::vector<uint8_t>& table, const uint8_t* perm, int bits) {
  // The permuted index byte by byte.
  uint32_t part[4][256];
  for (int byte = 0; byte < 4; ++byte)
    for (uint32_t v = 0; v < 256; ++v) {
      uint32_t p = 0;
      for (int b = 0; b < 8; ++b)
        if ((v >> b) & 1 && byte * 8 + b < bits) p |= 1u << perm[byte * 8 + b];
      part[byte][v] = p;
    }
  std::vector<uint8_t> out(table.size());
  for (uint32_t i = 0; i < table.size(); ++i)
    out[part[0][i & 255] | part[1][(i >> 8) & 255] | part[2][(i >> 16) & 255] | part[3][i >> 24]] = table[i];
  return out;
}

std::vector<std::vector<int>> CandidateOrders(int bits, int fields) {
  std::vector<std::vector<int>> orders;
  const std::vector<int> head = HeadBits(bits, fields);
  std::vector<int> natural = head, reversed = head, planes = head, files_first = head, head_last;
  for (int f = 0; f < fields; ++f) Append(natural, FieldBits(fields, f));
  for (int f = fields - 1; f >= 0; --f) Append(reversed, FieldBits(fields, f));
  for (int plane = 0; plane < 6; ++plane)
    for (int f = 0; f < fields; ++f) planes.push_back(FieldBits(fields, f)[size_t(plane)]);
  for (int f = 0; f < fields; ++f) {
    const std::vector<int> fb = FieldBits(fields, f);
    Append(files_first, {fb[3], fb[4], fb[5], fb[0], fb[1], fb[2]});
  }
  head_last.assign(natural.begin() + long(head.size()), natural.end());
  Append(head_last, head);
  orders = {natural, reversed, planes, files_first, head_last};
  return orders;
}

PermutedDiagram DiagramWithOrder(const std::vector<uint8_t>& table, int bits, const std::vector<int>& top_down) {
  PermutedDiagram d;
  for (size_t j = 0; j < top_down.size(); ++j) d.perm[top_down[j]] = uint8_t(bits - 1 - int(j));
  d.diagram = BuildDiagram(Permuted(table, d.perm, bits), bits);
  d.bytes = DiagramBytes(d.diagram);
  return d;
}

PermutedDiagram SmallestDiagram(const std::vector<uint8_t>& table, int bits, int fields, int refine) {
  PermutedDiagram best;
  std::vector<int> best_order;
  for (const std::vector<int>& order : CandidateOrders(bits, fields)) {
    PermutedDiagram d = DiagramWithOrder(table, bits, order);
    if (d.bytes < best.bytes) best = std::move(d), best_order = order;
  }
  for (int round = 0; round < refine; ++round) {
    bool improved = false;
    std::vector<std::vector<int>> groups = Groups(best_order, fields);
    for (size_t g = 0; g + 1 < groups.size(); ++g) {
      std::swap(groups[g], groups[g + 1]);
      const std::vector<int> order = Flatten(groups);
      PermutedDiagram d = DiagramWithOrder(table, bits, order);
      if (d.bytes < best.bytes) {
        best = std::move(d), best_order = order, improved = true;
      } else {
        std::swap(groups[g], groups[g + 1]);
      }
    }
    if (!improved) break;
  }
  return best;
}

}  // namespace vx::tbgen

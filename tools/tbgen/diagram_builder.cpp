#include "tools/tbgen/diagram_builder.h"

#include <algorithm>
#include <numeric>

namespace vx::tbgen {

namespace {

constexpr uint32_t FREE = UINT32_MAX;

struct Node {
  uint32_t lo, hi;
  bool single() const { return hi == lo + 1; }  // stored as one entry
};

// Open-addressing map from a (lo, hi) pair to a node number.
class PairTable {
 public:
  explicit PairTable(size_t expected) {
    size_t n = 1024;
    while (n < 2 * expected) n *= 2;
    slots_.assign(n, EMPTY);
  }
  // The number of the pair, appended to nodes when new.
  uint32_t intern(Node pair, std::vector<Node>& nodes) {
    if (2 * (nodes.size() + 1) > slots_.size()) grow(nodes);
    const uint64_t key = uint64_t(pair.lo) << 32 | pair.hi;
    for (size_t s = hash(key);; s = (s + 1) & (slots_.size() - 1)) {
      if (slots_[s] == EMPTY) {
        slots_[s] = uint32_t(nodes.size());
        nodes.push_back(pair);
        return slots_[s];
      }
      const Node& n = nodes[slots_[s]];
      if (n.lo == pair.lo && n.hi == pair.hi) return slots_[s];
    }
  }

 private:
  static constexpr uint32_t EMPTY = UINT32_MAX;
  size_t hash(uint64_t key) const { return size_t((key * 0x9E3779B97F4A7C15ULL) >> 20) & (slots_.size() - 1); }
  void grow(const std::vector<Node>& nodes) {
    slots_.assign(slots_.size() * 2, EMPTY);
    for (uint32_t id = 0; id < nodes.size(); ++id) {
      const uint64_t key = uint64_t(nodes[id].lo) << 32 | nodes[id].hi;
      size_t s = hash(key);
      while (slots_[s] != EMPTY) s = (s + 1) & (slots_.size() - 1);
      slots_[s] = id;
    }
  }
  std::vector<uint32_t> slots_;
};

// One level under construction: its nodes and, per block, the node (or FREE).
struct Level {
  std::vector<Node> nodes;
  std::vector<uint32_t> uses;  // blocks per node
};

// The nodes above `child`: pairs of neighbouring blocks. A pair with one free
// side takes the most used node that agrees with its other side, else the
// node whose free child is the neighbour of the other (a single entry).
Level PairUp(std::vector<uint32_t>& child, uint32_t below) {
  const size_t blocks = child.size() / 2;
  Level level;
  PairTable table(blocks / 8 + 16);
  std::vector<uint32_t> parent(blocks);
  for (size_t j = 0; j < blocks; ++j) {
    const uint32_t lo = child[2 * j], hi = child[2 * j + 1];
    parent[j] = lo == FREE || hi == FREE ? FREE : table.intern({lo, hi}, level.nodes);
  }
  level.uses.assign(level.nodes.size(), 0);
  for (uint32_t p : parent)
    if (p != FREE) ++level.uses[p];
  // Best node per fixed child for the half-free pairs.
  std::vector<uint32_t> by_lo(below, FREE), by_hi(below, FREE);
  for (uint32_t id = 0; id < level.nodes.size(); ++id) {
    const Node& n = level.nodes[id];
    if (by_lo[n.lo] == FREE || level.uses[id] > level.uses[by_lo[n.lo]]) by_lo[n.lo] = id;
    if (by_hi[n.hi] == FREE || level.uses[id] > level.uses[by_hi[n.hi]]) by_hi[n.hi] = id;
  }
  for (size_t j = 0; j < blocks; ++j) {
    const uint32_t lo = child[2 * j], hi = child[2 * j + 1];
    if (parent[j] != FREE || (lo == FREE && hi == FREE)) continue;
    if (hi == FREE)
      parent[j] = by_lo[lo] != FREE ? by_lo[lo] : table.intern({lo, lo + 1 < below ? lo + 1 : lo}, level.nodes);
    else
      parent[j] = by_hi[hi] != FREE ? by_hi[hi] : table.intern({hi > 0 ? hi - 1 : hi, hi}, level.nodes);
  }
  level.uses.assign(level.nodes.size(), 0);
  for (uint32_t p : parent)
    if (p != FREE) ++level.uses[p];
  child.swap(parent);
  return level;
}

// Numbers for the nodes of `level`: two-entry nodes first, single-entry nodes
// after them, and within each group chains along the pairs of the level
// above so that those pairs become consecutive.
std::vector<uint32_t> OrderNodes(const Level& level, const std::vector<uint32_t>& above_blocks, bool has_above) {
  const uint32_t n = uint32_t(level.nodes.size());
  std::vector<uint32_t> succ(n, FREE), pred(n, FREE), chain(n);
  std::iota(chain.begin(), chain.end(), 0u);
  auto root = [&](uint32_t x) {
    while (chain[x] != x) x = chain[x] = chain[chain[x]];
    return x;
  };
  PairTable seen(above_blocks.size() / 16 + 16);
  std::vector<Node> pairs;
  for (size_t j = 0; has_above && j + 1 < above_blocks.size(); j += 2) {
    const uint32_t lo = above_blocks[j], hi = above_blocks[j + 1];
    if (lo == FREE || hi == FREE || lo == hi) continue;
    const size_t before = pairs.size();
    seen.intern({lo, hi}, pairs);
    if (pairs.size() == before) continue;
    if (level.nodes[lo].single() != level.nodes[hi].single() || succ[lo] != FREE || pred[hi] != FREE) continue;
    const uint32_t a = root(lo), b = root(hi);
    if (a == b) continue;
    succ[lo] = hi, pred[hi] = lo, chain[a] = b;
  }
  std::vector<uint32_t> number(n, FREE);
  uint32_t next = 0;
  for (const bool single : {false, true})
    for (uint32_t id = 0; id < n; ++id)
      if (pred[id] == FREE && level.nodes[id].single() == single)
        for (uint32_t x = id; x != FREE; x = succ[x]) number[x] = next++;
  return number;
}

uint32_t BitLength(uint32_t v) { return v ? 32 - uint32_t(__builtin_clz(v)) : 0; }

// The packed level of nodes already in their final order.
DiagramLevel PackLevel(const std::vector<Node>& nodes) {
  std::vector<uint32_t> entries;
  uint32_t threshold = 0;
  while (threshold < nodes.size() && !nodes[threshold].single()) ++threshold;
  for (uint32_t i = 0; i < nodes.size(); ++i) {
    entries.push_back(nodes[i].lo);
    if (i < threshold) entries.push_back(nodes[i].hi);
  }
  DiagramLevel l;
  l.threshold = threshold;
  l.count = uint32_t(entries.size());
  l.width = BitLength(*std::max_element(entries.begin(), entries.end()));
  l.mask = (1u << l.width) - 1;
  l.words.assign(PackedWords(l.count, l.width) + 1, 0);
  for (uint64_t j = 0; j < entries.size(); ++j) {
    const uint64_t bit = j * l.width;
    const uint64_t v = uint64_t(entries[j]) << (bit & 31);
    l.words[bit >> 5] |= uint32_t(v);
    if (l.width && (bit & 31) + l.width > 32) l.words[(bit >> 5) + 1] |= uint32_t(v >> 32);
  }
  return l;
}

}  // namespace

DecisionDiagram BuildDiagram(const std::vector<uint8_t>& table, int bits) {
  std::vector<uint32_t> blocks(table.size());
  bool any = false;
  for (size_t i = 0; i < table.size(); ++i) {
    blocks[i] = table[i] == DONT_CARE ? FREE : table[i];
    any |= blocks[i] != FREE;
  }
  if (!any) blocks[0] = 1;  // nothing reachable: answer draw
  DecisionDiagram d;
  d.levels.resize(size_t(bits));
  Level level = PairUp(blocks, 3);
  for (int i = 1; i <= bits; ++i) {
    // Level i - 1 is complete once the pairs above it are known: number it.
    const std::vector<uint32_t> number = OrderNodes(level, blocks, i < bits);
    std::vector<Node> ordered(level.nodes.size());
    for (uint32_t id = 0; id < level.nodes.size(); ++id) ordered[number[id]] = level.nodes[id];
    d.levels[size_t(i - 1)] = PackLevel(ordered);
    for (uint32_t& b : blocks)
      if (b != FREE) b = number[b];
    if (i < bits) level = PairUp(blocks, uint32_t(ordered.size()));
  }
  return d;
}

uint64_t DiagramBytes(const DecisionDiagram& d) {
  uint64_t bytes = 4;
  for (const DiagramLevel& l : d.levels) bytes += 12 + 4 * PackedWords(l.count, l.width);
  return bytes;
}

}  // namespace vx::tbgen

#include "tools/tbgen/diagram_builder.h"

#include <algorithm>
#include <numeric>

namespace vx::tbgen {

namespace {

constexpr uint32_t FREE = UINT32_MAX;         // a block of don't-care entries only
constexpr uint32_t HALF_FREE = UINT32_MAX - 1;  // a pair with one free side, resolved later

struct Node {
  uint32_t lo, hi;
  bool single() const { return hi == lo + 1; }  // stored as one entry
};

// Open-addressing map from a (lo, hi) pair to its node number.
class PairTable {
 public:
  PairTable() : slots_(256, EMPTY) {}
  // The number of the pair, appended to nodes when new.
  uint32_t intern(Node pair, std::vector<Node>& nodes) {
    if (2 * (nodes.size() + 1) > slots_.size()) grow(nodes);
    for (size_t s = hash(pair);; s = (s + 1) & (slots_.size() - 1)) {
      if (slots_[s] == EMPTY) {
        slots_[s] = uint32_t(nodes.size());
        nodes.push_back(pair);
        return slots_[s];
      }
      const Node& n = nodes[slots_[s]];
      if (n.lo == pair.lo && n.hi == pair.hi) return slots_[s];
    }
  }
  // Forgets the pairs and enters the nodes as they are now.
  void rebuild(const std::vector<Node>& nodes) {
    slots_.assign(256, EMPTY);
    grow(nodes);
  }

 private:
  static constexpr uint32_t EMPTY = UINT32_MAX;
  size_t hash(Node p) const {
    return size_t(((uint64_t(p.lo) << 32 | p.hi) * 0x9E3779B97F4A7C15ULL) >> 24) & (slots_.size() - 1);
  }
  void grow(const std::vector<Node>& nodes) {
    size_t n = slots_.size();
    while (2 * (nodes.size() + 1) > n) n *= 2;
    slots_.assign(n, EMPTY);
    for (uint32_t id = 0; id < nodes.size(); ++id) {
      size_t s = hash(nodes[id]);
      while (slots_[s] != EMPTY) s = (s + 1) & (slots_.size() - 1);
      slots_[s] = id;
    }
  }
  std::vector<uint32_t> slots_;
};

// Per block of a level: its node, FREE or HALF_FREE (a view into a buffer
// that is reused from level to level).
struct Blocks {
  uint32_t* data = nullptr;
  size_t size = 0;
  uint32_t& operator[](size_t j) const { return data[j]; }
};

// One level under construction: its distinct nodes, how many blocks use each
// and the blocks.
struct Level {
  std::vector<Node> nodes;
  std::vector<uint32_t> uses;
  Blocks block;
  PairTable table;
};

// The fully given pairs of neighbouring child blocks, into `out`. With few
// children a direct table of all pairs replaces the hash table.
void PairUp(const Blocks& child, uint32_t below, uint32_t* out, Level& level) {
  level.block = {out, child.size / 2};
  constexpr uint32_t DIRECT = 256;
  std::vector<uint32_t> direct(below <= DIRECT ? below * below : 0, FREE);
  for (size_t j = 0; j < level.block.size; ++j) {
    const uint32_t lo = child[2 * j], hi = child[2 * j + 1];
    if (lo == FREE || hi == FREE) {
      level.block[j] = lo == hi ? FREE : HALF_FREE;
    } else if (below <= DIRECT) {
      uint32_t& id = direct[lo * below + hi];
      if (id == FREE) id = level.table.intern({lo, hi}, level.nodes);
      level.block[j] = id;
    } else {
      level.block[j] = level.table.intern({lo, hi}, level.nodes);
    }
  }
  level.uses.assign(level.nodes.size(), 0);
  for (size_t j = 0; j < level.block.size; ++j)
    if (level.block[j] < HALF_FREE) ++level.uses[level.block[j]];
}

// A pair with one free side takes the most used node that agrees with its
// other side, else the node whose free child is the neighbour of the other
// one (stored as a single entry). Children are in final numbers by now.
void ResolveHalfFree(const Blocks& child, uint32_t below, Level& level) {
  std::vector<uint32_t> by_lo(below, FREE), by_hi(below, FREE);
  for (uint32_t id = 0; id < level.nodes.size(); ++id) {
    const Node& n = level.nodes[id];
    if (by_lo[n.lo] == FREE || level.uses[id] > level.uses[by_lo[n.lo]]) by_lo[n.lo] = id;
    if (by_hi[n.hi] == FREE || level.uses[id] > level.uses[by_hi[n.hi]]) by_hi[n.hi] = id;
  }
  level.table.rebuild(level.nodes);
  for (size_t j = 0; j < level.block.size; ++j) {
    if (level.block[j] != HALF_FREE) continue;
    const uint32_t lo = child[2 * j], hi = child[2 * j + 1];
    if (hi == FREE)
      level.block[j] = by_lo[lo] != FREE ? by_lo[lo] : level.table.intern({lo, lo + 1 < below ? lo + 1 : lo}, level.nodes);
    else
      level.block[j] = by_hi[hi] != FREE ? by_hi[hi] : level.table.intern({hi > 0 ? hi - 1 : hi, hi}, level.nodes);
  }
}

// Numbers for the nodes of `level`: two-entry nodes first, single-entry nodes
// after them, and within each group chains along the pairs of the level
// above, so that those pairs become consecutive.
std::vector<uint32_t> OrderNodes(const Level& level, const std::vector<Node>& above) {
  const uint32_t n = uint32_t(level.nodes.size());
  std::vector<uint32_t> succ(n, FREE), pred(n, FREE), chain(n);
  std::iota(chain.begin(), chain.end(), 0u);
  auto root = [&](uint32_t x) {
    while (chain[x] != x) x = chain[x] = chain[chain[x]];
    return x;
  };
  for (const Node& p : above) {
    if (p.lo == p.hi || level.nodes[p.lo].single() != level.nodes[p.hi].single()) continue;
    if (succ[p.lo] != FREE || pred[p.hi] != FREE) continue;
    const uint32_t a = root(p.lo), b = root(p.hi);
    if (a == b) continue;
    succ[p.lo] = p.hi, pred[p.hi] = p.lo, chain[a] = b;
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

// The packed level of nodes in their final order.
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
  l.words.assign(PaddedWords(l.count, l.width), 0);
  for (uint64_t j = 0; j < entries.size(); ++j) {
    const uint64_t bit = j * l.width;
    const uint64_t v = uint64_t(entries[j]) << (bit & 31);
    l.words[bit >> 5] |= uint32_t(v);
    if (l.width && (bit & 31) + l.width > 32) l.words[(bit >> 5) + 1] |= uint32_t(v >> 32);
  }
  return l;
}

}  // namespace

DecisionDiagram BuildDiagram(std::vector<uint32_t>& values, int bits) {
  if (std::all_of(values.begin(), values.end(), [](uint32_t v) { return v == FREE; })) values[0] = 1;
  std::vector<uint32_t> spare(values.size() / 2);
  Blocks child{values.data(), values.size()};
  uint32_t* free_buffer = spare.data();
  DecisionDiagram d;
  d.levels.resize(size_t(bits));
  Level level;
  PairUp(child, 3, free_buffer, level);
  ResolveHalfFree(child, 3, level);
  for (int i = 1; i <= bits; ++i) {
    // The blocks of level i - 1 become the children of level i.
    free_buffer = child.data;
    child = level.block;
    Level above;
    if (i < bits) PairUp(child, uint32_t(level.nodes.size()), free_buffer, above);
    // Level i - 1 gets its final numbers once the pairs above it are known.
    const std::vector<uint32_t> number = OrderNodes(level, above.nodes);
    std::vector<Node> ordered(level.nodes.size());
    for (uint32_t id = 0; id < level.nodes.size(); ++id) ordered[number[id]] = level.nodes[id];
    d.levels[size_t(i - 1)] = PackLevel(ordered);
    if (i == bits) break;
    for (size_t j = 0; j < child.size; ++j)
      if (child[j] != FREE) child[j] = number[child[j]];
    for (Node& n : above.nodes) n = {number[n.lo], number[n.hi]};
    ResolveHalfFree(child, uint32_t(ordered.size()), above);
    level = std::move(above);
  }
  return d;
}

uint64_t DiagramBytes(const DecisionDiagram& d) {
  uint64_t bytes = 4;
  for (const DiagramLevel& l : d.levels) bytes += 12 + 4 * PackedWords(l.count, l.width);
  return bytes;
}

}  // namespace vx::tbgen

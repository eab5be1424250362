// A levelled binary decision diagram over a table's permuted position index.
// Level i tests bit i; the walk starts at node 0 of the top level and ends on
// a value of level 0's children: 0 win, 1 draw, 2 loss for the side to move.
// A node below its level's threshold t keeps both children (entries 2n and
// 2n + 1); a node n >= t keeps only its 0-child in entry t + n, the 1-child
// being the next node.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vx {

struct DiagramLevel {
  uint32_t threshold = 0;
  uint32_t count = 0;  // entries
  uint32_t width = 0;  // bits per entry, 0 to 31
  uint32_t mask = 0;
  // Little-endian packed entries, followed by zero words (PaddedWords) so that every
  // entry can be read from two neighbouring words.
  std::vector<uint32_t> words;

  uint32_t entry(uint64_t j) const {
    const uint64_t bit = j * width;
    const size_t w = size_t(bit >> 5);
    const uint64_t pair = uint64_t(words[w]) | uint64_t(words[w + 1]) << 32;
    return uint32_t(pair >> (bit & 31)) & mask;
  }
  // Nodes of this level (entries = nodes + threshold).
  uint64_t nodes() const { return uint64_t(count) - threshold; }
};

struct DecisionDiagram {
  std::vector<DiagramLevel> levels;  // level 0 first; empty: no diagram
  bool present() const { return !levels.empty(); }
};

// Number of 32-bit words that hold count entries of width bits.
inline uint64_t PackedWords(uint64_t count, uint32_t width) { return (count * width + 31) / 32; }
// The same with the zero words kept after them in memory: an entry is read
// from the word it starts in and the next one (also with width 0).
inline uint64_t PaddedWords(uint64_t count, uint32_t width) { return (PackedWords(count, width) > 0 ? PackedWords(count, width) : 1) + 1; }

// True when every walk stays inside the entries and ends on 0, 1 or 2: each
// level has at least twice its threshold in entries, the top level has node
// 0, and every child (and the following node of a single-entry node) exists
// on the level below.
bool DiagramIsSound(const DecisionDiagram& d);

// The stored value reached by the bits of a permuted index.
inline uint32_t WalkDiagram(const DecisionDiagram& d, uint32_t permuted) {
  uint32_t node = 0;
  for (int i = int(d.levels.size()) - 1; i >= 0; --i) {
    const DiagramLevel& level = d.levels[size_t(i)];
    const uint32_t b = (permuted >> i) & 1;
    node = node < level.threshold ? level.entry(2 * uint64_t(node) + b) : level.entry(uint64_t(level.threshold) + node) + b;
  }
  return node;
}

}  // namespace vx

// The transposition table: one shared hash table of search results. Every
// entry keeps an independent lower and upper bound, each with its own draft,
// plus the best move and the static evaluation.
#pragma once

#include <cstddef>
#include <cstdint>

#include "board/types.h"
#include "platform/platform.h"

namespace vx {

// Bound kinds passed to TranspositionTable::store.
enum : int { BOUND_LOWER = 0, BOUND_UPPER = 1, BOUND_EXACT = 2 };

constexpr uint16_t TT_DEPTH_MASK = 0x03FF;  // draft bits of both depth words
constexpr uint16_t TT_GEN_MASK = 0xFC00;    // generation bits of the lower-depth word
constexpr uint16_t TT_GEN_STEP = 0x0400;    // one search
constexpr uint16_t TT_EXACT_FLAG = 0x8000;  // in the upper-depth word
constexpr int16_t TT_NO_SCORE = int16_t(VALUE_INFINITE);

// 16 bytes, packed. A bound of 32767 with draft 0 is absent.
struct TTEntry {
  uint32_t key32;             // upper half of the position key; 0 = empty slot
  uint16_t move;
  int16_t eval;               // static evaluation, 32767 = none
  int16_t lower;              // lower-bound score in table form, 32767 = none
  int16_t upper;              // upper-bound score in table form, 32767 = none
  uint16_t lower_depth_gen;   // bits 0-9 lower draft, bits 10-15 generation
  uint16_t upper_depth_flags; // bits 0-9 upper draft, bit 15 exact flag

  int lower_depth() const { return lower_depth_gen & TT_DEPTH_MASK; }
  int upper_depth() const { return upper_depth_flags & TT_DEPTH_MASK; }
  uint16_t generation() const { return lower_depth_gen & TT_GEN_MASK; }
  bool exact() const { return upper_depth_flags & TT_EXACT_FLAG; }
};
static_assert(sizeof(TTEntry) == 16);

struct alignas(64) TTCluster {
  TTEntry entry[4];
};
static_assert(sizeof(TTCluster) == 64);

class TranspositionTable {
 public:
  TranspositionTable() = default;
  ~TranspositionTable();
  TranspositionTable(const TranspositionTable&) = delete;
  TranspositionTable& operator=(const TranspositionTable&) = delete;

  // Largest power of two of clusters that fits in the given megabytes. Ends
  // the process with status 1 when the memory cannot be had.
  void resize(uint32_t megabytes);
  void clear();
  void new_search() { generation_ = uint16_t(generation_ + TT_GEN_STEP); }

  // Copy of the entry for the key, all zero on a miss. A hit from an earlier
  // search is moved into the current generation so that it is kept.
  TTEntry probe(Key key) const {
    TTEntry* e = cluster_of(key)->entry;
    const uint32_t key32 = uint32_t(key >> 32);
    for (int i = 0; i < 4; ++i, ++e) {
      if (e->key32 != key32) continue;
      if (e->generation() != generation_)
        e->lower_depth_gen = uint16_t((e->lower_depth_gen & TT_DEPTH_MASK) | generation_);
      return *e;
    }
    return TTEntry{};
  }

  void store(Key key, Move move, uint32_t depth, int bound, Value score, Value eval);

  // Entries of the current generation among the first 1000, in per mille.
  int hashfull() const;

  void prefetch(Key key) const { __builtin_prefetch(cluster_of(key)); }

  uint64_t cluster_count() const { return cluster_count_; }
  const TTCluster* clusters() const { return table_; }
  uint16_t generation() const { return generation_; }

 private:
  TTCluster* cluster_of(Key key) const { return table_ + (key & (cluster_count_ - 1)); }
  TTEntry* victim(TTCluster* c) const;
  void release();

  uint64_t cluster_count_ = 0;
  TTCluster* table_ = nullptr;
  platform::LargeMemory memory_;
  uint16_t generation_ = 0;
};

// Mate scores are stored as distances from the node that stores them and
// turned back into distances from the root when read.
constexpr Value value_to_tt(Value v, int ply) {
  return v >= VALUE_MATE_BOUND ? v + ply : v <= -VALUE_MATE_BOUND ? v - ply : v;
}
constexpr Value value_from_tt(Value v, int ply) {
  return v == VALUE_INFINITE       ? v
         : v >= VALUE_MATE_BOUND  ? v - ply
         : v <= -VALUE_MATE_BOUND ? v + ply
                                  : v;
}

}  // namespace vx

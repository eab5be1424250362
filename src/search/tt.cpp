#include "search/tt.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "platform/platform.h"

namespace vx {

namespace {

constexpr uint64_t MB = uint64_t(1) << 20;
// The table starts on a huge-page boundary, so that the system can back it
// with huge pages.
constexpr uint64_t HUGE_PAGE = 2 * MB;

[[noreturn]] void allocation_failed(uint32_t megabytes) {
  std::cout << "Error allocating hash memory (" << megabytes << " mb" << std::endl;
  std::fflush(stdout);
  std::_Exit(1);
}

}  // namespace

TranspositionTable::~TranspositionTable() { release(); }

void TranspositionTable::release() {
  platform::free_large(memory_);
  table_ = nullptr;
}

void TranspositionTable::resize(uint32_t megabytes) {
  const uint64_t bytes = uint64_t(megabytes) * MB;
  const uint64_t count = uint64_t(1) << (63 - __builtin_clzll(bytes / sizeof(TTCluster)));
  if (count == cluster_count_) return;

  release();
  cluster_count_ = count;
  const uint64_t size = count * sizeof(TTCluster);
  // Beyond what the system can back, the out-of-memory handling would end
  // the process in the middle of a search.
  if (size > platform::usable_memory()) allocation_failed(megabytes);
  memory_ = platform::allocate_large(size, HUGE_PAGE);
  if (!memory_.aligned) allocation_failed(megabytes);
  table_ = static_cast<TTCluster*>(memory_.aligned);
}

void TranspositionTable::clear() { std::memset(table_, 0, cluster_count_ * sizeof(TTCluster)); }

// The slot with the least worth: the deeper of its two drafts, less 1024 per
// search of age, plus 1000 for an exact score. Ties go to the lower slot.
TTEntry* TranspositionTable::victim(TTCluster* c) const {
  TTEntry* best = nullptr;
  int best_worth = 0;
  for (TTEntry& e : c->entry) {
    const int age = uint16_t(generation_ - e.generation()) >> 10;
    const int worth = std::max(e.lower_depth(), e.upper_depth()) - 1024 * age + (e.exact() ? 1000 : 0);
    if (!best || worth < best_worth) {
      best = &e;
      best_worth = worth;
    }
  }
  return best;
}

void TranspositionTable::store(Key key, Move move, uint32_t depth, int bound, Value score, Value eval) {
  const uint32_t key32 = uint32_t(key >> 32);
  const int16_t s = int16_t(score);
  TTCluster* c = cluster_of(key);
  TTEntry* e = nullptr;
  for (TTEntry& slot : c->entry)
    if (slot.key32 == 0 || slot.key32 == key32) {
      e = &slot;
      break;
    }

  if (!e) {
    e = victim(c);
    e->key32 = key32;
    e->move = move;
    e->eval = int16_t(eval);
    if (bound == BOUND_LOWER) {
      e->lower = s;
      e->upper = TT_NO_SCORE;
      e->lower_depth_gen = uint16_t(generation_ | depth);
      e->upper_depth_flags = 0;
    } else if (bound == BOUND_UPPER) {
      e->lower = TT_NO_SCORE;
      e->upper = s;
      e->lower_depth_gen = generation_;
      e->upper_depth_flags = uint16_t(depth);
    } else {
      e->lower = e->upper = s;
      e->lower_depth_gen = uint16_t(generation_ | depth);
      e->upper_depth_flags = uint16_t(depth | TT_EXACT_FLAG);
    }
    return;
  }

  // Same position (or an empty slot, whose old contents do not count): merge
  // the new bound with the one of the other kind when they are consistent.
  const bool occupied = e->key32 != 0;
  if (bound == BOUND_LOWER) {
    const bool keep_upper = occupied && (e->upper == TT_NO_SCORE || s < e->upper);
    e->lower = s;
    e->move = move;
    e->lower_depth_gen = uint16_t(generation_ | depth);
    if (keep_upper) {
      e->upper_depth_flags &= TT_DEPTH_MASK;
    } else {
      e->upper = TT_NO_SCORE;
      e->upper_depth_flags = 0;
    }
  } else if (bound == BOUND_UPPER) {
    const bool keep_lower = occupied && (e->lower == TT_NO_SCORE || s > e->lower);
    e->upper = s;
    e->upper_depth_flags = uint16_t(depth);
    if (keep_lower) {
      e->lower_depth_gen = uint16_t((e->lower_depth_gen & TT_DEPTH_MASK) | generation_);
    } else {
      e->lower = TT_NO_SCORE;
      e->lower_depth_gen = generation_;
    }
  } else {
    e->lower = e->upper = s;
    e->move = move;
    e->lower_depth_gen = uint16_t(generation_ | depth);
    e->upper_depth_flags = uint16_t(depth | TT_EXACT_FLAG);
  }
  e->eval = int16_t(eval);
  e->key32 = key32;
}

int TranspositionTable::hashfull() const {
  int count = 0;
  for (int i = 0; i < 250; ++i)
    for (const TTEntry& e : table_[i].entry) count += e.generation() == generation_;
  return count;
}

}  // namespace vx

#include "search/thread.h"

#include <algorithm>

#include "eval/material.h"
#include "eval/pawns.h"
#include "platform/platform.h"
#include "search/history.h"

namespace vx {

SearchState::SearchState(int32_t index, TranspositionTable* tt, std::vector<Thread*>* threads)
    : thread_index(index), table(tt), pool(threads) {
  history = new HistoryTable[1];
  gains = new GainsTable[1]();
  counter_moves = new CounterMoveTable[1]();
  reset_history();
  material_table = AllocMaterialTable();
  pawn_table = AllocPawnTable();
  hasPopcnt = platform::cpu_has_popcnt();
}

SearchState::~SearchState() {
  delete[] history;
  delete[] gains;
  delete[] counter_moves;
  FreeMaterialTable(material_table);
  FreePawnTable(pawn_table);
}

void SearchState::reset_eval_caches() {
  ClearMaterialTable(material_table);
  ClearPawnTable(pawn_table);
  material_probes = material_hits = pawn_probes = pawn_hits = 0;
}

void SearchState::reset_history() { std::fill(&(*history)[0][0], &(*history)[0][0] + 16 * 64, HISTORY_NEUTRAL); }

uint64_t ThreadPool::nodes() const {
  uint64_t sum = 0;
  for (const Thread* t : threads) sum += t->state->nodes;
  return sum;
}

uint64_t ThreadPool::tbhits() const {
  uint64_t sum = 0;
  for (const Thread* t : threads) sum += t->state->tbhits;
  return sum;
}

uint64_t ThreadPool::sbhits() const {
  uint64_t sum = 0;
  for (const Thread* t : threads) sum += t->state->sbhits;
  return sum;
}

void ThreadPool::zero_counters() {
  for (Thread* t : threads) t->state->nodes = t->state->tbhits = t->state->sbhits = 0;
}

}  // namespace vx

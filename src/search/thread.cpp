#include "search/thread.h"

#include <algorithm>

#include "engine/output.h"
#include "eval/material.h"
#include "eval/pawns.h"
#include "platform/platform.h"
#include "search/history.h"
#include "search/root.h"

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
  root = NewRootState();
}

SearchState::~SearchState() {
  delete[] history;
  delete[] gains;
  delete[] counter_moves;
  FreeMaterialTable(material_table);
  FreePawnTable(pawn_table);
  DeleteRootState(root);
}

void SearchState::reset_eval_caches() {
  ClearMaterialTable(material_table);
  ClearPawnTable(pawn_table);
  material_probes = material_hits = pawn_probes = pawn_hits = 0;
}

void SearchState::reset_history() { std::fill(&(*history)[0][0], &(*history)[0][0] + 16 * 64, HISTORY_NEUTRAL); }

struct HelperThread {
  SearchState state;
  Position position;
  Thread thread;
  std::thread worker;

  HelperThread(int32_t index, TranspositionTable* tt, std::vector<Thread*>* pool, const Position& root)
      : state(index, tt, pool), position(root), thread{&state, &position} {
    state.thread = &thread;
    // Only the main thread runs the periodic check.
    state.next_check = INT64_MAX / 2;
  }
};

uint64_t ThreadPool::nodes() const {
  return SumOverThreads(threads, [](const SearchState& s) { return uint64_t(s.nodes); });
}

uint64_t ThreadPool::tbhits() const {
  return SumOverThreads(threads, [](const SearchState& s) { return uint64_t(s.tbhits); });
}

uint64_t ThreadPool::sbhits() const {
  return SumOverThreads(threads, [](const SearchState& s) { return uint64_t(s.sbhits); });
}

void ThreadPool::zero_counters() {
  for (Thread* t : threads) t->state->nodes = t->state->tbhits = t->state->sbhits = 0;
}

ThreadPool::ThreadPool() = default;
ThreadPool::~ThreadPool() { SetThreadCount(1); }

void ThreadPool::SetThreadCount(size_t count) {
  const size_t wanted = count > 1 ? count - 1 : 0;
  if (wanted < helpers_.size()) {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      exiting_ = true;
    }
    wake_.notify_all();
    for (auto& h : helpers_) h->worker.join();
    helpers_.clear();
    exiting_ = false;
  }
  if (threads.empty()) return;
  threads.erase(threads.begin() + 1, threads.end());
  while (helpers_.size() < wanted && AddHelper()) {
  }
  for (auto& h : helpers_) threads.push_back(&h->thread);
}

// A helper that cannot be had (no memory, or the system refuses another
// thread) is reported, and the pool stays as large as it could be made.
bool ThreadPool::AddHelper() {
  const int32_t index = int32_t(helpers_.size() + 1);
  try {
    helpers_.push_back(std::make_unique<HelperThread>(index, main().table, &threads, main_position()));
    HelperThread& h = *helpers_.back();
    h.worker = std::thread([this, &h, g = generation_] { HelperLoop(h, g); });
    return true;
  } catch (const std::exception&) {
    if (helpers_.size() == size_t(index)) helpers_.pop_back();
    WriteLine("info string Could not start search thread " + std::to_string(index + 1) + "; searching with " +
              std::to_string(index) + " threads");
    return false;
  }
}

void ThreadPool::HelperLoop(HelperThread& helper, uint64_t generation) {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    wake_.wait(lock, [&] { return exiting_ || generation_ != generation; });
    if (exiting_) return;
    generation = generation_;
    lock.unlock();
    job_(helper.thread);
    lock.lock();
    if (--running_ == 0) parked_.notify_all();
  }
}

void ThreadPool::StartHelpers(std::function<void(Thread&)> job) {
  if (helpers_.empty()) return;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    job_ = std::move(job);
    running_ = helpers_.size();
    ++generation_;
  }
  wake_.notify_all();
}

void ThreadPool::StopHelpers() {
  for (auto& h : helpers_) h->state.stop = 1;
  std::unique_lock<std::mutex> lock(mutex_);
  parked_.wait(lock, [&] { return running_ == 0; });
}

}  // namespace vx

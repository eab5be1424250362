// The objects that carry a search: the pool, its threads and each thread's
// search state.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "board/movegen.h"
#include "board/position.h"
#include "engine/input.h"

namespace vx {

class TranspositionTable;
struct MaterialEntry;
struct PawnTables;
struct Thread;
struct RootState;

// A value one thread writes while others read it (stop flags, node and hit
// counters): relaxed atomic loads and stores, so reading and counting cost
// what plain ones do, and a reader on another thread sees a whole value.
// Increments are not atomic read-modify-writes: each counter has one writer.
template <typename T>
class Relaxed {
 public:
  Relaxed(T v = T()) : v_(v) {}
  Relaxed(const Relaxed& o) : v_(T(o)) {}
  operator T() const { return v_.load(std::memory_order_relaxed); }
  Relaxed& operator=(T v) {
    v_.store(v, std::memory_order_relaxed);
    return *this;
  }
  Relaxed& operator=(const Relaxed& o) { return *this = T(o); }
  T operator++() {
    const T n = T(*this) + 1;
    v_.store(n, std::memory_order_relaxed);
    return n;
  }

 private:
  std::atomic<T> v_;
};

// Limits of one search as "go" gives them.
struct SearchLimits {
  int32_t time[2] = {-1, -1};  // milliseconds left, -1 = not given
  int32_t inc[2] = {0, 0};
  int32_t depth = 100;
  bool infinite = false;
  int32_t movetime = 0;
  int32_t mate = 0;
  int32_t movestogo = 0;
  int64_t nodes = 0;
  bool ponder = false;

  bool has_clock() const { return time[WHITE] >= 0 || time[BLACK] >= 0; }
};

using GainsTable = int32_t[16][64];
using CounterMoveTable = uint32_t[16][64][2];

struct SearchState {
  uint8_t quit = 0;
  // 0 running, 1 stopped by a command, 2 stopped by a limit; the main thread
  // also writes the helpers' flags.
  Relaxed<int32_t> stop = 0;
  int64_t next_check = 0;
  Thread* thread = nullptr;
  SearchLimits limits;
  int32_t elo = 0;
  std::vector<Move> root_moves;
  std::vector<Move> excluded;
  std::map<Move, int32_t> strength_bonus;
  int32_t thread_index = 0;
  Relaxed<uint64_t> nodes = 0;
  Relaxed<uint64_t> tbhits = 0;
  Relaxed<uint64_t> sbhits = 0;
  uint32_t search_start = 0;
  TranspositionTable* table = nullptr;
  std::vector<Thread*>* pool = nullptr;
  ValuePair contempt[2] = {0, 0};
  HistoryTable* history = nullptr;
  GainsTable* gains = nullptr;
  CounterMoveTable* counter_moves = nullptr;
  uint64_t material_probes = 0, material_hits = 0;
  MaterialEntry* material_table = nullptr;
  uint64_t pawn_probes = 0, pawn_hits = 0;
  PawnTables* pawn_table = nullptr;
  uint8_t hasPopcnt = 0;
  // The root search's lines and search stack of this thread.
  RootState* root = nullptr;

  SearchState(int32_t index, TranspositionTable* tt, std::vector<Thread*>* pool);
  ~SearchState();
  SearchState(const SearchState&) = delete;
  SearchState& operator=(const SearchState&) = delete;

  void reset_history();  // every History entry to 1024
  // Empties the material and pawn tables and zeroes their probe and hit counters.
  void reset_eval_caches();
};

struct Thread {
  SearchState* state;
  Position* position;
};

// Sum of one counter over a pool's threads.
template <typename Field>
uint64_t SumOverThreads(const std::vector<Thread*>& threads, Field field) {
  uint64_t sum = 0;
  for (const Thread* t : threads) sum += field(*t->state);
  return sum;
}

// A helper search thread of the pool: its own search state and position,
// parked between searches.
struct HelperThread;

// The search threads: the main thread (index 0), which also runs the command
// loop, and the helpers that "Threads" asks for beyond it. Helpers are
// created when the count changes and parked on a condition variable between
// searches; only the main thread starts and stops them.
class ThreadPool {
 public:
  std::vector<Thread*> threads;
  InputHandler input;

  ThreadPool();
  ~ThreadPool();
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;

  SearchState& main() { return *threads[0]->state; }
  Position& main_position() { return *threads[0]->position; }

  uint64_t nodes() const;
  uint64_t tbhits() const;
  uint64_t sbhits() const;
  void zero_counters();

  // Grows or shrinks the pool to `count` threads in all (at least the main
  // thread, which must be in place). New helpers share the main thread's
  // table and start on a copy of its position. Only while no search runs.
  void SetThreadCount(size_t count);
  // Runs `job` once on every helper, each on its own thread, and returns at
  // once. The job must end soon after the helper's stop flag is set.
  void StartHelpers(std::function<void(Thread&)> job);
  // Sets every helper's stop flag and waits until every helper is parked.
  void StopHelpers();

  // Executes one queued command line, if any; never blocks.
  void PollInput();
  // Waits for the next command line and executes it.
  void ExecuteNextCommand();

 private:
  bool AddHelper();
  void HelperLoop(HelperThread& helper, uint64_t generation);

  std::vector<std::unique_ptr<HelperThread>> helpers_;
  std::mutex mutex_;
  std::condition_variable wake_, parked_;
  std::function<void(Thread&)> job_;
  uint64_t generation_ = 0;  // advanced by every StartHelpers
  size_t running_ = 0;       // helpers still inside the current job
  bool exiting_ = false;
};

}  // namespace vx

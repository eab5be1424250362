// The engine's long-lived objects, built in start-up order: the pool, the
// transposition table, the main thread's search state and position, the
// option table, and the main thread joined to the pool. The static tables
// must exist first (InitStaticTables).
#pragma once

#include <cstdint>

#include "board/position.h"
#include "search/thread.h"
#include "search/tt.h"

namespace vx {

struct Engine {
  ThreadPool pool;
  TranspositionTable table;
  SearchState state;
  Position position;
  Thread main_thread;

  explicit Engine(uint32_t hash_mb = 64);
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;
};

}  // namespace vx

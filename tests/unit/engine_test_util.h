// A minimal engine for front-end tests: a pool with its one thread, a small
// transposition table and the option table wired to them.
#pragma once

#include <memory>

#include "engine/options.h"
#include "search/thread.h"
#include "search/tt.h"
#include "test_util.h"

namespace vx::test {

struct EngineFixture {
  ThreadPool pool;
  TranspositionTable tt;
  std::unique_ptr<SearchState> state;
  Position position;
  Thread thread{};

  EngineFixture() {
    init();
    tt.resize(1);
    tt.clear();
    state = std::make_unique<SearchState>(0, &tt, &pool.threads);
    thread = Thread{state.get(), &position};
    state->thread = &thread;
    pool.threads.push_back(&thread);
    InitOptions(pool);
  }
};

}  // namespace vx::test

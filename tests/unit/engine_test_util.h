// A minimal engine for front-end tests: a pool with its one thread, a small
// transposition table and the option table wired to them.
#pragma once

#include "engine/engine.h"
#include "engine/options.h"
#include "test_util.h"

namespace vx::test {

struct EngineFixture {
  Engine engine{(init(), 1u)};
  ThreadPool& pool = engine.pool;
  TranspositionTable& tt = engine.table;
  SearchState* state = &engine.state;
  Position& position = engine.position;
};

}  // namespace vx::test

// A minimal engine for front-end tests: a pool with its one thread, a small
// transposition table and the option table wired to them.
#pragma once

#include "engine/engine.h"
#include "engine/launch.h"
#include "engine/options.h"
#include "test_util.h"

namespace vx::test {

struct EngineFixture {
  Engine engine{(init(), 1u)};
  ThreadPool& pool = engine.pool;
  TranspositionTable& tt = engine.table;
  SearchState* state = &engine.state;
  Position& position = engine.position;

  // Searches every legal move of the position under `limits`; returns what
  // the search wrote.
  std::string search(const SearchLimits& limits) {
    state->limits = limits;
    MoveList legal;
    GenerateLegal(position, legal);
    std::vector<Move> moves(legal.begin(), legal.end());
    return test::output_of([&] { LaunchSearch(pool, MOVE_NONE, MOVE_NONE, moves); });
  }
};

}  // namespace vx::test

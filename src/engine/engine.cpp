#include "engine/engine.h"

#include "engine/options.h"

namespace vx {

namespace {

TranspositionTable* sized(TranspositionTable& table, uint32_t hash_mb) {
  table.resize(hash_mb);
  table.clear();
  return &table;
}

}  // namespace

Engine::Engine(uint32_t hash_mb)
    : state(0, sized(table, hash_mb), &pool.threads), main_thread{&state, &position} {
  InitOptions(pool);
  state.thread = &main_thread;
  pool.threads.push_back(&main_thread);
}

}  // namespace vx

// The objects that carry a search: the pool, its threads and each thread's
// search state.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "board/movegen.h"
#include "board/position.h"
#include "engine/input.h"

namespace vx {

class TranspositionTable;
struct MaterialEntry;
struct PawnEntry;
struct Thread;

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
  int32_t stop = 0;  // 0 running, 1 stopped by a command, 2 stopped by a limit
  int64_t next_check = 0;
  Thread* thread = nullptr;
  SearchLimits limits;
  int32_t elo = 0;
  std::vector<Move> root_moves;
  std::vector<Move> excluded;
  std::map<Move, int32_t> strength_bonus;
  int32_t thread_index = 0;
  uint64_t nodes = 0;
  uint64_t tbhits = 0;
  uint64_t sbhits = 0;
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
  PawnEntry* pawn_table = nullptr;
  uint8_t hasPopcnt = 0;

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

class ThreadPool {
 public:
  std::vector<Thread*> threads;
  InputHandler input;

  SearchState& main() { return *threads[0]->state; }
  Position& main_position() { return *threads[0]->position; }

  uint64_t nodes() const;
  uint64_t tbhits() const;
  uint64_t sbhits() const;
  void zero_counters();

  // Executes one queued command line, if any; never blocks.
  void PollInput();
  // Waits for the next command line and executes it.
  void ExecuteNextCommand();
};

}  // namespace vx

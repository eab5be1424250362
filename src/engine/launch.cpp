#include "engine/launch.h"

#include <algorithm>

#include "egdb/bases/bases.h"
#include "egdb/hook.h"
#include "egdb/syzygy/syzygy.h"
#include "engine/options.h"
#include "engine/output.h"
#include "engine/timeman.h"
#include "eval/material.h"
#include "eval/pawns.h"
#include "search/periodic.h"
#include "search/root.h"
#include "search/strength.h"
#include "search/thread.h"
#include "search/tt.h"

namespace vx {

TablebaseHook tb_hook;

namespace {

void CountTbHit(SearchState& st) { ++st.tbhits; }
void CountSbHit(SearchState& st) { ++st.sbhits; }

// Syzygy when it has tables and is allowed, else the Vorlaxenbases when they
// are switched on (a limit of 0 switches probing off).
void ChooseProber() {
  tb_hook = TablebaseHook{};
  tb_hook.probe_limit = OptionTrue("Use Syzygy Databases") ? SyzygyLargest() : 0;
  if (tb_hook.probe_limit < 1) {
    tb_hook.probe_limit = OptionTrue("Use Vorlaxenbases") ? VorlaxenbasesLargestMen() : 0;
    tb_hook.rule50 = false;
    tb_hook.probe = ProbeVorlaxenbases;
    tb_hook.hit = CountSbHit;
  } else {
    tb_hook.rule50 = OptionTrue("Syzygy 50 Moves Rule");
    tb_hook.probe = ProbeWdl;
    tb_hook.hit = CountTbHit;
  }
}

template <Color Us> int ProbeAfter(Position& pos, Move m, int& success) {
  pos.DoMove<Us>(m);
  const int wdl = tb_hook.probe(pos, success);
  pos.UndoMove<Us>(m);
  return wdl;
}

// Resolves the root through the tablebases when it has few enough men.
Value ProbeRoot(SearchState& st, Position& pos) {
  if (!tb_hook.probe_limit || !tb_hook.probe || __builtin_popcountll(pos.occupied()) > tb_hook.probe_limit)
    return VALUE_INFINITE;
  int success = 0;
  const int w = tb_hook.probe(pos, success);
  if (!success) return VALUE_INFINITE;
  const int r = tb_hook.rule50 ? 1 : 0;
  const Value score = w < -r ? -VALUE_MATE_BOUND : w > r ? VALUE_MATE_BOUND : 0;
  tb_hook.hit(st);
  tb_hook.probe_limit = 0;
  if (pos.state->rule50 == 0) st.table->clear();
  std::vector<Move> kept = FilterRootMovesByTablebase(pos, st.root_moves, w);
  if (!kept.empty()) st.root_moves = std::move(kept);
  return score;
}

}  // namespace

std::vector<Move> FilterRootMovesByTablebase(Position& pos, const std::vector<Move>& moves, int w) {
  std::vector<Move> kept;
  for (const Move m : moves) {
    int success = 0;
    const int wdl = pos.side_to_move == WHITE ? ProbeAfter<WHITE>(pos, m, success) : ProbeAfter<BLACK>(pos, m, success);
    if (success && wdl == -w) kept.push_back(m);
  }
  return kept;
}

void PrepareSearch(SearchState& st) {
  if (st.thread_index == 0) st.table->new_search();
  std::fill(&(*st.gains)[0][0], &(*st.gains)[0][0] + 16 * 64, 0);
  std::fill(&(*st.counter_moves)[0][0][0], &(*st.counter_moves)[0][0][0] + 16 * 64 * 2, 0u);
  st.reset_eval_caches();
  if (!OptionTrue("Keep Hash Tables") || OptionTrue("UCI_LimitStrength")) {
    if (st.thread_index == 0) st.table->clear();
    st.reset_history();
  }
  st.search_start = uint32_t(Clock());
}

namespace {

template <bool HwPopcnt>
void RunRootSearch(SearchState& st, Position& pos, Move prev, Move last, Value root_tb_score, bool limited) {
  if (limited)
    RootSearch<HwPopcnt, true>(st, pos, prev, last, root_tb_score);
  else
    RootSearch<HwPopcnt, false>(st, pos, prev, last, root_tb_score);
}

// A helper's search: the main thread's limits and root moves (after the
// tablebase filter) on the helper's own copy of the position.
void StartHelperSearches(ThreadPool& pool, Move prev, Move last, Value root_tb_score) {
  const SearchState& main = pool.main();
  for (size_t i = 1; i < pool.threads.size(); ++i) {
    SearchState& h = *pool.threads[i]->state;
    h.limits = main.limits;
    h.root_moves = main.root_moves;
    h.excluded.clear();
    h.excluded.reserve(MAX_MOVES);
    h.stop = 0;
  }
  pool.StartHelpers([prev, last, root_tb_score](Thread& t) {
    SearchState& h = *t.state;
    PrepareSearch(h);
    if (h.hasPopcnt)
      RootSearch<true, false>(h, *t.position, prev, last, root_tb_score);
    else
      RootSearch<false, false>(h, *t.position, prev, last, root_tb_score);
  });
}

}  // namespace

void LaunchSearch(ThreadPool& pool, Move prev, Move last, std::vector<Move>& searchMoves, bool helpers) {
  SearchState& st = pool.main();
  Position& pos = pool.main_position();
  search_pool = &pool;
  const bool limited = OptionTrue("UCI_LimitStrength");
  st.strength_bonus.clear();
  st.elo = 0;
  if (limited) {
    st.elo = OptionInt("UCI_Elo");
    SetUpStrengthLimit(st, pos, prev, last, searchMoves);
  }
  pool.zero_counters();
  PrepareSearch(st);
  st.root_moves = searchMoves;
  st.excluded.clear();
  st.excluded.reserve(MAX_MOVES);

  ChooseProber();
  Value root_tb_score = VALUE_INFINITE;
  if (!limited && OptionInt("MultiPV") == 1) root_tb_score = ProbeRoot(st, pos);

  st.stop = 0;
  st.next_check = CHECK_INTERVAL;
  if (st.limits.nodes > 0 && st.limits.nodes < st.next_check) st.next_check = st.limits.nodes;
  AllocateTime(st.limits, pos.side_to_move, pos);

  // Strength limitation is defined for one thread: its node budget and its
  // noise would mean something else spread over several.
  if (limited) ShuffleRootMoves(st);
  else if (helpers) StartHelperSearches(pool, prev, last, root_tb_score);
  if (st.hasPopcnt)
    RunRootSearch<true>(st, pos, prev, last, root_tb_score, limited);
  else
    RunRootSearch<false>(st, pos, prev, last, root_tb_score, limited);
  pool.StopHelpers();
  PrintSearchResult(st);
  searchMoves.clear();
}

}  // namespace vx

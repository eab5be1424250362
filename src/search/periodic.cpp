#include "search/periodic.h"

#include "engine/options.h"
#include "engine/output.h"
#include "engine/timeman.h"
#include "search/search.h"
#include "search/tt.h"

namespace vx {

ThreadPool* search_pool = nullptr;

namespace {

// Clock times of the last speed line and the last current line; they persist
// from one search to the next.
int64_t last_speed_time = 0;
int64_t last_currline_time = 0;

// A counter summed over the state's pool (its own value when it has none).
template <typename Field> uint64_t SumOverPool(const SearchState& st, Field field) {
  return st.pool ? SumOverThreads(*st.pool, field) : field(st);
}

void PrintPeriodicLines(SearchState& st, SearchStack* ss) {
  const int32_t elapsed = ElapsedMs(st);
  if (elapsed < 2000) return;
  const int64_t t = Clock();
  if (t > last_speed_time + 1500) {
    last_speed_time = t;
    PrintSpeed(elapsed, TotalNodes(st), st.table->hashfull());
  }
  if (t <= last_currline_time + 750) return;
  last_currline_time = t;
  if (!OptionTrue("UCI_ShowCurrLine")) return;
  Move line[PV_ARRAY_SIZE];
  int count = 0;
  for (const SearchStack* e = ss - ss->ply; e < ss; ++e) line[count++] = Move(e->current_move);
  PrintCurrLine(line, count);
}

}  // namespace

uint64_t TotalNodes(const SearchState& st) {
  return SumOverPool(st, [](const SearchState& s) { return uint64_t(s.nodes); });
}
uint64_t TotalTbHits(const SearchState& st) {
  return SumOverPool(st, [](const SearchState& s) { return uint64_t(s.tbhits); });
}
uint64_t TotalSbHits(const SearchState& st) {
  return SumOverPool(st, [](const SearchState& s) { return uint64_t(s.sbhits); });
}

template <bool Limited>
void PeriodicCheck(SearchState& st, SearchStack* ss) {
  if (st.thread_index != 0) return;
  if (search_pool) search_pool->PollInput();
  CheckSearchLimits<Limited>(st, PHASE_TREE);
  PrintPeriodicLines(st, ss);
  st.next_check = int64_t(st.nodes) + CHECK_INTERVAL;
}

template void PeriodicCheck<false>(SearchState&, SearchStack*);
template void PeriodicCheck<true>(SearchState&, SearchStack*);

}  // namespace vx

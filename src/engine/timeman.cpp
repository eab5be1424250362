#include "engine/timeman.h"

#include <algorithm>

#include "board/bitboard.h"
#include "engine/options.h"
#include "platform/platform.h"
#include "search/periodic.h"
#include "search/random.h"
#include "search/search.h"

namespace vx {

TimeManager time_manager;

namespace {

// Weighted material of both sides; 19968 in the starting position.
int material_weight(const Position& pos) {
  auto count = [&](PieceType t) { return popcount<false>(pos.of(WHITE, t) | pos.of(BLACK, t)); };
  const int minors = count(KNIGHT) + count(BISHOP_L) + count(BISHOP_D);
  return 192 * (count(PAWN) + 4 * minors) + 1280 * count(ROOK) + 2816 * count(QUEEN);
}

// Extra time for an unsettled root: the average time per event so far,
// capped at the planned time.
// Budgets are capped far beyond any real game (about twelve days).
constexpr int64_t MAX_BUDGET_MS = int64_t(1) << 30;

void add_extra(TimeManager& tm, int elapsed) {
  tm.count += 1;
  tm.extra = int(std::min<int64_t>(int64_t(tm.extra) + std::min(elapsed / tm.count, tm.target), MAX_BUDGET_MS));
}

// The wait of a limited search that has spent its budget: until ThinkDelay
// has passed, but never beyond the hard limit of the clock, in steps of at
// most 50 ms between which waiting commands ("stop", "quit", "isready", ...)
// are executed.
void WaitBeforeMove(SearchState& state, int elapsed) {
  const int64_t deadline = std::min<int64_t>(int64_t(elapsed) + ThinkDelay(elapsed), time_manager.maximum);
  for (int64_t now = elapsed; state.stop == 0 && now < deadline; now = ElapsedMs(state)) {
    platform::sleep_ms(int(std::min<int64_t>(deadline - now, 50)));
    if (search_pool) search_pool->PollInput();
  }
}

}  // namespace

TimeSettings TimeSettingsFromOptions() {
  return {OptionTrue("Ponder"), OptionInt("Time Buffer (sec)"), OptionInt("Time Usage Percent")};
}

void AllocateTime(const SearchLimits& limits, Color side, const Position& pos) {
  AllocateTime(limits, side, pos, TimeSettingsFromOptions());
}

void AllocateTime(const SearchLimits& limits, Color side, const Position& pos, const TimeSettings& settings) {
  TimeManager& tm = time_manager;
  tm = TimeManager{};

  // 64-bit arithmetic with a final clamp, so absurd clock values from the
  // protocol cannot overflow.
  const int64_t t = std::max<int64_t>(int64_t(limits.time[side]) - int64_t(settings.buffer_sec) * 1000, 0);
  const int64_t i = std::max<int64_t>(limits.inc[side], 0);
  int64_t target, maximum;
  if (limits.movestogo > 0) {
    const int m = std::min(limits.movestogo, 50);
    target = int64_t(t / (m + 2.0) + i * 0.9);
    maximum = std::min(int64_t(t * 0.65), target * 10);
  } else {
    target = i > 0 ? int64_t(i * 0.75 + t * 0.0285) : int64_t(t * 0.022);
    maximum = int64_t(t * 0.33);
  }
  if (settings.ponder) target = int64_t(target * 1.25);

  // Less material left means fewer moves to come: up to 1.2 times the time
  // with bare kings, 0.8 times with the full set.
  const double f = std::min(1.0, material_weight(pos) * 5.0080128205128203e-5);
  const double k = 1.2 - 0.8;
  target = int64_t((1.2 - f * k) * target);

  target = std::max<int64_t>(int64_t(target * settings.usage_percent * 0.01), 10);
  maximum = std::max<int64_t>(maximum, 20);
  tm.target = int(std::min(target, MAX_BUDGET_MS));
  tm.maximum = int(std::min(maximum, MAX_BUDGET_MS));
}

bool TimeUp(int phase, int elapsed) {
  const TimeManager& tm = time_manager;
  if (elapsed >= tm.maximum) return true;
  if (!tm.active) return false;
  const double mult = phase == PHASE_ITERATION ? 0.75 : phase == PHASE_ROOT_MOVE ? 1.0 : tm.unresolved ? 4.0 : 2.0;
  return elapsed >= int64_t(tm.factor * mult * (double(tm.target) + tm.extra));
}

void TimeEvent(int event, int elapsed, int score) {
  TimeManager& tm = time_manager;
  if (tm.last_score != VALUE_INFINITE) {
    // A score drop in pawns, 0 to -3, stretches the soft limit up to 31 times.
    const double d = (score - tm.last_score) / 256.0;
    const double x = std::max(std::min(d, 0.0), -3.0);
    tm.factor = 1 - 10 * x;
  }
  switch (event) {
    case EVENT_ITERATION_END:
      tm.count = 0;
      tm.extra /= 2;
      tm.factor = 1.0;
      tm.last_score = score;
      tm.active = true;
      tm.unresolved = false;
      break;
    case EVENT_NEW_BEST:
      add_extra(tm, elapsed);
      tm.active = true;
      tm.unresolved = false;
      break;
    case EVENT_RESEARCH:
      tm.unresolved = true;
      add_extra(tm, elapsed);
      break;
    case EVENT_NOT_CONFIRMED:
      tm.unresolved = false;
      break;
    case EVENT_FIRST_EXACT:
    case EVENT_FIRST_FAIL_HIGH:
      tm.active = true;
      break;
    case EVENT_FIRST_FAIL_LOW:
      tm.active = false;
      add_extra(tm, elapsed);
      break;
  }
}

int32_t ThinkDelay(int32_t elapsed) {
  const int q = Random(0, 1) == 1 ? Random(33, 100) : Random(100, 200);
  const int64_t t = int64_t(q) * time_manager.target / 100;
  return t > elapsed ? int32_t(t - elapsed) : 0;
}

void CheckLimitsLimited(SearchState& state, int phase) {
  const SearchLimits& limits = state.limits;
  const int elapsed = ElapsedMs(state);
  if (limits.movetime > 0 && elapsed >= limits.movetime) {
    // stop
  } else if (limits.nodes > 0 && TotalNodes(state) >= uint64_t(limits.nodes)) {
    if (limits.has_clock()) WaitBeforeMove(state, elapsed);
  } else if (!limits.has_clock() || !TimeUp(phase, elapsed)) {
    return;
  }
  if (state.stop == 0) state.stop = 2;
}

void CheckLimits(SearchState& state, int phase) {
  const SearchLimits& limits = state.limits;
  if (limits.ponder) return;  // a pondering search never stops by itself
  const int elapsed = ElapsedMs(state);
  const bool reached = (limits.movetime > 0 && elapsed >= limits.movetime) ||
                       (limits.nodes > 0 && TotalNodes(state) >= uint64_t(limits.nodes)) ||
                       (limits.has_clock() && TimeUp(phase, elapsed));
  if (!reached || state.stop != 0) return;
  state.stop = 2;
  if (state.pool)
    for (Thread* t : *state.pool)
      if (t->state != &state) t->state->stop = 2;
}

}  // namespace vx

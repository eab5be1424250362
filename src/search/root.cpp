#include "search/root.h"

#include <algorithm>

#include "board/see.h"
#include "engine/options.h"
#include "engine/timeman.h"
#include "engine/wdl.h"
#include "eval/evaluate.h"
#include "search/history.h"
#include "search/movepick.h"
#include "search/periodic.h"
#include "search/search.h"
#include "search/strength.h"
#include "search/tt.h"

namespace vx {

// Everything the root of one thread keeps during one "go", allocated with the
// thread's state so that the search itself never allocates.
struct RootState {
  PvRecord lines[MAX_MULTIPV + 1];
  int line_count = 0;
  PvRecord current;
  SearchStack stack[SEARCH_STACK_SIZE];
  int multipv = 1;
  Value root_tb_score = VALUE_INFINITE;
  int wdl_material = -1;  // see PvRecord
};

RootState* NewRootState() { return new RootState(); }
void DeleteRootState(RootState* root) { delete root; }

namespace {

int RecordBound(Value v, Value alpha, Value beta) {
  return v >= beta ? PV_LOWER_BOUND : v > alpha ? PV_EXACT : PV_UPPER_BOUND;
}

// Deepest ply reached so far: the stack keeps its entries between
// iterations, so this never falls during a search.
int Seldepth(const RootState& root, const SearchStack* root_entry) {
  int seldepth = 0;
  for (const SearchStack* e = root_entry; e < root.stack + SEARCH_STACK_SIZE && e->ply <= MAX_PLY; ++e)
    if (e->static_eval != VALUE_INFINITE || e->current_move) seldepth = e->ply - 1;
  return seldepth;
}

// Depth, time, score, bound and counters of the current record.
void RefreshRecord(SearchState& st, const SearchStack* ss, int depth, Value score, int bound) {
  RootState& root = *st.root;
  PvRecord& r = root.current;
  r.depth = depth;
  r.seldepth = Seldepth(root, ss);
  r.time = ElapsedMs(st);
  r.score = score;
  r.bound = bound;
  r.nodes = TotalNodes(st);
  r.tbhits = TotalTbHits(st);
  r.sbhits = TotalSbHits(st);
  r.hashfull = st.table->hashfull();
  r.root_tb_score = root.root_tb_score;
  r.wdl_material = root.wdl_material;
}

void SetRecordPv(RootState& root, Move m, const Move* child_pv) {
  PvRecord& r = root.current;
  r.pv[0] = m;
  int n = 1;
  for (; child_pv[n - 1] && n < PV_ARRAY_SIZE - 1; ++n) r.pv[n] = child_pv[n - 1];
  r.pv_length = n;
}

bool Contains(const std::vector<Move>& list, Move m) { return std::find(list.begin(), list.end(), m) != list.end(); }

Value ClampToWindow(Value v) { return std::clamp(v, -WINDOW_LIMIT, WINDOW_LIMIT); }

// Score of a root move from its child's search with our window (alpha,
// beta). In limited play the move's bonus is added to the score, so the
// child's window is shifted by it; decisive scores keep their value.
template <bool H, bool L, Color Them, bool PvChild>
Value RootChild(SearchState& st, Position& pos, SearchStack* ss, bool gives_check, Value alpha, Value beta,
                int depth, Value bonus) {
  Value lo = -beta, hi = -alpha;
  if constexpr (L) {
    lo = ClampToWindow(bonus - beta);
    hi = ClampToWindow(bonus - alpha);
  }
  const Value v = gives_check ? -ChildSearch<H, L, Them, PvChild, true>(st, pos, ss, lo, hi, depth, !PvChild)
                              : -ChildSearch<H, L, Them, PvChild, false>(st, pos, ss, lo, hi, depth, !PvChild);
  if constexpr (L) return std::abs(v) >= VALUE_KNOWN_WIN ? v : v + bonus;
  return v;
}

// The root node for one line and one window.
template <bool HwPopcnt, bool Limited, Color Us, bool InCheck>
Value SearchRoot(SearchState& st, Position& pos, SearchStack* ss, Value alpha, Value beta, int depth) {
  constexpr Color Them = ~Us;
  RootState& root = *st.root;
  const bool main_thread = st.thread_index == 0;
  if (++st.nodes > uint64_t(st.next_check)) PeriodicCheck<Limited>(st, ss);
  if (st.stop) return 0;

  ss->current_move = MOVE_NONE;
  (ss + 2)->killers[0] = (ss + 2)->killers[1] = MOVE_NONE;
  Value best_value = -VALUE_MATE - 1;
  const Value alpha_start = alpha;

  const Key key = pos.state->key;
  const TTEntry tte = st.table->probe(key);
  Move tt_move = tte.key32 ? tte.move : MOVE_NONE;
  if (root.current.pv_length) tt_move = root.current.pv[0];

  AttackInfo ai;
  ss->static_eval = NodeStaticEval<HwPopcnt, Limited, InCheck>(st, pos, ai, tte.key32 != 0, tte);
  if constexpr (!InCheck) UpdateGains(st, pos, ss);
  const bool improving =
      InCheck || (ss - 2)->static_eval == VALUE_INFINITE || ss->static_eval >= (ss - 2)->static_eval;

  const uint32_t* counters = CounterSlot(st, pos, Move((ss - 1)->current_move));
  const Move counter0 = Move(counters[0]), counter1 = Move(counters[1]);
  MovePicker mp;
  // No table: the loop below prefetches each root move itself, also the
  // moves of limited play's first iteration, which bypass the picker.
  StartPicker<Us, true>(mp, pos, ai, *st.history, nullptr, depth, tt_move, Move(ss->killers[0]),
                        Move(ss->killers[1]), counter0, counter1);

  Move quiets[MAX_QUIETS];
  int quiet_count = 0, move_count = 0;
  Move best_move = MOVE_NONE;
  Move child_pv[PV_ARRAY_SIZE];
  const bool single_line = root.multipv == 1;

  // Limited play takes the moves of its first iteration in the order of the
  // shuffled root move list, later ones from the picker.
  size_t listed = 0;
  auto next_move = [&]() -> Move {
    if (Limited && depth == ONE_PLY) return listed < st.root_moves.size() ? st.root_moves[listed++] : MOVE_NONE;
    return NextMove<Us, true>(mp);
  };
  while (const Move m = next_move()) {
    if (!Contains(st.root_moves, m) || Contains(st.excluded, m)) continue;
    if (Limited && best_move && OverlooksMove(st, pos, ss, m, InCheck)) continue;
    st.table->prefetch(pos.KeyAfter(m));
    if (!IsLegal<Us>(pos, m, ai)) continue;
    ++move_count;
    (ss + 1)->pv = nullptr;
    if (main_thread) PrintCurrMove(m, move_count + int(st.excluded.size()), ElapsedMs(st));

    const bool s = SeeNotLosing<Us>(pos, m, ai);
    const bool g = GivesCheck<Us>(pos, m, ai);
    const bool late = depth < 64 && (*st.gains)[pos.piece_on(from_sq(m))][to_sq(m)] / 16 +
                                            MoveCountLimits[4 + improving][depth] <=
                                        move_count;
    const int ext = g ? ((move_count == 1 || (!late && s)) ? 4 : 2) : 0;
    const int nd = depth - ONE_PLY + ext;
    const bool quiet = !is_tactical(m);
    if (quiet && quiet_count < MAX_QUIETS) quiets[quiet_count++] = m;
    ss->current_move = m;
    pos.DoMove<Us>(m);
    child_pv[0] = MOVE_NONE;

    const Value bonus = Limited ? BonusOf(st, m) : 0;
    auto zero_window = [&](int d) {
      return RootChild<HwPopcnt, Limited, Them, false>(st, pos, ss, g, alpha, alpha + 1, d, bonus);
    };

    Value v = alpha;
    if (move_count > 1) {
      bool done = false;
      if (depth >= 12 && move_count >= 5 && quiet && m != ss->killers[0]) {
        const bool counter_or_killer1 = m == counter0 || m == counter1 || m == ss->killers[1];
        const int r = Reduction(REDUCTION_PV, depth, move_count) + (s ? 1 : 3) -
                      (s ? std::min(4, (g ? 4 : 0) + (counter_or_killer1 ? 4 : 0)) : 0);
        if (r >= 4) {
          v = zero_window(std::max(nd - r, ONE_PLY));
          done = v <= alpha;
        }
      }
      if (!done) {
        v = zero_window(nd);
        if (v > alpha && !st.stop && main_thread) {
          TimeEvent(EVENT_RESEARCH, ElapsedMs(st), v);
          if (depth >= 16 && single_line) {
            RefreshRecord(st, ss, depth, v, PV_LOWER_BOUND);
            PrintPvLine(root.current);
          }
        }
      }
    }
    if (move_count == 1 || v > alpha) {
      (ss + 1)->pv = child_pv;
      child_pv[0] = MOVE_NONE;
      v = RootChild<HwPopcnt, Limited, Them, true>(st, pos, ss, g, alpha, beta, nd, bonus);
      if (move_count > 1 && v <= alpha && !st.stop && main_thread) {
        TimeEvent(EVENT_NOT_CONFIRMED, ElapsedMs(st), v);
        if (depth >= 16 && single_line)
          RefreshRecord(st, ss, depth, best_value, RecordBound(best_value, alpha_start, beta));
      }
    }
    pos.UndoMove<Us>(m);
    if (st.stop) return 0;

    if (move_count == 1 || v > alpha) {
      const int event = move_count > 1   ? EVENT_NEW_BEST
                        : v >= beta       ? EVENT_FIRST_FAIL_HIGH
                        : v > alpha_start ? EVENT_FIRST_EXACT
                                          : EVENT_FIRST_FAIL_LOW;
      if (main_thread) TimeEvent(event, ElapsedMs(st), v);
      RefreshRecord(st, ss, depth, v, RecordBound(v, alpha_start, beta));
      SetRecordPv(root, m, child_pv);
      if (single_line && main_thread) PrintPvLine(root.current);
    }

    bool cut = false;
    if (v > best_value) {
      best_value = v;
      if (v > alpha) {
        best_move = m;
        if (v >= beta) cut = true;
        else alpha = v;
      }
    }
    if (!st.stop && main_thread) CheckSearchLimits<Limited>(st, PHASE_ROOT_MOVE);
    if (cut) break;
  }

  if (!move_count) best_value = 0;
  if (!InCheck && best_value >= beta && best_move && !is_tactical(best_move)) {
    RewardQuiet(st, pos, ss, best_move);
    PenaliseQuiets(st, pos, quiets, quiet_count);
  }
  if (st.excluded.empty()) {
    const int bound = best_value >= beta ? BOUND_LOWER : best_value > alpha_start ? BOUND_EXACT : BOUND_UPPER;
    st.table->store(key, best_move, uint32_t(depth), bound, value_to_tt(best_value, 0), ss->static_eval);
  }
  return best_value;
}

using RootFn = Value (*)(SearchState&, Position&, SearchStack*, Value, Value, int);

template <bool H, bool L> RootFn ChooseRoot(const Position& pos, const AttackInfo& ai) {
  const Color us = pos.side_to_move;
  const bool in_check = ai.attacked_by(~us) & pos.of(us, KING);
  if (us == WHITE) return in_check ? SearchRoot<H, L, WHITE, true> : SearchRoot<H, L, WHITE, false>;
  return in_check ? SearchRoot<H, L, BLACK, true> : SearchRoot<H, L, BLACK, false>;
}

void SetUpStack(RootState& root, Move prev, Move last) {
  for (int k = 0; k < SEARCH_STACK_SIZE; ++k) {
    SearchStack& e = root.stack[k];
    e = SearchStack{};
    e.ply = k >= ROOT_ENTRY ? k - ROOT_ENTRY : 0;
    e.static_eval = VALUE_INFINITE;
  }
  root.stack[1].current_move = last;
  root.stack[0].current_move = prev;
}

void SetContempt(SearchState& st, Color us) {
  const int v = OptionInt("Contempt");
  st.contempt[us] = make_pair(v * 256 / 100, 0);
  st.contempt[~us] = make_pair(-v * 256 / 100, 0);
}

// Puts the finished current record into the line list (best first, at most n).
void InsertCurrentLine(SearchState& st, int n) {
  RootState& root = *st.root;
  const Move first = root.current.pv[0];
  st.excluded.push_back(first);
  int kept = 0;
  for (int i = 0; i < root.line_count; ++i)
    if (root.lines[i].pv[0] != first) root.lines[kept++] = root.lines[i];
  int at = 0;
  while (at < kept && root.lines[at].depth >= root.current.depth && root.lines[at].score >= root.current.score) ++at;
  for (int i = std::min(kept, MAX_MULTIPV); i > at; --i) root.lines[i] = root.lines[i - 1];
  root.lines[at] = root.current;
  root.line_count = std::min(kept + 1, n);
  if (root.multipv < 2 || st.thread_index) return;
  for (int i = 0; i < root.line_count; ++i) {
    root.lines[i].multipv = i + 1;
    PrintPvLine(root.lines[i]);
  }
}

bool MateFoundWithin(Value v, int depth) {
  return (v >= VALUE_MATE_BOUND && v >= VALUE_MATE - depth / 4) ||
         (v <= -VALUE_MATE_BOUND && v <= depth / 4 - VALUE_MATE);
}

}  // namespace

Window InitialWindow(int depth, bool has_record, Value last_score) {
  if (depth < 16 || !has_record || last_score == VALUE_INFINITE || std::abs(last_score) >= 2560)
    return {-WINDOW_LIMIT, WINDOW_LIMIT, ASPIRATION_DELTA};
  return {std::max(last_score - ASPIRATION_DELTA, -WINDOW_LIMIT), std::min(last_score + ASPIRATION_DELTA, WINDOW_LIMIT),
          ASPIRATION_DELTA};
}

bool WidenWindow(Window& w, Value v) {
  if (v <= w.alpha) {
    w.beta = (w.alpha + w.beta) / 2;
    w.alpha = w.delta < 1280 && v - w.delta >= -WINDOW_LIMIT ? v - w.delta : -WINDOW_LIMIT;
  } else if (v >= w.beta) {
    w.alpha = (w.alpha + w.beta) / 2;
    w.beta = w.delta < 1280 && v + w.delta < WINDOW_LIMIT + 1 ? v + w.delta : WINDOW_LIMIT;
  } else {
    return false;
  }
  w.delta += 5 + w.delta / 4;
  return true;
}

// Helpers leave out some iterations so that they are not all working on the
// same depth as the main thread: helper i skips blocks of SKIP_SIZE plies,
// shifted by SKIP_PHASE plies, alternating search and skip.
bool HelperSkipsIteration(int thread_index, int plies) {
  static constexpr int SKIP_SIZE[20] = {1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 4, 4};
  static constexpr int SKIP_PHASE[20] = {0, 1, 0, 1, 2, 3, 0, 1, 2, 3, 4, 5, 0, 1, 2, 3, 4, 5, 6, 7};
  if (thread_index == 0) return false;
  const int i = (thread_index - 1) % 20;
  return ((plies + SKIP_PHASE[i]) / SKIP_SIZE[i]) % 2 != 0;
}

template <bool HwPopcnt, bool Limited>
void RootSearch(SearchState& st, Position& pos, Move prev, Move last, Value root_tb_score) {
  RootState& root = *st.root;
  const bool main_thread = st.thread_index == 0;
  SetUpStack(root, prev, last);
  SearchStack* const ss = root.stack + ROOT_ENTRY;
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  const RootFn search_root = ChooseRoot<HwPopcnt, Limited>(pos, ai);
  SetContempt(st, pos.side_to_move);

  root.multipv = OptionInt("MultiPV");
  root.root_tb_score = root_tb_score;
  root.wdl_material = OptionTrue("UCI_ShowWDL") ? WdlMaterial(pos) : -1;
  root.line_count = 0;
  const int n = std::min(int(st.root_moves.size()), root.multipv);
  // At least one iteration, at most 100 plies, whatever depth was asked for.
  const int max_depth = 4 * std::clamp(st.limits.depth, 1, 100);

  Value v = 0;
  for (int d = 4; n > 0 && d <= max_depth && !st.stop; d += 4) {
    if (HelperSkipsIteration(st.thread_index, d / ONE_PLY) && d < max_depth) continue;
    st.excluded.clear();
    if (main_thread) PrintIterationStart(d);
    for (int k = 0; k < n && !st.stop; ++k) {
      const bool has_record = k < root.line_count;
      root.current = has_record ? root.lines[k] : PvRecord{};
      root.current.multipv = 0;
      // Limited play starts every line with the full window.
      Window w = Limited ? Window{-WINDOW_LIMIT, WINDOW_LIMIT, ASPIRATION_DELTA}
                         : InitialWindow(d, has_record, has_record ? root.lines[k].score : VALUE_INFINITE);
      do v = search_root(st, pos, ss, w.alpha, w.beta, d);
      while (!st.stop && WidenWindow(w, v));
      if (root.current.pv_length) InsertCurrentLine(st, n);
    }
    if (st.stop) break;
    if (!main_thread) continue;
    const int32_t elapsed = ElapsedMs(st);
    PrintIterationSummary(elapsed, TotalNodes(st), TotalTbHits(st), TotalSbHits(st));
    TimeEvent(EVENT_ITERATION_END, elapsed, v);
    CheckSearchLimits<Limited>(st, PHASE_ITERATION);
    if (st.limits.has_clock() && ((st.root_moves.size() == 1 && d >= 60) || MateFoundWithin(v, d))) break;
  }

  if (!main_thread) return;
  while (st.stop != 1 && (st.limits.ponder || st.limits.infinite) && search_pool) search_pool->ExecuteNextCommand();
}

void PrintSearchResult(const SearchState& st) {
  const RootState& root = *st.root;
  if (!root.line_count) {
    // No legal move, or stopped before the first root move was searched
    // (a node limit of a few nodes): play the first move the root may play.
    PrintBestMove(st.root_moves.empty() ? MOVE_NULL : st.root_moves[0], MOVE_NONE);
    return;
  }
  const PvRecord& best = root.lines[0];
  PrintBestMove(best.pv[0], best.pv_length > 1 ? best.pv[1] : MOVE_NONE);
}

template void RootSearch<true, false>(SearchState&, Position&, Move, Move, Value);
template void RootSearch<false, false>(SearchState&, Position&, Move, Move, Value);
template void RootSearch<true, true>(SearchState&, Position&, Move, Move, Value);
template void RootSearch<false, true>(SearchState&, Position&, Move, Move, Value);

}  // namespace vx

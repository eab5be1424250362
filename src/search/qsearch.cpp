#include <algorithm>

#include "board/see.h"
#include "eval/evaluate.h"
#include "eval/pawns.h"
#include "search/movepick.h"
#include "search/search.h"
#include "search/tt.h"

namespace vx {

namespace {

// Margin of delta pruning by the captured piece's code (0 for an empty square).
constexpr Value DELTA_VALUE[16] = {0, 215, 805, 826, 826, 1337, 2597, 0, 0, 215, 805, 826, 826, 1337, 2597, 0};

}  // namespace

template <bool HwPopcnt, bool Limited, Color Us, bool PvNode, bool InCheck>
Value QSearch(SearchState& st, Position& pos, SearchStack* ss, Value alpha, Value beta, int qdepth) {
  constexpr Color Them = ~Us;
  constexpr bool NonPv = !PvNode;

  ++st.nodes;
  Move child_pv[PV_ARRAY_SIZE];
  if constexpr (PvNode) {
    (ss + 1)->pv = child_pv;
    child_pv[0] = MOVE_NONE;
    if (ss->pv) ss->pv[0] = MOVE_NONE;
  }
  if (pos.IsRule50Draw() || pos.IsRepetition()) return 0;

  AttackInfo ai;
  const int ply = ss->ply;
  if (ply >= MAX_PLY) return InCheck ? 0 : evaluate<HwPopcnt>(st, pos, ai);

  ss->current_move = MOVE_NONE;
  const Key key = pos.state->key;
  const TTEntry tte = st.table->probe(key);
  // The evaluation's first read, asked for while the table's entry is on its way.
  if constexpr (!InCheck) PawnTable::prefetch(st.pawn_table, pos.state->pawn_key);
  const bool hit = tte.key32 != 0;
  const Move tt_move = hit && (is_tactical(tte.move) || qdepth == 0) ? tte.move : MOVE_NONE;
  // Quiescence drafts stay below every main-search draft.
  const int draft = InCheck || qdepth == 0 ? 3 : 2;

  if constexpr (NonPv) {
    if (hit && tte.upper_depth() >= draft) {
      const Value v = value_from_tt(tte.upper, ply);
      if (v != VALUE_INFINITE && v <= alpha) return v;
    }
    if (hit && tte.lower_depth() >= draft) {
      const Value v = value_from_tt(tte.lower, ply);
      if (v != VALUE_INFINITE && v >= beta) return v;
    }
  }
  // The table's move is searched first: its entry is asked for while this node evaluates.
  if (tt_move) st.table->prefetch(pos.KeyAfter(tt_move));

  const Value alpha_start = alpha;
  Value best_value = -VALUE_MATE - 1;
  ss->static_eval = NodeStaticEval<HwPopcnt, Limited, InCheck>(st, pos, ai, hit, tte);
  if constexpr (!InCheck) {
    const Value eval = hit ? RefineEval(ss->static_eval, tte, ply) : ss->static_eval;
    if (eval >= beta) return eval;  // stand pat
    best_value = eval;
    if (PvNode && best_value > alpha) alpha = best_value;
  }

  MovePicker mp;
  StartQPicker<Us>(mp, pos, ai, *st.history, st.table, qdepth, tt_move);
  Move best_move = MOVE_NONE;

  while (const Move m = NextMove<Us>(mp)) {
    if (Limited && OverlooksMove(st, pos, ss, m, InCheck)) continue;
    if (!IsLegal<Us>(pos, m, ai)) continue;
    const bool g = GivesCheck<Us>(pos, m, ai);
    if constexpr (!InCheck) {
      if (!g && best_value > -VALUE_KNOWN_WIN && !IsAdvancedPawnMove<Us>(pos, m)) {
        const Value f = best_value + 128 + DELTA_VALUE[pos.piece_on(to_sq(m))];
        if (f <= alpha) {
          best_value = std::max(best_value, f);
          continue;
        }
      }
    } else if (NonPv && !is_tactical(m) && best_value >= -(VALUE_MATE_BOUND - 1) && !SeeNotLosing<Us>(pos, m, ai)) {
      continue;
    }

    ss->current_move = m;
    pos.DoMove<Us>(m);
    const Value v = g ? -QSearch<HwPopcnt, Limited, Them, PvNode, true>(st, pos, ss + 1, -beta, -alpha, qdepth - 1)
                      : -QSearch<HwPopcnt, Limited, Them, PvNode, false>(st, pos, ss + 1, -beta, -alpha, qdepth - 1);
    pos.UndoMove<Us>(m);

    if (v > best_value) {
      best_value = v;
      if (v > alpha) {
        best_move = m;
        if (NonPv) break;
        if (ss->pv) {
          ss->pv[0] = m;
          int i = 0;
          for (; child_pv[i]; ++i) ss->pv[i + 1] = child_pv[i];
          ss->pv[i + 1] = MOVE_NONE;
        }
        alpha = v;
        if (v >= beta) break;
      }
    }
  }

  if (InCheck && best_value == -VALUE_MATE - 1) return ply - VALUE_MATE;

  const int bound = best_value >= beta                      ? BOUND_LOWER
                    : PvNode && best_value > alpha_start ? BOUND_EXACT
                                                         : BOUND_UPPER;
  st.table->store(key, best_move, uint32_t(draft), bound, value_to_tt(best_value, ply), ss->static_eval);
  return best_value;
}

#define VX_QSEARCH(H, L, C)                                                                                    \
  template Value QSearch<H, L, C, true, false>(SearchState&, Position&, SearchStack*, Value, Value, int);     \
  template Value QSearch<H, L, C, true, true>(SearchState&, Position&, SearchStack*, Value, Value, int);      \
  template Value QSearch<H, L, C, false, false>(SearchState&, Position&, SearchStack*, Value, Value, int);    \
  template Value QSearch<H, L, C, false, true>(SearchState&, Position&, SearchStack*, Value, Value, int);
VX_QSEARCH(true, false, WHITE)
VX_QSEARCH(true, false, BLACK)
VX_QSEARCH(false, false, WHITE)
VX_QSEARCH(false, false, BLACK)
VX_QSEARCH(true, true, WHITE)
VX_QSEARCH(true, true, BLACK)
VX_QSEARCH(false, true, WHITE)
VX_QSEARCH(false, true, BLACK)

}  // namespace vx

#include "search/search.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "board/see.h"
#include "egdb/hook.h"
#include "eval/evaluate.h"
#include "eval/material.h"
#include "eval/pawns.h"
#include "search/history.h"
#include "search/movepick.h"
#include "search/periodic.h"
#include "search/tt.h"

namespace vx {

int8_t Reductions[2][257 * 64 + 1];
int32_t MoveCountLimits[6][64];

void InitSearchTables() {
  for (int d = 1; d < 256; ++d)
    for (int m = 1; m < 64; ++m) {
      const int r = int(std::log(d * 0.25) * std::log(double(m)) * 1.9047619047619047 + 1.8);
      Reductions[REDUCTION_NONPV][d * 64 + m] = int8_t(r);
      Reductions[REDUCTION_PV][d * 64 + m] = int8_t(std::min(r, 16));
    }
  for (int x = 0; x < 64; ++x) {
    const double a = std::pow(x * 0.25, 1.75) * 0.64 + 2.5;
    const double b = std::pow(x * 0.25 + 0.5, 1.75) * 0.79 + 3.0;
    MoveCountLimits[0][x] = int(a);
    MoveCountLimits[1][x] = int(b);
    MoveCountLimits[2][x] = int(a * 0.86);
    MoveCountLimits[3][x] = int(b * 0.86);
    MoveCountLimits[4][x] = int(a * 1.4);
    MoveCountLimits[5][x] = int(b * 1.4);
  }
}

namespace {

// Score of a successful tablebase probe at this node: wins and losses just
// inside the mate band, draws by the material's draw hint.
template <Color Us>
Value TablebaseScore(SearchState& st, const Position& pos, int wdl, int ply) {
  const int f = tb_hook.rule50 ? 1 : 0;
  Value v = wdl < -f ? ply - VALUE_MATE_BOUND : wdl > f ? VALUE_MATE_BOUND - ply : wdl * 2 * f;
  if (v == 0) {
    v = MaterialTable::probe(pos, st).drawHint;
    if (Us == BLACK) v = -v;
  }
  return v;
}

}  // namespace

template <bool HwPopcnt, bool Limited, Color Us, bool PvNode, SearchVariant Variant, bool InCheck>
Value Search(SearchState& st, Position& pos, SearchStack* ss, Value alpha, Value beta, int depth, bool cut_node) {
  constexpr Color Them = ~Us;
  constexpr bool Exclusion = Variant == EXCLUSION;
  constexpr bool NonPv = !PvNode;
  constexpr bool Prunes = NonPv && Variant == NORMAL && !InCheck;

  if (++st.nodes > uint64_t(st.next_check)) PeriodicCheck<Limited>(st, ss);
  if (st.stop) return 0;
  if (pos.IsRule50Draw() || pos.IsRepetition()) return 0;

  AttackInfo ai;
  const int ply = ss->ply;
  if (ply >= MAX_PLY) return InCheck ? 0 : evaluate<HwPopcnt>(st, pos, ai);

  // Mate-distance pruning.
  alpha = std::max(alpha, ply - VALUE_MATE);
  beta = std::min(beta, VALUE_MATE - 1 - ply);
  if (alpha >= beta) return alpha;

  ss->current_move = MOVE_NONE;
  (ss + 2)->killers[0] = (ss + 2)->killers[1] = MOVE_NONE;
  Value best_value = -VALUE_MATE - 1;
  int move_count = 0;
  Move best_move = MOVE_NONE;

  Key key = pos.state->key;
  if constexpr (Exclusion) key ^= exclusion_key[from_sq(ss->excluded_move)] ^ exclusion_key[to_sq(ss->excluded_move)];
  TTEntry tte = st.table->probe(key);
  // The evaluation's first read, asked for while the table's entry is on its way.
  if constexpr (!InCheck) PawnTable::prefetch(st.pawn_table, pos.state->pawn_key);
  bool hit = tte.key32 != 0;
  Move tt_move = hit ? tte.move : MOVE_NONE;

  if constexpr (NonPv) {
    if (hit && tte.upper_depth() >= depth) {
      const Value v = value_from_tt(tte.upper, ply);
      if (v != VALUE_INFINITE && v <= alpha) return v;
    }
    if (hit && tte.lower_depth() >= depth) {
      const Value v = value_from_tt(tte.lower, ply);
      if (v >= beta) {
        if (!InCheck && tt_move && !is_tactical(tt_move)) RewardQuiet(st, pos, ss, tt_move);
        if (v != VALUE_INFINITE) return v;
      }
    }
  }

  // The table's move is usually searched first, and a null move is tried at
  // many cut nodes: their entries are asked for while this node evaluates.
  if (tt_move) st.table->prefetch(pos.KeyAfter(tt_move));
  if (Prunes && depth >= 8) st.table->prefetch(key ^ zobrist_side);

  // Tablebase probe after a capture or promotion; strength-limited play never probes.
  if (!Limited && tb_hook.probe_limit && is_tactical(Move((ss - 1)->current_move)) &&
      popcount<HwPopcnt>(pos.occupied()) <= tb_hook.probe_limit) {
    int success = 0;
    const int wdl = tb_hook.probe(pos, success);
    if (success) {
      tb_hook.hit(st);
      st.next_check -= 5;
      const Value v = TablebaseScore<Us>(st, pos, wdl, ply);
      st.table->store(key, MOVE_NONE, uint32_t(std::min(depth + 24, 508)), BOUND_EXACT, value_to_tt(v, ply),
                      VALUE_INFINITE);
      return v;
    }
  }

  Value eval = VALUE_INFINITE;  // the working evaluation
  ss->static_eval = NodeStaticEval<HwPopcnt, Limited, InCheck>(st, pos, ai, hit, tte);
  if constexpr (!InCheck) {
    eval = hit ? RefineEval(ss->static_eval, tte, ply) : ss->static_eval;
    UpdateGains(st, pos, ss);
  }

  if constexpr (Prunes) {
    // Razoring: far below alpha at low depth, ask the quiescence search.
    constexpr Bitboard OwnSeventh = Us == WHITE ? 0x00FF000000000000ULL : 0x000000000000FF00ULL;
    if (depth < 16 && eval + 384 + 8 * depth <= alpha && !tt_move && !(pos.of(Us, PAWN) & OwnSeventh)) {
      if (depth < 8 && eval + 512 <= alpha) return QSearch<HwPopcnt, Limited, Us, false, false>(st, pos, ss, alpha, beta, 0);
      const Value r = alpha - (8 * depth + 384) / 2;
      const Value v = QSearch<HwPopcnt, Limited, Us, false, false>(st, pos, ss, r, r + 1, 0);
      if (v <= r) return v;
    }
  }

  if constexpr (Variant == NORMAL && !InCheck) {
    // Static null move.
    if (depth < 28 && eval - 36 * depth >= beta && eval < VALUE_KNOWN_WIN && HasNonPawnMaterial<Us>(pos))
      return eval - 36 * depth;
  }

  if constexpr (Prunes) {
    // Null move, verified at high depth or near decisive scores.
    if (depth >= 8 && eval >= beta && HasNonPawnMaterial<Us>(pos)) {
      const int n = NullMoveDepth(depth, eval, beta);
      ss->current_move = MOVE_NULL;
      pos.DoNullMove();
      st.table->prefetch(pos.state->key);
      Value v = n < ONE_PLY ? -QSearch<HwPopcnt, Limited, Them, false, false>(st, pos, ss + 1, -beta, -beta + 1, 0)
                            : -Search<HwPopcnt, Limited, Them, false, PLAIN, false>(st, pos, ss + 1, -beta, -beta + 1, n,
                                                                             !cut_node);
      pos.UndoNullMove();
      if (v >= beta) {
        if (v >= VALUE_MATE_BOUND) v = beta;
        if (depth < 48 && std::abs(beta) < VALUE_KNOWN_WIN) return v;
        const Value w = n < ONE_PLY ? QSearch<HwPopcnt, Limited, Us, false, false>(st, pos, ss, beta - 1, beta, 0)
                                    : Search<HwPopcnt, Limited, Us, false, PLAIN, false>(st, pos, ss, beta - 1, beta, n, false);
        if (w >= beta) return w;
      }
    }

    // ProbCut: a capture that beats beta by a margin at reduced depth.
    if (depth >= 20 && !is_tactical(Move((ss - 1)->current_move)) && std::abs(beta) < VALUE_MATE_BOUND) {
      const Value rbeta = std::min(beta + 192, VALUE_MATE + 1);
      MovePicker mp;
      StartQPicker<Us>(mp, pos, ai, *st.history, st.table, -1, is_tactical(tt_move) ? tt_move : MOVE_NONE);
      while (const Move m = NextMove<Us>(mp)) {
        if (!IsLegal<Us>(pos, m, ai)) continue;
        if ((ai.attacked_by(Them) & (Bitboard(1) << to_sq(m))) &&
            SEE_VALUE[type_of(pos.piece_on(from_sq(m)))] >= SEE_VALUE[type_of(pos.piece_on(to_sq(m)))])
          continue;
        const bool g = GivesCheck<Us>(pos, m, ai);
        ss->current_move = m;
        pos.DoMove<Us>(m);
        const Value v =
            g ? -Search<HwPopcnt, Limited, Them, false, NORMAL, true>(st, pos, ss + 1, -rbeta, -rbeta + 1, depth - 16, !cut_node)
              : -Search<HwPopcnt, Limited, Them, false, NORMAL, false>(st, pos, ss + 1, -rbeta, -rbeta + 1, depth - 16,
                                                               !cut_node);
        pos.UndoMove<Us>(m);
        if (v >= rbeta) return v;
      }
    }
  }

  // Internal iterative deepening: find a move to try first.
  if constexpr (!Exclusion && (PvNode || !InCheck)) {
    if (!tt_move) {
      bool searched = false;
      if constexpr (PvNode) {
        if (depth >= 20) {
          Search<HwPopcnt, Limited, Us, true, PLAIN, InCheck>(st, pos, ss, alpha, beta, depth - 8, false);
          searched = true;
        }
      } else if (depth >= 32 && ss->static_eval != VALUE_INFINITE && ss->static_eval >= beta - 256) {
        Search<HwPopcnt, Limited, Us, false, PLAIN, false>(st, pos, ss, alpha, beta, depth - 16, true);
        searched = true;
      }
      if (searched) {
        const TTEntry again = st.table->probe(key);
        if (again.key32) {
          tte = again;
          hit = true;
          tt_move = tte.move;
        }
      }
    }
  }

  const bool improving =
      InCheck || (ss - 2)->static_eval == VALUE_INFINITE || ss->static_eval >= (ss - 2)->static_eval;
  const bool singular = !Exclusion && depth >= 32 && hit && tt_move && tte.lower_depth() >= depth - 12 &&
                        std::abs(int(tte.lower)) < VALUE_MATE_BOUND;

  const Move prev = Move((ss - 1)->current_move);
  const uint32_t* counters = CounterSlot(st, pos, prev);
  const Move counter0 = Move(counters[0]), counter1 = Move(counters[1]);

  MovePicker mp;
  StartPicker<Us>(mp, pos, ai, *st.history, st.table, depth, tt_move, Move(ss->killers[0]), Move(ss->killers[1]),
                  counter0, counter1);

  const Value alpha_start = alpha;
  const int row = PvNode ? 4 + improving : improving + 2 * cut_node;
  const bool opponent_has_pieces = HasNonPawnMaterial<Them>(pos);
  // Zero-window children of PV plain and PV in-check nodes are not expected cut nodes.
  const bool child_cut = (PvNode && (Variant == PLAIN || InCheck)) ? false : !cut_node;
  Move quiets[MAX_QUIETS];
  int quiet_count = 0;
  Move child_pv[PV_ARRAY_SIZE];

  while (const Move m = NextMove<Us>(mp)) {
    if (Exclusion && m == ss->excluded_move) continue;
    if (Limited && OverlooksMove(st, pos, ss, m, InCheck)) continue;
    if (!IsLegal<Us>(pos, m, ai)) continue;
    ++move_count;
    if (PvNode) (ss + 1)->pv = nullptr;

    const bool s = SeeNotLosing<Us>(pos, m, ai);
    if (NonPv && !InCheck && !s && depth < 9 && best_value > -VALUE_KNOWN_WIN) continue;
    const bool g = GivesCheck<Us>(pos, m, ai);
    const Piece pc = pos.piece_on(from_sq(m));
    const Square to = to_sq(m);
    const bool late = depth < 64 && (*st.gains)[pc][to] / 16 + MoveCountLimits[row][depth] <= move_count;

    int ext = 0;
    if (g) ext = (move_count == 1 || (!late && s)) ? 4 : PvNode ? 2 : 0;
    if (singular && m == tt_move && ext < 4) {
      ss->excluded_move = m;
      const Value rb = tte.lower - depth;
      const bool test_cut = PvNode ? Variant == PLAIN : cut_node;
      const Value v =
          Search<HwPopcnt, Limited, Us, false, EXCLUSION, InCheck>(st, pos, ss, rb - 1, rb, depth / 2, test_cut);
      if (v < rb) ext = 4;
    }
    const int nd = depth - ONE_PLY + ext;
    const bool quiet = !is_tactical(m);
    const bool counter_or_killer1 = m == counter0 || m == counter1 || m == ss->killers[1];

    if (!InCheck && quiet && !g && !is_castling(m) && !IsAdvancedPawnMove<Us>(pos, m) &&
        best_value > -VALUE_KNOWN_WIN) {
      if (late) continue;
      int p = nd;
      bool reduced = false;
      if (PvNode) {
        if (depth >= 12 && move_count > 4 && m != ss->killers[0]) {
          p -= Reduction(REDUCTION_PV, depth, move_count);
          reduced = true;
        }
      } else if (depth >= 12 && move_count >= 2 && m != ss->killers[0]) {
        p = nd - Reduction(REDUCTION_NONPV, depth, move_count) - (improving ? 0 : 4);
        reduced = true;
      }
      if (reduced && counter_or_killer1) p += 4;
      if (NonPv && opponent_has_pieces && p < 28) {
        const Value f = ss->static_eval + 128 + (*st.gains)[pc][to] + 36 * p;
        if (f <= alpha) {
          best_value = std::max(best_value, f);
          continue;
        }
      }
      if (p < 16 && !s) continue;
    }

    if (quiet && quiet_count < MAX_QUIETS) quiets[quiet_count++] = m;
    ss->current_move = m;
    pos.DoMove<Us>(m);
    child_pv[0] = MOVE_NONE;

    auto zero_window = [&](int d, bool cut) {
      return g ? ZeroWindowChild<HwPopcnt, Limited, Them, true>(st, pos, ss, alpha, d, cut)
               : ZeroWindowChild<HwPopcnt, Limited, Them, false>(st, pos, ss, alpha, d, cut);
    };
    auto pv_search = [&]() {
      (ss + 1)->pv = child_pv;
      child_pv[0] = MOVE_NONE;
      return g ? PvChild<HwPopcnt, Limited, Them, true>(st, pos, ss, alpha, beta, nd)
               : PvChild<HwPopcnt, Limited, Them, false>(st, pos, ss, alpha, beta, nd);
    };

    Value v;
    if constexpr (PvNode) {
      if (move_count == 1) {
        v = pv_search();
      } else {
        int r = 0;
        if (depth >= 12 && move_count >= 5 && quiet && m != ss->killers[0]) {
          r = Reduction(REDUCTION_PV, depth, move_count) + (s ? 1 : 3);
          if (s) r -= std::min(4, (g ? 4 : 0) + (counter_or_killer1 ? 4 : 0));
        }
        bool done = false;
        if (r >= 4) {
          v = zero_window(std::max(nd - r, ONE_PLY), true);
          done = v <= alpha;
        }
        if (!done) {
          v = zero_window(nd, child_cut);
          if (alpha < v && v < beta) v = pv_search();
        }
      }
    } else {
      int r = 0;
      if (!(depth < 12 || move_count < 2 || (!quiet && s) || m == ss->killers[0])) {
        if (quiet) {
          r = Reduction(REDUCTION_NONPV, depth, move_count) + (improving ? 1 : 3) + (s ? 0 : 4) +
              (cut_node ? std::min((move_count - 1) / 2, 4) : 0);
          if (s) r -= std::min(4, (g ? 1 : 0) + (counter_or_killer1 ? 4 : 0));
          if (r < 4) r = 0;
        } else {
          r = 6;
        }
      }
      if (r) {
        v = zero_window(std::max(nd - r, ONE_PLY), true);
        if (v > alpha) v = zero_window(nd, child_cut);
      } else {
        v = zero_window(nd, child_cut);
      }
    }

    pos.UndoMove<Us>(m);
    if (st.stop) return 0;

    if (v > best_value) {
      best_value = v;
      if (PvNode && ss->pv) {
        ss->pv[0] = m;
        int i = 0;
        for (; child_pv[i]; ++i) ss->pv[i + 1] = child_pv[i];
        ss->pv[i + 1] = MOVE_NONE;
      }
      if (v > alpha) {
        best_move = m;
        if (NonPv) break;
        alpha = v;
        if (v >= beta) break;
      }
    }
  }

  if (!move_count) best_value = InCheck ? ply - VALUE_MATE : 0;

  const int bound = best_value >= beta                      ? BOUND_LOWER
                    : PvNode && best_value > alpha_start ? BOUND_EXACT
                                                         : BOUND_UPPER;
  if (!InCheck && best_value >= beta && best_move && !is_tactical(best_move)) {
    RewardQuiet(st, pos, ss, best_move);
    PenaliseQuiets(st, pos, quiets, quiet_count);
  }
  st.table->store(key, best_move, uint32_t(depth), bound, value_to_tt(best_value, ply), ss->static_eval);
  return best_value;
}

#define VX_SEARCH(H, L, C, PV, V, IC)                                                                            \
  template Value Search<H, L, C, PV, V, IC>(SearchState&, Position&, SearchStack*, Value, Value, int, bool);
#define VX_SEARCH_SIDE(H, L, C)                                                                                  \
  VX_SEARCH(H, L, C, true, NORMAL, false)                                                                        \
  VX_SEARCH(H, L, C, true, PLAIN, false)                                                                         \
  VX_SEARCH(H, L, C, true, NORMAL, true)                                                                         \
  VX_SEARCH(H, L, C, true, PLAIN, true)                                                                          \
  VX_SEARCH(H, L, C, false, NORMAL, false)                                                                       \
  VX_SEARCH(H, L, C, false, PLAIN, false)                                                                        \
  VX_SEARCH(H, L, C, false, NORMAL, true)                                                                        \
  VX_SEARCH(H, L, C, false, EXCLUSION, false)                                                                    \
  VX_SEARCH(H, L, C, false, EXCLUSION, true)
#define VX_SEARCH_BUILD(H, L) VX_SEARCH_SIDE(H, L, WHITE) VX_SEARCH_SIDE(H, L, BLACK)
VX_SEARCH_BUILD(true, false)
VX_SEARCH_BUILD(false, false)
VX_SEARCH_BUILD(true, true)
VX_SEARCH_BUILD(false, true)

}  // namespace vx

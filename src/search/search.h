// The recursive alpha-beta search and the quiescence search, with the tables
// their move loops read.
#pragma once

#include <cstdint>

#include "board/position.h"
#include "engine/output.h"
#include "eval/evaluate.h"
#include "search/stack.h"
#include "search/strength.h"
#include "search/thread.h"
#include "search/tt.h"

namespace vx {

constexpr int ONE_PLY = 4;

// How a node was entered. PLAIN nodes skip the pruning before the move loop
// (null-move children, internal iterative deepening, verification);
// EXCLUSION nodes are singular tests that skip the parent's TT move.
enum SearchVariant : int { NORMAL, PLAIN, EXCLUSION };

enum : int { REDUCTION_NONPV = 0, REDUCTION_PV = 1 };
// Read as [kind][min(depth, 256) * 64 + min(move count, 64)]: a move count of
// 64 reads entry 0 of the next row, and the row past the last is zero.
extern int8_t Reductions[2][257 * 64 + 1];
// Rows: non-PV (improving + 2 * cut_node), PV (4 + improving); by depth units.
extern int32_t MoveCountLimits[6][64];

void InitSearchTables();

inline int Reduction(int kind, int depth, int move_count) {
  return Reductions[kind][(depth < 256 ? depth : 256) * 64 + (move_count < 64 ? move_count : 64)];
}

// Limited: the strength-limited copy (move skipping, evaluation noise, no
// tablebase probes, the limited limit check); otherwise the full search.
template <bool HwPopcnt, bool Limited, Color Us, bool PvNode, SearchVariant Variant, bool InCheck>
Value Search(SearchState& st, Position& pos, SearchStack* ss, Value alpha, Value beta, int depth, bool cut_node);

// qdepth counts plies below the horizon: 0, -1, -2, ...
template <bool HwPopcnt, bool Limited, Color Us, bool PvNode, bool InCheck>
Value QSearch(SearchState& st, Position& pos, SearchStack* ss, Value alpha, Value beta, int qdepth);

// The search of the child after a move (G: the move gave check) with the
// child's own window; below one ply the quiescence search.
template <bool H, bool L, Color Them, bool PvChild, bool G>
Value ChildSearch(SearchState& st, Position& pos, SearchStack* ss, Value lo, Value hi, int depth, bool cut_node) {
  if (depth < ONE_PLY) return QSearch<H, L, Them, PvChild, G>(st, pos, ss + 1, lo, hi, 0);
  return Search<H, L, Them, PvChild, NORMAL, G>(st, pos, ss + 1, lo, hi, depth, cut_node);
}

// A zero-window search around alpha and a full-window PV search, negated.
template <bool H, bool L, Color Them, bool G>
Value ZeroWindowChild(SearchState& st, Position& pos, SearchStack* ss, Value alpha, int depth, bool cut_node) {
  return -ChildSearch<H, L, Them, false, G>(st, pos, ss, -alpha - 1, -alpha, depth, cut_node);
}

template <bool H, bool L, Color Them, bool G>
Value PvChild(SearchState& st, Position& pos, SearchStack* ss, Value alpha, Value beta, int depth) {
  return -ChildSearch<H, L, Them, true, G>(st, pos, ss, -beta, -alpha, depth, false);
}

// The side has a knight, bishop, rook or queen (read from the material key).
template <Color Us> inline bool HasNonPawnMaterial(const Position& pos) {
  return (pos.state->material_key >> (Us * 24 + 4)) & 0xFFFFF;
}

// Depth of the null-move search: a quarter of the depth plus three plies
// less, and up to three plies less again the further eval is above beta.
inline int NullMoveDepth(int depth, Value eval, Value beta) {
  const int margin = (eval - beta) / 64;
  return depth - (depth + 48) / 4 - (margin < 12 ? margin : 12);
}

// A pawn move onto the mover's sixth, seventh or eighth rank.
template <Color Us> inline bool IsAdvancedPawnMove(const Position& pos, Move m) {
  return type_of(pos.piece_on(from_sq(m))) == PAWN && (Us == WHITE ? to_sq(m) >= 40 : to_sq(m) <= 23);
}

// Static evaluation of a node, VALUE_INFINITE when in check; the table's
// stored evaluation is used when it has one. Fills the node's AttackInfo.
// A limited search adds noise to an evaluation computed after a table miss.
template <bool HwPopcnt, bool Limited, bool InCheck>
inline Value NodeStaticEval(SearchState& st, const Position& pos, AttackInfo& ai, bool hit, const TTEntry& tte) {
  if (InCheck || (hit && tte.eval != VALUE_INFINITE)) {
    ComputeAttackInfo(pos, ai);
    return InCheck ? VALUE_INFINITE : tte.eval;
  }
  const Value v = evaluate<HwPopcnt>(st, pos, ai);
  if constexpr (Limited) return hit ? v : v + EvalNoise(st.elo);
  return v;
}

// The working evaluation: the static one tightened by the table's bounds.
inline Value RefineEval(Value eval, const TTEntry& tte, int ply) {
  const Value upper = value_from_tt(tte.upper, ply);
  if (tte.upper_depth() && upper != VALUE_INFINITE && upper < eval) eval = upper;
  const Value lower = value_from_tt(tte.lower, ply);
  if (tte.lower_depth() && lower != VALUE_INFINITE && lower > eval) eval = lower;
  return eval;
}

// Milliseconds since the search started (the start is kept as 32 bits).
inline int32_t ElapsedMs(const SearchState& st) { return int32_t(uint32_t(Clock()) - st.search_start); }

}  // namespace vx

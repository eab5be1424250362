#include "eval/evaluate.h"

#include <algorithm>
#include <cstdlib>

#include "engine/options.h"
#include "eval/endgame.h"
#include "eval/eval_info.h"
#include "eval/kingsafety.h"
#include "eval/material.h"
#include "eval/pawns.h"
#include "eval/pieces.h"
#include "eval/psq.h"
#include "eval/threats.h"
#include "search/thread.h"

namespace vx {

namespace {

constexpr ValuePair P(int v) { return make_pair(v, v); }

// By 2 x pawn-up code + (the side ahead has a passed pawn).
constexpr ValuePair PawnUp[14] = {0,      0,     0,      P(-82), 0,      P(82),  P(-90),
                                  P(-60), P(90), P(60),  P(-46), P(-38), P(46), P(38)};

template <bool Trace, typename F>
inline void traced(EvalInfo& ei, EvalTrace* t, EvalGroup g, Color c, F&& f) {
  if constexpr (Trace) {
    const ValuePair before = ei.score;
    f();
    EvalTrace::Row& row = t->rows[g];
    (c == WHITE ? row.white : row.black) += ei.score - before;
    row.total += ei.score - before;
  } else {
    f();
  }
}

// Trace rows that do not come from the term routines: material, imbalance,
// piece-square and pawn structure split by colour, pawn-up adjustment.
void trace_static_rows(const Position& pos, const MaterialEntry& me, ValuePair pawn_up, EvalTrace& t) {
  ValuePair material[2] = {0, 0}, psq_sum[2] = {0, 0};
  for (Square s = 0; s < 64; ++s) {
    const Piece p = pos.board[s];
    if (p == NO_PIECE) continue;
    const ValuePair m = make_pair(PieceValueMg[type_of(p)], PieceValueEg[type_of(p)]);
    material[color_of(p)] += color_of(p) == WHITE ? m : -m;
    psq_sum[color_of(p)] += PSQ[p][s];
  }
  t.rows[GROUP_MATERIAL] = {material[WHITE], material[BLACK], material[WHITE] + material[BLACK], true};
  t.rows[GROUP_IMBALANCE] = {0, 0, me.value, false};
  const ValuePair psq_total = pos.state->psq - material[WHITE] - material[BLACK];
  const ValuePair psq_white = psq_sum[WHITE] - material[WHITE];
  t.rows[GROUP_PSQ] = {psq_white, psq_total - psq_white, psq_total, true};
  PawnEntry scratch;
  ValuePair sides[2];
  compute_pawn_entry(scratch, pos, sides);
  t.rows[GROUP_PAWNS] = {sides[WHITE], sides[BLACK], scratch.score, true};
  t.rows[GROUP_PAWN_UP] = {0, 0, pawn_up, false};
}

template <Color C>
Bitboard pawn_attack_set(const Position& pos) {
  return shift_cap7<C>(pos.of(C, PAWN)) | shift_cap9<C>(pos.of(C, PAWN));
}

void setup_eval_info(const Position& pos, EvalInfo& ei, AttackInfo& ai) {
  const PawnEntry& pe = *ei.pawns;
  ei.pawnAttacks[WHITE] = pawn_attack_set<WHITE>(pos);
  ei.pawnAttacks[BLACK] = pawn_attack_set<BLACK>(pos);
  ai.white_king_blockers = ai.black_king_blockers = 0;
  for (Color c : {WHITE, BLACK}) {
    attacked(ai, c) = ei.pawnAttacks[c];
    const Square k = pos.king_square(c);
    ei.kingRing[c] = king_attacks[k] | sq_bb(k);
    ei.kingZone[c] = king_zone[c][k];
    ei.kingDanger[c] = pe.kingDanger[c];
    ei.zoneAttackCount[c] = pe.zoneAttacks[c];
    ei.adjacentAttackCount[c] = pe.ringAttacks[c];
    ei.attackWeight[c] = pe.attackWeight[c];
    ei.attackerCount[c] = ei.attackPattern[c] = pe.zoneAttacks[c] > 0 ? 1 : 0;
  }
  ei.threatened = (pos.by_color(WHITE) & ~pos.of(WHITE, PAWN) & ei.pawnAttacks[BLACK]) |
                  (pos.by_color(BLACK) & ~pos.of(BLACK, PAWN) & ei.pawnAttacks[WHITE]);
}

// Blend by phase, then complexity, few pawn files and the scale factor.
template <bool Trace>
Value finish(const Position& pos, const MaterialEntry& me, const PawnEntry& pe, ValuePair s, EvalTrace* t) {
  int v = blend_phases(s, me.phase);
  if constexpr (Trace) t->blended = v;
  v = apply_complexity(v, pe.complexity);
  if constexpr (Trace) t->after_complexity = v;
  const Color strong = v >= 0 ? WHITE : BLACK;
  v = apply_few_files(v, pe.fewFiles[strong]);
  if constexpr (Trace) t->after_few_files = v;

  int factor = SCALE_NO_VERDICT;
  if (me.scaleFn[strong]) factor = ScaleFunctions[me.scaleFn[strong]](pos);
  if (factor == SCALE_NO_VERDICT) factor = me.scale[strong];
  v = apply_scale_factor(v, factor);
  if constexpr (Trace) {
    t->phase = me.phase;
    t->complexity = 4 * pe.complexity - 60;
    t->few_files = pe.fewFiles[strong];
    t->scale_factor = factor;
    t->after_scale = v;
  }
  return pos.side_to_move == WHITE ? v : -v;
}

// One piece kind of White, then of Black.
template <PieceType Kind, bool Hw, bool Trace>
void both_sides(const Position& pos, EvalInfo& ei, AttackInfo& ai, const Bitboard area[2], EvalTrace* t) {
  constexpr EvalGroup g = Kind == KNIGHT ? GROUP_KNIGHTS : Kind == BISHOPS ? GROUP_BISHOPS
                          : Kind == ROOK ? GROUP_ROOKS : GROUP_QUEENS;
  auto pieces = [&](Color c) { return Kind == BISHOPS ? pos.bishops(c) : pos.of(c, Kind); };
  traced<Trace>(ei, t, g, WHITE, [&] { evaluate_pieces<Kind, WHITE, Hw>(pos, ei, pieces(WHITE), ai, area[WHITE]); });
  traced<Trace>(ei, t, g, BLACK, [&] { evaluate_pieces<Kind, BLACK, Hw>(pos, ei, pieces(BLACK), ai, area[BLACK]); });
}

// Pieces of both sides with their mobility areas, then the king attacks.
template <bool Hw, bool Trace>
void all_pieces(const Position& pos, EvalInfo& ei, AttackInfo& ai, EvalTrace* t) {
  Bitboard area[2];
  for (Color c : {WHITE, BLACK})
    area[c] = ~(pos.of(c, PAWN) | pos.of(c, KING) | attacked(ai, ~c));
  both_sides<KNIGHT, Hw, Trace>(pos, ei, ai, area, t);
  both_sides<BISHOPS, Hw, Trace>(pos, ei, ai, area, t);
  area[WHITE] &= ~ai.attacked_by_black;
  area[BLACK] &= ~ai.attacked_by_white;
  both_sides<ROOK, Hw, Trace>(pos, ei, ai, area, t);
  area[WHITE] &= ~ai.attacked_by_black;
  area[BLACK] &= ~ai.attacked_by_white;
  both_sides<QUEEN, Hw, Trace>(pos, ei, ai, area, t);

  for (Color c : {WHITE, BLACK}) {
    ei.attacksBeforeKings[c] = attacked(ai, c);
    attacked(ai, c) |= king_attacks[pos.king_square(c)];
  }
  ei.threatened |= (pos.by_color(WHITE) & ai.attacked_by_black & ~ai.attacked_by_white) |
                   (pos.by_color(BLACK) & ai.attacked_by_white & ~ai.attacked_by_black);
}

// Terms that need every attack of both sides.
template <bool Hw, bool Trace>
void late_terms(const Position& pos, EvalInfo& ei, AttackInfo& ai, EvalTrace* t) {
  traced<Trace>(ei, t, GROUP_THREATS, WHITE, [&] { evaluate_threats<WHITE, Hw>(pos, ei, ai); });
  traced<Trace>(ei, t, GROUP_THREATS, BLACK, [&] { evaluate_threats<BLACK, Hw>(pos, ei, ai); });
  traced<Trace>(ei, t, GROUP_KING_SAFETY, WHITE, [&] { evaluate_king_safety<WHITE, Hw>(pos, ei, ai); });
  traced<Trace>(ei, t, GROUP_KING_SAFETY, BLACK, [&] { evaluate_king_safety<BLACK, Hw>(pos, ei, ai); });
  traced<Trace>(ei, t, GROUP_PASSED, WHITE, [&] { evaluate_passed_pawns<WHITE, Hw>(pos, ei, ai); });
  traced<Trace>(ei, t, GROUP_PASSED, BLACK, [&] { evaluate_passed_pawns<BLACK, Hw>(pos, ei, ai); });
}

template <bool Hw, bool Trace>
Value evaluate_impl(SearchState& ss, const Position& pos, AttackInfo& ai, EvalTrace* t) {
  const MaterialEntry& me = MaterialTable::probe(pos, ss);
  if (me.evalFn) {
    // The caller relies on the attack sets whichever way the score is found.
    ComputeAttackInfo(pos, ai);
    const Value v = EvalFunctions[me.evalFn](pos);
    if constexpr (Trace) {
      t->endgame_function = true;
      t->phase = me.phase;
      t->result = v;
    }
    return v;
  }

  EvalInfo ei{};
  ei.material = &me;
  ei.score = me.value + pos.state->psq;
  const PawnEntry& pe = PawnTable::probe(pos, ss);
  ei.pawns = &pe;
  ei.score += pe.score;
  ValuePair pawn_up = 0;
  if (const int k = me.pawnUpCode) {
    const Color ahead = (k & 1) ? WHITE : BLACK;
    pawn_up = PawnUp[2 * k + (pe.passed[ahead] ? 1 : 0)];
    ei.score += pawn_up;
  }
  if constexpr (Trace) trace_static_rows(pos, me, pawn_up, *t);

  setup_eval_info(pos, ei, ai);

  all_pieces<Hw, Trace>(pos, ei, ai, t);
  late_terms<Hw, Trace>(pos, ei, ai, t);

  const ValuePair tempo = ss.contempt[WHITE] + (pos.side_to_move == WHITE ? TEMPO : -TEMPO);
  const ValuePair s = ei.score + tempo;
  if constexpr (Trace) {
    t->rows[GROUP_TEMPO_CONTEMPT] = {0, 0, tempo, false};
    t->sum = s;
  }
  const Value v = finish<Trace>(pos, me, pe, s, t);
  if constexpr (Trace) t->result = v;
  return v;
}

}  // namespace

template <bool HwPopcnt>
Value evaluate(SearchState& ss, const Position& pos, AttackInfo& ai) {
  return evaluate_impl<HwPopcnt, false>(ss, pos, ai, nullptr);
}

template Value evaluate<true>(SearchState&, const Position&, AttackInfo&);
template Value evaluate<false>(SearchState&, const Position&, AttackInfo&);

Value evaluate_trace(SearchState& ss, const Position& pos, AttackInfo& ai, EvalTrace& trace) {
  trace = EvalTrace{};
  return evaluate_impl<false, true>(ss, pos, ai, &trace);
}

int blend_phases(ValuePair s, int phase) {
  return (mg_value(s) * phase + eg_value(s) * (PHASE_MIDGAME - phase)) / PHASE_MIDGAME;
}

// A simple position loses up to half its value, a complex one gains.
int apply_complexity(int v, int complexity_count) {
  const int sign = (v > 0) - (v < 0);
  return v + sign * std::max(4 * complexity_count - 60, -std::abs(v / 2));
}

int apply_few_files(int v, int few_files) {
  const int d = std::min(std::abs(v), 128) * few_files / 64;
  return v > 0 ? v - d : v + d;
}

int apply_scale_factor(int v, int factor) { return factor * v / 64; }

int psq_noise_for_elo(int elo) { return std::max(0, int((2150.0 - elo) * 0.039384615384615386)); }

void init_eval(bool noise, int elo) {
  init_psq(noise ? psq_noise_for_elo(elo) : 0);
  init_piece_tables();
  init_king_safety_tables();
  init_threat_tables();
}

void init_eval(bool noise) { init_eval(noise, noise ? OptionInt("UCI_Elo") : 0); }

}  // namespace vx

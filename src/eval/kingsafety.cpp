#include "eval/kingsafety.h"

#include <algorithm>

#include "eval/pawns.h"

namespace vx {

namespace {

constexpr int KING_DANGER_NB = 385;
int Pattern[256];
ValuePair KingDanger[KING_DANGER_NB];

constexpr ValuePair SafeCheckBonus = make_pair(24, 18);
constexpr int QueenCheckDanger = 26, RookCheckDanger = 22, BishopCheckDanger = 5, KnightCheckDanger = 10;

}  // namespace

template <Color Us, bool HwPopcnt>
void evaluate_king_safety(const Position& pos, EvalInfo& ei, AttackInfo& ai) {
  constexpr Color Them = ~Us;
  const int shelter = ei.pawns->shelter[Us];
  add_score<Us>(ei, make_pair(shelter, 0));
  if (!ei.attackerCount[Them]) return;

  const Square ksq = pos.king_square(Us);
  const Bitboard undefended = ei.attacksBeforeKings[Them] & ~ei.attacksBeforeKings[Us] & ei.kingRing[Us];
  int& danger = ei.kingDanger[Us];
  danger += Pattern[ei.attackPattern[Them] & 255] + 3 * ei.adjacentAttackCount[Them] - shelter / 8 +
            std::min((ei.attackWeight[Them] * ei.attackerCount[Them]) >> 3, 57) +
            11 * popcount<HwPopcnt>(undefended);
  if (!(king_attacks[ksq] & ~(attacked(ai, Them) | pos.by_color(Us)))) danger += 8;
  if (!pos.of(Them, QUEEN)) danger -= 50;

  const Bitboard supported = king_attacks[pos.king_square(Them)] | ei.pawnAttacks[Them] |
                             ei.attackedBy[Them][KNIGHT] | ei.xrayAttacks[Them][BISHOPS] |
                             ei.xrayAttacks[Them][ROOK];
  const Bitboard contact = undefended & ei.attackedBy[Them][QUEEN] & ~pos.by_color(Them) & supported;
  danger += 51 * popcount<HwPopcnt>(contact);

  const Bitboard safe = ~(attacked(ai, Us) | pos.by_color(Them));
  const Bitboard occ = pos.occupied();
  const Bitboard r = RookAttacks(ksq, occ), b = BishopAttacks(ksq, occ);
  const Bitboard checks[4] = {(r | b) & ei.attackedBy[Them][QUEEN] & safe, r & ei.attackedBy[Them][ROOK] & safe,
                              b & ei.attackedBy[Them][BISHOPS] & safe,
                              knight_attacks[ksq] & ei.attackedBy[Them][KNIGHT] & safe};
  const int weights[4] = {QueenCheckDanger, RookCheckDanger, BishopCheckDanger, KnightCheckDanger};
  for (int i = 0; i < 4; ++i)
    if (checks[i]) {
      danger += weights[i] * popcount<HwPopcnt>(checks[i]);
      add_score<Them>(ei, SafeCheckBonus);
    }
  add_score<Us>(ei, KingDanger[std::clamp(danger, 0, KING_DANGER_NB - 1)]);
}

void init_king_safety_tables() {
  for (int i = 0; i < 256; ++i) {
    const int p = i & 1, n = (i >> 1) & 3, b = (i >> 3) & 3, r = (i >> 5) & 3, q = i >> 7;
    int v = 0;
    if (q) v = (r >= 1 ? 2 : 0) + (n >= 1 ? 5 : 0);
    else if (r >= 1) v = (b >= 1 ? 1 : 0) + (n >= 1 ? 1 : 0) - (p ? 2 : 0);
    else if (b >= 1) v = (n >= 1 ? 3 : 0) - (b >= 2 ? 3 : 0) + (p ? 1 : 0);
    Pattern[i] = v;
  }
  double acc = 0, step = 0.049;
  for (int i = 0; i < KING_DANGER_NB; ++i) {
    acc += step;
    acc = std::min(acc, i * 0.0001546 * i);
    if (acc >= 5.0) step = std::max(step - 0.001, 0.01);
    KingDanger[i] = make_pair(int(-320 * acc), 0);
  }
}

int attack_pattern_value(int index) { return Pattern[index]; }
ValuePair king_danger_value(int index) { return KingDanger[index]; }

template void evaluate_king_safety<WHITE, true>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_king_safety<BLACK, true>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_king_safety<WHITE, false>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_king_safety<BLACK, false>(const Position&, EvalInfo&, AttackInfo&);

}  // namespace vx

#include "eval/threats.h"

#include <algorithm>

#include "eval/pawns.h"

namespace vx {

namespace {

constexpr ValuePair S(int mg, int eg) { return make_pair(mg, eg); }

// By piece code type: none, pawn, knight, both bishops, rook, queen, king.
constexpr ValuePair ThreatByMinor[8] = {0, S(0, 24), S(30, 42), S(31, 53), S(31, 53), S(38, 106), S(42, 103), 0};
constexpr ValuePair ThreatByMajor[8] = {0, S(1, 17), S(25, 59), S(28, 59), S(28, 59), S(1, 46), S(28, 46), 0};
constexpr ValuePair Hanging[8] = {0, S(33, 26), S(28, 22), S(28, 22), S(28, 22), S(31, 28), S(29, 27), 0};
constexpr ValuePair ThreatByMinorOnDefended[8] = {0, 0, S(22, 42), S(28, 47), S(28, 47), S(39, 92), S(40, 110), 0};
constexpr ValuePair ThreatByRookOnDefended[8] = {0, 0, S(11, 14), S(1, 7), S(1, 7), S(9, 18), S(28, 51), 0};
constexpr ValuePair ThreatBySafePawn[8] = {0, 0, S(104, 128), S(84, 100), S(84, 100), S(103, 195), S(107, 202), 0};
constexpr ValuePair KingThreatOne = S(6, 61), KingThreatMore = S(12, 122);
constexpr ValuePair ThreatByHangingPawn = S(36, 58);
constexpr ValuePair PawnPushThreat = S(24, 24);
constexpr ValuePair RookBlocksOwnPasser = S(23, 22);

constexpr int PassedDynamic[8] = {0, 7, 13, 53, 116, 225, 354, 0};
int Unstoppable[8];

template <Color Us>
void add_each(const Position& pos, EvalInfo& ei, Bitboard targets, const ValuePair* table) {
  while (targets) add_score<Us>(ei, table[type_of(pos.board[pop_lsb(targets)])]);
}

template <Color C>
Bitboard pawn_attacks_of(Bitboard pawns) {
  return shift_cap7<C>(pawns) | shift_cap9<C>(pawns);
}

}  // namespace

template <Color Us, bool HwPopcnt>
void evaluate_threats(const Position& pos, EvalInfo& ei, AttackInfo& ai) {
  constexpr Color Them = ~Us;
  const Bitboard them = pos.by_color(Them);
  const Bitboard targets = them & attacked(ai, Us);
  const Bitboard minors = ei.attackedBy[Us][KNIGHT] | ei.attackedBy[Us][BISHOPS];

  const Bitboard weak = targets & ~ei.pawnAttacks[Them];
  add_each<Us>(pos, ei, weak & minors, ThreatByMinor);
  add_each<Us>(pos, ei, weak & (ei.attackedBy[Us][ROOK] | ei.attackedBy[Us][QUEEN]), ThreatByMajor);
  if (const Bitboard k = weak & king_attacks[pos.king_square(Us)])
    add_score<Us>(ei, more_than_one(k) ? KingThreatMore : KingThreatOne);
  add_each<Us>(pos, ei, weak & ~attacked(ai, Them), Hanging);

  const Bitboard defended = targets & ~pos.of(Them, PAWN) & ei.pawnAttacks[Them] & ~ei.pawnAttacks[Us];
  add_each<Us>(pos, ei, defended & minors, ThreatByMinorOnDefended);
  add_each<Us>(pos, ei, defended & ei.attackedBy[Us][ROOK], ThreatByRookOnDefended);

  const Bitboard pawn_targets = (them & ~pos.of(Them, PAWN)) & ei.pawnAttacks[Us];
  if (pawn_targets) {
    const Bitboard safe_pawns = pos.of(Us, PAWN) & ~ei.threatened;
    const Bitboard safe_targets = pawn_targets & pawn_attacks_of<Us>(safe_pawns);
    if (safe_targets != pawn_targets) add_score<Us>(ei, ThreatByHangingPawn);
    add_each<Us>(pos, ei, safe_targets, ThreatBySafePawn);
  }
}

template <Color Us, bool HwPopcnt>
void evaluate_passed_pawns(const Position& pos, EvalInfo& ei, AttackInfo& ai) {
  constexpr Color Them = ~Us;
  constexpr int Up = Us == WHITE ? 8 : -8;
  const Bitboard occ = pos.occupied(), us = pos.by_color(Us), them = pos.by_color(Them);
  const Bitboard our_attacks = attacked(ai, Us), their_attacks = attacked(ai, Them);
  const Bitboard their_heavy = pos.of(Them, ROOK) | pos.of(Them, QUEEN);
  const Bitboard our_heavy = pos.of(Us, ROOK) | pos.of(Us, QUEEN);
  const bool them_bare = !(them & ~pos.of(Them, PAWN) & ~pos.of(Them, KING));
  int best = 0;

  for (Bitboard b = ei.pawns->passed[Us]; b;) {
    const Square s = pop_lsb(b);
    const Square front = s + Up;
    const int r = relative_rank(Us, s);
    if (occ & sq_bb(front)) {
      const bool lone_rook = pos.of(Us, ROOK) == sq_bb(front) && r == 6 &&
                             !(us & ~pos.of(Us, PAWN) & ~pos.of(Us, KING) & ~pos.of(Us, ROOK));
      if (lone_rook) add_score<Us>(ei, -RookBlocksOwnPasser);
      continue;
    }
    const Bitboard path = forward_file[Us][s];
    const Bitboard behind_ray = RookAttacks(s, occ) & forward_file[Them][s] & occ;
    const bool path_covered = !(path & ~our_attacks);
    const Bitboard defended = (path_covered || (behind_ray & our_heavy)) ? path : path & our_attacks;
    const Bitboard unsafe = (behind_ray & their_heavy) ? path : path & (their_attacks | them);

    int k;
    if (unsafe) k = (unsafe & sq_bb(front)) ? 0 : 97;
    else if (!(path & us)) k = 252;
    else k = 226;
    if (defended == path) k += path_covered ? 178 : 82;
    else if (defended & sq_bb(front)) k += 61;
    if (k) {
      const int x = PassedDynamic[r] * k / 256;
      add_score<Us>(ei, make_pair(x, x));
    }
    if (!unsafe && !(path & us) && them_bare) {
      const int to_go = std::min(7 - r, 5);
      const int reach = distance(pos.king_square(Them), s) - (pos.side_to_move == Them ? 1 : 0);
      if (path_covered || to_go < reach) best = std::max(best, r);
    }
  }
  if (best > 0) add_score<Us>(ei, Unstoppable[best]);

  // Pawn pushes that attack enemy pieces.
  const Bitboard empty = ~occ;
  const Bitboard single = shift_up<Us>(pos.of(Us, PAWN)) & empty;
  const Bitboard twice = shift_up<Us>(single & rank_bb(Us == WHITE ? 2 : 5)) & empty;
  const Bitboard pushes = (single | twice) & ~ei.pawnAttacks[Them];
  const Bitboard safe_pushes = pushes & (~their_attacks | our_attacks);
  const Bitboard hit = pawn_attacks_of<Us>(safe_pushes) & them & ~pos.of(Them, PAWN) & ~ei.pawnAttacks[Us];
  add_score<Us>(ei, PawnPushThreat * popcount<HwPopcnt>(hit));
}

void init_threat_tables() {
  for (int r = 0; r < 8; ++r) Unstoppable[r] = r >= 1 && r <= 6 ? int(25.6 * r + 93.44) : 0;
}

template void evaluate_threats<WHITE, true>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_threats<BLACK, true>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_threats<WHITE, false>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_threats<BLACK, false>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_passed_pawns<WHITE, true>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_passed_pawns<BLACK, true>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_passed_pawns<WHITE, false>(const Position&, EvalInfo&, AttackInfo&);
template void evaluate_passed_pawns<BLACK, false>(const Position&, EvalInfo&, AttackInfo&);

}  // namespace vx

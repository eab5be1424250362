#include "search/strength.h"

#include <algorithm>
#include <cmath>

#include "board/attacks.h"
#include "board/see.h"
#include "eval/evaluate.h"
#include "eval/material.h"

namespace vx {

namespace {

// A game or search move that was really played (not absent, not the null move).
constexpr bool IsPlayed(Move m) { return m != MOVE_NONE && m != MOVE_NULL; }

// One randomised bonus term: 50..150 % of scale, in 1/256 pawn.
int32_t BonusTerm(int scale) { return Random(50, 150) * scale / 100; }

// The weak player's taste for the kind of piece it moves.
int32_t PieceKindBonus(int gap, PieceType mover) {
  switch (mover) {
    case PAWN: return BonusTerm(gap / 90);
    case KNIGHT: return -BonusTerm(gap / 31);
    case QUEEN: return BonusTerm(gap / 45);
    case KING: return -BonusTerm(gap / 45);
    default: return 0;
  }
}

// Overlook chance by the moving piece and the length of its move, before
// the corrections for the opponent's reply threats.
double MoverFactor(const Position& pos, Move m, double x) {
  const Square f = from_sq(m), t = to_sq(m);
  const int d = distance(f, t);
  switch (type_of(pos.piece_on(f))) {
    case PAWN: return is_en_passant(m) ? x * 3.0 : x * 0.5;
    case KNIGHT: return 2 * x;
    case BISHOP_L:
    case BISHOP_D: return d * 0.5 * x;
    case ROOK: return d * 0.25 * x;
    case QUEEN: return file_of(f) == file_of(t) || rank_of(f) == rank_of(t) ? d * 0.25 * x : d * 0.5 * x;
    default: return is_castling(m) ? 2 * x : x * 0.5;
  }
}

}  // namespace

NodeBudgetBase BaseNodeBudget(int elo, bool threat, double phase) {
  const int e = elo - 850;
  const int64_t base = std::max<int64_t>(int64_t(std::pow(2.0, e * 0.01) * 10.0), 3);
  const int64_t n = int64_t((2.0 - phase) * double(base));
  const int64_t quarter_off = std::max<int64_t>(3 * n / 4, 1);
  const int64_t h = n - quarter_off >= 3 ? quarter_off : n - 3;
  int64_t down = int64_t(double(h) / (e * 0.0005128205128205128 + 1.0));
  int64_t up = -n - int64_t(-0.5 / double(n - down) * double(n) * double(n));
  if (threat) {
    down /= 8;
    up /= 2;
  }
  return {n, down, up};
}

int64_t NodeBudget(int elo, bool threat, double phase) {
  const NodeBudgetBase b = BaseNodeBudget(elo, threat, phase);
  if (Random(0, 1) == 1) return b.up > 0 ? b.n + Random(0, int(b.up)) : b.n;
  return b.down > 0 ? std::max<int64_t>(b.n - Random(0, int(b.down)), 3) : b.n;
}

int32_t RootBonus(int elo, const Position& pos, Move m, Move p, Move l) {
  if (elo >= 1700) return 0;
  const int gap = 1500 - elo;
  const Square from = from_sq(m), to = to_sq(m);
  const PieceType mover = type_of(pos.piece_on(from));
  const Color us = color_of(pos.piece_on(from));
  int32_t bonus = elo < 1500 ? PieceKindBonus(gap, mover) : 0;
  if (is_promotion(m) && promotion_type(m) == QUEEN) bonus += BonusTerm((1700 - elo) / 4);
  if (elo >= 1500) return bonus;

  if (is_capture(m)) {
    const PieceType victim = is_en_passant(m) ? PAWN : type_of(pos.piece_on(to));
    bonus += BonusTerm(gap / ((950 - SEE_VALUE[victim]) / 20 + 4));
    if (SEE_VALUE[victim] == SEE_VALUE[mover]) bonus += BonusTerm(gap / 12);
  }
  if (IsPlayed(l) && to == to_sq(l)) bonus += BonusTerm(gap / 8);
  if (IsPlayed(p) && from == to_sq(p)) bonus += to == from_sq(p) ? -BonusTerm(gap / 20) : BonusTerm(gap / 40);
  if (pawn_attacks[us][to] & pos.of(~us, PAWN)) bonus -= BonusTerm(gap / 12);
  return bonus;
}

int32_t BonusOf(const SearchState& st, Move m) {
  const auto it = st.strength_bonus.find(m);
  return it == st.strength_bonus.end() ? 0 : it->second;
}

void ShuffleRootMoves(SearchState& st) {
  std::vector<Move>& moves = st.root_moves;
  const int n = int(moves.size());
  if (n == 0) return;
  const size_t rounds = 4 * st.strength_bonus.size();
  for (size_t k = 0; k < rounds; ++k) {
    const int i = Random(0, n - 1), j = Random(0, n - 1);
    const int32_t bi = BonusOf(st, moves[i]), bj = BonusOf(st, moves[j]);
    if ((i < j && bi < bj) || (j < i && bi > bj)) std::swap(moves[i], moves[j]);
  }
}

int32_t EvalNoise(int elo) {
  const int w = std::max((2000 - elo) / 16, 0) + std::max((1400 - elo) / 16, 0);
  return w == 0 ? 0 : Random(-w, w);
}

int SkipChance(int elo, const Position& pos, Move m, Move p, Move l, bool in_check, int ply) {
  const Square f = from_sq(m), t = to_sq(m);
  const int p_to = IsPlayed(p) ? to_sq(p) : 64;
  const int l_to = IsPlayed(l) ? to_sq(l) : 64;
  if (l_to == t && is_capture(l)) return 0;  // a recapture is always seen

  double x = p_to == f ? 22.5 - elo * 0.00909090909090909 : 56.25 - elo * 0.022727272727272728;
  if (l_to == t) x = x * 0.5;
  x = MoverFactor(pos, m, x);
  if (!(x > 0)) return 0;

  const Piece last_mover = l_to < 64 ? pos.piece_on(l_to) : NO_PIECE;
  if (PieceAttacks(last_mover, l_to & 63, pos.occupied()) & sq_bb(f)) {
    if (type_of(last_mover) == PAWN) return 0;
    x = x * 0.5;
  }
  if (in_check) x = x * 0.3333333333333333;
  if (p_to == f) {
    if (type_of(last_mover) == PAWN) return 0;
    x = x * 0.3333333333333333;
  }
  if (type_of(pos.piece_on(f)) == PAWN && (is_capture(m) || is_promotion(m))) x = x * 0.5;
  const double y = std::min(ply * 20.0, 200.0);
  x = x + y * x * 0.01;
  return std::max(std::min(int(x), 85), 0);
}

bool LastMoveThreatens(const Position& pos, Move last) {
  if (!IsPlayed(last)) return false;
  const Color us = pos.side_to_move, them = ~us;
  const Square s = to_sq(last);
  const Piece pc = pos.piece_on(s);
  if (pc == NO_PIECE || color_of(pc) != them) return false;

  const Bitboard targets = PieceAttacks(pc, s, pos.occupied()) & pos.by_color(us);
  Bitboard more_valuable = 0;
  switch (type_of(pc)) {
    case PAWN: more_valuable = pos.by_color(us) & ~pos.of(us, PAWN); break;
    case KNIGHT:
    case BISHOP_L:
    case BISHOP_D: more_valuable = pos.of(us, ROOK) | pos.of(us, QUEEN); break;
    case ROOK: more_valuable = pos.of(us, QUEEN); break;
    default: break;
  }
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  return (targets & more_valuable) || (targets & ~ai.attacked_by(us));
}

void SetUpStrengthLimit(SearchState& st, const Position& pos, Move prev, Move last, const std::vector<Move>& moves) {
  init_eval(true, st.elo);
  const double phase = MaterialTable::probe(pos, st).phase / double(PHASE_MIDGAME);
  st.limits.nodes = NodeBudget(st.elo, LastMoveThreatens(pos, last), phase);
  for (const Move m : moves) st.strength_bonus[m] = RootBonus(st.elo, pos, m, prev, last);
}

}  // namespace vx

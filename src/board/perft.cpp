#include "board/perft.h"

namespace vx {

namespace {

template <Color Us>
MoveEntry* generate_pseudo(const Position& pos, const AttackInfo& ai, MoveEntry* list) {
  const bool in_check = ai.attacked_by(~Us) & pos.of(Us, KING);
  return in_check ? GenerateEvasions<Us>(pos, ai, neutral_history, list) : GenerateAll<Us>(pos, ai, neutral_history, list);
}

// Leaf moves are counted, not made: the count is the number of generated
// moves that pass the legality test. Legal moves of non-blocking pieces are
// counted in bulk with the population count.
template <bool HwPopcnt, Color Us>
uint64_t perft(Position& pos, int depth) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  MoveEntry list[MAX_MOVES];
  MoveEntry* end = generate_pseudo<Us>(pos, ai, list);
  uint64_t nodes = 0;
  if (depth == 1) {
    // Without pinned pieces or an en-passant capture every generated move is legal.
    if (!(ai.king_blockers(Us) & pos.by_color(Us)) && !pos.state->ep_square) return uint64_t(end - list);
    for (MoveEntry* e = list; e != end; ++e) nodes += IsLegal<Us>(pos, Move(*e), ai);
    return nodes;
  }
  for (MoveEntry* e = list; e != end; ++e) {
    const Move m = Move(*e);
    if (!IsLegal<Us>(pos, m, ai)) continue;
    pos.DoMove<Us>(m);
    nodes += perft<HwPopcnt, ~Us>(pos, depth - 1);
    pos.UndoMove<Us>(m);
  }
  return nodes;
}

template <bool HwPopcnt>
uint64_t perft_any(Position& pos, int depth) {
  return pos.side_to_move == WHITE ? perft<HwPopcnt, WHITE>(pos, depth) : perft<HwPopcnt, BLACK>(pos, depth);
}

}  // namespace

template <bool HwPopcnt>
uint64_t Perft(Position& pos, int depth) {
  return depth < 1 ? 1 : perft_any<HwPopcnt>(pos, depth);
}

template <bool HwPopcnt>
PerftResult PerftDivide(Position& pos, int depth) {
  PerftResult result;
  MoveList moves;
  GenerateLegal(pos, moves);
  for (Move m : moves) {
    uint64_t n = 1;
    if (depth > 1) {
      if (pos.side_to_move == WHITE) {
        pos.DoMove<WHITE>(m);
        n = perft<HwPopcnt, BLACK>(pos, depth - 1);
        pos.UndoMove<WHITE>(m);
      } else {
        pos.DoMove<BLACK>(m);
        n = perft<HwPopcnt, WHITE>(pos, depth - 1);
        pos.UndoMove<BLACK>(m);
      }
    }
    result.divide.emplace_back(m, n);
    result.nodes += n;
  }
  return result;
}

template uint64_t Perft<true>(Position&, int);
template uint64_t Perft<false>(Position&, int);
template PerftResult PerftDivide<true>(Position&, int);
template PerftResult PerftDivide<false>(Position&, int);

}  // namespace vx

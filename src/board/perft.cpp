#include "board/perft.h"

namespace vx {

namespace {

template <Color Us>
MoveEntry* generate_pseudo(const Position& pos, const AttackInfo& ai, MoveEntry* list) {
  const bool in_check = ai.attacked_by(~Us) & pos.of(Us, KING);
  return in_check ? GenerateEvasions<Us>(pos, ai, neutral_history, list) : GenerateAll<Us>(pos, ai, neutral_history, list);
}

// Number of legal moves when the side to move is not in check, has no pinned
// piece and no en-passant capture: then every pseudo-legal move is legal and
// the moves can be counted from the target sets without listing them.
template <bool HwPopcnt, Color Us>
uint64_t bulk_count(const Position& pos, const AttackInfo& ai) {
  const Bitboard own = pos.by_color(Us), them = pos.by_color(~Us), occ = pos.occupied();
  uint64_t n = 0;
  for (Bitboard b = pos.of(Us, KNIGHT); b;) n += popcount<HwPopcnt>(knight_attacks[pop_lsb(b)] & ~own);
  for (Bitboard b = pos.diagonal_sliders(Us); b;) n += popcount<HwPopcnt>(BishopAttacks(pop_lsb(b), occ) & ~own);
  for (Bitboard b = pos.straight_sliders(Us); b;) n += popcount<HwPopcnt>(RookAttacks(pop_lsb(b), occ) & ~own);
  n += popcount<HwPopcnt>(king_attacks[pos.king_square(Us)] & ~own & ~ai.attacked_by(~Us));
  const Bitboard rank7 = Us == WHITE ? rank_bb(6) : rank_bb(1), rank3 = Us == WHITE ? rank_bb(2) : rank_bb(5);
  const Bitboard pawns = pos.of(Us, PAWN) & ~rank7, promoting = pos.of(Us, PAWN) & rank7;
  const Bitboard single = shift_up<Us>(pawns) & ~occ;
  n += popcount<HwPopcnt>(single) + popcount<HwPopcnt>(shift_up<Us>(single & rank3) & ~occ);
  n += popcount<HwPopcnt>(shift_cap9<Us>(pawns) & them) + popcount<HwPopcnt>(shift_cap7<Us>(pawns) & them);
  n += 4 * uint64_t(popcount<HwPopcnt>(shift_up<Us>(promoting) & ~occ) + popcount<HwPopcnt>(shift_cap9<Us>(promoting) & them) +
                    popcount<HwPopcnt>(shift_cap7<Us>(promoting) & them));
  for (uint32_t right : {WHITE_OO << (2 * Us), WHITE_OOO << (2 * Us)}) {
    const CastlingRecord& rec = pos.castling_of(right);
    if (pos.state->castling_rights & right)
      n += IsPseudoLegal<Us>(pos, Move(CASTLING | make_move(rec.king_from, rec.move_to)), ai, false);
  }
  return n;
}

// Leaf moves are counted, not made.
template <bool HwPopcnt, Color Us>
uint64_t perft(Position& pos, int depth) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  const bool in_check = ai.attacked_by(~Us) & pos.of(Us, KING);
  if (depth == 1 && !in_check && !(ai.king_blockers(Us) & pos.by_color(Us)) && !pos.state->ep_square)
    return bulk_count<HwPopcnt, Us>(pos, ai);
  MoveEntry list[MAX_MOVES];
  MoveEntry* end = generate_pseudo<Us>(pos, ai, list);
  uint64_t nodes = 0;
  if (depth == 1) {
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

#include "board/movegen.h"

namespace vx {

uint32_t capture_order[8][8];

namespace {

struct NeutralHistory {
  HistoryTable table;
  constexpr NeutralHistory() : table{} {
    for (auto& row : table)
      for (auto& v : row) v = 1024;
  }
};
constexpr NeutralHistory neutral_tables;

}  // namespace

const HistoryTable& neutral_history = neutral_tables.table;

void InitCaptureOrder() {
  // Most valuable victim first, then least valuable attacker. A promotion
  // without capture ranks between capturing a rook and capturing a queen.
  constexpr int victim_rank[8] = {8, 1, 3, 3, 3, 5, 9, 0};
  for (PieceType attacker = 0; attacker < 8; ++attacker)
    for (PieceType victim = 0; victim < 8; ++victim) {
      uint32_t key = 100 + 8 * victim_rank[victim] - attacker;
      capture_order[attacker][victim] = (key << 16) | (victim ? CAPTURE_FLAG : 0);
    }
}

namespace {

template <Color Us> constexpr int UP = Us == WHITE ? 8 : -8;
template <Color Us> constexpr int STEP9 = Us == WHITE ? 9 : -9;
template <Color Us> constexpr int STEP7 = Us == WHITE ? 7 : -7;
template <Color Us> constexpr Bitboard RANK7 = Us == WHITE ? rank_bb(6) : rank_bb(1);
template <Color Us> constexpr Bitboard RANK3 = Us == WHITE ? rank_bb(2) : rank_bb(5);

inline MoveEntry entry(uint32_t word, Square from, Square to) { return word | uint32_t(from) | uint32_t(to << 6); }

// Entry of a move by piece pc to square to: capture word or history key.
inline MoveEntry keyed(const Position& pos, const HistoryTable& h, Piece pc, Square from, Square to) {
  Piece victim = pos.board[to];
  uint32_t word = victim ? capture_order[type_of(pc)][type_of(victim)] : uint32_t(h[pc][to]) << 16;
  return entry(word, from, to);
}

// Promotions of one pawn move. The complete set is queen, rook, bishop,
// knight; the search set is the queen, plus the knight when it checks.
template <Color Us, bool Complete>
MoveEntry* add_promotions(const Position& pos, MoveEntry* list, Square from, Square to) {
  const uint32_t word = capture_order[PAWN][type_of(pos.board[to])];
  const MoveEntry base = entry(word, from, to);
  *list++ = base | (QUEEN << 12);
  if constexpr (Complete) {
    *list++ = base | (ROOK << 12);
    *list++ = base | (bishop_type_on(to) << 12);
    *list++ = base | (KNIGHT << 12);
  } else {
    if (knight_attacks[to] & pos.of(~Us, KING)) *list++ = base | (KNIGHT << 12);
  }
  return list;
}

template <Color Us>
MoveEntry* add_en_passant(const Position& pos, MoveEntry* list) {
  const Square ep = Square(pos.state->ep_square);
  if (!ep) return list;
  for (Bitboard b = pawn_attacks[~Us][ep] & pos.of(Us, PAWN); b;)
    *list++ = entry(capture_order[PAWN][PAWN] | KIND_SPECIAL, pop_lsb(b), ep);
  return list;
}

// Promotions of pawns on the seventh rank: pushes, then captures along the
// step-9 diagonal, then along the step-7 diagonal.
template <Color Us, bool Complete>
MoveEntry* add_all_promotions(const Position& pos, MoveEntry* list) {
  const Bitboard pawns = pos.of(Us, PAWN) & RANK7<Us>;
  if (!pawns) return list;
  const Bitboard them = pos.by_color(~Us);
  for (Bitboard b = shift_up<Us>(pawns) & ~pos.occupied(); b;) {
    Square to = pop_lsb(b);
    list = add_promotions<Us, Complete>(pos, list, to - UP<Us>, to);
  }
  for (Bitboard b = shift_cap9<Us>(pawns) & them; b;) {
    Square to = pop_lsb(b);
    list = add_promotions<Us, Complete>(pos, list, to - STEP9<Us>, to);
  }
  for (Bitboard b = shift_cap7<Us>(pawns) & them; b;) {
    Square to = pop_lsb(b);
    list = add_promotions<Us, Complete>(pos, list, to - STEP7<Us>, to);
  }
  return list;
}

template <Color Us>
MoveEntry* add_pawn_captures(const Position& pos, MoveEntry* list) {
  const Bitboard pawns = pos.of(Us, PAWN) & ~RANK7<Us>;
  const Bitboard them = pos.by_color(~Us);
  for (Bitboard b = shift_cap9<Us>(pawns) & them; b;) {
    Square to = pop_lsb(b);
    *list++ = entry(capture_order[PAWN][type_of(pos.board[to])], to - STEP9<Us>, to);
  }
  for (Bitboard b = shift_cap7<Us>(pawns) & them; b;) {
    Square to = pop_lsb(b);
    *list++ = entry(capture_order[PAWN][type_of(pos.board[to])], to - STEP7<Us>, to);
  }
  return list;
}

// Non-promoting pushes; each single push is followed by that pawn's double push.
template <Color Us>
MoveEntry* add_pawn_pushes(const Position& pos, const HistoryTable& h, MoveEntry* list) {
  const Bitboard empty = ~pos.occupied();
  const Piece pawn = make_piece(Us, PAWN);
  for (Bitboard b = shift_up<Us>(pos.of(Us, PAWN) & ~RANK7<Us>) & empty; b;) {
    Square to = pop_lsb(b);
    Square from = to - UP<Us>;
    *list++ = entry(uint32_t(h[pawn][to]) << 16, from, to);
    Square to2 = to + UP<Us>;
    if ((sq_bb(to) & RANK3<Us>) && (empty & sq_bb(to2))) *list++ = entry(uint32_t(h[pawn][to2]) << 16, from, to2);
  }
  return list;
}

template <Color Us>
Bitboard piece_attacks(PieceType pt, Square s, Bitboard occ) {
  switch (pt) {
    case KNIGHT: return knight_attacks[s];
    case BISHOP_L:
    case BISHOP_D: return BishopAttacks(s, occ);
    case ROOK: return RookAttacks(s, occ);
    case QUEEN: return QueenAttacks(s, occ);
    default: return king_attacks[s];
  }
}

// Moves of all pieces of one kind (both bishop codes together) to targets.
template <Color Us, PieceType Pt>
MoveEntry* add_piece_moves(const Position& pos, Bitboard targets, const HistoryTable& h, MoveEntry* list) {
  const Bitboard occ = pos.occupied();
  Bitboard pieces = Pt == BISHOP_L ? pos.bishops(Us) : pos.of(Us, Pt);
  while (pieces) {
    Square from = pop_lsb(pieces);
    Piece pc = pos.board[from];
    for (Bitboard b = piece_attacks<Us>(Pt, from, occ) & targets; b;) *list++ = keyed(pos, h, pc, from, pop_lsb(b));
  }
  return list;
}

template <Color Us>
MoveEntry* add_non_pawn_moves(const Position& pos, const AttackInfo& ai, Bitboard targets, const HistoryTable& h,
                              MoveEntry* list) {
  list = add_piece_moves<Us, KNIGHT>(pos, targets, h, list);
  list = add_piece_moves<Us, BISHOP_L>(pos, targets, h, list);
  list = add_piece_moves<Us, ROOK>(pos, targets, h, list);
  list = add_piece_moves<Us, QUEEN>(pos, targets, h, list);
  const Square k = pos.king_square(Us);
  for (Bitboard b = king_attacks[k] & targets & ~ai.attacked_by(~Us); b;)
    *list++ = keyed(pos, h, make_piece(Us, KING), k, pop_lsb(b));
  return list;
}

template <Color Us>
bool can_castle(const Position& pos, const AttackInfo& ai, uint32_t right) {
  if (!(pos.state->castling_rights & right)) return false;
  if ((pos.castle_empty[right] & pos.occupied()) || (pos.castle_safe[right] & ai.attacked_by(~Us))) return false;
  return !(pos.castle_xray[right] & pos.straight_sliders(~Us));
}

template <Color Us>
MoveEntry* add_castling(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list) {
  const Piece king = make_piece(Us, KING);
  for (uint32_t right : {WHITE_OO << (2 * Us), WHITE_OOO << (2 * Us)}) {
    if (!can_castle<Us>(pos, ai, right)) continue;
    const CastlingRecord& rec = pos.castling_of(right);
    *list++ = entry(uint32_t(h[king][rec.king_to]) << 16 | CASTLING, rec.king_from, rec.move_to);
  }
  return list;
}

template <Color Us, bool Complete>
MoveEntry* gen_captures(const Position& pos, const AttackInfo& ai, MoveEntry* list) {
  list = add_en_passant<Us>(pos, list);
  list = add_all_promotions<Us, Complete>(pos, list);
  const Bitboard them = pos.by_color(~Us);
  if (!(them & ai.attacked_by(Us))) return list;
  list = add_non_pawn_moves<Us>(pos, ai, them, neutral_history, list);
  return add_pawn_captures<Us>(pos, list);
}

template <Color Us, bool Complete>
MoveEntry* gen_all(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list) {
  list = add_en_passant<Us>(pos, list);
  list = add_all_promotions<Us, Complete>(pos, list);
  list = add_non_pawn_moves<Us>(pos, ai, ~pos.by_color(Us), h, list);
  list = add_pawn_pushes<Us>(pos, h, list);
  list = add_pawn_captures<Us>(pos, list);
  return add_castling<Us>(pos, ai, h, list);
}

template <Color Us, bool Complete>
MoveEntry* gen_evasions(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list) {
  const Square k = pos.king_square(Us);
  const Bitboard checkers = Checkers<Us>(pos, k);
  Bitboard king_targets = king_attacks[k] & ~(pos.by_color(Us) | ai.attacked_by(~Us));
  for (Bitboard b = checkers & (pos.diagonal_sliders(~Us) | pos.straight_sliders(~Us)); b;) {
    Square c = pop_lsb(b);
    king_targets &= ~(line[k][c] ^ sq_bb(c));
  }
  const Piece king = make_piece(Us, KING);
  for (Bitboard b = king_targets; b;) *list++ = keyed(pos, h, king, k, pop_lsb(b));
  if (!checkers || more_than_one(checkers)) return list;

  const Square checker = lsb(checkers);
  const Square ep = Square(pos.state->ep_square);
  if (ep && checker == ep - UP<Us>) list = add_en_passant<Us>(pos, list);

  const Bitboard pawns = pos.of(Us, PAWN);
  const Bitboard promo_rank = Us == WHITE ? RANK_8_BB : RANK_1_BB;
  const Bitboard cap9 = shift_cap9<Us>(pawns) & checkers, cap7 = shift_cap7<Us>(pawns) & checkers;
  for (auto [set, step] : {std::pair{cap9, STEP9<Us>}, std::pair{cap7, STEP7<Us>}}) {
    if (!set) continue;
    Square from = checker - step;
    if (checkers & promo_rank) list = add_promotions<Us, Complete>(pos, list, from, checker);
    else *list++ = entry(capture_order[PAWN][type_of(pos.board[checker])], from, checker);
  }

  const Bitboard block = between[k][checker];
  const Bitboard empty = ~pos.occupied();
  const Piece pawn = make_piece(Us, PAWN);
  const Bitboard single = shift_up<Us>(pawns) & empty;
  for (Bitboard b = single & block; b;) {
    Square to = pop_lsb(b);
    if (sq_bb(to) & promo_rank) list = add_promotions<Us, Complete>(pos, list, to - UP<Us>, to);
    else *list++ = entry(uint32_t(h[pawn][to]) << 16, to - UP<Us>, to);
  }
  for (Bitboard b = shift_up<Us>(single & RANK3<Us>) & empty & block; b;) {
    Square to = pop_lsb(b);
    *list++ = entry(uint32_t(h[pawn][to]) << 16, to - 2 * UP<Us>, to);
  }
  const Bitboard targets = (block | checkers) & ai.attacked_by(Us);
  list = add_piece_moves<Us, KNIGHT>(pos, targets, h, list);
  list = add_piece_moves<Us, BISHOP_L>(pos, targets, h, list);
  list = add_piece_moves<Us, ROOK>(pos, targets, h, list);
  return add_piece_moves<Us, QUEEN>(pos, targets, h, list);
}

}  // namespace

template <Color Us>
Bitboard Checkers(const Position& pos, Square s) {
  constexpr Color Them = ~Us;
  const Bitboard occ = pos.occupied();
  return (knight_attacks[s] & pos.of(Them, KNIGHT)) | (pawn_attacks[Us][s] & pos.of(Them, PAWN)) |
         (BishopAttacks(s, occ) & pos.diagonal_sliders(Them)) | (RookAttacks(s, occ) & pos.straight_sliders(Them));
}

template <Color Us>
MoveEntry* GenerateCaptures(const Position& pos, const AttackInfo& ai, MoveEntry* list) {
  return gen_captures<Us, true>(pos, ai, list);
}

template <Color Us>
MoveEntry* GenerateSearchCaptures(const Position& pos, const AttackInfo& ai, MoveEntry* list) {
  return gen_captures<Us, false>(pos, ai, list);
}

template <Color Us>
MoveEntry* GenerateQuiets(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list) {
  list = add_non_pawn_moves<Us>(pos, ai, ~pos.occupied(), h, list);
  list = add_pawn_pushes<Us>(pos, h, list);
  return add_castling<Us>(pos, ai, h, list);
}

template <Color Us>
MoveEntry* GenerateEvasions(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list) {
  return gen_evasions<Us, true>(pos, ai, h, list);
}

template <Color Us>
MoveEntry* GenerateSearchEvasions(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list) {
  return gen_evasions<Us, false>(pos, ai, h, list);
}

template <Color Us>
MoveEntry* GenerateAll(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list) {
  return gen_all<Us, true>(pos, ai, h, list);
}

template <Color Us>
MoveEntry* GenerateAllSearch(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list) {
  return gen_all<Us, false>(pos, ai, h, list);
}

template <Color Us>
MoveEntry* GenerateQuietChecks(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list) {
  constexpr Color Them = ~Us;
  const Square ek = pos.king_square(Them);
  const Bitboard occ = pos.occupied(), empty = ~occ;
  const Bitboard discoverers = ai.king_blockers(Them) & pos.by_color(Us);
  auto quiet = [&](Piece pc, Square from, Square to) { return entry(uint32_t(h[pc][to] & 0xFFFF) << 16, from, to); };

  // Discovered checks: the blocker leaves the line to the enemy king.
  for (Bitboard b = discoverers; b;) {
    const Square from = pop_lsb(b);
    const Piece pc = pos.board[from];
    const PieceType pt = type_of(pc);
    Bitboard targets;
    if (pt == PAWN) {
      targets = shift_up<Us>(sq_bb(from) & ~RANK7<Us>) & empty;
    } else {
      targets = piece_attacks<Us>(pt, from, occ) & empty;
      if (pt == KING) targets &= ~ai.attacked_by(Them);
    }
    for (targets &= ~line[ek][from]; targets;) *list++ = quiet(pc, from, pop_lsb(targets));
  }

  // Direct checks by pieces not handled above.
  for (Bitboard b = pos.of(Us, KNIGHT) & knight_two[ek] & ~discoverers; b;) {
    const Square from = pop_lsb(b);
    for (Bitboard t = knight_attacks[from] & knight_attacks[ek] & empty; t;)
      *list++ = quiet(make_piece(Us, KNIGHT), from, pop_lsb(t));
  }
  const Bitboard pawn_checks = pawn_attacks[Them][ek];
  const Bitboard pawns = pos.of(Us, PAWN) & ~RANK7<Us> & ~discoverers;
  const Bitboard single = shift_up<Us>(pawns) & empty;
  const Piece pawn = make_piece(Us, PAWN);
  for (Bitboard t = single & pawn_checks; t;) {
    Square to = pop_lsb(t);
    *list++ = quiet(pawn, to - UP<Us>, to);
  }
  if (relative_rank(Us, ek) == 4) {
    for (Bitboard t = shift_up<Us>(single & RANK3<Us>) & empty & pawn_checks; t;) {
      Square to = pop_lsb(t);
      *list++ = quiet(pawn, to - 2 * UP<Us>, to);
    }
  }
  const Bitboard diag = BishopAttacks(ek, occ) & empty, straight = RookAttacks(ek, occ) & empty;
  const PieceType bishop = bishop_type_on(ek);
  for (Bitboard b = pos.of(Us, bishop) & ~discoverers; b;) {
    const Square from = pop_lsb(b);
    for (Bitboard t = BishopAttacks(from, occ) & diag; t;) *list++ = quiet(make_piece(Us, bishop), from, pop_lsb(t));
  }
  for (Bitboard b = pos.of(Us, ROOK) & ~discoverers; b;) {
    const Square from = pop_lsb(b);
    for (Bitboard t = RookAttacks(from, occ) & straight; t;) *list++ = quiet(make_piece(Us, ROOK), from, pop_lsb(t));
  }
  for (Bitboard b = pos.of(Us, QUEEN) & ~discoverers; b;) {
    const Square from = pop_lsb(b);
    for (Bitboard t = QueenAttacks(from, occ) & (diag | straight); t;)
      *list++ = quiet(make_piece(Us, QUEEN), from, pop_lsb(t));
  }
  return list;
}

template <Color Us>
bool IsLegal(const Position& pos, Move m, const AttackInfo& ai) {
  const Square from = from_sq(m), to = to_sq(m);
  const Square k = pos.king_square(Us);
  if ((ai.king_blockers(Us) & sq_bb(from)) && !(line[from][to] & sq_bb(k))) return false;
  if (!is_en_passant(m)) return true;
  const Bitboard occ = pos.occupied() ^ sq_bb(from) ^ sq_bb(to - UP<Us>);
  if (rank_of(k) == rank_of(from)) {
    const Bitboard enemies = pos.straight_sliders(~Us) & rank_bb(rank_of(from));
    if (enemies && (RookAttacks(k, occ) & enemies)) return false;
  }
  // The captured pawn may also have shielded the king along a diagonal. No
  // game reaches that (the double step would have left the mover in check),
  // but a position set up from text can.
  const Bitboard diagonal = pos.diagonal_sliders(~Us);
  return !(diagonal && (BishopAttacks(k, occ | sq_bb(to)) & diagonal));
}

template <Color Us>
bool IsPseudoLegal(const Position& pos, Move m, const AttackInfo& ai, bool in_check) {
  constexpr Color Them = ~Us;
  const Square from = from_sq(m), to = to_sq(m);
  const Piece pc = pos.board[from];
  if (from == to || pc == NO_PIECE || color_of(pc) != Us) return false;
  const PieceType pt = type_of(pc);
  const int kind = move_kind(m);
  const Bitboard occ = pos.occupied();
  const Bitboard attacked = ai.attacked_by(Them);

  if (is_en_passant(m)) {
    if (pt != PAWN || to != Square(pos.state->ep_square) || pos.board[to] != NO_PIECE) return false;
    if (!(pawn_attacks[Us][from] & sq_bb(to)) || pos.board[to - UP<Us>] != make_piece(Them, PAWN)) return false;
  } else if (is_castling(m)) {
    const uint32_t right = (to > from ? WHITE_OO : WHITE_OOO) << (2 * Us);
    const CastlingRecord& rec = pos.castling_of(right);
    return pt == KING && from == rec.king_from && to == rec.move_to && can_castle<Us>(pos, ai, right) &&
           pos.board[rec.rook_from] == make_piece(Us, ROOK);
  } else if (is_capture(m)) {
    if (pos.board[to] == NO_PIECE || color_of(pos.board[to]) != Them) return false;
  } else if (pos.board[to] != NO_PIECE) {
    return false;
  }

  if (kind == 7 || (is_promotion(m) && pt != PAWN)) return false;
  if (pt == PAWN) {
    const bool last_rank = sq_bb(to) & (Us == WHITE ? RANK_8_BB : RANK_1_BB);
    if (last_rank != bool(is_promotion(m))) return false;
    if ((kind == BISHOP_L || kind == BISHOP_D) && kind != bishop_type_on(to)) return false;
    if (is_capture(m)) {
      if (!(pawn_attacks[Us][from] & sq_bb(to))) return false;
    } else if (to != from + UP<Us> &&
               !(to == from + 2 * UP<Us> && (sq_bb(from) & (Us == WHITE ? rank_bb(1) : rank_bb(6))) &&
                 pos.board[from + UP<Us>] == NO_PIECE)) {
      return false;
    }
  } else if (pt == KING) {
    if (!(king_attacks[from] & sq_bb(to)) || (attacked & sq_bb(to))) return false;
  } else if (!(piece_attacks<Us>(pt, from, occ) & sq_bb(to))) {
    return false;
  }

  if (in_check) {
    const Square k = pos.king_square(Us);
    const Bitboard checkers = Checkers<Us>(pos, k);
    if (checkers) {
      if (pt == KING) {
        for (Bitboard b = checkers & (pos.diagonal_sliders(Them) | pos.straight_sliders(Them)); b;)
          if ((line[pop_lsb(b)][k] & ~checkers) & sq_bb(to)) return false;
        return true;
      }
      if (more_than_one(checkers)) return false;
      const Square checker = lsb(checkers);
      if (is_en_passant(m)) return checker == to - UP<Us>;
      return (between[k][checker] | checkers) & sq_bb(to);
    }
  }
  return true;
}

template <Color Us>
bool GivesCheck(const Position& pos, Move m, const AttackInfo& ai) {
  constexpr Color Them = ~Us;
  const Square from = from_sq(m), to = to_sq(m);
  const Square ek = pos.king_square(Them);
  const Bitboard occ = pos.occupied();
  if ((ai.king_blockers(Them) & sq_bb(from)) && !(line[ek][from] & sq_bb(to))) return true;

  const PieceType pt = type_of(pos.board[from]);
  if (is_castling(m)) {
    const CastlingRecord& rec = pos.castling_of((to > from ? WHITE_OO : WHITE_OOO) << (2 * Us));
    const Bitboard after = (occ ^ sq_bb(rec.king_from) ^ sq_bb(rec.rook_from)) | sq_bb(rec.king_to) | sq_bb(rec.rook_to);
    return (rook_pseudo[rec.rook_to] & sq_bb(ek)) && !(between[ek][rec.rook_to] & after);
  }
  if (is_promotion(m)) {
    const PieceType promoted = promotion_type(m);
    if (promoted == KNIGHT) return knight_attacks[to] & sq_bb(ek);
    const Bitboard pseudo = promoted == ROOK ? rook_pseudo[to] : promoted == QUEEN ? queen_pseudo[to] : bishop_pseudo[to];
    return (pseudo & sq_bb(ek)) && !(between[ek][to] & (occ ^ sq_bb(from)));
  }
  switch (pt) {
    case PAWN:
      if (pawn_attacks[Us][to] & sq_bb(ek)) return true;
      if (is_en_passant(m)) {
        const Bitboard after = (occ ^ sq_bb(from) ^ sq_bb(to - UP<Us>)) | sq_bb(to);
        return (BishopAttacks(ek, after) & pos.diagonal_sliders(Us)) || (RookAttacks(ek, after) & pos.straight_sliders(Us));
      }
      return false;
    case KNIGHT: return knight_attacks[to] & sq_bb(ek);
    case BISHOP_L:
    case BISHOP_D: return (bishop_pseudo[to] & sq_bb(ek)) && !(between[ek][to] & occ);
    case ROOK: return (rook_pseudo[to] & sq_bb(ek)) && !(between[ek][to] & occ);
    case QUEEN: return (queen_pseudo[to] & sq_bb(ek)) && !(between[ek][to] & occ);
    default: return false;
  }
}

template <Color Us>
bool HasLegalMove(const Position& pos, const AttackInfo& ai) {
  MoveEntry list[MAX_MOVES];
  const bool in_check = ai.attacked_by(~Us) & pos.of(Us, KING);
  MoveEntry* end = in_check ? GenerateSearchEvasions<Us>(pos, ai, neutral_history, list)
                            : GenerateAllSearch<Us>(pos, ai, neutral_history, list);
  for (MoveEntry* e = list; e != end; ++e)
    if (IsLegal<Us>(pos, Move(*e), ai)) return true;
  return false;
}

namespace {

template <Color Us>
void generate_legal(const Position& pos, MoveList& out) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  MoveEntry list[MAX_MOVES];
  const bool in_check = ai.attacked_by(~Us) & pos.of(Us, KING);
  MoveEntry* end = in_check ? GenerateEvasions<Us>(pos, ai, neutral_history, list)
                            : GenerateAll<Us>(pos, ai, neutral_history, list);
  out.size = 0;
  for (MoveEntry* e = list; e != end; ++e)
    if (IsLegal<Us>(pos, Move(*e), ai)) out.moves[out.size++] = Move(*e);
}

}  // namespace

void GenerateLegal(const Position& pos, MoveList& list) {
  if (pos.side_to_move == WHITE) generate_legal<WHITE>(pos, list);
  else generate_legal<BLACK>(pos, list);
}

bool InCheck(const Position& pos) {
  const Color us = pos.side_to_move;
  return us == WHITE ? IsAttackedByBlack(pos, pos.king_square(WHITE)) : IsAttackedByWhite(pos, pos.king_square(BLACK));
}

bool HasLegalMove(const Position& pos) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  return pos.side_to_move == WHITE ? HasLegalMove<WHITE>(pos, ai) : HasLegalMove<BLACK>(pos, ai);
}

#define VX_INSTANTIATE(C)                                                                                     \
  template MoveEntry* GenerateCaptures<C>(const Position&, const AttackInfo&, MoveEntry*);                   \
  template MoveEntry* GenerateSearchCaptures<C>(const Position&, const AttackInfo&, MoveEntry*);             \
  template MoveEntry* GenerateQuiets<C>(const Position&, const AttackInfo&, const HistoryTable&, MoveEntry*); \
  template MoveEntry* GenerateEvasions<C>(const Position&, const AttackInfo&, const HistoryTable&, MoveEntry*); \
  template MoveEntry* GenerateSearchEvasions<C>(const Position&, const AttackInfo&, const HistoryTable&,      \
                                                MoveEntry*);                                                  \
  template MoveEntry* GenerateQuietChecks<C>(const Position&, const AttackInfo&, const HistoryTable&, MoveEntry*); \
  template MoveEntry* GenerateAll<C>(const Position&, const AttackInfo&, const HistoryTable&, MoveEntry*);   \
  template MoveEntry* GenerateAllSearch<C>(const Position&, const AttackInfo&, const HistoryTable&, MoveEntry*); \
  template bool IsLegal<C>(const Position&, Move, const AttackInfo&);                                         \
  template bool IsPseudoLegal<C>(const Position&, Move, const AttackInfo&, bool);                             \
  template bool GivesCheck<C>(const Position&, Move, const AttackInfo&);                                      \
  template Bitboard Checkers<C>(const Position&, Square);                                                     \
  template bool HasLegalMove<C>(const Position&, const AttackInfo&);

VX_INSTANTIATE(WHITE)
VX_INSTANTIATE(BLACK)
#undef VX_INSTANTIATE

}  // namespace vx

#include "board/position.h"

#include <algorithm>
#include <cstring>

#include "board/movegen.h"
#include "board/random.h"
#include "eval/psq.h"

namespace vx {

Key zobrist_psq[16][64];
Key zobrist_side;
Key zobrist_ep[8];
Key zobrist_castle[16];
Key exclusion_key[64];
Key material_key_table[16];

namespace {

constexpr CastlingRecord STANDARD_CASTLING[4] = {
    {SQ_H1, SQ_F1, SQ_E1, SQ_G1, SQ_G1},
    {SQ_A1, SQ_D1, SQ_E1, SQ_C1, SQ_C1},
    {SQ_H8, SQ_F8, SQ_E8, SQ_G8, SQ_G8},
    {SQ_A8, SQ_D8, SQ_E8, SQ_C8, SQ_C8},
};

struct KeyGenerator {
  uint64_t state;
  uint64_t multiplier;
  KeyGenerator(uint64_t mul) : multiplier(mul) { SeedRandom(state, 17); }
  uint64_t next() { return xorshift_step(state) * multiplier; }
};

}  // namespace

void InitPositionKeys() {
  KeyGenerator gen(0x2545F4914F6CDD1DULL);
  zobrist_side = gen.next();
  for (Piece p : {1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 12, 13, 14, 15})
    for (Square s = 0; s < 64; ++s) zobrist_psq[p][s] = gen.next();
  for (int f = 0; f < 8; ++f) zobrist_ep[f] = gen.next();
  Key base[4];
  for (Key& k : base) k = gen.next();
  for (int r = 0; r < 16; ++r) {
    zobrist_castle[r] = 0;
    for (int bit = 0; bit < 4; ++bit)
      if (r & (1 << bit)) zobrist_castle[r] ^= base[bit];
  }
  for (Square s = 0; s < 64; ++s) exclusion_key[s] = gen.next();
}

void InitMaterialKeys() {
  KeyGenerator gen(0xDD1D000000000000ULL);
  int counting_bit = 0;
  for (Color c : {WHITE, BLACK}) {
    material_key_table[make_piece(c, KING)] = gen.next();
    for (PieceType t = PAWN; t <= QUEEN; ++t, counting_bit += 4)
      material_key_table[make_piece(c, t)] = gen.next() | (Key(1) << counting_bit);
  }
}

Position::Position() {
  std::memset(static_cast<void*>(this), 0, sizeof(Position));
  std::memcpy(castling, STANDARD_CASTLING, sizeof(castling));
  state = states;
  key_history_top = key_history;
}

Position::Position(const Position& other) { *this = other; }

Position& Position::operator=(const Position& other) {
  if (this != &other) {
    std::memcpy(static_cast<void*>(this), &other, sizeof(Position));
    fix_pointers(other);
  }
  return *this;
}

void Position::fix_pointers(const Position& other) {
  state = states + (other.state - other.states);
  key_history_top = key_history + (other.key_history_top - other.key_history);
}

void Position::put_piece(Piece p, Square s) {
  board[s] = p;
  pieces[p] |= sq_bb(s);
  pieces[p & 8] |= sq_bb(s);
}

void Position::remove_piece(Square s) {
  Piece p = board[s];
  board[s] = NO_PIECE;
  pieces[p] ^= sq_bb(s);
  pieces[p & 8] ^= sq_bb(s);
}

void Position::move_piece(Square from, Square to) {
  Piece p = board[from];
  Bitboard fromto = sq_bb(from) | sq_bb(to);
  board[from] = NO_PIECE;
  board[to] = p;
  pieces[p] ^= fromto;
  pieces[p & 8] ^= fromto;
}

bool Position::SetFromFen(const std::string& fen) {
  side_to_move = WHITE;
  std::memset(board, 0, sizeof(board));
  std::memset(castle_mask, 0, sizeof(castle_mask));
  std::memset(pieces, 0, sizeof(pieces));
  std::memcpy(castling, STANDARD_CASTLING, sizeof(castling));
  state = states;
  std::memset(static_cast<void*>(state), 0, sizeof(PositionState));
  key_history_top = key_history;
  *key_history_top = 0;

  const size_t n = fen.size();
  size_t i = 0;
  auto at = [&](size_t k) { return k < n ? fen[k] : '\0'; };

  // Placement, rank 8 first.
  for (int rank = 7; rank >= 0; --rank) {
    int file = 0;
    while (file < 8) {
      char c = at(i);
      if (c >= '0' && c <= '9') {
        file += c - '0';
      } else if (c == '/' || c == ' ') {
        break;
      } else {
        const char* letter = c ? std::strchr(PIECE_LETTERS, c) : nullptr;
        if (!letter || c == ' ') return false;
        Piece p = Piece(letter - PIECE_LETTERS);
        Square s = make_square(file, rank);
        if (type_of(p) == BISHOP_L || type_of(p) == BISHOP_D) p = make_piece(color_of(p), bishop_type_on(s));
        put_piece(p, s);
        ++file;
      }
      ++i;
    }
    char end = at(i);
    if (end != '/' && end != ' ') return false;
    ++i;
  }

  // Side to move.
  char side = at(i++);
  if (side == 'b') side_to_move = BLACK;
  else if (side != 'w') return false;

  if (at(i) == ' ') {
    ++i;
    // Castling rights: KQkq for the standard array, file letters for Chess960.
    for (char c; (c = at(i)) != ' ' && c != '\0'; ++i) {
      if (c == '-') continue;
      Color us = (c >= 'a' && c <= 'z') ? BLACK : WHITE;
      char upper = char(us == BLACK ? c - 32 : c);
      int back = us == WHITE ? 0 : 56;
      Square king = make_square(4, 0) + back;
      Square rook;
      uint32_t right;
      if (upper == 'K' || upper == 'Q') {
        rook = (upper == 'K' ? SQ_H1 : SQ_A1) + back;
        if (board[king] != make_piece(us, KING) || board[rook] != make_piece(us, ROOK)) continue;
        right = (upper == 'K' ? WHITE_OO : WHITE_OOO) << (2 * us);
        CastlingRecord& rec = castling[__builtin_ctz(right)];
        rec.king_from = king;
        rec.rook_from = rook;
        rec.move_to = rec.king_to;
      } else if (upper >= 'A' && upper <= 'H') {
        Bitboard kings = of(us, KING) & rank_bb(us == WHITE ? 0 : 7);
        rook = make_square(upper - 'A', us == WHITE ? 0 : 7);
        if (!kings || board[rook] != make_piece(us, ROOK)) continue;
        king = lsb(kings);
        right = (rook > king ? WHITE_OO : WHITE_OOO) << (2 * us);
        CastlingRecord& rec = castling[__builtin_ctz(right)];
        rec.king_from = king;
        rec.rook_from = rook;
        rec.move_to = rook;
      } else {
        break;
      }
      state->castling_rights |= right;
      castle_mask[king] |= right;
      castle_mask[rook] |= right;
    }
    if (at(i) == ' ' && at(i + 1) != '-') {
      char f = at(i + 1), r = at(i + 2);
      if (f >= 'a' && f <= 'h' && r >= '1' && r <= '8' && CanBeEnPassantSquare((r - '1') * 8 + (f - 'a')))
        state->ep_square = uint32_t((r - '1') * 8 + (f - 'a'));
    }
  }

  for (int idx = 0; idx < 4; ++idx) {
    const CastlingRecord& rec = castling[idx];
    uint32_t right = 1u << idx;
    Bitboard ends = sq_bb(rec.king_from) | sq_bb(rec.rook_from);
    castle_empty[right] = (between[rec.king_from][rec.king_to] | between[rec.rook_from][rec.rook_to] |
                           sq_bb(rec.king_to) | sq_bb(rec.rook_to)) & ~ends;
    castle_safe[right] = between[rec.king_from][rec.king_to] | sq_bb(rec.king_from) | sq_bb(rec.king_to);
    castle_xray[right] = 0;
    if ((right == WHITE_OOO || right == BLACK_OOO) && file_of(rec.rook_from) == 1)
      castle_xray[right] = sq_bb(right == WHITE_OOO ? SQ_A1 : SQ_A8);
  }

  state->key = compute_key();
  state->pawn_key = compute_pawn_key();
  state->material_key = compute_material_key();
  state->psq = compute_psq();
  *key_history_top = uint32_t(state->key);
  return true;
}

// An en-passant square is kept only where a double step can just have
// passed: on the third rank seen from the mover, with the mover's pawn on the
// square in front of it and that square and the one behind it empty.
// Anything else would let a capture remove a pawn that is not there.
bool Position::CanBeEnPassantSquare(Square s) const {
  const Color them = ~side_to_move;
  if (relative_rank(them, s) != 2) return false;
  const int forward = them == WHITE ? 8 : -8;
  return board[s + forward] == make_piece(them, PAWN) && board[s] == NO_PIECE && board[s - forward] == NO_PIECE;
}

Key Position::compute_key() const {
  Key k = side_to_move == BLACK ? zobrist_side : 0;
  if (state->ep_square) k ^= zobrist_ep[file_of(state->ep_square)];
  for (Square s = 0; s < 64; ++s) k ^= zobrist_psq[board[s]][s];
  return k ^ zobrist_castle[state->castling_rights];
}

Key Position::compute_pawn_key() const {
  Key k = zobrist_castle[state->castling_rights];
  for (Square s = 0; s < 64; ++s)
    if (type_of(board[s]) == PAWN || type_of(board[s]) == KING) k ^= zobrist_psq[board[s]][s];
  return k;
}

Key Position::compute_material_key() const {
  Key k = 0;
  for (Square s = 0; s < 64; ++s) k += material_key_table[board[s]];
  return k;
}

ValuePair Position::compute_psq() const {
  // Wrapping sum: a FEN with absurd material must not overflow before the
  // position is rejected.
  uint32_t v = 0;
  for (Square s = 0; s < 64; ++s) v += uint32_t(PSQ[board[s]][s]);
  return ValuePair(v);
}

template <Color Us>
void Position::DoMove(Move m) {
  constexpr Color Them = ~Us;
  const PositionState* old = state;
  PositionState* st = state + 1;
  const Square from = from_sq(m), to = to_sq(m);
  const Piece pc = board[from];

  st->key = old->key ^ zobrist_side;
  st->material_key = old->material_key;
  st->pawn_key = old->pawn_key;
  st->psq = old->psq;
  st->ep_square = 0;
  if (old->ep_square) st->key ^= zobrist_ep[file_of(old->ep_square)];
  st->castling_rights = old->castling_rights;
  st->captured = NO_PIECE;
  st->rule50 = old->rule50 + 1;

  if (uint32_t lost = (castle_mask[from] | castle_mask[to]) & st->castling_rights) {
    st->key ^= zobrist_castle[lost];
    st->pawn_key ^= zobrist_castle[lost];
    st->castling_rights ^= lost;
  }

  if (is_castling(m)) {
    const CastlingRecord& rec = castling_of((to > from ? WHITE_OO : WHITE_OOO) << (2 * Us));
    const Piece king = make_piece(Us, KING), rook = make_piece(Us, ROOK);
    remove_piece(from);
    remove_piece(rec.rook_from);
    put_piece(rook, rec.rook_to);
    put_piece(king, rec.king_to);
    Key kmove = zobrist_psq[king][from] ^ zobrist_psq[king][rec.king_to];
    st->key ^= kmove ^ zobrist_psq[rook][rec.rook_from] ^ zobrist_psq[rook][rec.rook_to];
    st->pawn_key ^= kmove;
    st->psq += PSQ[king][rec.king_to] - PSQ[king][from] + PSQ[rook][rec.rook_to] - PSQ[rook][rec.rook_from];
    st->rule50 = 0;
  } else {
    if (is_capture(m)) {
      Square capsq = is_en_passant(m) ? (Us == WHITE ? to - 8 : to + 8) : to;
      Piece captured = board[capsq];
      remove_piece(capsq);
      st->captured = uint32_t(captured);
      st->key ^= zobrist_psq[captured][capsq];
      st->psq -= PSQ[captured][capsq];
      st->material_key -= material_key_table[captured];
      if (type_of(captured) == PAWN) st->pawn_key ^= zobrist_psq[captured][capsq];
      st->rule50 = 0;
    }
    move_piece(from, to);
    st->key ^= zobrist_psq[pc][from] ^ zobrist_psq[pc][to];
    st->psq += PSQ[pc][to] - PSQ[pc][from];
    const PieceType pt = type_of(pc);
    if (pt == PAWN || pt == KING) st->pawn_key ^= zobrist_psq[pc][from] ^ zobrist_psq[pc][to];
    if (pt == PAWN) {
      st->rule50 = 0;
      if (is_promotion(m)) {
        const Piece promoted = make_piece(Us, promotion_type(m));
        remove_piece(to);
        put_piece(promoted, to);
        st->key ^= zobrist_psq[pc][to] ^ zobrist_psq[promoted][to];
        st->psq += PSQ[promoted][to] - PSQ[pc][to];
        st->material_key += material_key_table[promoted] - material_key_table[pc];
        st->pawn_key ^= zobrist_psq[pc][to];
      } else if ((to ^ from) == 16 &&
                 (pawn_attacks[Us][(to + from) / 2] & of(Them, PAWN))) {
        st->ep_square = uint32_t((to + from) / 2);
        st->key ^= zobrist_ep[file_of(st->ep_square)];
      }
    }
  }

  side_to_move = Them;
  *++key_history_top = uint32_t(st->key);
  state = st;
}

template <Color Us>
void Position::UndoMove(Move m) {
  side_to_move = Us;
  const Square from = from_sq(m), to = to_sq(m);
  if (is_castling(m)) {
    const CastlingRecord& rec = castling_of((to > from ? WHITE_OO : WHITE_OOO) << (2 * Us));
    remove_piece(rec.king_to);
    remove_piece(rec.rook_to);
    put_piece(make_piece(Us, ROOK), rec.rook_from);
    put_piece(make_piece(Us, KING), from);
  } else {
    if (is_promotion(m)) {
      remove_piece(to);
      put_piece(make_piece(Us, PAWN), to);
    }
    move_piece(to, from);
    if (is_capture(m)) {
      Square capsq = is_en_passant(m) ? (Us == WHITE ? to - 8 : to + 8) : to;
      put_piece(Piece(state->captured), capsq);
    }
  }
  --key_history_top;
  --state;
}

template void Position::DoMove<WHITE>(Move);
template void Position::DoMove<BLACK>(Move);
template void Position::UndoMove<WHITE>(Move);
template void Position::UndoMove<BLACK>(Move);

void Position::DoNullMove() {
  PositionState* st = state + 1;
  *st = *state;
  st->key ^= zobrist_side;
  if (st->ep_square) st->key ^= zobrist_ep[file_of(st->ep_square)];
  st->ep_square = 0;
  st->captured = NO_PIECE;
  st->rule50 += 1;
  *++key_history_top = uint32_t(st->key);
  side_to_move = ~side_to_move;
  state = st;
}

void Position::UndoNullMove() {
  side_to_move = ~side_to_move;
  --key_history_top;
  --state;
}

void Position::ApplyGameMove(Move m) {
  if (side_to_move == WHITE) DoMove<WHITE>(m);
  else DoMove<BLACK>(m);
  states[0] = *state;
  state = states;
  if (state->rule50 == 0) {
    key_history[0] = uint32_t(state->key);
    key_history_top = key_history;
  } else if (key_history_top - key_history >= KEY_HISTORY_COMPACT) {
    // Keep only the newest keys: older ones lie beyond any repetition the
    // 50-move counter still allows.
    uint32_t* first = key_history_top - (KEY_HISTORY_KEEP - 1);
    std::memmove(key_history, first, KEY_HISTORY_KEEP * sizeof(uint32_t));
    key_history_top = key_history + (KEY_HISTORY_KEEP - 1);
  }
}

bool Position::Rule50EndsInDraw() const { return !(InCheck(*this) && !HasLegalMove(*this)); }

Move ParseMove(const Position& pos, const std::string& token) {
  MoveList list;
  GenerateLegal(pos, list);
  for (Move m : list)
    if (move_text(m) == token) return m;
  return MOVE_NONE;
}

}  // namespace vx

namespace vx {

namespace {

// Pieces beyond the initial set (one queen, two rooks, two bishops, two
// knights): each must have been a pawn. Capping them also caps the move
// lists, which are sized for the material a game can have. Bishops are not
// told apart by square colour: hand-written FENs often get that wrong, and
// it does not matter for the move count.
int PromotedPieces(const Position& pos, Color c) {
  auto beyond = [&](Bitboard b, int initial) { return std::max(__builtin_popcountll(b) - initial, 0); };
  return beyond(pos.of(c, QUEEN), 1) + beyond(pos.of(c, ROOK), 2) + beyond(pos.of(c, KNIGHT), 2) +
         beyond(pos.bishops(c), 2);
}

}  // namespace

const char* PositionDefect(const Position& pos) {
  if (__builtin_popcountll(pos.of(WHITE, KING)) != 1 || __builtin_popcountll(pos.of(BLACK, KING)) != 1)
    return "each side needs exactly one king";
  if ((pos.of(WHITE, PAWN) | pos.of(BLACK, PAWN)) & (RANK_1_BB | RANK_8_BB)) return "pawn on the first or eighth rank";
  if (__builtin_popcountll(pos.by_color(WHITE)) > 16 || __builtin_popcountll(pos.by_color(BLACK)) > 16)
    return "more than 16 pieces of one colour";
  if (PromotedPieces(pos, WHITE) > 8 - __builtin_popcountll(pos.of(WHITE, PAWN)) ||
      PromotedPieces(pos, BLACK) > 8 - __builtin_popcountll(pos.of(BLACK, PAWN)))
    return "more pieces than promotions can explain";
  const Color them = ~pos.side_to_move;
  const Square k = pos.king_square(them);
  const bool attacked = them == WHITE ? IsAttackedByBlack(pos, k) : IsAttackedByWhite(pos, k);
  if (attacked || (king_attacks[k] & pos.of(pos.side_to_move, KING))) return "the side not to move is in check";
  return nullptr;
}

}  // namespace vx

#include "egdb/library_position.h"

#include "board/attacks.h"

namespace vx {

namespace {

// Undo information kept beside the move on the stack.
constexpr int CAPTURED_SHIFT = 10;  // library code of the captured man, 4 bits
constexpr uint32_t EN_PASSANT_BIT = 1u << 14;
constexpr int OLD_EP_SHIFT = 24;  // previous en-passant square, 6 bits

struct Occupancy {
  Bitboard all = 0;
  Bitboard by_code[LIB_CODES] = {};
};

Occupancy OccupancyOf(const CChessPosition& p) {
  Occupancy o;
  for (Square s = 0; s < 64; ++s)
    if (p.board[s] && p.board[s] < LIB_CODES) {
      o.all |= sq_bb(s);
      o.by_code[p.board[s]] |= sq_bb(s);
    }
  return o;
}

constexpr uint8_t Colored(uint8_t type, bool white) { return white ? type : uint8_t(type + LIB_BLACK); }

// Targets of a non-pawn man.
Bitboard PieceTargets(uint8_t type, Square s, Bitboard occ) {
  switch (type) {
    case LIB_KING: return king_attacks[s];
    case LIB_QUEEN: return QueenAttacks(s, occ);
    case LIB_ROOK: return RookAttacks(s, occ);
    case LIB_BISHOP: return BishopAttacks(s, occ);
    default: return knight_attacks[s];
  }
}

struct MoveSink {
  CChessPosition& p;
  uint32_t* out;
  int n = 0;
  // Keeps the move when it does not leave the mover's king attacked.
  void add(Square from, Square to, uint8_t promotion = LIB_EMPTY) {
    const bool white = p.white_to_move();
    if (n == 256 || p.push(LibraryMove(from, to, promotion)) < 0) return;
    const bool legal = !LibraryAttacks(p, p.king[white ? 0 : 1], !white);
    p.pop();
    if (legal) out[n++] = LibraryMove(from, to, promotion);
  }
};

void AddPawnMoves(MoveSink& sink, Square s, const Occupancy& o, Bitboard enemies) {
  const bool white = sink.p.white_to_move();
  const int up = white ? 8 : -8;
  const int last = white ? 7 : 0;
  auto add = [&](Square to) {
    if (rank_of(to) != last) return sink.add(s, to);
    for (uint8_t t : {LIB_QUEEN, LIB_ROOK, LIB_BISHOP, LIB_KNIGHT}) sink.add(s, to, Colored(t, white));
  };
  const Square one = s + up;
  if (one >= 0 && one < 64 && !(o.all & sq_bb(one))) {
    add(one);
    const int start = white ? 1 : 6;
    if (rank_of(s) == start && !(o.all & sq_bb(one + up))) add(one + up);
  }
  Bitboard caps = pawn_attacks[white ? WHITE : BLACK][s] & enemies;
  const Square ep = sink.p.ep_square, victim = white ? ep - 8 : ep + 8;
  if (ep && victim >= 0 && victim < 64 && !sink.p.board[ep] && sink.p.board[victim] == Colored(LIB_PAWN, !white))
    caps |= pawn_attacks[white ? WHITE : BLACK][s] & sq_bb(ep);
  while (caps) add(pop_lsb(caps));
}

}  // namespace

uint8_t LibraryCode(Piece p) {
  static constexpr uint8_t code[16] = {0, 6, 5, 4, 4, 3, 2, 1, 0, 12, 11, 10, 10, 9, 8, 7};
  return code[p & 15];
}

void CGamePosition::reset() {
  count_ = 0;
  side_ = 1;
}

int CGamePosition::push(uint32_t move) {
  if (count_ == LIBRARY_STACK) return -1;
  moves_[count_] = move;
  side_ ^= 1;
  return count_++;
}

void CGamePosition::pop() {
  --count_;
  side_ ^= 1;
}

void CChessPosition::clear() {
  reset();
  for (uint8_t& c : board) c = LIB_EMPTY;
  for (uint8_t& c : counts) c = 0;
  king[0] = king[1] = 0;
  ep_square = 0;
  men = 0;
  counts_valid = true;
}

void CChessPosition::put(uint8_t code, Square s) {
  board[s] = code;
  ++counts[code];
  ++men;
  if (LibraryType(code) == LIB_KING) king[IsWhiteCode(code) ? 0 : 1] = s;
}

int CChessPosition::push(uint32_t move) {
  if (count_ == LIBRARY_STACK) return -1;
  const Square from = LibraryMoveFrom(move), to = LibraryMoveTo(move);
  const uint8_t piece = board[from], promotion = LibraryMovePromotion(move);
  const bool pawn = LibraryType(piece) == LIB_PAWN;
  Square taken = to;
  uint32_t word = move | uint32_t(ep_square) << OLD_EP_SHIFT;
  if (pawn && ep_square && to == ep_square && !board[to] && file_of(from) != file_of(to)) {
    taken = white_to_move() ? to - 8 : to + 8;
    word |= EN_PASSANT_BIT;
  }
  const uint8_t captured = board[taken];
  word |= uint32_t(captured) << CAPTURED_SHIFT;
  if (captured) {
    --counts[captured];
    --men;
    board[taken] = LIB_EMPTY;
  }
  board[from] = LIB_EMPTY;
  board[to] = promotion ? promotion : piece;
  if (promotion) {
    --counts[piece];
    ++counts[promotion];
  }
  if (LibraryType(piece) == LIB_KING) king[IsWhiteCode(piece) ? 0 : 1] = to;
  ep_square = pawn && (to ^ from) == 16 ? (to + from) / 2 : 0;
  return CGamePosition::push(word);
}

void CChessPosition::pop() {
  CGamePosition::pop();
  const uint32_t word = moves_[count_];
  const Square from = LibraryMoveFrom(word), to = LibraryMoveTo(word);
  const uint8_t promotion = LibraryMovePromotion(word);
  const uint8_t captured = uint8_t((word >> CAPTURED_SHIFT) & 15);
  uint8_t piece = board[to];
  if (promotion) {
    --counts[promotion];
    piece = white_to_move() ? LIB_PAWN : LIB_PAWN + LIB_BLACK;
    ++counts[piece];
  }
  board[from] = piece;
  board[to] = LIB_EMPTY;
  if (LibraryType(piece) == LIB_KING) king[IsWhiteCode(piece) ? 0 : 1] = from;
  if (captured) {
    const Square taken = word & EN_PASSANT_BIT ? (white_to_move() ? to - 8 : to + 8) : to;
    board[taken] = captured;
    ++counts[captured];
    ++men;
  }
  ep_square = Square((word >> OLD_EP_SHIFT) & 63);
}

bool LibraryAttacks(const CChessPosition& p, Square s, bool by_white) {
  const Occupancy o = OccupancyOf(p);
  auto of = [&](uint8_t type) { return o.by_code[Colored(type, by_white)]; };
  return (king_attacks[s] & of(LIB_KING)) || (knight_attacks[s] & of(LIB_KNIGHT)) ||
         (pawn_attacks[by_white ? BLACK : WHITE][s] & of(LIB_PAWN)) ||
         (RookAttacks(s, o.all) & (of(LIB_ROOK) | of(LIB_QUEEN))) ||
         (BishopAttacks(s, o.all) & (of(LIB_BISHOP) | of(LIB_QUEEN)));
}

bool LibraryInCheck(const CChessPosition& p) {
  const bool white = p.white_to_move();
  return LibraryAttacks(p, p.king[white ? 0 : 1], !white);
}

int GenerateLibraryMoves(CChessPosition& p, uint32_t* moves) {
  const bool white = p.white_to_move();
  const Occupancy o = OccupancyOf(p);
  Bitboard own = 0, enemies = 0;
  for (uint8_t t = LIB_KING; t <= LIB_PAWN; ++t) {
    own |= o.by_code[Colored(t, white)];
    if (t != LIB_KING) enemies |= o.by_code[Colored(t, !white)];
  }
  MoveSink sink{p, moves};
  for (Bitboard b = own; b;) {
    const Square s = pop_lsb(b);
    const uint8_t type = LibraryType(p.board[s]);
    if (type == LIB_PAWN) {
      AddPawnMoves(sink, s, o, enemies);
      continue;
    }
    for (Bitboard t = PieceTargets(type, s, o.all) & ~own & ~o.by_code[Colored(LIB_KING, !white)]; t;)
      sink.add(s, pop_lsb(t));
  }
  return sink.n;
}

}  // namespace vx

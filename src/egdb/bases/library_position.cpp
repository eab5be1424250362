#include "egdb/bases/library_position.h"

#include "egdb/bases/library_moves.h"

#include "board/attacks.h"

namespace vx {

namespace {

// Undo information kept beside the move on the stack.
constexpr int CAPTURED_SHIFT = 10;  // library code of the captured man, 4 bits
constexpr uint32_t EN_PASSANT_BIT = 1u << 14;
constexpr int OLD_EP_SHIFT = 24;  // previous en-passant square, 6 bits

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
  occupied = 0;
  for (Bitboard& b : squares_of) b = 0;
}

void CChessPosition::put(uint8_t code, Square s) {
  board[s] = code;
  occupied |= sq_bb(s);
  squares_of[code] |= sq_bb(s);
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
    squares_of[captured] ^= sq_bb(taken);
    occupied ^= sq_bb(taken);
  }
  board[from] = LIB_EMPTY;
  board[to] = promotion ? promotion : piece;
  squares_of[piece] ^= sq_bb(from);
  squares_of[board[to]] ^= sq_bb(to);
  occupied ^= sq_bb(from) | sq_bb(to);
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
  squares_of[board[to]] ^= sq_bb(to);
  squares_of[piece] ^= sq_bb(from);
  occupied ^= sq_bb(from) | sq_bb(to);
  board[from] = piece;
  board[to] = LIB_EMPTY;
  if (LibraryType(piece) == LIB_KING) king[IsWhiteCode(piece) ? 0 : 1] = from;
  if (captured) {
    const Square taken = word & EN_PASSANT_BIT ? (white_to_move() ? to - 8 : to + 8) : to;
    board[taken] = captured;
    squares_of[captured] ^= sq_bb(taken);
    occupied ^= sq_bb(taken);
    ++counts[captured];
    ++men;
  }
  ep_square = Square((word >> OLD_EP_SHIFT) & 63);
}

void MirrorColours(const CChessPosition& p, CChessPosition& out) {
  out.clear();
  for (Bitboard b = p.occupied; b;) {
    const Square s = pop_lsb(b);
    const uint8_t c = p.board[s];
    out.put(IsWhiteCode(c) ? uint8_t(c + LIB_BLACK) : uint8_t(c - LIB_BLACK), s ^ 56);
  }
  out.ep_square = p.ep_square ? p.ep_square ^ 56 : 0;
  out.set_white_to_move(!p.white_to_move());
}

std::string LibraryFen(const CChessPosition& p) {
  static constexpr char letters[] = " KQRBNPkqrbnp";
  std::string fen;
  for (int rank = 7; rank >= 0; --rank) {
    int empty = 0;
    for (int file = 0; file < 8; ++file) {
      const uint8_t c = p.board[make_square(file, rank)];
      if (!c) {
        ++empty;
        continue;
      }
      if (empty) fen += char('0' + empty), empty = 0;
      fen += letters[c];
    }
    if (empty) fen += char('0' + empty);
    if (rank) fen += '/';
  }
  fen += p.white_to_move() ? " w - " : " b - ";
  fen += p.ep_square ? square_text(p.ep_square) : "-";
  return fen + " 0 1";
}

bool LibraryAttacks(const CChessPosition& p, Square s, bool by_white) {
  auto of = [&](uint8_t type) { return p.squares_of[LibraryColored(type, by_white)]; };
  return (king_attacks[s] & of(LIB_KING)) || (knight_attacks[s] & of(LIB_KNIGHT)) ||
         (pawn_attacks[by_white ? BLACK : WHITE][s] & of(LIB_PAWN)) ||
         (RookAttacks(s, p.occupied) & (of(LIB_ROOK) | of(LIB_QUEEN))) ||
         (BishopAttacks(s, p.occupied) & (of(LIB_BISHOP) | of(LIB_QUEEN)));
}

bool LibraryInCheck(const CChessPosition& p) {
  const bool white = p.white_to_move();
  return LibraryAttacks(p, p.king[white ? 0 : 1], !white);
}

int GenerateLibraryMoves(CChessPosition& p, uint32_t* moves) {
  int n = 0;
  ForEachLegalLibraryMove(p, [&](uint32_t move) {
    moves[n++] = move;
    return n < 256;
  });
  return n;
}

}  // namespace vx

#include "tools/match/san.h"

#include "board/movegen.h"

namespace vx::dev {

namespace {

// Both bishop codes are one piece for notation.
PieceType notation_type(Piece p) { return is_bishop(p) ? BISHOP_L : type_of(p); }

std::string disambiguation(const Position& pos, Move m) {
  const Square from = from_sq(m), to = to_sq(m);
  const PieceType type = notation_type(pos.piece_on(from));
  MoveList list;
  GenerateLegal(pos, list);
  bool ambiguous = false, same_file = false, same_rank = false;
  for (Move other : list) {
    const Square f = from_sq(other);
    if (to_sq(other) != to || f == from || is_castling(other) || notation_type(pos.piece_on(f)) != type) continue;
    ambiguous = true;
    same_file |= file_of(f) == file_of(from);
    same_rank |= rank_of(f) == rank_of(from);
  }
  if (!ambiguous) return {};
  const std::string square = square_text(from);
  if (!same_file) return square.substr(0, 1);
  if (!same_rank) return square.substr(1, 1);
  return square;
}

}  // namespace

std::string MoveSan(const Position& pos, Move m) {
  std::string san;
  const Square from = from_sq(m), to = to_sq(m);
  const PieceType type = notation_type(pos.piece_on(from));
  if (is_castling(m)) {
    san = to > from ? "O-O" : "O-O-O";
  } else if (type == PAWN) {
    if (is_capture(m)) san = square_text(from).substr(0, 1) + "x";
    san += square_text(to);
    if (is_promotion(m)) san += std::string("=") + "  NBBRQ"[promotion_type(m)];
  } else {
    san = " PNBBRQK"[type];
    san += disambiguation(pos, m);
    if (is_capture(m)) san += 'x';
    san += square_text(to);
  }
  Position after(pos);
  after.ApplyGameMove(m);
  if (InCheck(after)) san += HasLegalMove(after) ? "+" : "#";
  return san;
}

}  // namespace vx::dev

namespace vx::dev {

namespace {

// SAN without check, annotation and promotion "=" marks, castling with "O".
std::string bare_san(const std::string& text) {
  std::string s;
  for (const char c : text)
    if (c != '+' && c != '#' && c != '!' && c != '?' && c != '=') s += c == '0' ? 'O' : c;
  return s;
}

}  // namespace

Move ParseSan(const Position& pos, const std::string& text) {
  const std::string wanted = bare_san(text);
  if (wanted.empty()) return MOVE_NONE;
  MoveList list;
  GenerateLegal(pos, list);
  for (Move m : list)
    if (bare_san(MoveSan(pos, m)) == wanted) return m;
  return MOVE_NONE;
}

}  // namespace vx::dev

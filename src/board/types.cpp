#include "board/types.h"

namespace vx {

std::string square_text(Square s) { return {char('a' + file_of(s)), char('1' + rank_of(s))}; }

std::string move_text(Move m) {
  if (m == MOVE_NULL || m == MOVE_NONE) return "0000";
  std::string text = square_text(from_sq(m)) + square_text(to_sq(m));
  if (is_promotion(m)) text += " pnbbrqk"[promotion_type(m)];
  return text;
}

}  // namespace vx

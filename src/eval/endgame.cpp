#include "eval/endgame.h"

#include "eval/kpk.h"

namespace vx {

EndgameEvalFn EvalFunctions[EVAL_FUNCTION_NB];
EndgameScaleFn ScaleFunctions[SCALE_FUNCTION_NB];

namespace {

// Material that cannot win: bare kings, a lone minor, two knights.
Value eval_draw(const Position&) { return VALUE_DRAW; }

// King and pawn against king, from the bitbase. A drawn position still leans
// one unit towards the side with the pawn.
template <Color Strong>
Value eval_kpk(const Position& pos) {
  const int flip = Strong == WHITE ? 0 : 56;
  Square sk = pos.king_square(Strong) ^ flip;
  Square wk = pos.king_square(~Strong) ^ flip;
  Square p = lsb(pos.of(Strong, PAWN)) ^ flip;
  if (file_of(p) >= 4) {
    sk ^= 7;
    wk ^= 7;
    p ^= 7;
  }
  const bool strong_to_move = pos.side_to_move == Strong;
  const Value v = kpk_probe(sk, wk, p, strong_to_move) ? 20 * (64 + rank_of(p)) : 1;
  return strong_to_move ? v : -v;
}

// The promotion square of the strong side's pawns when they all stand on one
// rook file, or -1 when some pawn stands on files b-g or on both rook files.
template <Color Us>
Square rook_pawn_queening_square(const Position& pos) {
  const Bitboard pawns = pos.of(Us, PAWN);
  if (pawns & ~(FILE_A_BB | FILE_H_BB)) return -1;
  if ((pawns & FILE_A_BB) && (pawns & FILE_H_BB)) return -1;
  return make_square(file_of(lsb(pawns)), Us == WHITE ? 7 : 0);
}

// A draw when the defending king stands on or next to the promotion square.
template <Color Us>
uint8_t corner_verdict(const Position& pos, Square q) {
  return distance(pos.king_square(~Us), q) <= 1 ? 0 : SCALE_NO_VERDICT;
}

// Rook pawns with a bishop that does not control the promotion square: a
// draw when the defending king reaches the corner.
template <Color Us>
uint8_t scale_wrong_bishop(const Position& pos) {
  const Square q = rook_pawn_queening_square<Us>(pos);
  if (q < 0) return SCALE_NO_VERDICT;
  if (pos.of(Us, bishop_type_on(q))) return SCALE_NO_VERDICT;
  return corner_verdict<Us>(pos, q);
}

// Rook pawns against the bare king: a draw when the king reaches the corner.
template <Color Us>
uint8_t scale_rook_pawns(const Position& pos) {
  const Square q = rook_pawn_queening_square<Us>(pos);
  return q < 0 ? SCALE_NO_VERDICT : corner_verdict<Us>(pos, q);
}

}  // namespace

void init_endgame_functions() {
  EvalFunctions[0] = nullptr;
  EvalFunctions[1] = eval_draw;
  EvalFunctions[2] = eval_kpk<WHITE>;
  EvalFunctions[3] = eval_kpk<BLACK>;
  ScaleFunctions[0] = nullptr;
  ScaleFunctions[1] = scale_wrong_bishop<WHITE>;
  ScaleFunctions[2] = scale_wrong_bishop<BLACK>;
  ScaleFunctions[3] = scale_rook_pawns<WHITE>;
  ScaleFunctions[4] = scale_rook_pawns<BLACK>;
}

}  // namespace vx

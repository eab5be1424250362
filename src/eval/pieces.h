// Knights, bishops, rooks and queens of one side: mobility, outposts, lines to
// the enemy king, rook files and the seventh rank, and the bookkeeping of
// attacks on the enemy king zone that king safety turns into a score.
#pragma once

#include "board/position.h"
#include "eval/eval_info.h"

namespace vx {

// Kind is KNIGHT, BISHOPS (both codes in the pieces set), ROOK or QUEEN.
template <PieceType Kind, Color Us, bool HwPopcnt>
void evaluate_pieces(const Position& pos, EvalInfo& ei, Bitboard pieces, AttackInfo& ai, Bitboard area);

// Outpost tables; part of init_eval.
void init_piece_tables();

}  // namespace vx

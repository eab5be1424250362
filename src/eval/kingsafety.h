// King safety: the pawn shelter, the attack bookkeeping of the piece routines
// and the available safe checks turned into a danger index and a score.
#pragma once

#include "board/position.h"
#include "eval/eval_info.h"

namespace vx {

// Safety of the king of side Us against the other side's attack.
template <Color Us, bool HwPopcnt>
void evaluate_king_safety(const Position& pos, EvalInfo& ei, AttackInfo& ai);

// Attack pattern and king danger tables; part of init_eval.
void init_king_safety_tables();

// For tests: the tables as built.
int attack_pattern_value(int index);
ValuePair king_danger_value(int index);

}  // namespace vx

// Threats against enemy pieces once all attacks are known, and the
// position-dependent judgement of passed pawns with pawn-push threats.
#pragma once

#include "board/position.h"
#include "eval/eval_info.h"

namespace vx {

template <Color Us, bool HwPopcnt>
void evaluate_threats(const Position& pos, EvalInfo& ei, AttackInfo& ai);

// Passed pawns of Us judged by the pieces around their paths, then the
// threats of Us's safe pawn pushes.
template <Color Us, bool HwPopcnt>
void evaluate_passed_pawns(const Position& pos, EvalInfo& ei, AttackInfo& ai);

// Unstoppable-passer table; part of init_eval.
void init_threat_tables();

}  // namespace vx

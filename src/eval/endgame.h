// Endgame knowledge reached through the material table: evaluation functions
// that replace the whole evaluation for a few material signatures, and scale
// functions that may override the scale factor of the side that is ahead.
#pragma once

#include <cstdint>

#include "board/position.h"

namespace vx {

using EndgameEvalFn = Value (*)(const Position&);
using EndgameScaleFn = uint8_t (*)(const Position&);

constexpr int EVAL_FUNCTION_NB = 4;   // 0 none, 1 draw, 2 KPK White strong, 3 KPK Black strong
constexpr int SCALE_FUNCTION_NB = 5;  // 0 none, 1-2 wrong bishop, 3-4 rook pawns v bare king
constexpr uint8_t SCALE_NO_VERDICT = 255;

extern EndgameEvalFn EvalFunctions[EVAL_FUNCTION_NB];
extern EndgameScaleFn ScaleFunctions[SCALE_FUNCTION_NB];

// Fills both function tables (part of init_material).
void init_endgame_functions();

}  // namespace vx

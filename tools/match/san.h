// Standard algebraic notation of a legal move, for the PGN the match runner writes.
#pragma once

#include <string>

#include "board/position.h"

namespace vx::dev {

// SAN of a legal move in the position (before the move): piece letter,
// the least disambiguation that suffices, "x" for captures, "=Q" for
// promotions, O-O / O-O-O, and "+" or "#".
std::string MoveSan(const Position& pos, Move m);

}  // namespace vx::dev

namespace vx::dev {

// The legal move whose SAN is the text, check marks, annotation marks
// ("!", "?") and a missing "=" before a promotion piece ignored, "0-0" read
// as "O-O"; MOVE_NONE when no legal move has it.
Move ParseSan(const Position& pos, const std::string& text);

}  // namespace vx::dev

// The process-wide random generator of strength-limited play: random piece-
// square noise, node budgets, root bonuses and move skipping all draw from it.
#pragma once

namespace vx {

// Uniform integer in lo..hi (inclusive). The generator starts from the common
// start word on first use and is never reseeded. Random(lo, lo) returns lo
// without advancing the state.
int Random(int lo, int hi);

// Puts the generator back to its first state; only tests use this, play
// never reseeds it.
void ResetRandom();

}  // namespace vx

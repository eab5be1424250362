// The process-wide random generator of strength-limited play: random piece-
// square noise, node budgets, evaluation noise, root bonuses, overlooked
// moves and think delays all draw from it.
#pragma once

namespace vx {

// Uniform integer in lo..hi (inclusive). On first use the generator is seeded
// from a source that differs between starts of the program (the system's
// random device and the clocks), so a GUI that starts the engine afresh for
// every game does not meet the same limited game twice; it is never reseeded
// afterwards. The hash keys and the self-test keep their own generators on the
// fixed start word. Random(lo, lo) returns lo without advancing the state.
int Random(int lo, int hi);

// Puts the generator on the fixed start word (board/random.h) and 17 steps,
// so that a test's draws do not depend on the process; play never calls it.
void ResetRandom();

}  // namespace vx

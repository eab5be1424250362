// Start-up of the process-wide tables, in their fixed order.
#pragma once

namespace vx {

// Attack tables, hash keys, material keys and endgame registry, pawn tables,
// capture ordering, evaluation tables, search tables, empty tablebase set.
// Safe to call more than once (later calls do nothing).
void InitStaticTables();

}  // namespace vx

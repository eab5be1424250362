// Material table: per material signature the imbalance term, the game phase,
// scale factors, the endgame function to use and the one-pawn-up and draw
// hints. Cached per search thread.
#pragma once

#include <cstdint>

#include "board/position.h"

namespace vx {

struct SearchState;

constexpr int PHASE_MIDGAME = 128;
constexpr uint8_t SCALE_FACTOR_NORMAL = 64;
constexpr int MATERIAL_TABLE_SIZE = 4096;
constexpr Key MATERIAL_SIGNATURE_MASK = 0xFFFFFFFFFFFFULL;

struct MaterialEntry {
  Key key;
  ValuePair value;     // imbalance, equal in both halves
  uint8_t scale[2];    // by the side that is ahead
  uint8_t phase;       // 0 bare endgame .. PHASE_MIDGAME
  uint8_t evalFn;      // index into EvalFunctions, 0 = none
  uint8_t scaleFn[2];  // index into ScaleFunctions by the side ahead, 0 = none
  uint8_t pawnUpCode;  // 1-6 when one side is exactly one pawn up, see evaluate
  int8_t drawHint;     // +1 White, -1 Black has the winning chances, 0 neither
};

// Piece counts of one side read from the counters of a material key.
struct MaterialCount {
  int pawns, knights, lightBishops, darkBishops, bishops, rooks, queens;
  int minors, majors, pieces, npm;
  bool bishopPair;
};

inline int material_counter(Key key, Piece p) {
  return int((key >> (color_of(p) * 24 + (type_of(p) - 1) * 4)) & 15);
}
MaterialCount count_material(Key key, Color c);

// Fills an entry from scratch for the given material key.
void compute_material_entry(MaterialEntry& e, Key key);

// The endgame registry and the endgame function tables; needs the material keys.
void init_material();

MaterialEntry* AllocMaterialTable();
void FreeMaterialTable(MaterialEntry* table);
// Empties every slot (the per-search reset).
void ClearMaterialTable(MaterialEntry* table);

namespace MaterialTable {
// The thread's entry for the position's material, built on a miss.
MaterialEntry& probe(const Position& pos, SearchState& ss);
}  // namespace MaterialTable

}  // namespace vx

#include "engine/startup.h"

#include "board/attacks.h"
#include "board/movegen.h"
#include "board/position.h"
#include "eval/kpk.h"

namespace vx {

void InitStaticTables() {
  static bool done = false;
  if (done) return;
  done = true;
  InitAttackTables();
  InitPositionKeys();
  InitMaterialKeys();   // then init_material (endgame registry and functions)
  InitKpk();
  // init_pawns
  InitCaptureOrder();
  // init_eval without noise
  // InitSearchTables
  // InitSyzygy("<empty>")
}

}  // namespace vx

#include "engine/startup.h"

#include "board/attacks.h"
#include "board/movegen.h"
#include "board/position.h"
#include "egdb/syzygy/syzygy.h"
#include "eval/evaluate.h"
#include "eval/kpk.h"
#include "eval/material.h"
#include "eval/pawns.h"
#include "search/search.h"

namespace vx {

void InitStaticTables() {
  static bool done = false;
  if (done) return;
  done = true;
  InitAttackTables();
  InitPositionKeys();
  InitMaterialKeys();
  init_material();
  InitKpk();
  init_pawns();
  InitCaptureOrder();
  init_eval(false);
  InitSearchTables();
  InitSyzygy("<empty>");
}

}  // namespace vx

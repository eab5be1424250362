// The endgame-database hook of the search: which prober to call, up to how
// many men, and how a hit is counted. Set by each search launch.
#pragma once

#include "board/position.h"
#include "search/thread.h"

namespace vx {

struct TablebaseHook {
  int probe_limit = 0;  // largest number of men to probe; 0 = no probing
  // WDL from the side to move's view (Syzygy -2..2, Vorlaxenbases -1..1);
  // success is set non-zero when a table answered. The prober may make and
  // unmake moves on the position but leaves it as it found it.
  int (*probe)(Position& pos, int& success) = nullptr;
  bool rule50 = false;  // results the 50-move rule turns into draws are draws
  void (*hit)(SearchState& st) = nullptr;
};

extern TablebaseHook tb_hook;

}  // namespace vx

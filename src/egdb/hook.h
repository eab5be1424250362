// Endgame databases: two independent probers, the Syzygy tables (egdb/syzygy)
// and the engine's own Vorlaxenbases (egdb/bases). They share nothing but this
// hook, through which the search reaches whichever prober the launch chose:
// which prober to call, up to how many men, and how a hit is counted.
#pragma once

namespace vx {

struct Position;
struct SearchState;

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

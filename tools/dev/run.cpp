// vorlaxen-dev: developer tool (perft, evaluation trace, bench of either build,
// match runner). The commands run inside the build the program entry chose.
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>

#include "engine/startup.h"
#include "tools/dev/commands.h"

namespace {

void usage() {
  std::puts(
      "usage: vorlaxen-dev COMMAND [ARGS...]\n"
      "  perft DEPTH FEN...|startpos [--portable]   count leaf nodes per root move\n"
      "  magics                                     print slider magic multipliers\n"
      "  bench [--portable] [OFFSET]                benchmark in this processor's build (--portable: the base\n"
      "                                             build with the portable bit count)\n"
      "  eval FEN...|startpos                       evaluation trace, term by term\n"
      "  match --engine CMD ... --engine CMD ... --games N --tc BASE+INC [...]\n"
      "                                             play a match between two UCI engines\n"
      "  openings --count N --plies P --engine CMD [...]\n"
      "                                             make balanced opening positions\n"
      "  wdl-fit [--holdout K] PGN...               fit the win/draw/loss model on match games");
}

}  // namespace

namespace vx::dev {

int RunDevTool(int argc, char** argv) {
  const std::map<std::string, std::function<int(const Args&)>> commands = {
      {"perft", perft_command},
      {"magics", magics_command},
      {"bench", bench_command},
      {"eval", eval_command},
      {"match", match_command},
      {"openings", openings_command},
      {"wdl-fit", wdl_fit_command},
  };
  if (argc < 2) {
    usage();
    return 2;
  }
  auto it = commands.find(argv[1]);
  if (it == commands.end()) {
    std::fprintf(stderr, "vorlaxen-dev: unknown command '%s'\n", argv[1]);
    usage();
    return 2;
  }
  InitStaticTables();
  return it->second(Args(argv + 2, argv + argc));
}

}  // namespace vx::dev

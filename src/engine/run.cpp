// The engine's program run: start-up in its fixed order, then the command
// given on the command line or the command loop on standard input.
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include "engine/engine.h"
#include "engine/options.h"
#include "engine/output.h"
#include "engine/startup.h"
#include "engine/builds.h"
#include "engine/uci.h"
#include "platform/platform.h"

namespace vx {

int RunEngine(int argc, char* argv[]) {
  WriteLine("info string Hello from Vorlaxen " + VersionString(false) + " ASM" +
            (platform::cpu_has_popcnt() ? " HWPopCnt" : "") + BuildSuffix());
  InitStaticTables();

  Engine engine;
  ThreadPool& pool = engine.pool;

  if (argc > 1) {
    std::string line;
    for (int i = 1; i < argc; ++i) line += std::string(argv[i]) + " ";
    ExecuteCommand(pool, line);
  } else {
    pool.input.Start();
    RunCommandLoop(pool);
  }

  // After a line such as "quit now" the reader still waits for input that
  // may never come: end at once instead of waiting for it.
  if (!pool.input.Finish()) {
    std::cout.flush();
    std::_Exit(0);
  }
  return 0;
}

}  // namespace vx

// vorlaxen-dev bench [--portable] [--threads N] [OFFSET]: the engine's
// benchmark with the bit-count build forced, so the two builds can be
// compared; with N threads the helpers search too, so the total time is the
// time to reach every position's depth with N threads.
#include <cstdio>
#include <cstdlib>

#include "engine/bench.h"
#include "engine/engine.h"
#include "platform/platform.h"
#include "tools/dev/commands.h"

namespace vx::dev {

int bench_command(const Args& args) {
  bool portable = false;
  long offset = 0, threads = 1;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    char* end = nullptr;
    if (a == "--portable") {
      portable = true;
    } else if (a == "--threads" && i + 1 < args.size()) {
      threads = std::strtol(args[++i].c_str(), &end, 10);
      if (*end || threads < 1 || threads > 1024) threads = 0;
    } else if (offset = std::strtol(a.c_str(), &end, 10); *end || a.empty() || offset < -30 || offset > 30) {
      threads = 0;
    }
    if (!threads) {
      std::fprintf(stderr,
                   "usage: vorlaxen-dev bench [--portable] [--threads N] [OFFSET]   (N from 1 to 1024, OFFSET from "
                   "-30 to 30)\n");
      return 2;
    }
  }
  if (!portable && !platform::cpu_has_popcnt()) {
    std::fprintf(stderr, "bench: this processor has no popcnt instruction; use --portable\n");
    return 2;
  }
  Engine engine;
  engine.pool.SetThreadCount(size_t(threads));
  for (Thread* t : engine.pool.threads) t->state->hasPopcnt = !portable;
  RunBench(engine.pool, int(offset), threads > 1);
  return 0;
}

}  // namespace vx::dev

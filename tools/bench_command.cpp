// vorlaxen-dev bench [--portable] [OFFSET]: the engine's benchmark with the
// bit-count build forced, so the two builds can be compared.
#include <cstdio>
#include <cstdlib>

#include "engine/bench.h"
#include "engine/engine.h"
#include "platform/platform.h"
#include "tools/commands.h"

namespace vx::dev {

int bench_command(const Args& args) {
  bool portable = false;
  long offset = 0;
  for (const std::string& a : args) {
    char* end = nullptr;
    if (a == "--portable") {
      portable = true;
    } else if (offset = std::strtol(a.c_str(), &end, 10); *end || a.empty() || offset < -30 || offset > 30) {
      std::fprintf(stderr, "usage: vorlaxen-dev bench [--portable] [OFFSET]   (OFFSET from -30 to 30)\n");
      return 2;
    }
  }
  if (!portable && !platform::cpu_has_popcnt()) {
    std::fprintf(stderr, "bench: this processor has no popcnt instruction; use --portable\n");
    return 2;
  }
  Engine engine;
  engine.state.hasPopcnt = !portable;
  RunBench(engine.pool, int(offset));
  return 0;
}

}  // namespace vx::dev

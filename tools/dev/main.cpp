// vorlaxen-dev's program entry: the same choice of build as the engine's,
// except that --portable (the bit count without popcnt) always runs the base
// build, the one every x86-64 processor can run.
#include <cstring>

#include "engine/builds.h"
#include "tools/dev/commands.h"

#ifdef VORLAXEN_WITH_BMI2
namespace vx_bmi2::dev {
int RunDevTool(int argc, char** argv);
}
#endif

int main(int argc, char** argv) {
#ifdef VORLAXEN_WITH_BMI2
  bool portable = false;
  for (int i = 1; i < argc; ++i) portable = portable || std::strcmp(argv[i], "--portable") == 0;
  if (!portable && vx::UseBmi2Build()) return vx_bmi2::dev::RunDevTool(argc, argv);
#endif
  return vx::dev::RunDevTool(argc, argv);
}

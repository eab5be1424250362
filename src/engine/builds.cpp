#include "engine/builds.h"

#include <cstdlib>
#include <cstring>

#include "platform/platform.h"

namespace vx {

bool UseBmi2Build() {
  const char* forced = std::getenv("VORLAXEN_BUILD");
  if (forced && std::strcmp(forced, "base") == 0) return false;
  return platform::cpu_suits_bmi2_build();
}

}  // namespace vx

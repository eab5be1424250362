// Program entry: runs the BMI2 build where the processor suits it, else the
// base build.
#include "engine/builds.h"
#include "platform/platform.h"

int main(int argc, char* argv[]) {
  platform::read_standard_input_as_bytes();
#ifdef VORLAXEN_WITH_BMI2
  if (vx::UseBmi2Build()) return vx_bmi2::RunEngine(argc, argv);
#endif
  return vx::RunEngine(argc, argv);
}

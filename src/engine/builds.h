// The processor-level builds of the engine and the developer tool.
//
// The base build runs on every x86-64 processor (with or without popcnt, chosen
// inside it). The BMI2 build is the same sources compiled once more for
// x86-64-v3 processors (BMI1/BMI2, AVX2, LZCNT, MOVBE), with slider attacks
// indexed by pext; it is compiled with namespace vx renamed to vx_bmi2, so that
// both builds are linked side by side into one program. The program entry
// picks one at start-up; everything after that runs inside the chosen build.
#pragma once

namespace vx {

// The greeting's mark of the build: " BMI2" in the BMI2 build, else empty.
constexpr const char* BuildSuffix() {
#ifdef VORLAXEN_BMI2
  return " BMI2";
#else
  return "";
#endif
}

// Whether the BMI2 build should run: the processor suits it and the
// environment does not ask for the base build (VORLAXEN_BUILD=base).
bool UseBmi2Build();

// The engine's program run, in whichever build is compiled.
int RunEngine(int argc, char* argv[]);

}  // namespace vx

#ifdef VORLAXEN_WITH_BMI2
namespace vx_bmi2 {
int RunEngine(int argc, char* argv[]);
}
#endif

// Opens the region of the BMI2 build in one of its translation units (the
// build wraps every source of that build between this header and
// bmi2_end.h). Everything the system headers define is declared first, so
// that it stays compiled for the baseline processor: template and inline
// functions of the standard library are emitted by both builds, and the
// linker keeps only one copy of each, which every build must be able to run.
// The engine's own code, all of it in the renamed namespace, is compiled for
// x86-64-v3 and reached only through the choice of build at start-up.
#include "bmi2_system_headers.h"  // every system header the sources include (made by the build)
#include "platform/platform.h"

#include <immintrin.h>

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,bmi,bmi2,fma,f16c,lzcnt,movbe,popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,bmi,bmi2,fma,f16c,lzcnt,movbe,popcnt")
#endif

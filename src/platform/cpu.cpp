// The processor query: CPUID and the operating system's saved register state
// on x86-64, fixed answers elsewhere. Compiled for the baseline processor.
#include "platform/platform.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace platform {

#if defined(__x86_64__)

bool cpu_has_popcnt() {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return false;
  return (ecx >> 23) & 1;
}

bool cpu_suits_bmi2_build() {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return false;
  const unsigned base_family = (eax >> 8) & 0xF;
  const unsigned family = base_family == 0xF ? base_family + ((eax >> 20) & 0xFF) : base_family;
  // FMA, MOVBE, POPCNT, XSAVE, OSXSAVE, AVX, F16C.
  const unsigned leaf1_ecx = (1u << 12) | (1u << 22) | (1u << 23) | (1u << 26) | (1u << 27) | (1u << 28) | (1u << 29);
  if ((ecx & leaf1_ecx) != leaf1_ecx) return false;
  // The system saves the SSE and AVX register state (xgetbv exists: OSXSAVE).
  unsigned xcr0_low = 0, xcr0_high = 0;
  __asm__("xgetbv" : "=a"(xcr0_low), "=d"(xcr0_high) : "c"(0));
  if ((xcr0_low & 6) != 6) return false;
  // BMI1, AVX2, BMI2.
  if (!__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) return false;
  const unsigned leaf7_ebx = (1u << 3) | (1u << 5) | (1u << 8);
  if ((ebx & leaf7_ebx) != leaf7_ebx) return false;
  // LZCNT.
  if (!__get_cpuid(0x80000001, &eax, &ebx, &ecx, &edx) || !((ecx >> 5) & 1)) return false;
  unsigned vendor[3] = {};
  __get_cpuid(0, &eax, &vendor[0], &vendor[2], &vendor[1]);
  // "Auth" of AuthenticAMD and "Hygo" of HygonGenuine (the same cores).
  const bool amd = vendor[0] == 0x68747541 || vendor[0] == 0x6f677948;
  return !(amd && family < 0x19);
}

#else

// Every ARM64 processor counts bits in one instruction (cnt); on others the
// compiler's builtin picks the best the target has.
bool cpu_has_popcnt() { return true; }
bool cpu_suits_bmi2_build() { return false; }

#endif

}  // namespace platform

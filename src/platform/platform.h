// The small operating-system layer: monotonic clock, processor features,
// sleeping, read-only file mapping and directory listing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vx::platform {

// Monotonic milliseconds since an arbitrary fixed point.
int64_t now_ms();

// CPUID leaf 1, ECX bit 23: the processor has the popcnt instruction.
bool cpu_has_popcnt();

// The processor and the operating system run x86-64-v3 code (AVX, AVX2, BMI1,
// BMI2, F16C, FMA, LZCNT, MOVBE, with the AVX registers saved by the system),
// and pext is fast: AMD processors before family 19h run it in microcode.
bool cpu_suits_bmi2_build();

void sleep_ms(int ms);

// A read-only mapping of a whole file. Empty (data == nullptr) on failure
// and for an empty file; failure then says which step failed and error holds
// the system's error code.
enum class MapFailure { NONE, OPEN, SIZE, MAP };
struct MappedFile {
  const uint8_t* data = nullptr;
  size_t size = 0;
  MapFailure failure = MapFailure::NONE;
  int error = 0;
};
MappedFile map_file(const std::string& path);
void unmap_file(MappedFile& f);

// The path names a regular file that can be opened for reading.
bool is_readable_file(const std::string& path);

// Names (not paths) of the regular files in a directory; empty on failure.
std::vector<std::string> list_directory(const std::string& dir);

}  // namespace vx::platform

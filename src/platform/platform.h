// The small operating-system layer: monotonic clock, processor features,
// sleeping, read-only file mapping, directory listing and the memory of the
// hash table. One implementation per system (posix.cpp, windows.cpp, chosen by
// the build) and one for the processor query (cpu.cpp).
//
// This namespace is outside vx on purpose: the processor-level builds of the
// engine rename vx, but all of them share this one copy, compiled for the
// baseline processor, which also makes the choice between them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace platform {

// Monotonic milliseconds since an arbitrary fixed point.
int64_t now_ms();

// The processor counts bits in one instruction (popcnt on x86-64; every
// ARM64 processor has one).
bool cpu_has_popcnt();

// The processor and the operating system run x86-64-v3 code (AVX, AVX2, BMI1,
// BMI2, F16C, FMA, LZCNT, MOVBE, with the AVX registers saved by the system),
// and pext is fast: AMD processors before family 19h run it in microcode.
// Always false on other processors.
bool cpu_suits_bmi2_build();

void sleep_ms(int ms);

// Standard input delivers its bytes as they come: no end of input at a
// Ctrl-Z byte and no changed line ends on Windows (the engine reads "\r\n"
// itself). Nothing to do on POSIX systems.
void read_standard_input_as_bytes();

// A read-only mapping of a whole file. Empty (data == nullptr) on failure
// and for an empty file; failure then says which step failed and error holds
// the system's error code. handle is the system's mapping object, if any.
enum class MapFailure { NONE, OPEN, SIZE, MAP };
struct MappedFile {
  const uint8_t* data = nullptr;
  size_t size = 0;
  MapFailure failure = MapFailure::NONE;
  int error = 0;
  void* handle = nullptr;
};
MappedFile map_file(const std::string& path);
void unmap_file(MappedFile& f);

// The path names a regular file that can be opened for reading.
bool is_readable_file(const std::string& path);

// Names (not paths) of the regular files in a directory; empty on failure.
std::vector<std::string> list_directory(const std::string& dir);

// The characters that separate directories in a list of them, as a user of
// this system writes it: ';' everywhere, and also ':' where a path can not
// hold one (not on Windows, whose paths start with a drive letter and ':').
extern const char* const PATH_LIST_SEPARATORS;

// The most memory the hash table may take without risking the system's
// out-of-memory handling: physical memory (or a smaller limit set on the
// process) less room for the rest of the process and the system.
uint64_t usable_memory();

// Zero-filled memory for the hash table, at least `bytes` long and starting on
// an `align` boundary (a power of two); the system is asked to back it with
// large pages where it can. nullptr when the system refuses.
struct LargeMemory {
  void* base = nullptr;  // what the system gave, to give back
  void* aligned = nullptr;
  size_t size = 0;
};
LargeMemory allocate_large(size_t bytes, size_t align);
void free_large(LargeMemory& m);

}  // namespace platform

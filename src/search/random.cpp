#include "search/random.h"

#include <chrono>
#include <cstdint>
#include <random>

#include "board/random.h"

namespace vx {

namespace {

// Mixes the bits of a word (the finaliser of splitmix64), so that seeds that
// differ in a few low bits start far apart.
uint64_t Mix(uint64_t z) {
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31);
}

// A start word that differs from one process to the next: the system's random
// device where it has one, mixed with the wall clock, the high-resolution
// clock and the address of a local (moved by address-space randomisation), so
// that a random device that yields a fixed sequence still gives a new word
// per start. Never 0, which xorshift would keep forever.
uint64_t ProcessSeed() {
  uint64_t seed = 0;
  try {
    std::random_device device;
    seed = (uint64_t(device()) << 32) ^ device();
  } catch (...) {  // no random device: the clocks alone
  }
  const int local = 0;
  seed ^= Mix(uint64_t(std::chrono::system_clock::now().time_since_epoch().count()));
  seed ^= Mix(uint64_t(std::chrono::high_resolution_clock::now().time_since_epoch().count()) + 1);
  seed ^= Mix(uint64_t(reinterpret_cast<uintptr_t>(&local)) + 2);
  return seed ? seed : RANDOM_START;
}

uint64_t FixedState() {
  uint64_t s;
  SeedRandom(s, 17);
  return s;
}

uint64_t& generator_state() {
  static uint64_t state = ProcessSeed();
  return state;
}

}  // namespace

int Random(int lo, int hi) {
  if (hi == lo) return lo;
  uint64_t& x = generator_state();
  xorshift_step(x);
  const uint32_t r = uint32_t(x * 0x2545F4914F6CDD1DULL);
  return lo + int(r % uint32_t(hi - lo + 1));
}

void ResetRandom() { generator_state() = FixedState(); }

}  // namespace vx

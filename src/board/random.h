// The xorshift generator shared by the hash keys, the material keys, the
// self-test walk and strength limitation.
#pragma once

#include <cstdint>

namespace vx {

constexpr uint64_t RANDOM_START = 0x106689D45497FDB5ULL;

inline uint64_t xorshift_step(uint64_t& x) {
  x ^= x >> 12;
  x ^= x << 25;
  x ^= x >> 27;
  return x;
}

// Sets the state to the start word and advances it by the given number of steps.
inline void SeedRandom(uint64_t& state, int steps) {
  state = RANDOM_START;
  for (int i = 0; i < steps; ++i) xorshift_step(state);
}

}  // namespace vx

#include "search/random.h"

#include <cstdint>

#include "board/random.h"

namespace vx {

namespace {

uint64_t SeededState() {
  uint64_t s;
  SeedRandom(s, 17);
  return s;
}

uint64_t& generator_state() {
  static uint64_t state = SeededState();
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

void ResetRandom() { generator_state() = SeededState(); }

}  // namespace vx

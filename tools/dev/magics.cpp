// vorlaxen-dev magics: searches magic multipliers for the slider attack
// tables (one index bit per relevant occupancy square) and prints them as the
// C++ arrays of src/board/magics.h. The search is deterministic.
#include <cstdio>
#include <vector>

#include "board/attacks.h"
#include "board/random.h"
#include "tools/dev/commands.h"

namespace vx::dev {

namespace {

Bitboard find_magic(Square s, bool rook, uint64_t& seed) {
  const Bitboard mask = RelevantOccupancy(s, rook);
  const int bits = __builtin_popcountll(mask);
  std::vector<Bitboard> occupancy, reference;
  Bitboard b = 0;
  do {
    occupancy.push_back(b);
    reference.push_back(SlidingAttacks(s, rook, b));
    b = (b - mask) & mask;
  } while (b);
  std::vector<Bitboard> table(size_t(1) << bits);
  std::vector<int> epoch(table.size(), 0);
  for (int attempt = 1;; ++attempt) {
    Bitboard magic = ~0ULL;
    for (int i = 0; i < 3; ++i) magic &= xorshift_step(seed) * 0x2545F4914F6CDD1DULL;
    if (__builtin_popcountll((mask * magic) >> 56) < 6) continue;
    size_t i = 0;
    for (; i < occupancy.size(); ++i) {
      size_t idx = ((occupancy[i] & mask) * magic) >> (64 - bits);
      if (epoch[idx] < attempt) {
        epoch[idx] = attempt;
        table[idx] = reference[i];
      } else if (table[idx] != reference[i]) {
        break;
      }
    }
    if (i == occupancy.size()) return magic;
  }
}

}  // namespace

int magics_command(const Args&) {
  uint64_t seed = 0x9E3779B97F4A7C15ULL;
  for (bool rook : {true, false}) {
    std::printf("constexpr Bitboard %s_MULTIPLIERS[64] = {\n", rook ? "ROOK" : "BISHOP");
    for (Square s = 0; s < 64; ++s)
      std::printf("%s0x%016llXULL,%s", s % 4 ? " " : "    ", (unsigned long long)find_magic(s, rook, seed),
                  s % 4 == 3 ? "\n" : "");
    std::printf("};\n");
  }
  return 0;
}

}  // namespace vx::dev

// Bit operations on bitboards. The population count exists in two builds:
// HwPopcnt = true uses the processor's bit-count instruction (on x86-64
// popcnt through inline assembly, so that no translation unit needs -mpopcnt
// and the program still starts on processors without it; elsewhere the
// compiler's builtin), HwPopcnt = false a portable bit count. Evaluation,
// search and perft carry the choice as a template parameter.
#pragma once

#include "board/types.h"

namespace vx {

template <bool HwPopcnt>
inline int popcount(Bitboard b) {
  if constexpr (HwPopcnt) {
#if defined(__x86_64__)
    uint64_t r;
    __asm__("popcntq %1, %0" : "=r"(r) : "r"(b) : "cc");
    return int(r);
#else
    return __builtin_popcountll(b);
#endif
  } else {
    b = b - ((b >> 1) & 0x5555555555555555ULL);
    b = (b & 0x3333333333333333ULL) + ((b >> 2) & 0x3333333333333333ULL);
    b = (b + (b >> 4)) & 0x0F0F0F0F0F0F0F0FULL;
    return int((b * 0x0101010101010101ULL) >> 56);
  }
}

inline Square lsb(Bitboard b) { return Square(__builtin_ctzll(b)); }
inline Square msb(Bitboard b) { return Square(63 ^ __builtin_clzll(b)); }
inline Square pop_lsb(Bitboard& b) {
  Square s = lsb(b);
  b &= b - 1;
  return s;
}
constexpr bool more_than_one(Bitboard b) { return b & (b - 1); }
constexpr Bitboard sq_bb(Square s) { return Bitboard(1) << s; }

constexpr Bitboard FILE_A_BB = 0x0101010101010101ULL;
constexpr Bitboard FILE_H_BB = FILE_A_BB << 7;
constexpr Bitboard RANK_1_BB = 0xFFULL;
constexpr Bitboard RANK_8_BB = RANK_1_BB << 56;

constexpr Bitboard file_bb(int f) { return FILE_A_BB << f; }
constexpr Bitboard rank_bb(int r) { return RANK_1_BB << (8 * r); }

// Pawn-set shifts seen from the given side: "up" is towards the enemy.
template <Color C> constexpr Bitboard shift_up(Bitboard b) { return C == WHITE ? b << 8 : b >> 8; }
// Captures towards the h-file for White (step 9) / the a-file for Black.
template <Color C> constexpr Bitboard shift_cap9(Bitboard b) {
  return C == WHITE ? (b & ~FILE_H_BB) << 9 : (b & ~FILE_A_BB) >> 9;
}
// Captures towards the a-file for White (step 7) / the h-file for Black.
template <Color C> constexpr Bitboard shift_cap7(Bitboard b) {
  return C == WHITE ? (b & ~FILE_A_BB) << 7 : (b & ~FILE_H_BB) >> 7;
}

}  // namespace vx

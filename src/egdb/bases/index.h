// The position index of the Vorlaxenbases. The board is turned by symmetry
// so that the leading king stands in the a1-d1-d4 triangle (no pawns: files,
// ranks and the diagonal reflected) or on files a-d (pawns: files only); its
// square gives the king index k. The full index is
//   k * 64^(men-1) + other king * 64^(men-2) + p1 * 64^(men-3) + ...
// with the other men in signature order (White's queens, rooks, bishops,
// knights, pawns, then Black's), each kind in increasing square order. A pawn
// that has just made a double step and can be taken en passant is entered on
// the first or last rank instead of its own square.
#pragma once

#include <cstdint>

#include "board/types.h"

namespace vx {

class CChessPosition;

constexpr int MAX_BASE_PIECES = 4;  // six men

struct BaseMen {
  Square lead = 0, other = 0;
  int pieces = 0;
  Square square[MAX_BASE_PIECES] = {};
  uint8_t slot[MAX_BASE_PIECES] = {};  // colour * 5 + kind, in signature order
};

// The symmetry tables, built by the compiler: the eight transforms (bit 1
// files, 2 ranks, 4 the a1-h8 diagonal, applied in that order), the
// transform that normalises a leading king, and the king index of a
// normalised leading king (0-9 without pawns, 0-31 with).
struct BaseIndexTables {
  uint8_t apply[8][64] = {};
  uint8_t transform[2][64] = {};
  uint8_t king_index[2][64] = {};
  constexpr BaseIndexTables();
};

constexpr Square BASE_TRIANGLE[10] = {SQ_A1, SQ_B1, SQ_C1, SQ_D1, SQ_B2, SQ_C2, SQ_D2, SQ_C3, SQ_D3, SQ_D4};

constexpr BaseIndexTables::BaseIndexTables() {
  for (Square s = 0; s < 64; ++s) {
    for (int t = 0; t < 8; ++t) {
      Square x = t & 1 ? s ^ 7 : s;
      x = t & 2 ? x ^ 56 : x;
      apply[t][s] = uint8_t(t & 4 ? (x >> 3) | ((x & 7) << 3) : x);
    }
    for (int pawns = 0; pawns < 2; ++pawns) {
      int t = file_of(s) > 3 ? 1 : 0;
      Square lead = file_of(s) > 3 ? s ^ 7 : s;
      if (!pawns && rank_of(lead) > 3) t |= 2, lead ^= 56;
      if (!pawns && rank_of(lead) > file_of(lead)) t |= 4;
      transform[pawns][s] = uint8_t(t);
      for (int k = 0; k < 10; ++k)
        if (BASE_TRIANGLE[k] == s) king_index[0][s] = uint8_t(k);
      king_index[1][s] = uint8_t(rank_of(s) * 4 + file_of(s));
    }
  }
}

inline constexpr BaseIndexTables BASE_INDEX_TABLES{};

inline int BaseTransform(bool pawns, Square lead) { return BASE_INDEX_TABLES.transform[pawns][lead & 63]; }
inline Square Transformed(int transform, Square s) { return BASE_INDEX_TABLES.apply[transform & 7][s & 63]; }
inline int BaseKingIndex(bool pawns, Square lead) { return BASE_INDEX_TABLES.king_index[pawns][lead & 63]; }
inline Square BaseKingSquare(bool pawns, int k) { return pawns ? make_square(k & 3, k >> 2) : BASE_TRIANGLE[k]; }
constexpr int BaseKingIndices(bool pawns) { return pawns ? 32 : 10; }

inline uint64_t BaseIndex(BaseMen m, bool pawns) {
  const uint8_t* apply = BASE_INDEX_TABLES.apply[BaseTransform(pawns, m.lead)];
  uint64_t index = uint64_t(BASE_INDEX_TABLES.king_index[pawns][apply[m.lead & 63]]) * 64 + apply[m.other & 63];
  for (int i = 0; i < m.pieces; ++i) m.square[i] = apply[m.square[i] & 63];
  // Like men in increasing square order.
  for (int i = 1; i < m.pieces; ++i)
    for (int j = i; j > 0 && m.slot[j - 1] == m.slot[j] && m.square[j - 1] > m.square[j]; --j) {
      const Square s = m.square[j];
      m.square[j] = m.square[j - 1];
      m.square[j - 1] = s;
    }
  for (int i = 0; i < m.pieces; ++i) index = index * 64 + uint64_t(m.square[i]);
  return index;
}

// Index bits within one sub-table: the whole index for three men, else the
// low two bits of k and six per further man.
constexpr int BaseIndexBits(int men, bool pawns) { return men == 3 ? (pawns ? 17 : 16) : 2 + 6 * (men - 1); }
constexpr int BaseSubTableOf(uint64_t full, int men) { return men == 3 ? 0 : int(full >> (6 * (men - 1) + 2)); }
constexpr uint32_t BaseLocalIndex(uint64_t full, int men) {
  return men == 3 ? uint32_t(full) : uint32_t(full & ((uint64_t(4) << (6 * (men - 1))) - 1));
}

// The pawn of the side not to move that has just made a double step, when a
// pawn of the side to move could take it en passant (-1 when none).
Square MarkablePawn(const CChessPosition& p);
// The men of a position whose colours are already those of its table.
BaseMen CollectBaseMen(const CChessPosition& p, bool lead_white);

}  // namespace vx

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

// Transform bits: 1 files, 2 ranks, 4 the a1-h8 diagonal, applied in that order.
int BaseTransform(bool pawns, Square lead);
Square Transformed(int transform, Square s);
// King index of a normalised leading king (0-9 without pawns, 0-31 with) and back.
int BaseKingIndex(bool pawns, Square lead);
Square BaseKingSquare(bool pawns, int k);
constexpr int BaseKingIndices(bool pawns) { return pawns ? 32 : 10; }

uint64_t BaseIndex(BaseMen men, bool pawns);

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

// Where a position stands inside a Syzygy table: the index of the published
// format. The men are listed in the table's own order and split into groups
// of equal men. The leading group is folded by the board's symmetries: in a
// pawnless table three unique men (or the two kings) with the first one in the
// a1-d1-d4 triangle, in a pawn table the pawns of one colour with the leading
// pawn on the files a-d (each of those four files has a sub-table of its own).
// Every further group is a combination of the squares left over. The index is
// the sum of the group numbers, each multiplied by its group's factor.
#pragma once

#include <cstdint>

#include "egdb/syzygy/material.h"

namespace vx::syzygy {

// How the leading group of a pawnless table is encoded.
enum PieceEncoding : int { THREE_UNIQUE = 0, TWO_KINGS = 2 };

// The numbering of one sub-table (one side to move, one leading-pawn file).
struct IndexLayout {
  uint8_t pieces[TB_PIECES] = {};  // table piece codes in index order
  uint8_t group[TB_PIECES] = {};   // group length at a group's first man, 0 inside a group
  uint64_t factor[TB_PIECES] = {};
  uint64_t size = 0;               // number of indices
};

// Groups and factors from `pieces` and the order nibbles of the header (the
// place of the leading group, and of the second pawn group, among the
// factors). False when the nibbles name no such place.
bool SetupPieceIndex(IndexLayout& ix, int men, int encoding, int order);
bool SetupPawnIndex(IndexLayout& ix, int men, int leading, int second, int order, int order2, int file);

// Moves the leading pawn (the one nearest the a- or h-file, then the lowest)
// to sq[0] among the first `count` squares; returns its file folded to 0-3.
int LeadingPawnFile(int* sq, int count);

// The index of the squares, given in table order (they are reordered and
// mirrored in place). A value of ix.size or more means the squares form no
// position of the table.
uint64_t EncodePieces(const IndexLayout& ix, int men, int encoding, int* sq);
uint64_t EncodePawns(const IndexLayout& ix, int men, int leading, int second, int* sq);

}  // namespace vx::syzygy

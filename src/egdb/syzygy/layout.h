// The layout of a Syzygy WDL file: magic, flags, the piece order of every
// sub-table, then the headers, sparse indices, size tables and block data of
// all sub-tables in turn. A pawnless table has one sub-table per side to
// move, a pawn table one per side and leading-pawn file; a table whose two
// sides have the same material stores only one side.
#pragma once

#include <cstdint>

#include "egdb/syzygy/index.h"
#include "egdb/syzygy/material.h"
#include "egdb/syzygy/pairs.h"

namespace vx::syzygy {

constexpr uint32_t WDL_MAGIC = 0x5D23E871;

// What the name of a table tells about it.
struct TableInfo {
  TableMaterial material;  // the name's first side is colour 0
  bool symmetric = false;  // both sides have the same material
  bool has_pawns = false;
  int encoding = THREE_UNIQUE;  // pawnless tables
  int pawns[2] = {};            // pawn tables: leading pawns, then the other colour's
  int leading_color = 0;        // colour of the leading pawns
};

TableInfo DescribeTable(const TableMaterial& mat, bool symmetric);

struct SubTable {
  IndexLayout index;
  PairsData pairs;
};

struct WdlLayout {
  int sides = 1;  // 2 unless symmetric
  int files = 1;  // 4 for pawn tables
  SubTable sub[4][2];  // [leading-pawn file][side to move, 0 = the name's first side]
};

// True when the file starts with the WDL magic number.
bool HasWdlMagic(const FileView& file);

// Reads the layout, checking every region against the file size and every
// piece list against the table's material. False for a corrupted file.
bool ReadWdlLayout(const FileView& file, const TableInfo& info, WdlLayout& out);

}  // namespace vx::syzygy

// The registered Syzygy tables: found along the path list at start-up and on
// every change of the path, entered in a hash by material key, and mapped
// and read on their first probe.
#pragma once

#include <atomic>

#include "egdb/syzygy/layout.h"
#include "platform/platform.h"

namespace vx::syzygy {

constexpr int TBMAX_PIECE = 254;  // pawnless tables
constexpr int TBMAX_PAWN = 256;   // tables with pawns
constexpr int HSHMAX = 5;         // slots per hash bucket
constexpr int HASH_BITS = 10;     // buckets by the top bits of the key

struct TableEntry {
  platform::MappedFile file;
  Key key = 0;  // material key of the table's own material (its first side White)
  TableInfo info;
  std::atomic<bool> ready{false};  // mapped and read
  WdlLayout layout;
};

// The table of the position's (bishop-folded) material key, mapped and read
// on first use. Null when no table covers it or it cannot be loaded (the
// key is then dropped from the hash).
const TableEntry* FindTable(const Position& pos, Key key);

// Hash slots a bucket would need to hold the keys of every table name up to
// six men (for the check that the fixed bucket size suffices).
int FullestBucketOfAllNames();

}  // namespace vx::syzygy

// The value a loaded Syzygy table stores for a position: the position's men
// listed in the table's order (colours and ranks swapped when the position's
// colours are the table's the other way round), their index, and the value
// decompressed there.
#pragma once

#include "egdb/syzygy/registry.h"

namespace vx::syzygy {

// 0 to 4 (loss to win for the side to move), or -1 when the table does not
// hold the position. key is the position's bishop-folded material key, equal
// to the table's own key or to that of its colour swap.
int StoredValue(const TableEntry& table, const Position& pos, Key key);

}  // namespace vx::syzygy

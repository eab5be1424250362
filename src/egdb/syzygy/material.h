// Syzygy table names and material keys: the names the engine looks for, the
// material a name stands for, and the key under which a table and a position
// meet (the additive material key with dark-squared bishops counted as
// light-squared ones, since the tables know one bishop kind).
#pragma once

#include <string>
#include <vector>

#include "board/types.h"

namespace vx {
struct Position;
}

namespace vx::syzygy {

constexpr int TB_PIECES = 6;  // most men in a table

// Men of a table by table piece code: bit 3 the colour (the first side of the
// name is 0), the low three bits the type P 1, N 2, B 3, R 4, Q 5, K 6.
struct TableMaterial {
  int count[16] = {};
  int men = 0;

  int of(Color c, int type) const { return count[(c << 3) | type]; }
  int pawns(Color c) const { return of(c, 1); }
};

// Every table name of up to six men, in the order they are looked for.
std::vector<std::string> TableNames();

// The material of a name such as "KRPvKR"; false when the text is no name.
bool ParseTableName(const std::string& name, TableMaterial& mat);

// Material key of the table's material, and of the same material with the
// colours swapped.
Key TableKey(const TableMaterial& mat, bool swapped);

// The position's material key with dark bishops folded into light ones.
Key PositionTableKey(const Position& pos);

// The table name of the position's material, White's letters first unless
// black_first.
std::string PositionTableName(const Position& pos, bool black_first);

}  // namespace vx::syzygy

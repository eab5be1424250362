// The Syzygy prober: finds the ".rtbw" win/draw/loss tables along a path, maps
// them, and answers for positions of up to their number of men. The files of
// this folder decode the format: material keys, indexing, layout, pairs, values.
#pragma once

#include <string>

namespace vx {

struct Position;

// Frees the tables registered before, then registers the ".rtbw" files found
// along a path list (directories separated by ";" or ":"), the first
// directory that holds a table winning. An empty list or "<empty>" stands
// for no path.
void InitSyzygy(const std::string& path);

// The greatest number of men of any registered table (0 when none).
int SyzygyLargest();

// Win/draw/loss for the side to move: -2 loss, -1 loss the 50-move rule
// saves, 0 draw, 1 win the 50-move rule spoils, 2 win. success is set to 0
// when no table answers (the result is then meaningless).
int ProbeWdl(Position& pos, int& success);

}  // namespace vx

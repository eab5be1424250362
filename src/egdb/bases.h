// Vorlaxenbases: the maker's own endgame databases.
#pragma once

#include <string>

namespace vx {

struct Position;

// Loads the databases named by a ".tbe" file, an ".ini" list file or a
// directory, after freeing every table loaded before.
void LoadVorlaxenbases(const std::string& path);

// The greatest number of men over the loaded tables (0 when none).
int VorlaxenbasesLargestMen();

// 1 win, 0 draw, -1 loss for the side to move; success is set to 1 only
// when a table answered.
int ProbeVorlaxenbases(Position& pos, int& success);

}  // namespace vx

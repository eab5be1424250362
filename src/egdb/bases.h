// Vorlaxenbases: the maker's own endgame databases, named by a list file.
#pragma once

#include <string>

namespace vx {

// Loads the databases named by the list file.
void LoadVorlaxenbases(const std::string& listFile);

}  // namespace vx

// Syzygy win/draw/loss tablebases.
#pragma once

#include <string>

namespace vx {

// Registers the tables found along a ";"-separated path list; an empty list
// or "<empty>" stands for no path.
void InitSyzygy(const std::string& path);

}  // namespace vx

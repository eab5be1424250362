// Text diagram of a position, as the self-test prints it.
#pragma once

#include <string>

#include "board/position.h"

namespace vx {

std::string BoardDiagram(const Position& pos);

}  // namespace vx

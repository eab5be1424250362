#include "egdb/bases.h"

namespace vx {

// The database loader is not built yet: this loads nothing and prints
// nothing, so the engine runs without Vorlaxenbases until it is.
void LoadVorlaxenbases(const std::string& /*listFile*/) {}

}  // namespace vx

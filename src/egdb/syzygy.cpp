#include "egdb/syzygy.h"

namespace vx {

// The Syzygy prober is not built yet: this registers no table, so the engine
// runs without Syzygy tablebases until it is.
void InitSyzygy(const std::string& /*path*/) {}

}  // namespace vx

#include "egdb/syzygy.h"

#include "engine/output.h"

namespace vx {

// The Syzygy prober is not built yet: no table is registered, and a path that
// names tables says so instead of being ignored silently.
void InitSyzygy(const std::string& path) {
  if (path.empty() || path == "<empty>") return;
  WriteLine("info string Syzygy tablebases are not supported yet; Syzygy Path " + path + " is not used");
}

}  // namespace vx

namespace vx {

int SyzygyLargest() { return 0; }

int ProbeWdl(Position&, int& success) {
  success = 0;
  return 0;
}

}  // namespace vx

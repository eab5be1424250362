#include "egdb/bases.h"

#include <fstream>

#include "engine/output.h"

namespace vx {

// The database loader is not built yet: nothing is loaded. When the list file
// exists the user evidently has databases, so say that they are not used.
void LoadVorlaxenbases(const std::string& listFile) {
  if (listFile.empty() || !std::ifstream(listFile)) return;
  WriteLine("info string Vorlaxenbases are not supported yet; " + listFile + " is not used");
}

}  // namespace vx

namespace vx {

int VorlaxenbasesLargestMen() { return 0; }

int ProbeVorlaxenbases(Position&, int& success) {
  success = 0;
  return 0;
}

}  // namespace vx

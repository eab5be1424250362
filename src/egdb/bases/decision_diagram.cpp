#include "egdb/bases/decision_diagram.h"

namespace vx {

namespace {

// Every entry of the level names an existing node below: entries of the
// two-child nodes are children themselves, entries of single-entry nodes need
// their successor as well.
bool ChildrenExist(const DiagramLevel& level, uint64_t below) {
  const uint64_t pairs = 2 * uint64_t(level.threshold);
  if (level.width == 0) return below > (level.count > pairs ? 1u : 0u);
  for (uint64_t j = 0; j < level.count; ++j) {
    const uint64_t child = level.entry(j) + (j >= pairs ? 1 : 0);
    if (child >= below) return false;
  }
  return true;
}

}  // namespace

bool DiagramIsSound(const DecisionDiagram& d) {
  uint64_t below = 3;  // the values under level 0
  for (const DiagramLevel& level : d.levels) {
    if (level.width > 31 || uint64_t(level.count) < 2 * uint64_t(level.threshold)) return false;
    if (level.words.size() < PaddedWords(level.count, level.width)) return false;
    if (!ChildrenExist(level, below)) return false;
    below = level.nodes();
  }
  return !d.levels.empty() && below >= 1;
}

}  // namespace vx

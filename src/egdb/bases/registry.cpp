#include "egdb/bases/registry.h"

namespace vx {

BaseRegistry& base_registry() {
  static BaseRegistry registry;
  return registry;
}

void BaseRegistry::clear() {
  for (int i = 0; i < count_; ++i) table_[i].reset();
  count_ = 0;
  largest_men_ = 0;
}

BaseTable* BaseRegistry::table_for(const BaseMaterial& m) {
  const uint32_t sig = m.signature();
  for (int i = 0; i < count_; ++i)
    if (signature_[i] == sig) return table_[i].get();
  if (count_ == MAX_BASE_TABLES) return nullptr;
  auto t = std::make_unique<BaseTable>();
  t->material = m;
  t->men = m.men();
  t->pawns = m.has_pawns();
  t->subtables = BaseSubTables(t->men, t->pawns);
  signature_[count_] = sig;
  table_[count_] = std::move(t);
  if (m.men() > largest_men_) largest_men_ = m.men();
  return table_[count_++].get();
}

const BaseTable* BaseRegistry::find(uint32_t signature) const {
  for (int i = 0; i < count_; ++i)
    if (signature_[i] == signature) return table_[i].get();
  return nullptr;
}

uint64_t BaseRegistry::estimated_memory() const {
  uint64_t bytes = 4100;
  for (int i = 0; i < count_; ++i) {
    const BaseTable& t = *table_[i];
    bytes += 64 * uint64_t(t.subtables) + 71;
    for (int s = 0; s < t.subtables; ++s)
      for (const BasePart& p : t.part[s]) {
        if (!p.diagram.present()) continue;
        bytes += 24;
        for (const DiagramLevel& l : p.diagram.levels)
          bytes += (((uint64_t(l.count) * l.width + 31) / 8) & ~uint64_t(3)) + 16;
      }
  }
  return bytes;
}

}  // namespace vx

// Probing speed of the endgame databases on random positions of one
// material with the tables mapped and their pages in memory (every position
// is probed once before timing): ProbeWdl with its search of captures, the
// Syzygy table lookup alone, and ProbeVorlaxenbases on the generator's
// databases under build/tbgen-oracle when they cover the material.
#include <benchmark/benchmark.h>

#include "egdb/bases.h"
#include "egdb/syzygy.h"
#include "egdb/syzygy_registry.h"
#include "egdb/syzygy_value.h"
#include "../unit/tablebase_util.h"

namespace vx {
namespace {

using Prober = int (*)(Position&, int&);

void LoadDatabases() {
  static const bool loaded = [] {
    test::init();
    InitSyzygy(test::SyzygyDir());
    LoadVorlaxenbases(VORLAXEN_TABLES_ORACLE);
    return true;
  }();
  (void)loaded;
}

// 4096 random positions of the material, each probed once by `probe`;
// empty when the prober does not answer them.
std::vector<Position> HotPositions(const std::string& name, Prober probe) {
  LoadDatabases();
  syzygy::TableMaterial mat;
  syzygy::ParseTableName(name, mat);
  std::mt19937_64 rng(7);
  std::vector<Position> positions;
  for (int i = 0; i < 4096; ++i) positions.push_back(test::RandomTablePosition(rng, mat, i % 2));
  for (Position& pos : positions) {
    int success = 0;
    probe(pos, success);
    if (!success) return {};
  }
  return positions;
}

int TableLookup(Position& pos, int& success) {
  const Key key = syzygy::PositionTableKey(pos);
  const syzygy::TableEntry* table = syzygy::FindTable(pos, key);
  const int v = table ? syzygy::StoredValue(*table, pos, key) : -1;
  success = v >= 0;
  return v;
}

void Probes(benchmark::State& state, const std::string& name, Prober probe) {
  std::vector<Position> set = HotPositions(name, probe);
  if (set.empty()) {
    state.SkipWithError(("no table answers " + name).c_str());
    return;
  }
  size_t i = 0;
  for (auto _ : state) {
    int success = 0;
    benchmark::DoNotOptimize(probe(set[i], success));
    if (++i == set.size()) i = 0;
  }
  state.SetItemsProcessed(int64_t(state.iterations()));
}

const bool registered = [] {
  for (const char* name : {"KRPvKR", "KQvKR"}) {
    benchmark::RegisterBenchmark((std::string("ProbeWdl/") + name).c_str(), Probes, name, ProbeWdl);
    benchmark::RegisterBenchmark((std::string("SyzygyTableLookup/") + name).c_str(), Probes, name, TableLookup);
    benchmark::RegisterBenchmark((std::string("ProbeVorlaxenbases/") + name).c_str(), Probes, name,
                                 ProbeVorlaxenbases);
  }
  return true;
}();

}  // namespace
}  // namespace vx

BENCHMARK_MAIN();

// Probing speed of the Syzygy tables on random KRPvKR positions with the
// table mapped and its pages in memory (every position probed once before
// timing). ProbeWdl includes its search of captures; the table lookup alone
// is measured too.
#include <benchmark/benchmark.h>

#include "egdb/syzygy.h"
#include "egdb/syzygy_registry.h"
#include "egdb/syzygy_value.h"
#include "../unit/tablebase_util.h"

namespace vx {
namespace {

struct KrpvkrPositions {
  std::vector<Position> positions;
  KrpvkrPositions() {
    test::init();
    InitSyzygy(test::SyzygyDir());
    syzygy::TableMaterial mat;
    syzygy::ParseTableName("KRPvKR", mat);
    std::mt19937_64 rng(7);
    for (int i = 0; i < 4096; ++i) positions.push_back(test::RandomTablePosition(rng, mat, i % 2));
    for (Position& pos : positions) {
      int success = 0;
      ProbeWdl(pos, success);
    }
  }
};

KrpvkrPositions& krpvkr() {
  static KrpvkrPositions p;
  return p;
}

void BM_ProbeWdl(benchmark::State& state) {
  auto& set = krpvkr().positions;
  if (!SyzygyLargest()) state.SkipWithError("no Syzygy tables");
  size_t i = 0;
  for (auto _ : state) {
    int success = 0;
    benchmark::DoNotOptimize(ProbeWdl(set[i], success));
    if (++i == set.size()) i = 0;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ProbeWdl);

void BM_StoredValue(benchmark::State& state) {
  auto& set = krpvkr().positions;
  const Key key = syzygy::PositionTableKey(set[0]);
  const syzygy::TableEntry* table = syzygy::FindTable(set[0], key);
  if (!table) state.SkipWithError("no KRPvKR table");
  size_t i = 0;
  for (auto _ : state) {
    const Position& pos = set[i];
    benchmark::DoNotOptimize(syzygy::StoredValue(*table, pos, syzygy::PositionTableKey(pos)));
    if (++i == set.size()) i = 0;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StoredValue);

}  // namespace
}  // namespace vx

BENCHMARK_MAIN();

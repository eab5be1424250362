// Probing speed of both endgame databases on the same random positions of a
// material, one side to move at a time (the generator may have left out one
// side's part, which one ply of search then answers): ProbeWdl on the Syzygy
// tables and ProbeVorlaxenbases on $VORLAXEN_BASES, else on the generator's
// databases of "make test-tables". Every position is probed once before
// timing, so the tables' pages are in memory.
#include <benchmark/benchmark.h>

#include "../unit/tablebase_util.h"
#include "egdb/bases/bases.h"
#include "egdb/syzygy/syzygy.h"

namespace vx {
namespace {

using Prober = int (*)(Position&, int&);

// 4096 random positions of the material with that side to move; empty when
// the prober does not answer them.
std::vector<Position> HotPositions(const std::string& name, Color stm, Prober probe) {
  static const bool loaded = [] {
    test::init();
    InitSyzygy(test::SyzygyDir());
    const char* bases = std::getenv("VORLAXEN_BASES");
    LoadVorlaxenbases(bases ? bases : VORLAXEN_TABLES_ORACLE);
    return true;
  }();
  syzygy::TableMaterial mat;
  syzygy::ParseTableName(name, mat);
  std::mt19937_64 rng(7);
  std::vector<Position> positions;
  while (loaded && positions.size() < 4096) {
    Position pos = test::RandomTablePosition(rng, mat);
    int success = 0;
    if (pos.side_to_move != stm) continue;
    probe(pos, success);
    if (!success) return {};
    positions.push_back(pos);
  }
  return positions;
}

void Probes(benchmark::State& state, const std::string& name, Color stm, Prober probe) {
  std::vector<Position> set = HotPositions(name, stm, probe);
  if (set.empty()) return state.SkipWithError(("no database answers " + name).c_str());
  size_t i = 0;
  for (auto _ : state) {
    int success = 0;
    benchmark::DoNotOptimize(probe(set[i], success));
    if (++i == set.size()) i = 0;
  }
  state.SetItemsProcessed(int64_t(state.iterations()));
}

const bool registered = [] {
  for (const char* name : {"KRvK", "KQvKR", "KRPvKR"})
    for (const Color stm : {WHITE, BLACK}) {
      const std::string at = std::string("/") + name + (stm == WHITE ? "/white" : "/black");
      benchmark::RegisterBenchmark(("ProbeWdl" + at).c_str(), Probes, name, stm, ProbeWdl);
      benchmark::RegisterBenchmark(("ProbeVorlaxenbases" + at).c_str(), Probes, name, stm, ProbeVorlaxenbases);
    }
  return true;
}();

}  // namespace
}  // namespace vx

BENCHMARK_MAIN();

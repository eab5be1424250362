// Probing speed of the Vorlaxenbases on random legal positions of every
// loaded table (hot cache: the same positions again and again), for the
// stored parts, the left-out parts (the one-ply search) and both mixed.
// The bases come from $VORLAXEN_BASES, else vorlaxenbases/ ("make bases").
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>

#include "board/position.h"
#include "egdb/base_registry.h"
#include "egdb/bases.h"
#include "egdb/library_position.h"
#include "engine/startup.h"

namespace vx {
namespace {

struct ProbeSets {
  std::vector<Position> stored, left_out, all;
};

// Random legal positions of a table's material with the given side to move.
void AddPositions(const BaseTable& t, Color stm, int count, std::mt19937& rng, std::vector<Position>& out) {
  for (int made = 0, tries = 0; made < count && tries < 100 * count; ++tries) {
    CChessPosition lib;
    lib.clear();
    auto put = [&](uint8_t code) {
      Square s;
      do s = Square(rng() % 64);
      while (lib.board[s] || (LibraryType(code) == LIB_PAWN && (rank_of(s) == 0 || rank_of(s) == 7)));
      lib.put(code, s);
    };
    put(LIB_KING);
    put(LIB_KING + LIB_BLACK);
    for (int c = 0; c < 2; ++c)
      for (int k = 0; k < BASE_KINDS; ++k)
        for (int n = 0; n < t.material.count[c][k]; ++n) put(LibraryColored(uint8_t(LIB_QUEEN + k), c == 0));
    lib.set_white_to_move(stm == WHITE);
    Position pos;
    if (!pos.SetFromFen(LibraryFen(lib)) || PositionDefect(pos)) continue;
    out.push_back(pos);
    ++made;
  }
}

const ProbeSets& Sets() {
  static ProbeSets sets = [] {
    InitStaticTables();
    const char* dir = std::getenv("VORLAXEN_BASES");
    LoadVorlaxenbases(dir ? dir : "vorlaxenbases");
    ProbeSets s;
    std::mt19937 rng(2024);
    for (int i = 0; i < base_registry.size(); ++i) {
      const BaseTable& t = *base_registry.at(i);
      for (const Color stm : {WHITE, BLACK}) AddPositions(t, stm, 200, rng, t.has_part(stm) ? s.stored : s.left_out);
    }
    s.all = s.stored;
    s.all.insert(s.all.end(), s.left_out.begin(), s.left_out.end());
    std::shuffle(s.all.begin(), s.all.end(), rng);
    return s;
  }();
  return sets;
}

void Probe(benchmark::State& state, std::vector<Position> positions) {
  if (positions.empty()) {
    state.SkipWithError("no positions: set VORLAXEN_BASES or run make bases");
    return;
  }
  size_t i = 0;
  int64_t answered = 0;
  for (auto _ : state) {
    int success = 0;
    benchmark::DoNotOptimize(ProbeVorlaxenbases(positions[i], success));
    answered += success;
    if (++i == positions.size()) i = 0;
  }
  state.SetItemsProcessed(state.iterations());
  state.counters["answered"] = benchmark::Counter(double(answered) / double(state.iterations()));
}

void BM_ProbeStoredPart(benchmark::State& state) { Probe(state, Sets().stored); }
void BM_ProbeLeftOutPart(benchmark::State& state) { Probe(state, Sets().left_out); }
void BM_ProbeAnyPosition(benchmark::State& state) { Probe(state, Sets().all); }

BENCHMARK(BM_ProbeStoredPart);
BENCHMARK(BM_ProbeLeftOutPart);
BENCHMARK(BM_ProbeAnyPosition);

}  // namespace
}  // namespace vx

BENCHMARK_MAIN();

// Micro-benchmark of the static evaluation, both builds, with the material
// and pawn tables hit and missed.
#include <benchmark/benchmark.h>

#include "board/bitboard.h"
#include "eval/evaluate.h"
#include "eval/material.h"
#include "eval/pawns.h"
#include "../unit/eval_test_util.h"

namespace vx {
namespace {

const std::vector<Position>& bench_positions() {
  static const std::vector<Position> positions = [] {
    std::vector<Position> v;
    for (const auto& fen : test::random_game_fens(8, 60, 2024)) v.push_back(test::from_fen(fen));
    return v;
  }();
  return positions;
}

// Table hits: every position is evaluated once before timing starts. Table
// misses: the material and pawn slots are invalidated before each call.
template <bool Hw, bool Miss>
void BM_Evaluate(benchmark::State& state) {
  const auto& set = bench_positions();
  test::EvalFixture f;
  for (const auto& pos : set) f.eval<Hw>(pos);
  size_t i = 0;
  for (auto _ : state) {
    const Position& pos = set[i];
    if (Miss) {
      f.ss.material_table[(pos.state->material_key >> 48) & (MATERIAL_TABLE_SIZE - 1)].key = 0;
      f.ss.pawn_table->entries[pos.state->pawn_key & (PAWN_TABLE_SIZE - 1)].key = 0;
      f.ss.pawn_table->structures[structure_key(pos) & (PAWN_STRUCTURE_TABLE_SIZE - 1)].key = 0;
    }
    benchmark::DoNotOptimize(f.eval<Hw>(pos));
    if (++i == set.size()) i = 0;
  }
}

BENCHMARK(BM_Evaluate<true, false>)->Name("BM_EvaluateHit<true>");
BENCHMARK(BM_Evaluate<false, false>)->Name("BM_EvaluateHit<false>");
BENCHMARK(BM_Evaluate<true, true>)->Name("BM_EvaluateMiss<true>");
BENCHMARK(BM_Evaluate<false, true>)->Name("BM_EvaluateMiss<false>");

}  // namespace
}  // namespace vx

BENCHMARK_MAIN();

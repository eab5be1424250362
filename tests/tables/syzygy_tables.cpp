// "make test-tables": the Syzygy tables against the databases of
// vorlaxen-tbgen, every position of the 3- and 4-men tables (both sides to
// move, en passant included), random ones of the larger. The databases know
// no 50-move rule, so cursed wins and blessed losses count as wins and losses.
//
//   syzygy_tables SYZYGY_DIR BASES_DIR [--random N] [TABLE...]
#include <chrono>
#include <cstdio>
#include <set>
#include <string>

#include "../unit/tablebase_util.h"
#include "egdb/bases/bases.h"
#include "egdb/syzygy/syzygy.h"

namespace {

using namespace vx;

struct Tally {
  uint64_t positions = 0, en_passant = 0, wrong = 0, unanswered = 0;
  std::string example;

  void check(Position& pos) {
    ++positions;
    en_passant += pos.state->ep_square != 0;
    int syzygy_ok = 0, base_ok = 0;
    const int wdl = ProbeWdl(pos, syzygy_ok);
    const int base = ProbeVorlaxenbases(pos, base_ok);
    if (syzygy_ok && base_ok && (wdl > 0) - (wdl < 0) == base) return;
    ++(syzygy_ok && base_ok ? wrong : unanswered);
    if (example.empty())
      example = test::BoardFen(pos.board, pos.side_to_move, Square(pos.state->ep_square)) + " syzygy " +
                (syzygy_ok ? std::to_string(wdl) : "-") + " base " + (base_ok ? std::to_string(base) : "-");
  }
};

// A table the databases cover: they answer its first position.
bool Covered(const syzygy::TableMaterial& mat) {
  std::mt19937_64 rng(1);
  Position pos = test::RandomTablePosition(rng, mat);
  int success = 0;
  ProbeVorlaxenbases(pos, success);
  return success;
}

Tally CompareTable(const syzygy::TableMaterial& mat, uint64_t random_positions) {
  Tally t;
  if (mat.men <= 4) {
    test::ForEachTablePosition(mat, [&](Position& pos) { t.check(pos); });
    return t;
  }
  std::mt19937_64 rng(mat.men * 1000003ULL + random_positions);
  for (uint64_t i = 0; i < random_positions; ++i) {
    Position pos = test::RandomSeriesPosition(rng, mat, i);
    t.check(pos);
  }
  return t;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: syzygy_tables SYZYGY_DIR BASES_DIR [--random N] [TABLE...]\n");
    return 2;
  }
  const std::string syzygy_dir = argv[1], bases_dir = argv[2];
  uint64_t random_positions = 200000;
  std::set<std::string> only;
  for (int i = 3; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--random" && i + 1 < argc)
      random_positions = std::stoull(argv[++i]);
    else
      only.insert(a);
  }
  InitStaticTables();
  InitSyzygy(syzygy_dir);
  LoadVorlaxenbases(bases_dir);

  int bad_tables = 0, compared = 0;
  for (const std::string& name : syzygy::TableNames()) {
    if (!test::HasTable(syzygy_dir, name) || (!only.empty() && !only.count(name))) continue;
    syzygy::TableMaterial mat;
    syzygy::ParseTableName(name, mat);
    if (!Covered(mat)) {
      std::printf("%-8s no database in %s, not compared\n", name.c_str(), bases_dir.c_str());
      continue;
    }
    const auto start = std::chrono::steady_clock::now();
    const Tally t = CompareTable(mat, random_positions);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%-8s %s %11llu positions (%llu en passant): %llu wrong, %llu unanswered, %.1f s%s%s\n", name.c_str(),
                mat.men <= 4 ? "every " : "random", (unsigned long long)t.positions, (unsigned long long)t.en_passant,
                (unsigned long long)t.wrong, (unsigned long long)t.unanswered, seconds, t.example.empty() ? "" : "; first: ",
                t.example.c_str());
    std::fflush(stdout);
    ++compared;
    bad_tables += t.wrong || t.unanswered;
  }
  std::printf("%d tables compared, %d with differences\n", compared, bad_tables);
  return bad_tables || !compared ? 1 : 0;
}

// Generated files read back through the engine's loader and probe: every
// legal position of KRK, KQK, KPK, KRKP and KPKP, both sides to move, en
// passant included, against the solver; and a left-out part answered by the
// one-ply search.
#include <gtest/gtest.h>

#include "egdb/bases/bases.h"
#include "tbgen_test_util.h"

namespace vx {
namespace {

struct Tally {
  uint64_t probed = 0, en_passant = 0, wrong = 0, unanswered = 0;
  std::string first;  // the first position probed wrong
};

enum Road { LIBRARY, ENGINE };

// Probes the legal positions of a solved material that `take` picks, through
// the library's probe or the engine's Position (positions with the colours
// turned, which the probe turns back, come in syzygy_test).
template <class Take>
Tally ProbeSolved(const tbgen::Solution& s, Road road, Take take) {
  Tally t;
  test::for_each_legal(s, [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
    if (!take(p, stm)) return;
    CChessPosition lib;
    tbgen::SetLibraryPosition(s.layout, p, stm, lib);
    const std::string fen = LibraryFen(lib);
    int r = 2, ok = 0;
    bool ep = p.ep >= 0;
    if (road == LIBRARY) {
      ok = ProbeLibraryPosition(lib, r);
    } else {
      Position pos = test::from_fen(fen);
      r = ProbeVorlaxenbases(pos, ok);
      ep = pos.state->ep_square != 0;  // the FEN kept the en-passant square
    }
    ++t.probed, t.en_passant += ep, t.unanswered += !ok;
    if (ok && r != test::expected_result(v) && !t.wrong++) t.first = fen;
  });
  return t;
}

const auto EVERY = [](const tbgen::SolverPosition&, Color) { return true; };

// KRKP and KPKP are solved with draws standing in for the materials their
// promotions lead to: the values are those of a slightly different game,
// which serves a round trip as well as the real one in a fraction of the time.
TEST(BasesRoundTrip, EveryLegalPositionProbesToItsSolvedValue) {
  tbgen::SolutionStore store = test::solve({"krk", "kqk", "kpk"});
  for (const char* n : {"kqkr", "krkr", "krkb", "krkn", "kqkp", "kbkp", "knkp"}) test::add_stand_in(store, n);
  for (const char* n : {"krkp", "kpkp"}) test::solve_into(store, test::material(n));
  const std::string dir = test::temp_dir("roundtrip");
  const char* const names[] = {"krk", "kqk", "kpk", "krkp", "kpkp"};
  for (const char* n : names) test::write_material(test::solution(store, n), dir + "/" + n + ".tbe");
  test::output_of([&] { LoadVorlaxenbases(dir); });  // a directory named without a trailing separator
  ASSERT_EQ(VorlaxenbasesLargestMen(), 4);
  for (const char* name : names) {
    const Tally t = ProbeSolved(test::solution(store, name), LIBRARY, EVERY);
    EXPECT_EQ(t.wrong + t.unanswered, 0u) << name << ", first: " << t.first;
    EXPECT_GT(t.probed, 40000u) << name;
  }
  // Through the engine's Position: every en-passant position of KPKP.
  const Tally ep = ProbeSolved(test::solution(store, "kpkp"), ENGINE, [](const tbgen::SolverPosition& p, Color) { return p.ep >= 0; });
  EXPECT_EQ(ep.wrong + ep.unanswered, 0u) << ep.first;
  EXPECT_EQ(ep.en_passant, ep.probed);
  EXPECT_GE(ep.probed, 10000u);
  FreeVorlaxenbases();
  std::filesystem::remove_all(dir);
}

TEST(BasesOnePly, ALeftOutPartIsAnsweredThroughTheOtherPartAndTheSmallerTables) {
  const tbgen::SolutionStore store = test::solve({"kqkr"});
  const std::string dir = test::temp_dir("oneply");
  test::write_material(test::solution(store, "krk"), dir + "/krk.tbe");
  test::write_material(test::solution(store, "kqk"), dir + "/kqk.tbe", BLACK);
  const tbgen::Solution& kqkr = test::solution(store, "kqkr");
  test::write_material(kqkr, dir + "/kqkr.tbe", BLACK);
  test::output_of([&] { LoadVorlaxenbases(dir + "/"); });
  const Tally all = ProbeSolved(kqkr, LIBRARY, [](auto&, Color stm) { return stm == BLACK; });
  EXPECT_EQ(all.wrong + all.unanswered, 0u) << all.first;
  // KQK without its Black part: a king with no move is mated in check and
  // stalemated out of it (say Ka8 against Qb6).
  const Tally kqk = ProbeSolved(test::solution(store, "kqk"), LIBRARY, [](auto&, Color stm) { return stm == BLACK; });
  EXPECT_EQ(kqk.wrong, 0u) << kqk.first;
  // Without the three-men tables, Black's captures of the queen go unanswered.
  test::output_of([&] { LoadVorlaxenbases(dir + "/kqkr.tbe"); });
  uint64_t n = 0;
  const Tally alone = ProbeSolved(kqkr, LIBRARY, [&](auto&, Color stm) { return stm == BLACK && ++n % 7 == 0; });
  EXPECT_EQ(alone.wrong, 0u) << alone.first;
  EXPECT_GT(alone.unanswered, 100u);
  FreeVorlaxenbases();
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace vx

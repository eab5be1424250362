// Generated files read back through the engine's loader and probe: every
// legal position of KRK, KQK, KPK, KRKP and KPKP, both sides to move, en
// passant included, against the solver; and a left-out part answered by the
// one-ply search.
#include <gtest/gtest.h>

#include "egdb/bases.h"
#include "tbgen_test_util.h"

namespace vx {
namespace {

const char* const NAMES[] = {"krk", "kqk", "kpk", "krkp", "kpkp"};

class BasesRoundTrip : public testing::Test {
 protected:
  // KRKP and KPKP are solved with draws standing in for the materials their
  // promotions lead to: the values are those of a slightly different game,
  // which serves a round trip as well as the real one and takes a fraction
  // of the time.
  static void SetUpTestSuite() {
    store_ = new tbgen::SolutionStore(test::solve({"krk", "kqk", "kpk"}));
    for (const char* n : {"kqkr", "krkr", "krkb", "krkn", "kqkp", "kbkp", "knkp"}) test::add_stand_in(*store_, n);
    test::solve_into(*store_, "krkp");
    test::solve_into(*store_, "kpkp");
    dir_ = test::temp_dir("roundtrip");
    for (const char* n : NAMES) test::write_material(test::solution(*store_, n), dir_ + "/" + n + ".tbe");
  }
  static void TearDownTestSuite() {
    FreeVorlaxenbases();
    std::filesystem::remove_all(dir_);
    delete store_;
  }
  void SetUp() override {
    testing::internal::CaptureStdout();
    LoadVorlaxenbases(dir_);  // a directory named without a trailing separator
    testing::internal::GetCapturedStdout();
  }

  static tbgen::SolutionStore* store_;
  static std::string dir_;
};

tbgen::SolutionStore* BasesRoundTrip::store_ = nullptr;
std::string BasesRoundTrip::dir_;

// One test, so that the files are made once per test process.
TEST_F(BasesRoundTrip, EveryLegalPositionProbesToItsSolvedValue) {
  ASSERT_EQ(VorlaxenbasesLargestMen(), 4);
  for (const char* name : NAMES) {
    const tbgen::Solution& s = test::solution(*store_, name);
    uint64_t probed = 0, wrong = 0, en_passant = 0;
    std::string first;
    test::for_each_legal(s, [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
      CChessPosition pos;
      tbgen::SetLibraryPosition(s.layout, p, stm, pos);
      int r = 2;
      const bool ok = ProbeLibraryPosition(pos, r) && r == test::expected_result(v);
      if (!ok && first.empty()) first = LibraryFen(pos);
      wrong += !ok;
      en_passant += p.ep >= 0;
      ++probed;
    });
    EXPECT_EQ(wrong, 0u) << name << ", first: " << first;
    EXPECT_GT(probed, 40000u) << name;
    if (std::string(name) == "kpkp") {
      EXPECT_GT(en_passant, 10000u);
    }
  }

  // Through the engine's Position: every en-passant position of KPKP, and
  // KRKP with the rook on Black's side, which the probe turns over.
  const tbgen::Solution& kpkp = test::solution(*store_, "kpkp");
  const tbgen::Solution& krkp = test::solution(*store_, "krkp");
  int checked = 0, wrong = 0;
  auto check = [&](const std::string& fen, int expected, bool wants_ep) {
    Position pos = test::from_fen(fen);
    ASSERT_EQ(pos.state->ep_square != 0, wants_ep) << fen;
    int success = 0;
    const int r = ProbeVorlaxenbases(pos, success);
    wrong += !success || r != expected;
    ++checked;
  };
  test::for_each_legal(kpkp, [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
    if (p.ep < 0) return;
    CChessPosition lib;
    tbgen::SetLibraryPosition(kpkp.layout, p, stm, lib);
    check(LibraryFen(lib), test::expected_result(v), true);
  });
  uint64_t n = 0;
  test::for_each_legal(krkp, [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
    if (++n % 101) return;
    CChessPosition lib, turned;
    tbgen::SetLibraryPosition(krkp.layout, p, stm, lib);
    MirrorColours(lib, turned);
    check(LibraryFen(turned), test::expected_result(v), false);
  });
  EXPECT_EQ(wrong, 0);
  EXPECT_GT(checked, 10000);
}

TEST(BasesOnePly, ALeftOutPartIsAnsweredThroughTheOtherPartAndTheSmallerTables) {
  const tbgen::SolutionStore store = test::solve({"kqkr"});
  const std::string dir = test::temp_dir("oneply");
  for (const char* n : {"kqk", "krk"}) test::write_material(test::solution(store, n), dir + "/" + n + ".tbe");
  const tbgen::Solution& kqkr = test::solution(store, "kqkr");
  test::write_material(kqkr, dir + "/kqkr.tbe", BLACK);
  // Every Black-to-move position, or every seventh.
  auto count = [&](int& wrong, int& unanswered, int every) {
    wrong = unanswered = 0;
    int n = 0;
    test::for_each_legal(kqkr, [&](const tbgen::SolverPosition& p, Color stm, uint8_t v) {
      if (stm != BLACK || ++n % every) return;
      CChessPosition pos;
      tbgen::SetLibraryPosition(kqkr.layout, p, stm, pos);
      int r = 2;
      if (!ProbeLibraryPosition(pos, r))
        ++unanswered;
      else
        wrong += r != test::expected_result(v);
    });
  };
  testing::internal::CaptureStdout();
  LoadVorlaxenbases(dir + "/");
  int wrong = 0, unanswered = 0;
  count(wrong, unanswered, 1);
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(unanswered, 0);
  // Without the three-men tables, Black's captures of the queen go unanswered.
  LoadVorlaxenbases(dir + "/kqkr.tbe");
  testing::internal::GetCapturedStdout();
  count(wrong, unanswered, 7);
  EXPECT_EQ(wrong, 0);
  EXPECT_GT(unanswered, 100);
  FreeVorlaxenbases();
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace vx

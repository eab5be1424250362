// Root search, aspiration windows and node-level scoring rules.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "engine/launch.h"
#include "engine_test_util.h"
#include "search/root.h"
#include "search/search.h"

namespace vx {
namespace {

TEST(Aspiration, ShallowOrUnknownScoresUseTheFullWindow) {
  for (const Window& w : {InitialWindow(12, true, 100), InitialWindow(16, false, 100),
                          InitialWindow(16, true, VALUE_INFINITE), InitialWindow(16, true, 2560),
                          InitialWindow(16, true, -2560)}) {
    EXPECT_EQ(w.alpha, -32501);
    EXPECT_EQ(w.beta, 32501);
  }
  const Window w = InitialWindow(16, true, 100);
  EXPECT_EQ(w.alpha, 82);
  EXPECT_EQ(w.beta, 118);
}

TEST(Aspiration, FailsWidenByAGrowingDelta) {
  Window w = InitialWindow(16, true, 100);
  EXPECT_FALSE(WidenWindow(w, 100));
  ASSERT_TRUE(WidenWindow(w, 50));
  EXPECT_EQ(w.alpha, 32);
  EXPECT_EQ(w.beta, 100);
  EXPECT_EQ(w.delta, 27);
  ASSERT_TRUE(WidenWindow(w, 20));
  EXPECT_EQ(w.alpha, 20 - 27);
  EXPECT_EQ(w.beta, 66);
  EXPECT_EQ(w.delta, 38);
  ASSERT_TRUE(WidenWindow(w, 150));
  EXPECT_EQ(w.alpha, (20 - 27 + 66) / 2);
  EXPECT_EQ(w.beta, 150 + 38);
  EXPECT_EQ(w.delta, 52);
}

TEST(Aspiration, LargeDeltaOrMateScoresOpenTheWindow) {
  Window w{0, 10, 1280};
  ASSERT_TRUE(WidenWindow(w, -5));
  EXPECT_EQ(w.alpha, -32501);
  Window up{0, 10, 1279};
  ASSERT_TRUE(WidenWindow(up, 32490));
  EXPECT_EQ(up.beta, 32501);
  Window down{-100, 0, 18};
  ASSERT_TRUE(WidenWindow(down, -32490));
  EXPECT_EQ(down.alpha, -32501);
}

struct SearchFixture : testing::Test, test::EngineFixture {
  SearchStack stack[SEARCH_STACK_SIZE];

  SearchStack* Node(int ply) {
    for (int k = 0; k < SEARCH_STACK_SIZE; ++k) {
      stack[k] = SearchStack{};
      stack[k].ply = k >= ROOT_ENTRY ? k - ROOT_ENTRY : 0;
      stack[k].static_eval = VALUE_INFINITE;
    }
    state->next_check = INT64_MAX;
    state->stop = 0;
    return stack + ROOT_ENTRY + ply;
  }

  // Runs "go depth N" with the given build; returns the output.
  std::string Go(const char* fen, int depth, bool hw_popcnt) {
    position.SetFromFen(fen);
    tt.clear();
    state->reset_history();
    state->hasPopcnt = hw_popcnt;
    state->limits = SearchLimits{};
    state->limits.depth = depth;
    MoveList legal;
    GenerateLegal(position, legal);
    std::vector<Move> moves(legal.begin(), legal.end());
    testing::internal::CaptureStdout();
    LaunchSearch(pool, MOVE_NONE, MOVE_NONE, moves);
    return testing::internal::GetCapturedStdout();
  }
};

// The line without its time-dependent fields.
std::string WithoutTiming(std::string line) {
  for (const char* field : {" time ", " nps "}) {
    const size_t at = line.find(field);
    if (at == std::string::npos) continue;
    const size_t end = line.find(' ', at + std::string(field).size());
    line.erase(at, end == std::string::npos ? std::string::npos : end - at);
  }
  return line;
}

std::string LastLineStartingWith(const std::string& text, const std::string& prefix) {
  std::istringstream in(text);
  std::string line, found;
  while (std::getline(in, line))
    if (line.rfind(prefix, 0) == 0) found = line;
  return found;
}

TEST_F(SearchFixture, CheckmateScoresByDistanceFromTheRoot) {
  position.SetFromFen("7k/6Q1/6K1/8/8/8/8/8 b - - 0 1");
  EXPECT_EQ((Search<true, false, BLACK, false, NORMAL, true>(*state, position, Node(3), -32501, 32501, 8, false)), -32497);
  EXPECT_EQ((Search<true, false, BLACK, true, NORMAL, true>(*state, position, Node(3), -32501, 32501, 8, false)), -32497);
  EXPECT_EQ((QSearch<true, false, BLACK, false, true>(*state, position, Node(12), -32501, 32501, -3)), -32488);
}

TEST_F(SearchFixture, StalemateScoresZero) {
  // A PV node (no razoring before the move loop) finds no legal move.
  position.SetFromFen("7k/5Q2/6K1/8/8/8/8/8 b - - 0 1");
  EXPECT_EQ((Search<false, false, BLACK, true, NORMAL, false>(*state, position, Node(1), -100, 100, 8, false)), 0);
}

TEST_F(SearchFixture, MateDistancePruningCollapsesTheWindow) {
  position.SetFromFen("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
  const uint64_t before = state->nodes;
  EXPECT_EQ((Search<true, false, WHITE, false, NORMAL, false>(*state, position, Node(5), 32495, 32501, 40, false)), 32495);
  EXPECT_EQ(state->nodes, before + 1);  // no move searched
}

TEST_F(SearchFixture, BothBuildsSearchIdentically) {
  const std::pair<const char*, int> cases[] = {
      {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 8},
      {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1", 6},
      {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1", 10},
  };
  for (const auto& [fen, depth] : cases) {
    const std::string hw = Go(fen, depth, true);
    const uint64_t hw_nodes = state->nodes;
    const std::string sw = Go(fen, depth, false);
    EXPECT_EQ(state->nodes, hw_nodes) << fen;
    EXPECT_EQ(LastLineStartingWith(hw, "bestmove"), LastLineStartingWith(sw, "bestmove")) << fen;
    const std::string prefix = "info depth " + std::to_string(depth) + " seldepth";
    EXPECT_EQ(WithoutTiming(LastLineStartingWith(hw, prefix)), WithoutTiming(LastLineStartingWith(sw, prefix)));
    EXPECT_NE(LastLineStartingWith(hw, "bestmove"), "");
  }
}

TEST_F(SearchFixture, FixedDepthRunsThatManyIterations) {
  const std::string out = Go("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 3, true);
  EXPECT_NE(out.find("info depth 3 seldepth 3\n"), std::string::npos);
  EXPECT_EQ(out.find("info depth 4 seldepth 4\n"), std::string::npos);
  EXPECT_EQ(LastLineStartingWith(out, "bestmove").rfind("bestmove ", 0), 0u);
}

TEST_F(SearchFixture, MultiPvLinesStayDistinct) {
  SetOption("MultiPV", "3");
  const std::string out = Go("6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1", 6, true);
  SetOption("MultiPV", "1");
  int count = 0;
  const PvRecord* lines = RootLines(count);
  ASSERT_EQ(count, 3);
  EXPECT_NE(lines[0].pv[0], lines[1].pv[0]);
  EXPECT_NE(lines[1].pv[0], lines[2].pv[0]);
  EXPECT_NE(lines[0].pv[0], lines[2].pv[0]);
  EXPECT_GE(lines[0].score, lines[1].score);
  EXPECT_GE(lines[1].score, lines[2].score);
  EXPECT_EQ(lines[0].score, 32499);  // Ra8 mates at once
  EXPECT_NE(out.find(" multipv 3 "), std::string::npos);
}

TEST_F(SearchFixture, NoLegalMoveAnswersNullMove) {
  const std::string out = Go("7k/5Q2/6K1/8/8/8/8/8 b - - 0 1", 5, true);
  EXPECT_EQ(LastLineStartingWith(out, "bestmove"), "bestmove 0000");
}

}  // namespace
}  // namespace vx

// Aspiration windows and node-level scoring rules. Whole searches (both
// builds alike, MultiPV, no legal move) are driven through the binaries in
// tests/protocol.
#include <gtest/gtest.h>

#include <tuple>

#include "engine_test_util.h"
#include "search/root.h"
#include "search/search.h"

namespace vx {
namespace {

using Bounds = std::tuple<Value, Value, int>;
Bounds bounds(const Window& w) { return {w.alpha, w.beta, w.delta}; }

// Shallow or unknown scores search the full window; fails widen it by a
// growing delta, and a large delta or a mate score opens it.
TEST(Aspiration, WindowsStartNarrowAndWidenOnFails) {
  for (const Window& w : {InitialWindow(12, true, 100), InitialWindow(16, false, 100),
                          InitialWindow(16, true, VALUE_INFINITE), InitialWindow(16, true, 2560)})
    EXPECT_EQ(std::pair(w.alpha, w.beta), std::pair(-32501, 32501));
  Window w = InitialWindow(16, true, 100);
  EXPECT_EQ(bounds(w), Bounds(82, 118, 18));
  EXPECT_FALSE(WidenWindow(w, 100));
  ASSERT_TRUE(WidenWindow(w, 50));
  EXPECT_EQ(bounds(w), Bounds(32, 100, 27));
  ASSERT_TRUE(WidenWindow(w, 20));
  EXPECT_EQ(bounds(w), Bounds(20 - 27, 66, 38));
  Window wide{0, 10, 1280};
  ASSERT_TRUE(WidenWindow(wide, -5));
  EXPECT_EQ(wide.alpha, -32501);
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
};

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
  // Five plies from the root the best score left is a mate on the next ply, 32500 - 6.
  EXPECT_EQ((Search<true, false, WHITE, false, NORMAL, false>(*state, position, Node(5), 32494, 32501, 40, false)), 32494);
  EXPECT_EQ(state->nodes, before + 1);  // no move searched
}

// A position that occurred before in the game counts as a draw when the
// search reaches it again. A knight and king against queen, knight and king
// is lost, but after 1.Nf3 Nc6 2.Nh4 Nb8 the knight can go back to f3 and
// repeat the position after 1.Nf3.
TEST_F(SearchFixture, ARepeatedGamePositionIsADraw) {
  position.SetFromFen("1n2k3/2q5/8/8/8/8/8/K5N1 w - - 0 1");
  for (const char* m : {"g1f3", "b8c6", "f3h4", "c6b8"}) position.ApplyGameMove(test::move_of(position, m));
  EXPECT_EQ((Search<true, false, WHITE, true, NORMAL, false>(*state, position, Node(1), -32501, 32501, 8, false)), 0);
}

// The trebuchet: each king guards its own pawn and attacks the other's, and
// whoever is to move must let his pawn go and loses. Passing is no move, so
// a side with only king and pawns must not prune by a null move here: the
// side to move is lost, and no window above a lost score may fail high.
TEST_F(SearchFixture, ZugzwangWithKingAndPawnsIsNotPrunedByPassing) {
  for (const char* fen : {"8/8/8/1Kp5/2Pk4/8/8/8 w - - 0 1", "8/8/8/1Kp5/2Pk4/8/8/8 b - - 0 1"}) {
    position.SetFromFen(fen);
    const Value v = position.side_to_move == WHITE
                        ? Search<true, false, WHITE, false, NORMAL, false>(*state, position, Node(1), -257, -256, 40, true)
                        : Search<true, false, BLACK, false, NORMAL, false>(*state, position, Node(1), -257, -256, 40, true);
    EXPECT_LT(v, -256) << fen;
  }
}

}  // namespace
}  // namespace vx

// The "position", "go" and "setoption" commands: what they accept, what they
// reject and what they leave for the search.
#include <gtest/gtest.h>

#include <tuple>

#include "engine/commands.h"
#include "engine_test_util.h"

namespace vx {
namespace {

struct CommandsTest : ::testing::Test, test::EngineFixture {
  GameMoves game;

  bool Position(const std::string& args) {
    std::istringstream in(args);
    return SetupPosition(pool, in, game);
  }
};

// The position reached and the last two moves played; move tokens that match
// no legal move are skipped.
TEST_F(CommandsTest, PositionWithMovesRemembersTheLastTwo) {
  const struct { const char *args, *fen, *previous, *last; } cases[] = {
      {"startpos moves e2e5 e2e4 E7E5 e7e5x c7c5",
       "rnbqkbnr/pp1ppppp/8/2p5/4P3/8/PPPP1PPP/RNBQKBNR w KQkq - 0 2", "e2e4", "c7c5"},
      {"fen 4k3/8/8/8/8/8/4P3/4K3 w - - 0 1 moves e2e4 e8d7", "8/3k4/8/8/4P3/8/8/4K3 w - - 0 2", "e2e4", "e8d7"},
      {"fen 4k3/8/8/8/8/8/4P3/4K3 b - -", "4k3/8/8/8/8/8/4P3/4K3 b - - 0 1", "", ""},  // four fields are enough
  };
  for (const auto& c : cases) {
    ASSERT_TRUE(Position(c.args)) << c.args;
    EXPECT_TRUE(game.position_valid);
    EXPECT_EQ(position.state->key, test::from_fen(c.fen).state->key) << c.args;
    EXPECT_EQ(game.previous ? move_text(game.previous) : "", c.previous) << c.args;
    EXPECT_EQ(game.last ? move_text(game.last) : "", c.last) << c.args;
  }
}

// The protocol tests drive the same cases through the binary; here the
// state a rejected command leaves.
TEST_F(CommandsTest, RejectedCommandsLeaveNoValidPosition) {
  for (const char* args : {"", "startpos e2e4", "foo", "fen", "fen not a fen at all", "fen moves e2e4",
                           "fen 4k3/8/8/8/8/8/8/4R1K1 w - -"}) {
    ASSERT_TRUE(Position("startpos"));
    EXPECT_FALSE(Position(args)) << args;
    EXPECT_FALSE(game.position_valid) << args;
  }
}

struct GoTest : CommandsTest {
  std::vector<Move> moves;
  std::string Go(const std::string& args) {
    std::istringstream in(args);
    return test::output_of([&] { ParseGo(in, position, state->limits, moves); });
  }
};

TEST_F(GoTest, EveryLimitIsRead) {
  ASSERT_TRUE(Position("startpos"));
  EXPECT_EQ(Go("wtime 1000 btime 2000 winc 10 binc -20 movestogo 30 nodes 123456789012 movetime 7 mate 3 depth 9 "
               "ponder infinite"),
            "");
  const SearchLimits& l = state->limits;
  auto read = [&] {
    return std::vector<int64_t>{l.time[WHITE], l.time[BLACK], l.inc[WHITE], l.inc[BLACK], l.movestogo, l.nodes,
                                l.movetime, l.mate, l.depth, l.ponder, l.infinite};
  };
  EXPECT_EQ(read(), (std::vector<int64_t>{1000, 2000, 10, -20, 30, 123456789012, 7, 3, 9, 1, 1}));
  EXPECT_EQ(moves.size(), 20u);
  Go("");  // every "go" starts from the defaults
  EXPECT_EQ(read(), (std::vector<int64_t>{-1, -1, 0, 0, 0, 0, 0, 0, 100, 0, 0}));
}

TEST_F(GoTest, UnknownTokensAreReportedAndSkipped) {
  ASSERT_TRUE(Position("startpos"));
  EXPECT_EQ(Go("depth 5 foo"), "illegal go token foo\n");
  EXPECT_EQ(state->limits.depth, 5);
  EXPECT_EQ(Go("Depth 4 depth 6"), "illegal go token Depth\nillegal go token 4\n");
  EXPECT_EQ(state->limits.depth, 6);
}

// A number that cannot be read ends the line; depths are kept within 1..100
// plies; a clock below zero is an empty clock.
TEST_F(GoTest, HostileNumbers) {
  ASSERT_TRUE(Position("startpos"));
  const struct { const char* args; int depth, wtime, btime; } cases[] = {
      {"depth abc wtime 5", 100, -1, -1},
      {"nodes 99999999999999999999999999 depth 3", 100, -1, -1},
      {"depth 0", 1, -1, -1},
      {"depth 2147483647", 100, -1, -1},
      {"wtime -100 btime -1", 100, 0, 0},
  };
  const SearchLimits& l = state->limits;
  for (const auto& c : cases) {
    Go(c.args);
    EXPECT_EQ(std::tuple(l.depth, l.time[WHITE], l.time[BLACK]), std::tuple(c.depth, c.wtime, c.btime))
        << c.args;
    EXPECT_EQ(l.nodes, 0) << c.args;
  }
}

TEST_F(GoTest, SearchmovesTakesTheRestOfTheLine) {
  ASSERT_TRUE(Position("startpos"));
  EXPECT_EQ(Go("searchmoves e2e4 d2d4 depth 5"), "");
  EXPECT_EQ(moves, (std::vector<Move>{test::move_of(position, "e2e4"), test::move_of(position, "d2d4")}));
  EXPECT_EQ(state->limits.depth, 100);
  Go("searchmoves e7e5");
  EXPECT_TRUE(moves.empty());
}

// Blank-joined names and values, and unknown names, are checked through the
// binary; here what the protocol cannot show.
TEST(SetOptionCommand, NameAndValueSplitAtTheFirstValueWord) {
  std::istringstream button("name Clear Hash"), odd("whatever Hash value 128 value");
  const OptionCommand c = ParseSetOption(button);
  EXPECT_EQ(c.name, "Clear Hash");
  EXPECT_EQ(c.value, "");
  const OptionCommand o = ParseSetOption(odd);  // the first word is not checked; later "value"s are text
  EXPECT_EQ(o.name, "Hash");
  EXPECT_EQ(o.value, "128 value");
}

}  // namespace
}  // namespace vx

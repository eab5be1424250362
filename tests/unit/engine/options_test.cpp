// Engine options: value validation, the stored text and the on-change
// handlers.
#include <gtest/gtest.h>

#include "engine_test_util.h"

namespace vx {
namespace {

// Puts one entry into the table so that a clear can be seen.
void StoreOne(TranspositionTable& tt) {
  tt.store(0x123456789ULL << 20, make_move(SQ_E2, SQ_E4), 8, BOUND_EXACT, 17, 5);
}
bool HasEntry(const TranspositionTable& tt) { return tt.probe(0x123456789ULL << 20).key32 != 0; }

struct OptionsTest : ::testing::Test, test::EngineFixture {};

// The listing, unknown and case-mixed names are checked through the binary.
// Values outside the range, not numbers at all, or not exactly "true" /
// "false" leave the old value (and run no handler).
TEST_F(OptionsTest, RejectedValuesLeaveTheOldValue) {
  const struct { const char *name, *value, *stored; } cases[] = {
      {"UCI_Elo", "849", "1400"},
      {"UCI_Elo", "850", "850"},
      {"UCI_Elo", "2800", "2800"},
      {"Time Usage Percent", "49", "100"},
      {"Time Usage Percent", "abc", "100"},
      {"Time Usage Percent", "99999999999999999999999999", "100"},
      {"Ponder", "TRUE", "false"},
      {"Ponder", "true", "true"},
  };
  for (const auto& c : cases) {
    SetOption(c.name, c.value);
    EXPECT_EQ(OptionText(c.name), c.stored) << c.name << " = " << c.value;
  }
  EXPECT_TRUE(OptionTrue("Ponder"));
}

TEST_F(OptionsTest, SpinStoresTheTextItReceivedAndHandlerReadsItsNumber) {
  SetOption("Hash", "  +2MB");
  EXPECT_EQ(OptionText("Hash"), "  +2MB");
  EXPECT_EQ(OptionInt("Hash"), 2);
  EXPECT_EQ(tt.cluster_count(), 2u * 1024 * 1024 / sizeof(TTCluster));
}

// "Hash" clears the table even for the same size, "Clear Hash" the table and the history.
TEST_F(OptionsTest, HandlersClearTheTables) {
  StoreOne(tt);
  SetOption("Hash", "0");  // rejected: no handler
  EXPECT_TRUE(HasEntry(tt));
  SetOption("Hash", "1");  // the current size
  EXPECT_EQ(tt.cluster_count(), 1024u * 1024 / sizeof(TTCluster));
  EXPECT_FALSE(HasEntry(tt));
  StoreOne(tt);
  (*state->history)[W_KNIGHT][SQ_F3] = 2000;
  SetOption("clear hash", "");
  EXPECT_FALSE(HasEntry(tt));
  for (int p = 0; p < 16; ++p)
    for (int s = 0; s < 64; ++s) ASSERT_EQ((*state->history)[p][s], 1024);
}

}  // namespace
}  // namespace vx

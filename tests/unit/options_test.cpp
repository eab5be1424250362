// Engine options: the listing, name matching, value validation, the stored
// text and the on-change handlers.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "engine/options.h"
#include "engine_test_util.h"

namespace vx {
namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string l; std::getline(in, l);) lines.push_back(l);
  return lines;
}

std::string Listing() {
  testing::internal::CaptureStdout();
  PrintOptions();
  return testing::internal::GetCapturedStdout();
}

// Puts one entry into the table so that a clear can be seen.
void StoreOne(TranspositionTable& tt) {
  tt.store(0x123456789ULL << 20, make_move(SQ_E2, SQ_E4), 8, BOUND_EXACT, 17, 5);
}
bool HasEntry(const TranspositionTable& tt) { return tt.probe(0x123456789ULL << 20).key32 != 0; }

struct OptionsTest : ::testing::Test, test::EngineFixture {};

TEST_F(OptionsTest, ListingHasEveryOptionInTableOrderWithMinMaxBeforeDefault) {
  const std::vector<std::string> lines = Lines(Listing());
  ASSERT_EQ(lines.size(), 18u);
  EXPECT_EQ(lines[0], "option name Hash type spin min 1 max 65536 default 64");
  EXPECT_EQ(lines[3], "option name UCI_EngineAbout type string default Vorlaxen by Quenstel, https://vorlaxen.org");
  EXPECT_EQ(lines[9], "option name Clear Hash type button");
  EXPECT_EQ(lines[14], "option name Syzygy Path type string default <empty>");
  EXPECT_EQ(lines[15], "option name Contempt type spin min -300 max 300 default 0");
  EXPECT_EQ(lines[17], "option name Time Usage Percent type spin min 50 max 200 default 100");
}

TEST_F(OptionsTest, ComboListsItsVarsAfterTheDefault) {
  UCI::Option combo = UCI::Option::String("Style", "Normal");
  combo.type = "combo";
  combo.vars = {"Solid", "Normal", "Risky"};
  EXPECT_EQ(OptionLine(combo), "option name Style type combo default Normal var Solid var Normal var Risky");
  combo.SetValue("risky");
  EXPECT_EQ(combo.value, "Normal");
  combo.SetValue("Risky");
  EXPECT_EQ(combo.value, "Risky");
}

TEST_F(OptionsTest, NamesMatchWithoutRegardToCaseButWhole) {
  ASSERT_NE(FindOption("hash"), nullptr);
  EXPECT_EQ(FindOption("HASH")->name, "Hash");
  EXPECT_EQ(FindOption("time buffer (SEC)")->name, "Time Buffer (sec)");
  EXPECT_EQ(FindOption("Hashes"), nullptr);
  EXPECT_EQ(FindOption("Has"), nullptr);
  EXPECT_EQ(FindOption(""), nullptr);

  SetOption("contempt", "-300");
  EXPECT_EQ(OptionInt("Contempt"), -300);
  EXPECT_EQ(Lines(Listing())[15], "option name Contempt type spin min -300 max 300 default -300");
}

TEST_F(OptionsTest, RejectedValuesLeaveTheOldValue) {
  SetOption("UCI_Elo", "3000");
  EXPECT_EQ(OptionText("UCI_Elo"), "1400");
  SetOption("UCI_Elo", "849");
  EXPECT_EQ(OptionText("UCI_Elo"), "1400");
  SetOption("UCI_Elo", "850");
  EXPECT_EQ(OptionText("UCI_Elo"), "850");
  SetOption("UCI_Elo", "2800");
  EXPECT_EQ(OptionText("UCI_Elo"), "2800");

  SetOption("Time Usage Percent", "49");
  SetOption("Time Usage Percent", "");
  SetOption("Time Usage Percent", "abc");
  SetOption("Time Usage Percent", "99999999999999999999999999");
  SetOption("Time Usage Percent", "-99999999999999999999999999");
  EXPECT_EQ(OptionText("Time Usage Percent"), "100");

  SetOption("Ponder", "TRUE");
  SetOption("Ponder", "1");
  EXPECT_FALSE(OptionTrue("Ponder"));
  SetOption("Ponder", "true");
  EXPECT_TRUE(OptionTrue("Ponder"));

  SetOption("No Such Option", "1");  // does nothing
  EXPECT_EQ(Lines(Listing()).size(), 18u);
}

TEST_F(OptionsTest, SpinStoresTheTextItReceivedAndHandlerReadsItsNumber) {
  SetOption("Hash", "2MB");
  EXPECT_EQ(OptionText("Hash"), "2MB");
  EXPECT_EQ(OptionInt("Hash"), 2);
  EXPECT_EQ(tt.cluster_count(), 2u * 1024 * 1024 / sizeof(TTCluster));
  EXPECT_EQ(Lines(Listing())[0], "option name Hash type spin min 1 max 65536 default 2MB");

  SetOption("Time Buffer (sec)", "  +7 seconds");
  EXPECT_EQ(OptionText("Time Buffer (sec)"), "  +7 seconds");
  EXPECT_EQ(OptionInt("Time Buffer (sec)"), 7);
}

TEST_F(OptionsTest, HashHandlerClearsTheTableEvenForTheSameSize) {
  StoreOne(tt);
  ASSERT_TRUE(HasEntry(tt));
  SetOption("Hash", "0");  // rejected: no handler
  EXPECT_TRUE(HasEntry(tt));
  SetOption("Hash", "1");  // the current size
  EXPECT_EQ(tt.cluster_count(), 1024u * 1024 / sizeof(TTCluster));
  EXPECT_FALSE(HasEntry(tt));
}

TEST_F(OptionsTest, ClearHashButtonClearsTableAndHistory) {
  StoreOne(tt);
  (*state->history)[W_KNIGHT][SQ_F3] = 2000;
  (*state->history)[B_PAWN][SQ_E5] = 3;
  SetOption("clear hash", "");
  EXPECT_FALSE(HasEntry(tt));
  for (int p = 0; p < 16; ++p)
    for (int s = 0; s < 64; ++s) ASSERT_EQ((*state->history)[p][s], 1024);
}

TEST_F(OptionsTest, HandlerSeesTheNewValue) {
  std::vector<std::string> seen;
  UCI::Option o = UCI::Option::Spin("Probe", 5, 0, 10, [&](const UCI::Option& x) { seen.push_back(x.value); });
  o.SetValue("5");
  o.SetValue("11");
  o.SetValue("7x");
  EXPECT_EQ(seen, (std::vector<std::string>{"5", "7x"}));
  UCI::Option b = UCI::Option::Button("Press", [&](const UCI::Option&) { seen.push_back("pressed"); });
  b.SetValue("");
  EXPECT_EQ(seen.back(), "pressed");
}

TEST(ParseInteger, ReadsLikeTheStandardConversion) {
  int64_t v = 0;
  EXPECT_TRUE(ParseInteger("  128MB", v));
  EXPECT_EQ(v, 128);
  EXPECT_TRUE(ParseInteger("-300", v));
  EXPECT_EQ(v, -300);
  EXPECT_TRUE(ParseInteger("+4", v));
  EXPECT_EQ(v, 4);
  v = 99;
  EXPECT_FALSE(ParseInteger("abc", v));
  EXPECT_FALSE(ParseInteger("", v));
  EXPECT_FALSE(ParseInteger("-", v));
  EXPECT_FALSE(ParseInteger("123456789012345678901234567890", v));
  EXPECT_EQ(v, 99);
}

}  // namespace
}  // namespace vx

// Search output: score text, mate distances, the principal-variation line's
// field order with its optional fields, and the lines written only past a
// time threshold.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

#include "engine/output.h"
#include "test_util.h"

namespace vx {
namespace {

const Move E2E4 = make_move(SQ_E2, SQ_E4), E7E5 = make_move(SQ_E7, SQ_E5), G1F3 = make_move(SQ_G1, SQ_F3);

std::array<int, 3> shares(const WdlPermille& p) { return {p.win, p.draw, p.loss}; }

// Centipawns are score * 100 / 256; known wins keep 4000 centipawns off;
// mates count moves from the plies; a tablebase root score (second argument)
// replaces all but mate scores.
TEST(ScoreText, CentipawnsMatesAndTablebaseScores) {
  const struct { Value score, tb_score; const char* text; } cases[] = {
      {512, VALUE_INFINITE, "cp 200"},       {-1, VALUE_INFINITE, "cp 0"},
      {-255, VALUE_INFINITE, "cp -99"},      {-31500, VALUE_INFINITE, "cp -27500"},
      {31999, VALUE_INFINITE, "cp 27999"},   {32499, VALUE_INFINITE, "mate 1"},
      {32498, VALUE_INFINITE, "mate 1"},     {-32498, VALUE_INFINITE, "mate -1"},
      {32000, VALUE_INFINITE, "mate 250"},   {32497, 32000, "mate 2"},
      {100, -32000, "cp -28000"},            {-700, 0, "cp 0"},
  };
  for (const auto& c : cases) EXPECT_EQ(ScoreText(c.score, c.tb_score), c.text) << c.score << " " << c.tb_score;
}

// Every field in order; then a bare record: seldepth below the depth reports
// the depth, no nps at time 0, no zero hit counts, and " wdl" only after the
// score and its bound word when the record carries the root's material.
TEST(PvLine, FieldsInOrderAndOptionalOnesLeftOut) {
  PvRecord r{.multipv = 2, .depth = 49, .seldepth = 19, .time = 1532, .score = 80, .bound = PV_LOWER_BOUND,
             .nodes = 2054321, .tbhits = 7, .sbhits = 3, .hashfull = 87, .pv_length = 3, .pv = {E2E4, E7E5, G1F3}};
  EXPECT_EQ(PvLineText(r),
            "info multipv 2 depth 12 seldepth 19 time 1532 score cp 31 lowerbound nodes 2054321 nps 1340940 "
            "tbhits 7 sbhits 3 hashfull 87 pv e2e4 e7e5 g1f3");
  r.bound = PV_UPPER_BOUND;
  EXPECT_NE(PvLineText(r).find("score cp 31 upperbound nodes"), std::string::npos);

  PvRecord bare{.depth = 8, .seldepth = 1, .score = -32498, .nodes = 40, .pv_length = 1, .pv = {E2E4}};
  EXPECT_EQ(PvLineText(bare), "info depth 2 seldepth 2 time 0 score mate -1 nodes 40 hashfull 0 pv e2e4");
  bare.wdl_material = 78;
  EXPECT_EQ(PvLineText(bare),
            "info depth 2 seldepth 2 time 0 score mate -1 wdl 0 0 1000 nodes 40 hashfull 0 pv e2e4");
  bare.score = 32498;
  bare.bound = PV_LOWER_BOUND;
  bare.pv_length = 0;
  EXPECT_EQ(PvLineText(bare),
            "info depth 2 seldepth 2 time 0 score mate 1 lowerbound wdl 1000 0 0 nodes 40 hashfull 0 pv");
}

// Mates and tablebase-resolved roots are certain; otherwise the shares are
// whole per mille summing to 1000, the same for both sides (a score and its
// negation swap win and loss), and move with the score the right way at
// every material count.
TEST(ReportedWdl, CertainResultsAndTheModelsShape) {
  const struct { Value score, tb_score; WdlPermille wdl; } certain[] = {
      {32499, VALUE_INFINITE, {1000, 0, 0}}, {-32000, VALUE_INFINITE, {0, 0, 1000}},
      {32497, 0, {1000, 0, 0}},              {-500, 32000, {1000, 0, 0}},
      {700, 0, {0, 1000, 0}},                {100, -32000, {0, 0, 1000}}};
  for (const auto& c : certain)
    EXPECT_EQ(shares(ReportedWdl(c.score, c.tb_score, 40)), shares(c.wdl)) << c.score;
  // Above 78, the starting material, the model was not fitted (promoted
  // queens): it reads as 78, not as the sure draw its midpoint gives at 89.
  for (int material = 0; material <= 100; ++material) {
    WdlPermille last{0, 0, 1000};
    for (Value score = -31999; score <= 31999; score += score < -1000 || score > 1000 ? 997 : 13) {
      const WdlPermille p = ReportedWdl(score, VALUE_INFINITE, material);
      const WdlPermille q = ReportedWdl(-score, VALUE_INFINITE, material);
      const WdlPermille fitted = ReportedWdl(score, VALUE_INFINITE, std::min(material, 78));
      ASSERT_TRUE(p.win >= 0 && p.draw >= 0 && p.loss >= 0 && p.win + p.draw + p.loss == 1000) << score;
      ASSERT_EQ(shares(p), (std::array{q.loss, q.draw, q.win})) << score << " " << material;
      ASSERT_EQ(p.win, fitted.win) << score << " " << material;
      ASSERT_TRUE(p.win >= last.win && p.loss <= last.loss) << score << " " << material;
      last = p;
    }
    // Known wins (the endgame rules' scores) read as certain wins.
    EXPECT_EQ(ReportedWdl(31500, VALUE_INFINITE, material).win, 1000) << material;
  }
  // Level at the start: neither side is more likely to win than to draw.
  const WdlPermille start = ReportedWdl(0, VALUE_INFINITE, 78);
  EXPECT_EQ(start.win, start.loss);
  EXPECT_GT(start.draw, start.win);
}

TEST(ToPermille, RoundsWinAndLossAndTheDrawTakesTheRest) {
  const struct { WdlChances chances; WdlPermille permille; } cases[] = {
      {{0.5625, 0.0, 0.4375}, {563, 0, 437}}, {{0.0004, 0.9992, 0.0004}, {0, 1000, 0}}};
  for (const auto& c : cases) EXPECT_EQ(shares(ToPermille(c.chances)), shares(c.permille));
}

// Iteration lines, currmove only from 1500 ms, hashfull first and no speed
// line at time 0, currline and bestmove.
TEST(SearchLines, TextAndWhenTheyAreWritten) {
  const std::pair<void (*)(), const char*> cases[] = {
      {[] { PrintIterationStart(49); }, "info depth 12 seldepth 12\n"},
      {[] { PrintIterationSummary(0, 500, 0, 0); }, "info time 0 nodes 500\n"},
      {[] { PrintIterationSummary(2000, 3000000, 4, 0); }, "info time 2000 nodes 3000000 nps 1500000 tbhits 4\n"},
      {[] { PrintIterationSummary(10, 1, 0, 9); }, "info time 10 nodes 1 nps 100 sbhits 9\n"},
      {[] { PrintCurrMove(E2E4, 3, 1499); }, ""},
      {[] { PrintCurrMove(E2E4, 3, 1500); }, "info currmove e2e4 currmovenumber 3\n"},
      {[] { PrintSpeed(0, 1000, 5); }, ""},
      {[] { PrintSpeed(2500, 5000000, 321); }, "info hashfull 321 nps 2000000\n"},
      {[] { PrintCurrLine(std::array<Move, 3>{E2E4, E7E5, G1F3}.data(), 3); }, "info currline e2e4 e7e5 g1f3\n"},
      {[] { PrintCurrLine(nullptr, 0); }, "info currline\n"},
      {[] { PrintBestMove(E2E4, E7E5); }, "bestmove e2e4 ponder e7e5\n"},
      {[] { PrintBestMove(E2E4, MOVE_NONE); }, "bestmove e2e4\n"},
  };
  for (const auto& [print, text] : cases) EXPECT_EQ(test::output_of(print), text);
}

}  // namespace
}  // namespace vx

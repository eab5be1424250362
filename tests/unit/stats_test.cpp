// Match statistics against values worked out by hand from the formulas and
// evaluated independently in double precision.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tools/stats.h"

namespace vx::dev {
namespace {

constexpr double EPS = 1e-9;

// 10 wins, 5 draws, 5 losses: score 12.5/20 = 0.625, Elo -400 log10(0.6),
// per-game variance (10 * 0.375^2 + 5 * 0.125^2 + 5 * 0.625^2) / 20 = 3.4375 / 20.
TEST(Stats, ScoreEloAndIntervalOfASmallMatch) {
  const MatchCounts c{10, 5, 5};
  EXPECT_EQ(c.games(), 20);
  EXPECT_DOUBLE_EQ(Score(c), 0.625);
  EXPECT_NEAR(ScoreVariance(c), 0.171875, EPS);
  const EloEstimate e = EstimateElo(c);
  EXPECT_NEAR(e.elo, 88.73949984654251, EPS);
  EXPECT_NEAR(e.lower, -39.564837551208285, 1e-6);
  EXPECT_NEAR(e.upper, 248.18486697658867, 1e-6);
}

TEST(Stats, EloAndScoreConvertBothWays) {
  EXPECT_DOUBLE_EQ(ScoreFromElo(0), 0.5);
  EXPECT_NEAR(ScoreFromElo(5), 0.5071950817090514, EPS);
  EXPECT_NEAR(EloFromScore(ScoreFromElo(-123.0)), -123.0, 1e-9);
  EXPECT_TRUE(std::isinf(EloFromScore(1.0)) && EloFromScore(1.0) > 0);
  EXPECT_TRUE(std::isinf(EloFromScore(0.0)) && EloFromScore(0.0) < 0);
}

TEST(Stats, DegenerateCounts) {
  const MatchCounts none{};
  EXPECT_DOUBLE_EQ(Score(none), 0.5);
  const MatchCounts all_draws{0, 7, 0};
  EXPECT_DOUBLE_EQ(EstimateElo(all_draws).elo, 0.0);
  EXPECT_DOUBLE_EQ(SprtLlr({0, 5}, none), 0.0);
  // One kind of result only: half a game of each kind is added (counts 0.5/7.5/0.5 and 10.5/0.5/0.5).
  EXPECT_NEAR(SprtLlr({0, 5}, all_draws), -0.007480649515589237, 1e-12);
  EXPECT_NEAR(SprtLlr({0, 5}, {10, 0, 0}), 0.712208383166328, 1e-12);
  EXPECT_EQ(SprtDecide({0, 5}, {22, 0, 0}), SprtDecision::ACCEPT_H1);
  EXPECT_EQ(SprtDecide({0, 5}, {21, 0, 0}), SprtDecision::CONTINUE);
}

// Bounds log(0.95 / 0.05); LLR = N (s1 - s0) (2 x - s0 - s1) / (2 var) with
// s0 = 0.5, s1 = 0.50719508...
TEST(Stats, SprtBoundsLlrAndDecisions) {
  const Sprt s{0, 5};
  EXPECT_NEAR(SprtLowerBound(s), -2.9444389791664403, EPS);
  EXPECT_NEAR(SprtUpperBound(s), 2.9444389791664403, EPS);
  EXPECT_NEAR(SprtLlr(s, {10, 5, 5}), 0.10164370772147874, 1e-9);
  EXPECT_EQ(SprtDecide(s, {10, 5, 5}), SprtDecision::CONTINUE);
  EXPECT_NEAR(SprtLlr(s, {1200, 2000, 900}), 7.6800028099564335, 1e-9);
  EXPECT_EQ(SprtDecide(s, {1200, 2000, 900}), SprtDecision::ACCEPT_H1);
  EXPECT_NEAR(SprtLlr(s, {900, 2000, 1100}), -6.6174598794370905, 1e-9);
  EXPECT_EQ(SprtDecide(s, {900, 2000, 1100}), SprtDecision::ACCEPT_H0);
  EXPECT_NEAR(SprtLlr({-5, 5}, {300, 400, 330}), -1.4135670713208501, 1e-9);
}

// Pairs 1 3 4 2 0 (by 0, 1/2, 1, 3/2, 2 points): per-game scores 0, 1/4, 1/2,
// 3/4, 1; mean (3/4 + 2 + 3/2) / 10 = 0.425; variance of a pair's mean score
// (0.180625 + 3 * 0.030625 + 4 * 0.005625 + 2 * 0.105625) / 10 = 0.050625.
TEST(Stats, PentanomialScoreEloAndNormalizedElo) {
  PairCounts p;
  const int counts[5] = {1, 3, 4, 2, 0};
  std::copy(counts, counts + 5, p.points);
  const Trials t = TrialsOf(p);
  EXPECT_EQ(p.pairs(), 10);
  EXPECT_NEAR(t.mean(), 0.425, EPS);
  EXPECT_NEAR(t.variance(), 0.050625, EPS);
  const EloEstimate e = EstimateElo(t);
  EXPECT_NEAR(e.elo, EloFromScore(0.425), EPS);
  // margin 1.95996... * sqrt(0.050625 / 10) = 0.139454...
  EXPECT_NEAR(e.lower, EloFromScore(0.425 - 0.13945388226852637), 1e-6);
  EXPECT_NEAR(e.upper, EloFromScore(0.425 + 0.13945388226852637), 1e-6);
  // (0.425 - 0.5) / sqrt(2 * 0.050625) * 800 / ln 10 = -81.8912..., margin 1.95996 * 347.43 / sqrt(20)
  const EloEstimate n = EstimateNormalizedElo(t);
  EXPECT_NEAR(n.elo, -81.89135284951674, 1e-9);
  EXPECT_NEAR(n.upper - n.elo, 152.26756105449138, 1e-9);
  EXPECT_NEAR(LikelihoodOfSuperiority(t), 0.14592027257189422, 1e-9);
}

// The same games counted singly and by pairs: when each pair splits (one win,
// one loss for the same colour), singly counted games look decisive and
// noisy, the pairs show no spread at all.
TEST(Stats, PairsRemoveTheSpreadOfColourSplits) {
  const MatchCounts singly{10, 0, 10};
  PairCounts p;
  p.points[2] = 10;
  EXPECT_DOUBLE_EQ(TrialsOf(p).mean(), Score(singly));
  EXPECT_GT(EstimateElo(singly).upper, 100);
  const EloEstimate paired = EstimateElo(TrialsOf(p));
  EXPECT_DOUBLE_EQ(paired.lower, 0.0);
  EXPECT_DOUBLE_EQ(paired.upper, 0.0);
}

TEST(Stats, PentanomialLimitingCasesAndSprt) {
  PairCounts draws, wins;
  draws.points[2] = 50;
  wins.points[4] = 50;
  EXPECT_DOUBLE_EQ(EstimateElo(TrialsOf(draws)).elo, 0.0);
  EXPECT_DOUBLE_EQ(EstimateNormalizedElo(TrialsOf(draws)).elo, 0.0);
  EXPECT_DOUBLE_EQ(LikelihoodOfSuperiority(TrialsOf(draws)), 0.5);
  EXPECT_TRUE(std::isinf(EstimateElo(TrialsOf(wins)).elo));
  EXPECT_TRUE(std::isinf(EstimateNormalizedElo(TrialsOf(wins)).elo));
  EXPECT_DOUBLE_EQ(LikelihoodOfSuperiority(TrialsOf(wins)), 1.0);
  // Half a pair of each kind is added: 50.5 draws-pairs and 0.5 of the others.
  EXPECT_LT(SprtLlr({0, 5}, TrialsOf(draws)), 0);
  EXPECT_EQ(SprtDecide({0, 5}, TrialsOf(wins)), SprtDecision::ACCEPT_H1);
  // LLR = N (s1 - s0)(2x - s0 - s1) / (2 var) on pairs 10 20 120 40 10:
  // x = 0.525, var = 0.043125.
  PairCounts shifted;
  const int counts[5] = {10, 20, 120, 40, 10};
  std::copy(counts, counts + 5, shifted.points);
  const Trials t = TrialsOf(shifted);
  EXPECT_NEAR(t.mean(), 0.525, EPS);
  EXPECT_NEAR(t.variance(), 0.043125, EPS);
  const double s1 = ScoreFromElo(5);
  EXPECT_NEAR(SprtLlr({0, 5}, t), 200 * (s1 - 0.5) * (1.05 - 0.5 - s1) / (2 * 0.043125), 1e-9);
}

}  // namespace
}  // namespace vx::dev

// Match statistics against values worked out by hand from the formulas and
// evaluated independently in double precision.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tools/match/stats.h"

namespace vx::dev {
namespace {

constexpr double EPS = 1e-9;

// 10 wins, 5 draws, 5 losses: score 12.5/20 = 0.625, Elo -400 log10(0.6),
// per-game variance (10 * 0.375^2 + 5 * 0.125^2 + 5 * 0.625^2) / 20 = 3.4375 / 20.
TEST(Stats, ScoreEloAndIntervalOfASmallMatch) {
  const MatchCounts c{10, 5, 5};
  EXPECT_DOUBLE_EQ(Score(c), 0.625);
  EXPECT_NEAR(ScoreVariance(c), 0.171875, EPS);
  const EloEstimate e = EstimateElo(c);
  EXPECT_NEAR(e.elo, 88.73949984654251, EPS);
  EXPECT_NEAR(e.lower, -39.564837551208285, 1e-6);
  EXPECT_NEAR(e.upper, 248.18486697658867, 1e-6);
}

// ScoreFromElo is pinned by the SPRT's s1 below, EloFromScore by the Elo above.
TEST(Stats, DegenerateCounts) {
  EXPECT_TRUE(std::isinf(EloFromScore(1.0)) && EloFromScore(1.0) > 0);
  EXPECT_TRUE(std::isinf(EloFromScore(0.0)) && EloFromScore(0.0) < 0);
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
// s0 = 0.5, s1 = 0.50719508...; the pairs 10 20 120 40 10 have N = 200,
// x = 0.525 and var = 0.043125.
TEST(Stats, SprtBoundsLlrAndDecisions) {
  const Sprt s{0, 5};
  EXPECT_NEAR(SprtLowerBound(s), -2.9444389791664403, EPS);
  EXPECT_NEAR(SprtUpperBound(s), 2.9444389791664403, EPS);
  const struct {
    Sprt sprt;
    Trials trials;
    double llr;
    SprtDecision decision;
  } cases[] = {{s, TrialsOf(MatchCounts{10, 5, 5}), 0.10164370772147874, SprtDecision::CONTINUE},
               {s, TrialsOf(MatchCounts{1200, 2000, 900}), 7.6800028099564335, SprtDecision::ACCEPT_H1},
               {s, TrialsOf(MatchCounts{900, 2000, 1100}), -6.6174598794370905, SprtDecision::ACCEPT_H0},
               {{-5, 5}, TrialsOf(MatchCounts{300, 400, 330}), -1.4135670713208501, SprtDecision::CONTINUE},
               {s, TrialsOf(PairCounts{{10, 20, 120, 40, 10}}), 0.714167848469897, SprtDecision::CONTINUE}};
  for (const auto& c : cases) {
    EXPECT_NEAR(SprtLlr(c.sprt, c.trials), c.llr, 1e-9) << c.llr;
    EXPECT_EQ(SprtDecide(c.sprt, c.trials), c.decision) << c.llr;
  }
}

// Pairs 1 3 4 2 0 (by 0, 1/2, 1, 3/2, 2 points): per-game scores 0, 1/4, 1/2,
// 3/4, 1; mean (3/4 + 2 + 3/2) / 10 = 0.425; variance of a pair's mean score
// (0.180625 + 3 * 0.030625 + 4 * 0.005625 + 2 * 0.105625) / 10 = 0.050625.
TEST(Stats, PentanomialScoreEloAndNormalizedElo) {
  PairCounts p;
  const int counts[5] = {1, 3, 4, 2, 0};
  std::copy(counts, counts + 5, p.points);
  const Trials t = TrialsOf(p);
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

// Every pair with the same result: half a pair of each kind is added before
// any statistic. Ten pairs 1-1 become 0.5 0.5 10.5 0.5 0.5 (N 12.5, mean 1/2,
// variance 0.5 (1/4 + 1/16 + 1/16 + 1/4) / 12.5 = 0.025, margin
// 1.95996 sqrt(0.002) = 0.0876523); ten pairs of 1.5 points become
// 0.5 0.5 0.5 10.5 0.5 (mean 8.75 / 12.5 = 0.7, variance 0.4375 / 12.5 =
// 0.035, margin 1.95996 sqrt(0.0028)). Elo of 0.7 = -400 log10(3/7);
// normalized 0.2 / sqrt(0.07) x 800 / ln 10; its margin 1.95996 x 347.436 / sqrt(25).
TEST(Stats, SamplesOfOneResultAreRegularised) {
  const struct {
    int kind;
    double elo, lower, upper, nelo, nelo_margin, los;
  } cases[] = {{2, 0.0, -61.54271257457956, 61.54271257457958, 0.0, 136.19224691437694, 0.5},
               {3, 147.19071411783776, 67.7540922180061, 244.88218076788564, 262.6366159734047,
                136.19224691437694, 0.9999214738578845}};
  for (const auto& c : cases) {
    PairCounts p;
    p.points[c.kind] = 10;
    const EloEstimate e = EstimateElo(TrialsOf(p)), n = EstimateNormalizedElo(TrialsOf(p));
    const double got[] = {e.elo, e.lower, e.upper, n.elo, n.upper - n.elo, LikelihoodOfSuperiority(TrialsOf(p))};
    const double want[] = {c.elo, c.lower, c.upper, c.nelo, c.nelo_margin, c.los};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(got[i], want[i], 1e-9) << c.kind << " " << i;
  }
}

// A decision once taken stands whatever the pairs that finish afterwards say.
TEST(Stats, SprtDecisionStands) {
  const Trials even = TrialsOf(PairCounts{{0, 0, 10, 0, 0}}), sweep = TrialsOf(PairCounts{{0, 0, 0, 0, 50}});
  for (const SprtDecision d : {SprtDecision::ACCEPT_H0, SprtDecision::ACCEPT_H1, SprtDecision::CONTINUE})
    EXPECT_EQ(SprtNext(d, {0, 5}, even), d);
  EXPECT_EQ(SprtNext(SprtDecision::CONTINUE, {0, 5}, sweep), SprtDecision::ACCEPT_H1);
}

}  // namespace
}  // namespace vx::dev

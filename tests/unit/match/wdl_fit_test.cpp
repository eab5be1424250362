// The win/draw/loss fit: samples taken from match PGN comments, and recovery
// of known constants from games drawn from a known model.
#include <gtest/gtest.h>

#include "test_util.h"
#include "tools/match/wdl_fit.h"

namespace vx::dev {
namespace {

const WdlModel KNOWN = {{180, -40, 25, 10}, {110, 30, -15, 5}};

// The model's shape is checked on the engine's own constants (ReportedWdl in
// engine/output_test); a midpoint below zero gives a sure draw.
TEST(WdlModel, AModelWithoutAPositiveMidpointGivesADraw) {
  EXPECT_EQ(WdlFromScore({{-5, 0, 0, 0}, {100, 0, 0, 0}}, 300, 40).draw, 1.0);
}

TEST(WdlFit, SamplesComeFromScoredMovesOfFinishedGames) {
  test::init();  // the reader plays the moves: the attack tables must be there when run alone
  std::istringstream text(
      "1. e4 {+0.30/10 0.1s} e5 {-0.20/9 0.1s} 2. Nf3 {+M3/20 0.1s} Nc6 {0.05s} 3. Bb5 {+35.00/12 0.2s} 1-0\n\n"
      "1. d4 {+0.10/8 0.1s} *\n");
  std::vector<PgnGame> games;
  std::string error;
  ASSERT_TRUE(ReadPgn(text, games, error)) << error;
  std::vector<WdlSample> samples;
  for (size_t i = 0; i < games.size(); ++i) AppendSamples(games[i], int(i) + 7, samples);
  ASSERT_EQ(samples.size(), 3u);
  EXPECT_DOUBLE_EQ(samples[0].score, 30);
  EXPECT_EQ(samples[0].outcome, OUTCOME_WIN);
  EXPECT_EQ(samples[0].material, 78);
  EXPECT_DOUBLE_EQ(samples[1].score, -20);
  EXPECT_EQ(samples[1].outcome, OUTCOME_LOSS);  // Black moved, White won
  EXPECT_DOUBLE_EQ(samples[2].score, WDL_SCORE_CAP);  // 35 pawns, capped
  EXPECT_EQ(samples[2].game, 7);
}

// A drawn game whose mover saw 30 pawns: the draw keeps a positive chance,
// L(-u) L(-v) (1 - e^(-2a/b)) with a = 180, b = 110 at material 40, u = 2820 / 110,
// v = -3180 / 110; log = -25.675003549...
TEST(WdlFit, DecisiveScoreInADrawnGameKeepsTheLikelihoodFinite) {
  EXPECT_NEAR(LogLikelihood(KNOWN, {{3000, 40, OUTCOME_DRAW, 0}}), -25.67500354919871, 1e-9);
  EXPECT_NEAR(LogLikelihood(KNOWN, {{-3000, 40, OUTCOME_DRAW, 0}}), -25.67500354919871, 1e-9);
}

// 60,000 positions with outcomes drawn from the known model: the fit finds
// every constant within four standard errors, the likelihood is at least the
// known model's, and the calibration matches on fresh positions.
TEST(WdlFit, RecoversTheConstantsOfAKnownModel) {
  std::mt19937_64 rng(2026);
  std::uniform_real_distribution<double> score(-700, 700), unit(0, 1);
  std::uniform_int_distribution<int> material(4, 78);
  auto draw_samples = [&](int n) {
    std::vector<WdlSample> out;
    for (int i = 0; i < n; ++i) {
      WdlSample s{score(rng), material(rng), 0, i};
      const WdlChances c = WdlFromScore(KNOWN, s.score, s.material);
      const double r = unit(rng);
      s.outcome = r < c.win ? OUTCOME_WIN : r < c.win + c.draw ? OUTCOME_DRAW : OUTCOME_LOSS;
      out.push_back(s);
    }
    return out;
  };
  const std::vector<WdlSample> samples = draw_samples(60000);
  const WdlFitResult r = FitWdl(samples);
  ASSERT_TRUE(r.converged);
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(r.model.midpoint[i], KNOWN.midpoint[i], 4 * r.error[i]) << "midpoint " << i;
    EXPECT_NEAR(r.model.spread[i], KNOWN.spread[i], 4 * r.error[4 + i]) << "spread " << i;
    EXPECT_LT(r.error[i], 20.0);
  }
  EXPECT_GE(r.log_likelihood, LogLikelihood(KNOWN, samples));
  for (const CalibrationRow& row : Calibrate(r.model, draw_samples(20000)))
    for (int o = 0; o < 3; ++o) EXPECT_NEAR(row.predicted[o], row.observed[o], 0.05) << row.low << " " << o;
  // Each game's position four times over is no more evidence than once: the
  // standard errors stay (taken per position they would halve).
  const std::vector<WdlSample> once = draw_samples(8000);
  std::vector<WdlSample> repeated;
  for (const WdlSample& s : once) repeated.insert(repeated.end(), 4, s);
  const WdlFitResult a = FitWdl(once), b = FitWdl(repeated);
  for (int i = 0; i < 8; ++i) EXPECT_NEAR(b.error[i], a.error[i], 0.02 * a.error[i]) << i;
}

}  // namespace
}  // namespace vx::dev

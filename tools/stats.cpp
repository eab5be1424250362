#include "tools/stats.h"

#include <cmath>
#include <limits>

namespace vx::dev {

namespace {

constexpr double Z95 = 1.959963984540054;  // two-sided 95% quantile of the normal distribution

}  // namespace

double Score(const MatchCounts& c) {
  const int n = c.games();
  return n ? (c.wins + 0.5 * c.draws) / n : 0.5;
}

double EloFromScore(double score) {
  if (score <= 0) return -std::numeric_limits<double>::infinity();
  if (score >= 1) return std::numeric_limits<double>::infinity();
  return -400.0 * std::log10(1.0 / score - 1.0);
}

double ScoreFromElo(double elo) { return 1.0 / (1.0 + std::pow(10.0, -elo / 400.0)); }

double ScoreVariance(const MatchCounts& c) {
  const int n = c.games();
  if (!n) return 0;
  const double s = Score(c);
  return (c.wins * (1 - s) * (1 - s) + c.draws * (0.5 - s) * (0.5 - s) + c.losses * s * s) / n;
}

EloEstimate EstimateElo(const MatchCounts& c) {
  const double s = Score(c);
  const double margin = c.games() ? Z95 * std::sqrt(ScoreVariance(c) / c.games()) : 0.5;
  return {EloFromScore(s), EloFromScore(s - margin), EloFromScore(s + margin)};
}

double LikelihoodOfSuperiority(const MatchCounts& c) {
  const int decisive = c.wins + c.losses;
  if (!decisive) return 0.5;
  return 0.5 * (1 + std::erf((c.wins - c.losses) / std::sqrt(2.0 * decisive)));
}

double SprtLowerBound(const Sprt& s) { return std::log(s.beta / (1 - s.alpha)); }
double SprtUpperBound(const Sprt& s) { return std::log((1 - s.beta) / s.alpha); }

double SprtLlr(const Sprt& s, const MatchCounts& c) {
  if (!c.games()) return 0;
  double w = c.wins, d = c.draws, l = c.losses;
  // With a single kind of result the variance is zero; half a game of each
  // kind as a prior keeps the ratio finite so that a clean sweep still decides.
  if (ScoreVariance(c) <= 0) w += 0.5, d += 0.5, l += 0.5;
  const double n = w + d + l, x = (w + 0.5 * d) / n;
  const double var = (w * (1 - x) * (1 - x) + d * (0.5 - x) * (0.5 - x) + l * x * x) / n;
  const double s0 = ScoreFromElo(s.elo0), s1 = ScoreFromElo(s.elo1);
  return n * (s1 - s0) * (2 * x - s0 - s1) / (2 * var);
}

SprtDecision SprtDecide(const Sprt& s, const MatchCounts& c) {
  const double llr = SprtLlr(s, c);
  if (llr >= SprtUpperBound(s)) return SprtDecision::ACCEPT_H1;
  if (llr <= SprtLowerBound(s)) return SprtDecision::ACCEPT_H0;
  return SprtDecision::CONTINUE;
}

}  // namespace vx::dev

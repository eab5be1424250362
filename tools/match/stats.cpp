#include "tools/match/stats.h"

#include <cmath>
#include <limits>

namespace vx::dev {

namespace {

constexpr double Z95 = 1.959963984540054;  // two-sided 95% quantile of the normal distribution
constexpr double INF = std::numeric_limits<double>::infinity();

// The counts the statistics are taken on. With a single kind of result the
// variance is zero; half a trial of each kind as a prior keeps every
// statistic finite and its interval open.
Trials Regularised(const Trials& observed) {
  Trials t = observed;
  if (t.n() > 0 && t.variance() <= 0)
    for (int i = 0; i < t.kinds; ++i) t.count[i] += 0.5;
  return t;
}

}  // namespace

double Trials::n() const {
  double sum = 0;
  for (int i = 0; i < kinds; ++i) sum += count[i];
  return sum;
}

double Trials::mean() const {
  const double total = n();
  if (total <= 0) return 0.5;
  double sum = 0;
  for (int i = 0; i < kinds; ++i) sum += count[i] * score[i];
  return sum / total;
}

double Trials::variance() const {
  const double total = n();
  if (total <= 0) return 0;
  const double x = mean();
  double sum = 0;
  for (int i = 0; i < kinds; ++i) sum += count[i] * (score[i] - x) * (score[i] - x);
  return sum / total;
}

Trials TrialsOf(const MatchCounts& c) {
  Trials t;
  t.kinds = 3;
  t.score[0] = 1, t.score[1] = 0.5, t.score[2] = 0;
  t.count[0] = c.wins, t.count[1] = c.draws, t.count[2] = c.losses;
  return t;
}

Trials TrialsOf(const PairCounts& c) {
  Trials t;
  t.kinds = 5;
  t.games_per_trial = 2;
  for (int k = 0; k < 5; ++k) t.score[k] = k / 4.0, t.count[k] = c.points[k];
  return t;
}

double Score(const MatchCounts& c) { return TrialsOf(c).mean(); }

double EloFromScore(double score) {
  if (score <= 0) return -INF;
  if (score >= 1) return INF;
  return -400.0 * std::log10(1.0 / score - 1.0);
}

double ScoreFromElo(double elo) { return 1.0 / (1.0 + std::pow(10.0, -elo / 400.0)); }

double ScoreVariance(const MatchCounts& c) { return TrialsOf(c).variance(); }

EloEstimate EstimateElo(const Trials& observed) {
  const Trials t = Regularised(observed);
  const double s = t.mean();
  const double margin = t.n() > 0 ? Z95 * std::sqrt(t.variance() / t.n()) : 0.5;
  return {EloFromScore(s), EloFromScore(s - margin), EloFromScore(s + margin)};
}

EloEstimate EstimateElo(const MatchCounts& c) { return EstimateElo(TrialsOf(c)); }

EloEstimate EstimateNormalizedElo(const Trials& observed) {
  const Trials t = Regularised(observed);
  const double scale = 800.0 / std::log(10.0);
  const double deviation = std::sqrt(t.games_per_trial * t.variance());
  const double nelo = deviation > 0 ? (t.mean() - 0.5) / deviation * scale : 0;
  const double margin = t.n() > 0 ? Z95 * scale / std::sqrt(t.games_per_trial * t.n()) : INF;
  return {nelo, nelo - margin, nelo + margin};
}

double LikelihoodOfSuperiority(const Trials& observed) {
  const Trials t = Regularised(observed);
  const double distance = t.mean() - 0.5, var = t.variance();
  if (var <= 0) return 0.5;  // no trials
  return 0.5 * (1 + std::erf(distance / std::sqrt(2 * var / t.n())));
}

double SprtLowerBound(const Sprt& s) { return std::log(s.beta / (1 - s.alpha)); }
double SprtUpperBound(const Sprt& s) { return std::log((1 - s.beta) / s.alpha); }

double SprtLlr(const Sprt& s, const Trials& observed) {
  if (observed.n() <= 0) return 0;
  const Trials t = Regularised(observed);
  const double x = t.mean(), var = t.variance();
  const double s0 = ScoreFromElo(s.elo0), s1 = ScoreFromElo(s.elo1);
  return t.n() * (s1 - s0) * (2 * x - s0 - s1) / (2 * var);
}

double SprtLlr(const Sprt& s, const MatchCounts& c) { return SprtLlr(s, TrialsOf(c)); }

SprtDecision SprtDecide(const Sprt& s, const Trials& t) {
  const double llr = SprtLlr(s, t);
  if (llr >= SprtUpperBound(s)) return SprtDecision::ACCEPT_H1;
  if (llr <= SprtLowerBound(s)) return SprtDecision::ACCEPT_H0;
  return SprtDecision::CONTINUE;
}

SprtDecision SprtDecide(const Sprt& s, const MatchCounts& c) { return SprtDecide(s, TrialsOf(c)); }

SprtDecision SprtNext(SprtDecision current, const Sprt& s, const Trials& t) {
  return current == SprtDecision::CONTINUE ? SprtDecide(s, t) : current;
}

}  // namespace vx::dev

// Match statistics on logistic Elo: score, Elo difference with a 95%
// interval, normalized Elo, likelihood of superiority, and the sequential
// probability ratio test (normal approximation of the generalized test).
// Games can be counted one by one (trinomial: win, draw, loss) or, since the
// match runner plays every opening twice with colours reversed, by game pairs
// (pentanomial: 0, 1/2, 1, 3/2 or 2 points per pair). The two games of a pair
// are not independent (the opening favours one colour); counting pairs takes
// that correlation into account, counting games ignores it.
// While every trial has had the same result the sample's variance is zero;
// every statistic below (Elo and its interval, normalized Elo, LOS, the LLR)
// is then taken on the counts with half a trial of each kind added.
#pragma once

namespace vx::dev {

struct MatchCounts {
  int wins = 0, draws = 0, losses = 0;  // from the first engine's point of view
  int games() const { return wins + draws + losses; }
};

// Game pairs by the first engine's points in the pair: points[k] pairs ended
// with k/2 points (k = 0..4).
struct PairCounts {
  int points[5] = {};
  int pairs() const { return points[0] + points[1] + points[2] + points[3] + points[4]; }
};

// Independent trials (games or game pairs) as a distribution of per-game
// scores: count[i] trials scored score[i] points per game.
struct Trials {
  Trials() = default;  // not an aggregate: braces name match counts, never trials
  int kinds = 0;
  double score[5] = {}, count[5] = {};
  int games_per_trial = 1;
  double n() const;
  double mean() const;      // 0.5 without trials
  double variance() const;  // of one trial's per-game score around the mean
};
Trials TrialsOf(const MatchCounts& c);
Trials TrialsOf(const PairCounts& c);

double Score(const MatchCounts& c);          // (W + D/2) / N, 0.5 for no games
double EloFromScore(double score);           // -400 log10(1/s - 1); ±infinity at 0 and 1
double ScoreFromElo(double elo);             // 1 / (1 + 10^(-elo/400))
// Variance of one game's score (0, 1/2 or 1) around the mean score.
double ScoreVariance(const MatchCounts& c);

struct EloEstimate {
  double elo;    // difference from the observed score
  double lower;  // 95% interval by the normal approximation of the score
  double upper;
};
EloEstimate EstimateElo(const Trials& t);
EloEstimate EstimateElo(const MatchCounts& c);
// Normalized Elo: the score's distance from 1/2 in standard deviations of
// one game, times 800 / ln 10 (for pairs, the deviation of a pair's mean
// score times sqrt 2).
EloEstimate EstimateNormalizedElo(const Trials& t);

// Likelihood of superiority: the chance that the true score is above 1/2,
// by the normal approximation of the mean score of the trials.
double LikelihoodOfSuperiority(const Trials& t);

enum class SprtDecision { CONTINUE, ACCEPT_H0, ACCEPT_H1 };
struct Sprt {
  double elo0, elo1;
  double alpha = 0.05, beta = 0.05;
};
double SprtLowerBound(const Sprt& s);  // ln(beta / (1 - alpha))
double SprtUpperBound(const Sprt& s);  // ln((1 - beta) / alpha)
// Log-likelihood ratio of H1 (Elo = elo1) against H0 (Elo = elo0):
// N (s1 - s0) (2 x - s0 - s1) / (2 var), N the trials, x the mean score,
// var the per-trial variance, s0 and s1 the expected scores. Zero without
// trials.
double SprtLlr(const Sprt& s, const Trials& t);
double SprtLlr(const Sprt& s, const MatchCounts& c);
SprtDecision SprtDecide(const Sprt& s, const Trials& t);
SprtDecision SprtDecide(const Sprt& s, const MatchCounts& c);
// The decision of a running test after one more trial: a decision once taken
// stands, so trials that finish after the run stopped cannot revise it.
SprtDecision SprtNext(SprtDecision current, const Sprt& s, const Trials& t);

}  // namespace vx::dev

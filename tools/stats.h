// Match statistics on logistic Elo: score, Elo difference with a 95%
// interval, likelihood of superiority, and the sequential probability ratio
// test (normal approximation of the generalized test on the trinomial
// win/draw/loss distribution).
#pragma once

namespace vx::dev {

struct MatchCounts {
  int wins = 0, draws = 0, losses = 0;  // from the first engine's point of view
  int games() const { return wins + draws + losses; }
};

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
EloEstimate EstimateElo(const MatchCounts& c);

// Likelihood of superiority: 1/2 (1 + erf((W - L) / sqrt(2 (W + L)))); 1/2 without decisive games.
double LikelihoodOfSuperiority(const MatchCounts& c);

enum class SprtDecision { CONTINUE, ACCEPT_H0, ACCEPT_H1 };
struct Sprt {
  double elo0, elo1;
  double alpha = 0.05, beta = 0.05;
};
double SprtLowerBound(const Sprt& s);  // ln(beta / (1 - alpha))
double SprtUpperBound(const Sprt& s);  // ln((1 - beta) / alpha)
// Log-likelihood ratio of H1 (Elo = elo1) against H0 (Elo = elo0):
// N (s1 - s0) (2 x - s0 - s1) / (2 var), x the mean score, var the per-game
// variance, s0 and s1 the expected scores. Zero without games; while all
// games have had one result, half a game of each result is added first.
double SprtLlr(const Sprt& s, const MatchCounts& c);
SprtDecision SprtDecide(const Sprt& s, const MatchCounts& c);

}  // namespace vx::dev

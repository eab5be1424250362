// Fitting the win/draw/loss model (engine/wdl.h) by maximum likelihood on
// games: each move of a match PGN whose comment carries the engine's score
// is one sample, with the material on the board and the game's result from
// the mover's point of view. Also the calibration of a model on games kept
// out of the fit, and `vorlaxen-dev wdl-fit`.
#pragma once

#include <vector>

#include "engine/wdl.h"
#include "tools/match/pgn_reader.h"

namespace vx::dev {

enum WdlOutcome { OUTCOME_LOSS, OUTCOME_DRAW, OUTCOME_WIN };  // for the side that moved

struct WdlSample {
  double score;  // centipawns, the mover's point of view, within ±WDL_SCORE_CAP
  int material;  // WdlMaterial of the position the mover searched
  int outcome;   // WdlOutcome
  int game;      // number of the game the position comes from
};

// Scores beyond 20 pawns say no more about the result than 20 pawns do; they
// are cut to it so that a few wild scores cannot pull the fit.
constexpr double WDL_SCORE_CAP = 2000;

// The samples of one finished game (numbered `number`): every move whose
// comment starts with a centipawn score ("+0.35/12 0.52s"), capped at
// ±WDL_SCORE_CAP; mate scores, scores of 100 pawns or more (tablebase
// results) and unfinished games give none.
void AppendSamples(const PgnGame& game, int number, std::vector<WdlSample>& samples);

// Sum of the log-probabilities the model gives the observed outcomes;
// minus infinity when the midpoint or spread is not positive for a sample.
// Every outcome keeps a positive chance at any score, the draw included.
double LogLikelihood(const WdlModel& model, const std::vector<WdlSample>& samples);

struct WdlFitResult {
  WdlModel model;
  double error[8];  // standard errors, the positions of a game taken as correlated: midpoint, then spread
  double log_likelihood;
  int iterations;
  bool converged;
};

// Damped Newton iterations on the log-likelihood from a neutral start; the
// standard errors come from the observed information, with the positions of
// one game counted as correlated (clustered by WdlSample::game).
WdlFitResult FitWdl(const std::vector<WdlSample>& samples);

struct CalibrationRow {
  double low, high;  // score range in centipawns, [low, high)
  int count;
  double predicted[3], observed[3];  // mean chances and rates: loss, draw, win
};
// Predicted against observed outcome rates by score range (empty ranges left out).
std::vector<CalibrationRow> Calibrate(const WdlModel& model, const std::vector<WdlSample>& samples);

}  // namespace vx::dev

// vorlaxen-dev wdl-fit [--holdout K] PGN...
#include "tools/match/wdl_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>

#include "tools/dev/commands.h"

namespace vx::dev {

namespace {

constexpr int PARAMS = 8;
constexpr double NEG_INF = -std::numeric_limits<double>::infinity();

using Vector = std::array<double, PARAMS>;
using Matrix = std::array<Vector, PARAMS>;

WdlModel ModelOf(const Vector& p) {
  WdlModel m;
  for (int i = 0; i < 4; ++i) m.midpoint[i] = p[i], m.spread[i] = p[4 + i];
  return m;
}

Vector ParamsOf(const WdlModel& m) {
  Vector p;
  for (int i = 0; i < 4; ++i) p[i] = m.midpoint[i], p[4 + i] = m.spread[i];
  return p;
}

// log(1 / (1 + e^-x)) without overflow for any x.
double LogLogistic(double x) { return x < 0 ? x - std::log1p(std::exp(x)) : -std::log1p(std::exp(-x)); }
double Logistic(double x) { return 1 / (1 + std::exp(-x)); }

// Log-likelihood of one sample and its gradient by the midpoint a and the
// spread b; minus infinity where the model is not defined (a or b not
// positive). With u = (s - a) / b and v = (-s - a) / b the chances are
// win = L(u), loss = L(v) and draw = 1 - L(u) - L(v) = L(-u) L(-v) (1 - e^(-2a/b)),
// the last form a product of positive factors however large the score, so
// a drawn game with a decisive score costs much but never all.
double SampleLogLikelihood(double score, int outcome, double a, double b, double& d_a, double& d_b) {
  d_a = d_b = 0;
  if (!(a > 0) || !(b > 0)) return NEG_INF;
  const double u = (score - a) / b, v = (-score - a) / b;
  if (outcome == OUTCOME_WIN) {
    const double g = Logistic(-u);  // d log L(u) / du
    d_a = -g / b, d_b = -g * u / b;
    return LogLogistic(u);
  }
  if (outcome == OUTCOME_LOSS) {
    const double g = Logistic(-v);
    d_a = -g / b, d_b = -g * v / b;
    return LogLogistic(v);
  }
  const double w = 2 * a / b, win = Logistic(u), loss = Logistic(v);
  const double g = 1 / std::expm1(w);  // d log(1 - e^-w) / dw
  d_a = win / b + loss / b + g * 2 / b;
  d_b = win * u / b + loss * v / b - g * w / b;
  return LogLogistic(-u) + LogLogistic(-v) + std::log(-std::expm1(-w));
}

// Log-likelihood and its gradient; per_game (when given) receives the
// gradient summed over the samples of each game, the games numbered 0 up.
double Evaluate(const Vector& p, const std::vector<WdlSample>& samples, Vector* gradient,
                std::vector<Vector>* per_game = nullptr) {
  if (gradient) gradient->fill(0);
  double sum = 0;
  for (const WdlSample& s : samples) {
    const double t = WdlMaterialTerm(s.material);
    const double power[4] = {1, t, t * t, t * t * t};
    double a = 0, b = 0;
    for (int i = 0; i < 4; ++i) a += p[i] * power[i], b += p[4 + i] * power[i];
    double d_a, d_b;
    const double ll = SampleLogLikelihood(s.score, s.outcome, a, b, d_a, d_b);
    if (ll == NEG_INF) return NEG_INF;
    sum += ll;
    auto add = [&](Vector& g) {
      for (int i = 0; i < 4; ++i) g[i] += d_a * power[i], g[4 + i] += d_b * power[i];
    };
    if (gradient) add(*gradient);
    if (per_game) {
      if (size_t(s.game) >= per_game->size()) per_game->resize(size_t(s.game) + 1, Vector{});
      add((*per_game)[size_t(s.game)]);
    }
  }
  return sum;
}

// Solves m x = rhs by Gaussian elimination with partial pivoting; false when singular.
bool Solve(Matrix m, Vector rhs, Vector& x) {
  for (int col = 0; col < PARAMS; ++col) {
    int pivot = col;
    for (int r = col + 1; r < PARAMS; ++r)
      if (std::abs(m[r][col]) > std::abs(m[pivot][col])) pivot = r;
    if (!(std::abs(m[pivot][col]) > 1e-300)) return false;
    std::swap(m[col], m[pivot]);
    std::swap(rhs[col], rhs[pivot]);
    for (int r = col + 1; r < PARAMS; ++r) {
      const double f = m[r][col] / m[col][col];
      for (int c = col; c < PARAMS; ++c) m[r][c] -= f * m[col][c];
      rhs[r] -= f * rhs[col];
    }
  }
  for (int r = PARAMS - 1; r >= 0; --r) {
    double v = rhs[r];
    for (int c = r + 1; c < PARAMS; ++c) v -= m[r][c] * x[c];
    x[r] = v / m[r][r];
  }
  return true;
}

// The observed information (minus the Hessian of the log-likelihood), by
// central differences of the gradient.
Matrix Information(const Vector& p, const std::vector<WdlSample>& samples) {
  Matrix info;
  for (int j = 0; j < PARAMS; ++j) {
    const double h = 1e-4 * std::max(1.0, std::abs(p[j]));
    Vector up = p, down = p, g_up, g_down;
    up[j] += h, down[j] -= h;
    Evaluate(up, samples, &g_up);
    Evaluate(down, samples, &g_down);
    for (int i = 0; i < PARAMS; ++i) info[i][j] = -(g_up[i] - g_down[i]) / (2 * h);
  }
  for (int i = 0; i < PARAMS; ++i)
    for (int j = 0; j < i; ++j) info[i][j] = info[j][i] = (info[i][j] + info[j][i]) / 2;
  return info;
}

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", v);
  return text;
}

}  // namespace

void AppendSamples(const PgnGame& game, int number, std::vector<WdlSample>& samples) {
  const int white_outcome = game.result == "1-0"       ? OUTCOME_WIN
                            : game.result == "0-1"     ? OUTCOME_LOSS
                            : game.result == "1/2-1/2" ? OUTCOME_DRAW
                                                       : -1;
  if (white_outcome < 0) return;
  Position pos;
  if (!pos.SetFromFen(game.fen)) return;
  for (size_t i = 0; i < game.moves.size(); ++i) {
    const std::string& c = game.comments[i];
    char* end = nullptr;
    const double pawns = c.empty() ? 0 : std::strtod(c.c_str(), &end);
    if (!c.empty() && end != c.c_str() && *end == '/' && std::abs(pawns) < 100) {
      const int outcome = pos.side_to_move == WHITE ? white_outcome : 2 - white_outcome;
      const double cp = std::clamp(pawns * 100, -WDL_SCORE_CAP, WDL_SCORE_CAP);
      samples.push_back({cp, WdlMaterial(pos), outcome, number});
    }
    pos.ApplyGameMove(game.moves[i]);
  }
}

double LogLikelihood(const WdlModel& model, const std::vector<WdlSample>& samples) {
  return Evaluate(ParamsOf(model), samples, nullptr);
}

WdlFitResult FitWdl(const std::vector<WdlSample>& samples) {
  WdlFitResult r{};
  Vector p{150, 0, 0, 0, 100, 0, 0, 0};
  double ll = Evaluate(p, samples, nullptr), damping = 1e-3;
  for (int iteration = 1; iteration <= 200 && !samples.empty(); ++iteration) {
    r.iterations = iteration;
    Vector g, step;
    Evaluate(p, samples, &g);
    Matrix info = Information(p, samples);
    // Marquardt damping: a step between Newton's and a scaled gradient step.
    bool improved = false;
    for (int tries = 0; tries < 30 && !improved; ++tries, damping *= 10) {
      Matrix m = info;
      for (int i = 0; i < PARAMS; ++i) m[i][i] += damping * std::max(std::abs(info[i][i]), 1e-9);
      if (!Solve(m, g, step)) continue;
      Vector q = p;
      for (int i = 0; i < PARAMS; ++i) q[i] += step[i];
      const double next = Evaluate(q, samples, nullptr);
      if (next >= ll) {
        improved = true;
        r.converged = next - ll < 1e-9 * double(samples.size());
        p = q, ll = next;
      }
    }
    damping = std::max(damping / 1000, 1e-9);
    if (!improved || r.converged) break;
  }
  r.model = ModelOf(p);
  r.log_likelihood = ll;
  // The positions of one game share its result, so they are not independent
  // samples: the covariance is the sandwich H^-1 B H^-1, H the observed
  // information and B the sum over games of the outer product of each game's
  // summed gradient. With one position per game it estimates the same as the
  // per-position H^-1.
  const Matrix info = Information(p, samples);
  std::vector<Vector> per_game;
  Evaluate(p, samples, nullptr, &per_game);
  Matrix inverse;
  bool invertible = true;
  for (int i = 0; i < PARAMS && invertible; ++i) {
    Vector unit{}, column;
    unit[i] = 1;
    invertible = Solve(info, unit, column);
    for (int j = 0; j < PARAMS; ++j) inverse[j][i] = column[j];
  }
  for (int i = 0; i < PARAMS; ++i) {
    double var = 0;
    for (const Vector& g : per_game) {
      double x = 0;  // row i of H^-1 times the game's gradient
      for (int j = 0; j < PARAMS; ++j) x += inverse[i][j] * g[j];
      var += x * x;
    }
    r.error[i] = invertible && var > 0 ? std::sqrt(var) : NAN;
  }
  return r;
}

std::vector<CalibrationRow> Calibrate(const WdlModel& model, const std::vector<WdlSample>& samples) {
  static constexpr double EDGES[] = {-1e9, -400, -300, -200, -150, -100, -50, -25, 25, 50, 100, 150, 200, 300, 400, 1e9};
  std::vector<CalibrationRow> rows;
  for (size_t k = 0; k + 1 < std::size(EDGES); ++k) {
    CalibrationRow row{EDGES[k], EDGES[k + 1], 0, {}, {}};
    for (const WdlSample& s : samples) {
      if (s.score < row.low || s.score >= row.high) continue;
      const WdlChances c = WdlFromScore(model, s.score, s.material);
      row.predicted[OUTCOME_LOSS] += c.loss, row.predicted[OUTCOME_DRAW] += c.draw, row.predicted[OUTCOME_WIN] += c.win;
      row.observed[s.outcome] += 1;
      ++row.count;
    }
    if (!row.count) continue;
    for (int o = 0; o < 3; ++o) row.predicted[o] /= row.count, row.observed[o] /= row.count;
    rows.push_back(row);
  }
  return rows;
}

int wdl_fit_command(const Args& args) {
  int holdout = 5;
  std::vector<std::string> files;
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--holdout" && i + 1 < args.size()) {
      holdout = std::atoi(args[++i].c_str());
      if (holdout < 2) return std::fprintf(stderr, "wdl-fit: --holdout needs a number of 2 or more\n"), 2;
    } else {
      files.push_back(args[i]);
    }
  }
  if (files.empty()) {
    std::fprintf(stderr, "usage: vorlaxen-dev wdl-fit [--holdout K] PGN...   (every K-th game, default 5, is kept "
                         "out of the fit for the calibration)\n");
    return 2;
  }
  std::vector<WdlSample> fit, held;
  int games = 0;
  for (const std::string& file : files) {
    std::ifstream in(file);
    std::vector<PgnGame> read;
    std::string error;
    if (!in) return std::fprintf(stderr, "wdl-fit: cannot read '%s'\n", file.c_str()), 2;
    if (!ReadPgn(in, read, error)) return std::fprintf(stderr, "wdl-fit: %s: %s\n", file.c_str(), error.c_str()), 2;
    for (const PgnGame& g : read) {
      ++games;
      AppendSamples(g, games, games % holdout ? fit : held);
    }
  }
  if (fit.empty()) return std::fprintf(stderr, "wdl-fit: no scored moves in finished games\n"), 2;
  const WdlFitResult r = FitWdl(fit);
  std::printf("%d games: %zu positions fitted, %zu held out (every %d-th game)\n", games, fit.size(), held.size(),
              holdout);
  std::printf("%s after %d iterations; log-likelihood %.1f (%.5f per position), held out %.5f per position\n\n",
              r.converged ? "Converged" : "Not converged", r.iterations, r.log_likelihood,
              r.log_likelihood / double(fit.size()), held.empty() ? 0.0 : LogLikelihood(r.model, held) / double(held.size()));
  std::string table = "{{";
  for (int i = 0; i < 8; ++i) table += Number(ParamsOf(r.model)[i]) + (i == 3 ? "}, {" : i == 7 ? "}}" : ", ");
  std::printf("// Fitted by vorlaxen-dev wdl-fit on %zu positions of %d games.\nconstexpr WdlModel WDL_MODEL = %s;\n\n",
              fit.size(), games - int(games / holdout), table.c_str());
  std::printf("Standard errors (the positions of a game counted as one correlated sample): midpoint");
  for (int i = 0; i < 8; ++i) std::printf("%s %s", i == 4 ? ", spread" : "", Number(r.error[i]).c_str());
  std::printf("\n\nCalibration on %s (score range in cp: positions, predicted W/D/L %%, observed W/D/L %%)\n",
              held.empty() ? "the fitted positions" : "the held-out games");
  for (const CalibrationRow& row : Calibrate(r.model, held.empty() ? fit : held))
    std::printf("[%6.0f, %6.0f) %7d  %5.1f %5.1f %5.1f   %5.1f %5.1f %5.1f\n", std::max(row.low, -9999.0),
                std::min(row.high, 9999.0), row.count, 100 * row.predicted[OUTCOME_WIN], 100 * row.predicted[OUTCOME_DRAW],
                100 * row.predicted[OUTCOME_LOSS], 100 * row.observed[OUTCOME_WIN], 100 * row.observed[OUTCOME_DRAW],
                100 * row.observed[OUTCOME_LOSS]);
  return 0;
}

}  // namespace vx::dev

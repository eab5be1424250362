#include "engine/wdl.h"

#include <algorithm>
#include <cmath>

#include "board/bitboard.h"

namespace vx {

namespace {

double Polynomial(const double c[4], double t) { return ((c[3] * t + c[2]) * t + c[1]) * t + c[0]; }

double Logistic(double x) { return 1.0 / (1.0 + std::exp(-x)); }

}  // namespace

// Fitted by `vorlaxen-dev wdl-fit --holdout 9` on 4600 self-play games of
// this engine (build of 2026-11-24) at 1 s + 0.01 s per game, one thread,
// 64 MB hash, from 2000 random 8-ply openings that a depth-8 search scored
// within 60 centipawns: 541,804 scored positions of 4089 games; the other
// 511 games were held out to check the calibration. Refit the same way when
// the evaluation changes.
const WdlModel WDL_MODEL = {{78.2296, -19.4263, 145.872, -149.012}, {51.4531, 30.0743, 50.1887, -53.8157}};

int WdlMaterial(const Position& pos) {
  auto count = [&](PieceType t) { return popcount<false>(pos.of(WHITE, t) | pos.of(BLACK, t)); };
  return count(PAWN) + 3 * (count(KNIGHT) + count(BISHOP_L) + count(BISHOP_D)) + 5 * count(ROOK) + 9 * count(QUEEN);
}

double WdlMaterialTerm(int material) { return (std::min(material, WDL_MATERIAL_MAX) - 40) / 40.0; }

WdlChances WdlFromScore(const WdlModel& model, double centipawns, int material) {
  const double t = WdlMaterialTerm(material);
  const double a = Polynomial(model.midpoint, t), b = Polynomial(model.spread, t);
  if (!(a > 0) || !(b > 0)) return {0, 1, 0};
  const double win = Logistic((centipawns - a) / b), loss = Logistic((-centipawns - a) / b);
  return {win, 1 - win - loss, loss};
}

WdlPermille ToPermille(const WdlChances& c) {
  const int win = int(std::lround(1000 * c.win));
  const int loss = std::min(int(std::lround(1000 * c.loss)), 1000 - win);
  return {win, 1000 - win - loss, loss};
}

}  // namespace vx

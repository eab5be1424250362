#include "engine/wdl.h"

#include <cmath>

#include "board/bitboard.h"

namespace vx {

namespace {

double Polynomial(const double c[4], double t) { return ((c[3] * t + c[2]) * t + c[1]) * t + c[0]; }

double Logistic(double x) { return 1.0 / (1.0 + std::exp(-x)); }

}  // namespace

int WdlMaterial(const Position& pos) {
  auto count = [&](PieceType t) { return popcount<false>(pos.of(WHITE, t) | pos.of(BLACK, t)); };
  return count(PAWN) + 3 * (count(KNIGHT) + count(BISHOP_L) + count(BISHOP_D)) + 5 * count(ROOK) + 9 * count(QUEEN);
}

double WdlMaterialTerm(int material) { return (material - 40) / 40.0; }

WdlChances WdlFromScore(const WdlModel& model, double centipawns, int material) {
  const double t = WdlMaterialTerm(material);
  const double a = Polynomial(model.midpoint, t), b = Polynomial(model.spread, t);
  if (!(a > 0) || !(b > 0)) return {0, 1, 0};
  const double win = Logistic((centipawns - a) / b), loss = Logistic((-centipawns - a) / b);
  return {win, 1 - win - loss, loss};
}

}  // namespace vx

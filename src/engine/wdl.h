// Win/draw/loss model: the chances of the side to move for a score, as a
// logistic function of the score whose midpoint and spread depend on the
// material left on the board. Win = 1 / (1 + e^((a - s) / b)), loss =
// 1 / (1 + e^((a + s) / b)), draw = the rest, with s the score in centipawns
// and a, b cubic polynomials in t = (material - 40) / 40, material counted
// 1, 3, 3, 5, 9 for pawn, knight, bishop, rook and queen over both sides
// (78 at the start). `vorlaxen-dev wdl-fit` fits the coefficients on games.
#pragma once

#include "board/position.h"

namespace vx {

struct WdlModel {
  double midpoint[4];  // a(t) coefficients, constant first, centipawns
  double spread[4];    // b(t) coefficients
};

struct WdlChances {
  double win, draw, loss;
};

// The same in per mille: three non-negative integers summing to 1000.
struct WdlPermille {
  int win, draw, loss;
};

// The model fitted on the engine's own games, used for the " wdl" field.
extern const WdlModel WDL_MODEL;

// 1, 3, 3, 5, 9 per pawn, minor piece, rook and queen of both sides.
int WdlMaterial(const Position& pos);
// The most material the games behind the model had: the starting position's.
// Beyond it (promoted queens) the cubics are not backed by data, and the
// midpoint falls to zero near 89, where every score would read as a sure draw.
constexpr int WDL_MATERIAL_MAX = 78;
// The model's variable for a material count, the count taken at most
// WDL_MATERIAL_MAX.
double WdlMaterialTerm(int material);
// Chances of the side to move; a midpoint or spread that is not positive for
// this material gives a draw.
WdlChances WdlFromScore(const WdlModel& model, double centipawns, int material);
// Rounds each of win and loss to the nearest per mille; draw takes the rest.
WdlPermille ToPermille(const WdlChances& c);

}  // namespace vx

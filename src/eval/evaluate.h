// Static evaluation: middlegame/endgame pairs summed from White's point of
// view, blended by game phase, then shaped by complexity, few pawn files and
// the scale factor of the side ahead.
#pragma once

#include "board/position.h"

namespace vx {

struct SearchState;

constexpr ValuePair TEMPO = make_pair(19, 21);

// Score of the position for the side to move. Overwrites ai with the same
// sets ComputeAttackInfo gives, so the caller need not compute them again.
template <bool HwPopcnt>
Value evaluate(SearchState& ss, const Position& pos, AttackInfo& ai);

// Term groups of the evaluation trace.
enum EvalGroup {
  GROUP_MATERIAL, GROUP_IMBALANCE, GROUP_PSQ, GROUP_PAWNS, GROUP_PAWN_UP, GROUP_KNIGHTS, GROUP_BISHOPS,
  GROUP_ROOKS, GROUP_QUEENS, GROUP_KING_SAFETY, GROUP_THREATS, GROUP_PASSED, GROUP_TEMPO_CONTEMPT, GROUP_NB
};

// What one evaluation added, group by group, and the steps that turn the sum
// into the result. Groups without a White/Black split have split = false and
// only the total.
struct EvalTrace {
  struct Row {
    ValuePair white = 0, black = 0, total = 0;
    bool split = true;
  } rows[GROUP_NB];
  bool endgame_function = false;  // the result came from an endgame function
  ValuePair sum = 0;
  int phase = 0;
  int blended = 0, after_complexity = 0, after_few_files = 0, after_scale = 0;  // White's view
  int complexity = 0, few_files = 0, scale_factor = 0;
  Value result = 0;
};

// The last steps of the evaluation, White's point of view: the phase blend,
// the complexity adjustment (a count from the pawn entry), the pull towards
// zero by the strong side's few-files factor and the scale factor.
int blend_phases(ValuePair s, int phase);
int apply_complexity(int v, int complexity_count);
int apply_few_files(int v, int few_files);
int apply_scale_factor(int v, int factor);

// The same evaluation, recording every step.
Value evaluate_trace(SearchState& ss, const Position& pos, AttackInfo& ai, EvalTrace& trace);

// Builds the piece-square tables (with the strength-limitation noise when
// asked for, driven by UCI_Elo) and the derived evaluation tables.
void init_eval(bool noise);
// The same with an explicit Elo for the noise.
void init_eval(bool noise, int elo);
// Noise amplitude for a given Elo: positive only below 2150.
int psq_noise_for_elo(int elo);

}  // namespace vx

// Everything the engine writes about a search: principal-variation lines,
// iteration lines, current move and line, speed, and "bestmove". Every line
// goes out whole through WriteLine.
#pragma once

#include <cstdint>
#include <string>

#include "board/types.h"
#include "engine/wdl.h"
#include "search/stack.h"

namespace vx {

// Writes one line to standard output with its newline, in one write, and
// flushes it.
void WriteLine(const std::string& line);

// Monotonic milliseconds.
int64_t Clock();

// Bounds of a reported score.
enum : int32_t { PV_LOWER_BOUND = 0, PV_UPPER_BOUND = 1, PV_EXACT = 2 };

// The content of one principal-variation line.
struct PvRecord {
  int32_t multipv = 0;   // 0 when one line is searched, else the line number from 1
  int32_t depth = 0;     // quarter plies
  int32_t seldepth = 0;  // plies
  int32_t time = 0;      // ms since the search started
  int32_t score = 0;
  int32_t bound = PV_EXACT;
  uint64_t nodes = 0;
  uint64_t tbhits = 0;
  uint64_t sbhits = 0;
  int32_t hashfull = 0;  // per mille
  int32_t pv_length = 0;
  Move pv[PV_ARRAY_SIZE] = {};
  int32_t root_tb_score = VALUE_INFINITE;  // 32000 / 0 / -32000 when a tablebase resolved the root
  int32_t wdl_material = -1;               // root material for the " wdl" field; -1: no field
};

// The number after "mate": moves to mate, negative when being mated.
int MateDistance(Value score);
// "mate N" or "cp N"; a tablebase-resolved root reports its own score unless
// the search found a mate.
std::string ScoreText(Value score, Value root_tb_score);
// The centipawns of a "cp" score.
int ReportedCentipawns(Value score, Value root_tb_score);
// Win/draw/loss per mille of a score, for the side to move: certain for
// mates and tablebase-resolved roots, else from the fitted model for the
// root's material (as WdlMaterial counts it).
WdlPermille ReportedWdl(Value score, Value root_tb_score, int material);

std::string PvLineText(const PvRecord& r);
void PrintPvLine(const PvRecord& r);
// "info depth D seldepth D", D in plies.
void PrintIterationStart(int depth_quarter_plies);
void PrintIterationSummary(int32_t time, uint64_t nodes, uint64_t tbhits, uint64_t sbhits);
// Only once the search has run 1500 ms.
void PrintCurrMove(Move m, int number, int32_t elapsed);
// Not written when elapsed is 0.
void PrintSpeed(int32_t elapsed, uint64_t nodes, int hashfull);
void PrintCurrLine(const Move* moves, int count);
// ponder 0 = none.
void PrintBestMove(Move best, Move ponder);

}  // namespace vx

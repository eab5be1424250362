#include "engine/output.h"

#include <iostream>

#include "platform/platform.h"

namespace vx {

void WriteLine(const std::string& line) {
  std::string out;
  out.reserve(line.size() + 1);
  out += line;
  out += '\n';
  std::cout.write(out.data(), std::streamsize(out.size()));
  std::cout.flush();
}

int64_t Clock() { return platform::now_ms(); }

int MateDistance(Value score) { return score > 0 ? (32501 - score) / 2 : (score + 32500) / -2; }

bool IsMateScore(Value score) { return score >= VALUE_MATE_BOUND || score <= -VALUE_MATE_BOUND; }

int ReportedCentipawns(Value score, Value root_tb_score) {
  const Value v = root_tb_score != VALUE_INFINITE ? root_tb_score : score;
  if (v >= VALUE_KNOWN_WIN) return v - 4000;
  if (v <= -VALUE_KNOWN_WIN) return v + 4000;
  return v * 100 / 256;
}

std::string ScoreText(Value score, Value root_tb_score) {
  if (IsMateScore(score)) return "mate " + std::to_string(MateDistance(score));
  return "cp " + std::to_string(ReportedCentipawns(score, root_tb_score));
}

WdlPermille ReportedWdl(Value score, Value root_tb_score, int material) {
  if (IsMateScore(score)) return score > 0 ? WdlPermille{1000, 0, 0} : WdlPermille{0, 0, 1000};
  // A tablebase verdict on the root is certain, whatever the search thinks.
  if (root_tb_score > 0 && root_tb_score != VALUE_INFINITE) return {1000, 0, 0};
  if (root_tb_score < 0) return {0, 0, 1000};
  if (root_tb_score == 0) return {0, 1000, 0};
  return ToPermille(WdlFromScore(WDL_MODEL, ReportedCentipawns(score, root_tb_score), material));
}

namespace {

// The optional " nps", " tbhits" and " sbhits" fields shared by the
// principal-variation line and the iteration summary.
void AppendRateAndHits(std::string& s, int32_t time, uint64_t nodes, uint64_t tbhits, uint64_t sbhits) {
  if (time > 0) s += " nps " + std::to_string(nodes * 1000 / uint64_t(time));
  if (tbhits > 0) s += " tbhits " + std::to_string(tbhits);
  if (sbhits > 0) s += " sbhits " + std::to_string(sbhits);
}

void AppendMoves(std::string& s, const Move* moves, int count) {
  for (int i = 0; i < count; ++i) {
    s += ' ';
    s += move_text(moves[i]);
  }
}

}  // namespace

std::string PvLineText(const PvRecord& r) {
  std::string s = "info";
  if (r.multipv > 0) s += " multipv " + std::to_string(r.multipv);
  const int plies = r.depth / 4;
  s += " depth " + std::to_string(plies);
  s += " seldepth " + std::to_string(plies > r.seldepth ? plies : r.seldepth);
  s += " time " + std::to_string(r.time);
  s += " score " + ScoreText(r.score, r.root_tb_score);
  if (r.bound == PV_LOWER_BOUND) s += " lowerbound";
  if (r.bound == PV_UPPER_BOUND) s += " upperbound";
  if (r.wdl_material >= 0) {
    const WdlPermille p = ReportedWdl(r.score, r.root_tb_score, r.wdl_material);
    s += " wdl " + std::to_string(p.win) + ' ' + std::to_string(p.draw) + ' ' + std::to_string(p.loss);
  }
  s += " nodes " + std::to_string(r.nodes);
  AppendRateAndHits(s, r.time, r.nodes, r.tbhits, r.sbhits);
  s += " hashfull " + std::to_string(r.hashfull);
  s += " pv";
  AppendMoves(s, r.pv, r.pv_length);
  return s;
}

void PrintPvLine(const PvRecord& r) { WriteLine(PvLineText(r)); }

void PrintIterationStart(int depth_quarter_plies) {
  const std::string d = std::to_string(depth_quarter_plies / 4);
  WriteLine("info depth " + d + " seldepth " + d);
}

void PrintIterationSummary(int32_t time, uint64_t nodes, uint64_t tbhits, uint64_t sbhits) {
  std::string s = "info time " + std::to_string(time) + " nodes " + std::to_string(nodes);
  AppendRateAndHits(s, time, nodes, tbhits, sbhits);
  WriteLine(s);
}

void PrintCurrMove(Move m, int number, int32_t elapsed) {
  if (elapsed < 1500) return;
  WriteLine("info currmove " + move_text(m) + " currmovenumber " + std::to_string(number));
}

void PrintSpeed(int32_t elapsed, uint64_t nodes, int hashfull) {
  if (elapsed == 0) return;
  WriteLine("info hashfull " + std::to_string(hashfull) + " nps " + std::to_string(nodes * 1000 / uint64_t(elapsed)));
}

void PrintCurrLine(const Move* moves, int count) {
  std::string s = "info currline";
  AppendMoves(s, moves, count);
  WriteLine(s);
}

void PrintBestMove(Move best, Move ponder) {
  std::string s = "bestmove " + move_text(best);
  if (ponder != MOVE_NONE) s += " ponder " + move_text(ponder);
  WriteLine(s);
}

}  // namespace vx

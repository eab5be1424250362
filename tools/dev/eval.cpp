// vorlaxen-dev eval FEN...|startpos: the evaluation trace of one position.
#include <cstdio>
#include <string>

#include "board/position.h"
#include "eval/evaluate.h"
#include "search/thread.h"
#include "tools/dev/commands.h"

namespace vx::dev {

namespace {

constexpr const char* GROUP_NAMES[GROUP_NB] = {
    "Material", "Imbalance", "Piece-square", "Pawns", "Pawn up", "Knights", "Bishops",
    "Rooks",    "Queens",    "King safety",  "Threats", "Passed pawns", "Tempo/contempt"};

void print_pair(ValuePair v) { std::printf(" %6d %6d |", mg_value(v), eg_value(v)); }

void print_trace(const EvalTrace& t) {
  std::printf("%-15s| %13s | %13s | %13s |\n", "Term", "White", "Black", "Total");
  std::printf("%-15s| %6s %6s | %6s %6s | %6s %6s |\n", "", "MG", "EG", "MG", "EG", "MG", "EG");
  for (int g = 0; g < GROUP_NB; ++g) {
    const EvalTrace::Row& row = t.rows[g];
    std::printf("%-15s|", GROUP_NAMES[g]);
    if (row.split) {
      print_pair(row.white);
      print_pair(row.black);
    } else {
      std::printf(" %6s %6s | %6s %6s |", "-", "-", "-", "-");
    }
    print_pair(row.total);
    std::printf("\n");
  }
  std::printf("%-15s| %13s | %13s |", "Sum", "", "");
  print_pair(t.sum);
  std::printf("\n\n");
  std::printf("phase %d\n", t.phase);
  std::printf("values from White's point of view, 256 = one pawn\n");
  std::printf("blended %d\n", t.blended);
  std::printf("complexity %d -> %d\n", t.complexity, t.after_complexity);
  std::printf("few files %d -> %d\n", t.few_files, t.after_few_files);
  std::printf("scale factor %d -> %d\n", t.scale_factor, t.after_scale);
}

}  // namespace

int eval_command(const Args& args) {
  std::string fen;
  for (const std::string& a : args) fen += a + " ";
  if (args.size() == 1 && args[0] == "startpos") fen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
  if (args.empty()) {
    std::fprintf(stderr, "usage: vorlaxen-dev eval FEN...|startpos\n");
    return 2;
  }
  static Position pos;
  if (!pos.SetFromFen(fen)) {
    std::fprintf(stderr, "eval: malformed FEN '%s'\n", fen.c_str());
    return 2;
  }
  if (const char* defect = PositionDefect(pos)) {
    std::fprintf(stderr, "eval: position cannot be evaluated: %s\n", defect);
    return 2;
  }
  SearchState ss(0, nullptr, nullptr);
  AttackInfo ai{};
  EvalTrace t;
  const Value v = evaluate_trace(ss, pos, ai, t);
  if (t.endgame_function) {
    std::printf("endgame function (phase %d)\n", t.phase);
  } else {
    print_trace(t);
  }
  std::printf("eval %d\n", v);
  return 0;
}

}  // namespace vx::dev

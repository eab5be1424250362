// vorlaxen-dev perft DEPTH FEN...|startpos [--portable]
#include <cstdio>
#include <string>

#include "board/movegen.h"
#include "board/perft.h"
#include "platform/platform.h"
#include "tools/dev/commands.h"

namespace vx::dev {

int perft_command(const Args& args) {
  bool portable = false;
  Args rest;
  for (const std::string& a : args) {
    if (a == "--portable") portable = true;
    else rest.push_back(a);
  }
  if (rest.size() < 2) {
    std::fprintf(stderr, "usage: vorlaxen-dev perft DEPTH FEN...|startpos [--portable]\n");
    return 2;
  }
  char* end = nullptr;
  long depth = std::strtol(rest[0].c_str(), &end, 10);
  if (*end || depth < 1 || depth > 20) {
    std::fprintf(stderr, "perft: depth must be a number from 1 to 20, not '%s'\n", rest[0].c_str());
    return 2;
  }
  std::string fen;
  for (size_t i = 1; i < rest.size(); ++i) fen += rest[i] + " ";
  if (rest.size() == 2 && rest[1] == "startpos") fen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

  static Position pos;
  if (!pos.SetFromFen(fen)) {
    std::fprintf(stderr, "perft: malformed FEN '%s'\n", fen.c_str());
    return 2;
  }
  if (const char* defect = PositionDefect(pos)) {
    std::fprintf(stderr, "perft: position cannot be searched: %s\n", defect);
    return 2;
  }
  if (!portable && !platform::cpu_has_popcnt()) {
    std::fprintf(stderr, "perft: this processor has no popcnt instruction; use --portable\n");
    return 2;
  }
  const int64_t start = platform::now_ms();
  PerftResult result = portable ? PerftDivide<false>(pos, int(depth)) : PerftDivide<true>(pos, int(depth));
  const int64_t elapsed = platform::now_ms() - start;
  for (const auto& [move, count] : result.divide) std::printf("%s: %llu\n", move_text(move).c_str(), (unsigned long long)count);
  std::printf("nodes %llu\ntime_ms %lld\n", (unsigned long long)result.nodes, (long long)elapsed);
  return 0;
}

}  // namespace vx::dev

// vorlaxen-dev openings --count N --plies P (--engine CMD [--option NAME=VALUE]... | --material-only)
//   [--depth D] [--window CP] [--seed S] [--out FILE]
// Plays random legal moves from the initial position and keeps the positions
// that a shallow search of the engine scores as balanced (or, without an
// engine, those with equal material), one FEN a line.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <set>
#include <sstream>

#include "board/bitboard.h"
#include "board/movegen.h"
#include "platform/platform.h"
#include "tools/dev/commands.h"
#include "tools/match/adjudicate.h"
#include "tools/match/fen.h"
#include "tools/match/uci_engine.h"

namespace vx::dev {

namespace {

constexpr const char* START_FEN = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
constexpr int SEARCH_TIMEOUT_MS = 120000;

struct OpeningSettings {
  int count = 0, plies = 0, depth = 8, window_cp = 50;
  uint64_t seed = 1;
  bool material_only = false;
  EngineConfig engine;
  std::string out_path;
};

int material(const Position& pos, Color c) {
  return __builtin_popcountll(pos.of(c, PAWN)) + 3 * __builtin_popcountll(pos.of(c, KNIGHT) | pos.bishops(c)) +
         5 * __builtin_popcountll(pos.of(c, ROOK)) + 9 * __builtin_popcountll(pos.of(c, QUEEN));
}

// Plays the given number of random legal plies; false if the game ends on the way
// or the final position is over or has the side to move in check.
bool random_opening(Game& game, int plies, std::mt19937_64& rng) {
  StartGame(game, START_FEN);
  for (int i = 0; i < plies; ++i) {
    MoveList list;
    GenerateLegal(game.pos, list);
    if (!list.size) return false;
    PlayMove(game, list.moves[std::uniform_int_distribution<int>(0, list.size - 1)(rng)]);
  }
  return Adjudicate(game).result == GameResult::NONE && !InCheck(game.pos);
}

// Centipawn score of the engine's search to the given depth; false for a
// mate score, no score, or an engine that stopped answering.
bool search_score(EngineProcess& e, const std::string& fen, int depth, int& cp) {
  SendLine(e, "ucinewgame");
  if (!Synchronize(e, 10000)) return false;
  SendLine(e, "position fen " + fen);
  SendLine(e, "go depth " + std::to_string(depth));
  const int64_t deadline = platform::now_ms() + SEARCH_TIMEOUT_MS;
  bool have = false;
  std::string line;
  while (ReadLine(e, line, deadline) == ReadStatus::LINE) {
    if (line.rfind("bestmove", 0) == 0) return have;
    std::istringstream in(line);
    std::string word;
    while (in >> word)
      if (word == "score") {
        std::string kind;
        in >> kind;
        have = kind == "cp" && bool(in >> cp);
      }
  }
  return false;
}

bool parse_args(const Args& args, OpeningSettings& s, std::string& error) {
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--material-only") {
      s.material_only = true;
      continue;
    }
    if (i + 1 >= args.size()) return error = a + " needs a value", false;
    const std::string& v = args[++i];
    char* end = nullptr;
    const long long n = std::strtoll(v.c_str(), &end, 10);
    const bool number = !v.empty() && !*end && n >= 0;
    if (a == "--engine") s.engine.command = v;
    else if (a == "--out") s.out_path = v;
    else if (a == "--option") {
      const size_t eq = v.find('=');
      if (eq == std::string::npos || eq == 0) return error = "--option needs NAME=VALUE", false;
      s.engine.options.emplace_back(v.substr(0, eq), v.substr(eq + 1));
    } else if (!number) return error = a + " needs a non-negative number, not '" + v + "'", false;
    else if (a == "--count") s.count = int(n);
    else if (a == "--plies") s.plies = int(n);
    else if (a == "--depth") s.depth = int(n);
    else if (a == "--window") s.window_cp = int(n);
    else if (a == "--seed") s.seed = uint64_t(n);
    else return error = "unknown argument '" + a + "'", false;
  }
  if (s.count < 1 || s.plies < 1 || s.plies > 60) return error = "--count (at least 1) and --plies (1 to 60) are required", false;
  if (s.depth < 1 || s.depth > 64) return error = "--depth must be from 1 to 64", false;
  if (s.engine.command.empty() && !s.material_only) return error = "give --engine CMD or --material-only", false;
  return true;
}

}  // namespace

int openings_command(const Args& args) {
  OpeningSettings s;
  std::string error;
  if (!parse_args(args, s, error)) {
    std::fprintf(stderr, "openings: %s\nusage: vorlaxen-dev openings --count N --plies P "
                         "(--engine CMD [--option NAME=VALUE]... | --material-only) [--depth D] [--window CP] "
                         "[--seed S] [--out FILE]\n", error.c_str());
    return 2;
  }
  EngineProcess engine;
  if (!s.material_only && !StartEngine(engine, s.engine, error)) {
    std::fprintf(stderr, "openings: %s\n", error.c_str());
    return 2;
  }
  std::ofstream file;
  if (!s.out_path.empty()) {
    file.open(s.out_path);
    if (!file) {
      std::fprintf(stderr, "openings: cannot write '%s'\n", s.out_path.c_str());
      return 2;
    }
  }
  std::ostream& out = s.out_path.empty() ? std::cout : file;
  out << "# " << s.count << " opening positions: " << s.plies << " random legal plies from the initial position (seed "
      << s.seed << "), kept when ";
  if (s.material_only) out << "both sides have equal material\n";
  else out << "a depth-" << s.depth << " search scores them within +-" << s.window_cp << " cp\n";

  std::mt19937_64 rng(s.seed);
  std::set<Key> seen;
  Game game;
  int kept = 0, tried = 0;
  const int max_tries = s.count * 1000;
  while (kept < s.count && tried < max_tries) {
    ++tried;
    if (!random_opening(game, s.plies, rng) || !seen.insert(game.identities.back()).second) continue;
    const std::string fen = PositionFen(game.pos, game.halfmove_clock, CurrentFullmove(game));
    int cp = 0;
    const bool balanced = s.material_only ? material(game.pos, WHITE) == material(game.pos, BLACK)
                                          : search_score(engine, fen, s.depth, cp) && std::abs(cp) <= s.window_cp;
    if (!s.material_only && !IsRunning(engine)) {
      std::fprintf(stderr, "openings: the engine stopped (%s)\n", engine.exit_text.c_str());
      return 2;
    }
    if (!balanced) continue;
    out << fen << "\n";
    out.flush();
    ++kept;
    std::fprintf(stderr, "%d/%d kept (%d tried)%s\n", kept, s.count, tried,
                 s.material_only ? "" : (", score " + std::to_string(cp) + " cp").c_str());
  }
  if (kept < s.count) {
    std::fprintf(stderr, "openings: only %d of %d positions found in %d tries\n", kept, s.count, tried);
    return 1;
  }
  return 0;
}

}  // namespace vx::dev

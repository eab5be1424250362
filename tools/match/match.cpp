// vorlaxen-dev match --engine CMD [--name NAME] [--option NAME=VALUE]... --engine CMD ...
//   --games N --tc BASE+INC [--openings FILE] [--concurrency K] [--pgn FILE]
//   [--sprt ELO0 ELO1] [--seed S] [--margin MS] [--plies N]
#include "tools/match/match.h"

#include <algorithm>
#include <cctype>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <sstream>
#include <thread>

#include "board/bitboard.h"
#include "board/movegen.h"
#include "platform/platform.h"
#include "tools/match/adjudicate.h"
#include "tools/match/fen.h"
#include "tools/match/pgn.h"
#include "tools/match/pgn_reader.h"

namespace vx::dev {

namespace {

constexpr const char* START_FEN = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
constexpr int READY_TIMEOUT_MS = 10000;

enum class ForfeitKind { NONE, ILLEGAL, CRASH, TIME };

struct ForfeitCounts {
  int illegal = 0, crash = 0, time = 0;
};

struct GameOutcome {
  Verdict verdict;
  int forfeiting_engine = -1;  // engine index, for forfeits
  ForfeitKind kind = ForfeitKind::NONE;
  bool abandoned = false;  // stopped because the match was decided
};

// Everything the worker threads share; the counters under the mutex.
struct MatchState {
  explicit MatchState(const MatchSettings& s) : settings(s) {}
  const MatchSettings& settings;
  std::vector<std::string> openings;  // in play order
  std::string names[2];
  std::atomic<int> next_pair{0};  // games 2p and 2p + 1 share opening p
  std::atomic<bool> stop{false};
  std::mutex mutex;
  MatchCounts counts;  // first engine's point of view
  PairCounts pairs;    // both games of an opening, first engine's points
  ForfeitCounts forfeits[2];
  std::map<std::string, int> reasons;
  int finished = 0;
  SprtDecision decision = SprtDecision::CONTINUE;
  std::FILE* pgn = nullptr;
  std::string date;
};

bool parse_seconds(const std::string& text, int64_t& ms) {
  if (text.empty()) return false;
  char* end = nullptr;
  const double seconds = std::strtod(text.c_str(), &end);
  if (*end || !(seconds >= 0) || seconds > 1e7) return false;
  ms = int64_t(std::llround(seconds * 1000));
  return true;
}

bool parse_int(const std::string& text, long long lo, long long hi, long long& value) {
  if (text.empty()) return false;
  char* end = nullptr;
  value = std::strtoll(text.c_str(), &end, 10);
  return !*end && value >= lo && value <= hi;
}

bool parse_double(const std::string& text, double& value) {
  if (text.empty()) return false;
  char* end = nullptr;
  value = std::strtod(text.c_str(), &end);
  return !*end && std::isfinite(value);
}

// The FEN fields of an opening line: four, plus the two counters if they are numbers.
std::string normalized_fen(const std::string& line) {
  std::istringstream in(line);
  std::vector<std::string> fields;
  for (std::string w; fields.size() < 6 && in >> w;) fields.push_back(w);
  std::string fen = fields[0] + " " + fields[1] + " " + fields[2] + " " + fields[3];
  const auto numeric = [](const std::string& s) { return s.find_first_not_of("0123456789") == std::string::npos; };
  if (fields.size() >= 6 && numeric(fields[4]) && numeric(fields[5])) fen += " " + fields[4] + " " + fields[5];
  return fen;
}

std::string utc_date() {
  const std::time_t now = std::time(nullptr);
  std::tm tm{};
  gmtime_r(&now, &tm);
  char text[16];
  std::strftime(text, sizeof text, "%Y.%m.%d", &tm);
  return text;
}

// "+0.35/12 0.52s" from the engine's last score and depth.
std::string move_comment(const std::string& score, int depth, int64_t elapsed_ms) {
  char time_text[32];
  std::snprintf(time_text, sizeof time_text, "%.2fs", elapsed_ms / 1000.0);
  if (score.empty()) return time_text;
  return score + "/" + std::to_string(depth) + " " + time_text;
}

// Reads score and depth from an "info" line, leaving them unchanged when absent.
void read_info(const std::string& line, std::string& score, int& depth) {
  std::istringstream in(line);
  std::string word;
  while (in >> word) {
    if (word == "depth") {
      in >> depth;
    } else if (word == "score") {
      std::string kind;
      long value = 0;
      if (!(in >> kind >> value)) return;
      char text[32];
      if (kind == "cp") std::snprintf(text, sizeof text, "%+.2f", value / 100.0);
      else if (kind == "mate") std::snprintf(text, sizeof text, "%sM%ld", value < 0 ? "-" : "+", value < 0 ? -value : value);
      else continue;
      score = text;
    }
  }
}

std::string position_command(const Game& game) {
  std::string cmd = "position fen " + game.start_fen;
  if (!game.moves.empty()) {
    cmd += " moves";
    for (Move m : game.moves) {
      cmd += ' ';
      cmd += move_text(m);
    }
  }
  return cmd;
}

// Makes sure the engine runs and is ready for a new game; false with a reason if not.
// An engine found dead (it may also have died while idle) gets one restart.
bool prepare_engine(EngineProcess& e, const EngineConfig& config, bool chess960, std::string& reason) {
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (!IsRunning(e)) {
      StopEngine(e);
      std::string error;
      if (!StartEngine(e, config, error)) {
        reason = "could not be restarted: " + error;
        return false;
      }
    }
    SetChess960(e, chess960);
    SendLine(e, "ucinewgame");
    if (Synchronize(e, READY_TIMEOUT_MS)) return true;
    if (IsRunning(e)) break;  // alive but silent: no second chance
  }
  reason = IsRunning(e) ? "did not answer \"isready\"" : "ended (" + e.exit_text + ")";
  StopEngine(e);
  return false;
}

GameOutcome forfeit(Color side, int engine, ForfeitKind kind, const std::string& termination, const std::string& reason) {
  return {Forfeit(side, termination, reason), engine, kind, false};
}

// What an engine sent back for one "go": its bestmove line (if any), the
// score and depth of its last "info", and the time it took.
struct EngineReply {
  ReadStatus status = ReadStatus::LINE;
  std::string bestmove, score;
  int depth = 0;
  int64_t elapsed = 0;
};

EngineReply request_move(EngineProcess& e, const Game& game, const int64_t clock[2], int64_t increment_ms,
                         int64_t deadline_after_ms) {
  SendLine(e, position_command(game));
  SendLine(e, "go wtime " + std::to_string(std::max<int64_t>(clock[WHITE], 1)) + " btime " +
                  std::to_string(std::max<int64_t>(clock[BLACK], 1)) + " winc " + std::to_string(increment_ms) +
                  " binc " + std::to_string(increment_ms));
  const int64_t start = platform::now_ms();
  EngineReply reply;
  std::string line;
  while ((reply.status = ReadLine(e, line, start + deadline_after_ms)) == ReadStatus::LINE) {
    if (line.rfind("bestmove", 0) == 0) {
      std::istringstream words(line);
      words >> line >> reply.bestmove;
      break;
    }
    if (line.rfind("info", 0) == 0) read_info(line, reply.score, reply.depth);
  }
  reply.elapsed = platform::now_ms() - start;
  return reply;
}

GameOutcome time_loss(const Game& game, Color us, int engine, const std::string& reason) {
  // A side with a bare king cannot win on time.
  if (!more_than_one(game.pos.by_color(~us)))
    return {{GameResult::DRAW, "time forfeit", reason + ", opponent has a bare king"}, engine, ForfeitKind::TIME, false};
  return forfeit(us, engine, ForfeitKind::TIME, "time forfeit", reason);
}

// Plays one game; engines[0] and engines[1] belong to engine indices 0 and 1.
// An engine that forfeits is stopped, to be restarted for its next game.
GameOutcome play_game(MatchState& st, EngineProcess* engines, const std::string& fen, int white_engine, Game& game,
                      std::vector<std::string>& comments) {
  const MatchSettings& s = st.settings;
  const bool chess960 = IsChess960Fen(fen);
  StartGame(game, fen);
  comments.clear();
  for (int i = 0; i < 2; ++i) {
    const int idx = i == 0 ? white_engine : 1 - white_engine;
    std::string reason;
    if (!prepare_engine(engines[idx], s.engines[idx], chess960, reason))
      return forfeit(i == 0 ? WHITE : BLACK, idx, ForfeitKind::CRASH, "abandoned", st.names[idx] + " " + reason);
  }
  int64_t clock[2] = {s.base_ms, s.base_ms};
  for (;;) {
    if (st.stop) return {{}, -1, ForfeitKind::NONE, true};
    const Color us = game.pos.side_to_move;
    const int idx = us == WHITE ? white_engine : 1 - white_engine;
    EngineProcess& e = engines[idx];
    const std::string& name = st.names[idx];
    const int64_t allowed = clock[us] + s.margin_ms;
    const EngineReply reply = request_move(e, game, clock, s.increment_ms, allowed);
    if (reply.status != ReadStatus::LINE) StopEngine(e);  // a late engine may still be searching
    if (reply.status == ReadStatus::CLOSED)
      return forfeit(us, idx, ForfeitKind::CRASH, "abandoned",
                     name + " " + (e.exit_text.empty() ? "closed its output" : e.exit_text));
    if (reply.status == ReadStatus::TIMEOUT)
      return time_loss(game, us, idx, name + " gave no bestmove within " + std::to_string(allowed) + " ms (flag fell)");
    if (reply.elapsed > allowed)
      return time_loss(game, us, idx, name + " lost on time (" + std::to_string(reply.elapsed) + " ms used, " +
                                          std::to_string(clock[us]) + " ms left)");
    clock[us] += s.increment_ms - reply.elapsed;
    const Move m = reply.bestmove.empty() ? MOVE_NONE : ParseMove(game.pos, reply.bestmove);
    if (!m) {
      StopEngine(e);
      return forfeit(us, idx, ForfeitKind::ILLEGAL, "rules infraction",
                     name + " played an illegal move '" + reply.bestmove + "' in " +
                         PositionFen(game.pos, game.halfmove_clock, CurrentFullmove(game)));
    }
    PlayMove(game, m);
    comments.push_back(move_comment(reply.score, reply.depth, reply.elapsed));
    const Verdict v = Adjudicate(game);
    if (v.result != GameResult::NONE) return {v, -1, ForfeitKind::NONE, false};
  }
}

const char* decision_text(SprtDecision d) {
  switch (d) {
    case SprtDecision::ACCEPT_H0: return "H0 accepted";
    case SprtDecision::ACCEPT_H1: return "H1 accepted";
    default: return "continue";
  }
}

std::string elo_text(double elo) {
  if (std::isinf(elo)) return elo > 0 ? "+inf" : "-inf";
  if (elo == 0) elo = 0;  // print an even score as +0.0, not -0.0
  char text[32];
  std::snprintf(text, sizeof text, "%+.1f", elo);
  return text;
}

// Counts a finished game, prints its line and writes its PGN; the second game
// of a pair (pair_first: the first engine's half points in the first game,
// else -1) also counts the pair and tests the SPRT. Returns the first
// engine's half points in this game.
int record_game(MatchState& st, int number, int white_engine, const Game& game, const GameOutcome& outcome,
                const std::vector<std::string>& comments, int pair_first) {
  const MatchSettings& s = st.settings;
  std::lock_guard<std::mutex> lock(st.mutex);
  const GameResult r = outcome.verdict.result;
  const bool first_is_white = white_engine == 0;
  const int half_points = r == GameResult::DRAW ? 1 : (r == GameResult::WHITE_WINS) == first_is_white ? 2 : 0;
  ++(half_points == 2 ? st.counts.wins : half_points == 1 ? st.counts.draws : st.counts.losses);
  if (pair_first >= 0) ++st.pairs.points[pair_first + half_points];
  if (outcome.forfeiting_engine >= 0) {
    ForfeitCounts& f = st.forfeits[outcome.forfeiting_engine];
    if (outcome.kind == ForfeitKind::ILLEGAL) ++f.illegal;
    else if (outcome.kind == ForfeitKind::CRASH) ++f.crash;
    else if (outcome.kind == ForfeitKind::TIME) ++f.time;
  }
  ++st.reasons[outcome.forfeiting_engine >= 0 ? outcome.verdict.termination : outcome.verdict.reason];
  ++st.finished;

  std::string line = "Game " + std::to_string(number) + " (" + st.names[white_engine] + " - " +
                     st.names[1 - white_engine] + "): " + ResultText(r) + " {" + outcome.verdict.reason + "}, " +
                     std::to_string(game.moves.size()) + " plies. " + st.names[0] + " W/D/L " +
                     std::to_string(st.counts.wins) + "/" + std::to_string(st.counts.draws) + "/" +
                     std::to_string(st.counts.losses);
  char score[64];
  std::snprintf(score, sizeof score, ", score %.3f", Score(st.counts));
  line += score;
  if (s.use_sprt) {
    char llr[64];
    std::snprintf(llr, sizeof llr, ", LLR %.2f", SprtLlr(s.sprt, TrialsOf(st.pairs)));
    line += llr;
    if (pair_first >= 0) st.decision = SprtNext(st.decision, s.sprt, TrialsOf(st.pairs));
    if (st.decision != SprtDecision::CONTINUE) st.stop = true;
  }
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);

  if (st.pgn) {
    PgnHeader header{"vorlaxen-dev match", st.date, std::to_string(number), st.names[white_engine],
                     st.names[1 - white_engine], s.time_control, IsChess960Fen(game.start_fen)};
    const std::string text = GamePgn(game, header, outcome.verdict, comments);
    std::fputs(text.c_str(), st.pgn);
    std::fflush(st.pgn);
  }
  return half_points;
}

// Each thread plays both games of an opening, one after the other with the
// same two processes, so that nothing particular to a thread (when it starts,
// what else runs beside it) can favour the engine that has White in it.
void worker(MatchState& st, EngineProcess* engines) {
  Game game;
  std::vector<std::string> comments;
  for (;;) {
    const int pair = st.next_pair++;
    const std::string& fen = st.openings[size_t(pair) % st.openings.size()];
    int first = -1;
    for (int index = 2 * pair; index < 2 * pair + 2; ++index) {
      if (st.stop || index >= st.settings.games) return;
      const int white_engine = index % 2;  // colours reversed in the second game
      const GameOutcome outcome = play_game(st, engines, fen, white_engine, game, comments);
      if (outcome.abandoned) return;
      first = record_game(st, index + 1, white_engine, game, outcome, comments, index % 2 ? first : -1);
    }
  }
}

std::string interval_text(const EloEstimate& e) {
  return elo_text(e.elo) + ", 95% interval [" + elo_text(e.lower) + ", " + elo_text(e.upper) + "]";
}

// Elo, normalized Elo, LOS and SPRT come from the game pairs; the Elo of the
// games counted one by one follows for comparison.
void print_summary(const MatchState& st) {
  const MatchSettings& s = st.settings;
  const MatchCounts& c = st.counts;
  const Trials pairs = TrialsOf(st.pairs);
  const int* p = st.pairs.points;
  std::printf("\nResult of %s vs %s after %d games (tc %s)\n", st.names[0].c_str(), st.names[1].c_str(), c.games(),
              s.time_control.c_str());
  std::printf("W/D/L: %d/%d/%d\n", c.wins, c.draws, c.losses);
  std::printf("Pentanomial [0, 0.5, 1, 1.5, 2]: %d %d %d %d %d\n", p[0], p[1], p[2], p[3], p[4]);
  std::printf("Score: %.1f/%d = %.3f\n", c.wins + 0.5 * c.draws, c.games(), Score(c));
  std::printf("Elo difference: %s (%d pairs)\n", interval_text(EstimateElo(pairs)).c_str(), st.pairs.pairs());
  std::printf("Normalized Elo: %s\n", interval_text(EstimateNormalizedElo(pairs)).c_str());
  std::printf("Elo of the games counted singly: %s\n", interval_text(EstimateElo(c)).c_str());
  std::printf("LOS: %.1f%%\n", 100 * LikelihoodOfSuperiority(pairs));
  if (s.use_sprt)
    std::printf("SPRT (elo0 %g, elo1 %g): LLR %.3f, bounds [%.3f, %.3f], %s\n", s.sprt.elo0, s.sprt.elo1,
                SprtLlr(s.sprt, pairs), SprtLowerBound(s.sprt), SprtUpperBound(s.sprt), decision_text(st.decision));
  std::string reasons;
  for (const auto& [reason, count] : st.reasons) reasons += (reasons.empty() ? "" : ", ") + reason + " " + std::to_string(count);
  std::printf("Endings: %s\n", reasons.empty() ? "none" : reasons.c_str());
  for (int i = 0; i < 2; ++i)
    std::printf("Forfeits by %s: illegal moves %d, crashes %d, time losses %d\n", st.names[i].c_str(),
                st.forfeits[i].illegal, st.forfeits[i].crash, st.forfeits[i].time);
}

void usage() {
  std::fprintf(stderr,
               "usage: vorlaxen-dev match --engine CMD [--name NAME] [--option NAME=VALUE]... --engine CMD ...\n"
               "         --games N --tc BASE+INC [--openings FILE] [--concurrency K] [--pgn FILE]\n"
               "         [--sprt ELO0 ELO1] [--seed S] [--margin MS] [--plies N]\n");
}

// Display names: as given, else the engine's "id name", else the command;
// numbered when the two are the same.
void choose_names(const MatchSettings& s, EngineProcess* first_pair, std::string names[2]) {
  for (int i = 0; i < 2; ++i) {
    names[i] = s.engines[i].name;
    if (names[i].empty()) names[i] = first_pair[i].id_name;
    if (names[i].empty()) names[i] = s.engines[i].command;
  }
  if (names[0] == names[1]) {
    names[0] += " (1)";
    names[1] += " (2)";
  }
}

}  // namespace

bool ParseTimeControl(const std::string& text, int64_t& base_ms, int64_t& increment_ms) {
  const size_t plus = text.find('+');
  increment_ms = 0;
  if (plus == std::string::npos) return parse_seconds(text, base_ms) && base_ms > 0;
  return parse_seconds(text.substr(0, plus), base_ms) && parse_seconds(text.substr(plus + 1), increment_ms) &&
         (base_ms > 0 || increment_ms > 0);
}

bool ParseMatchArgs(const Args& args, MatchSettings& s, std::string& error) {
  bool have_games = false, have_tc = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const auto value = [&](int k = 1) -> const std::string* {
      if (i + k >= args.size()) {
        error = a + " needs " + (k == 1 ? "a value" : "two values");
        return nullptr;
      }
      const std::string* v = &args[i + 1];
      i += k;
      return v;
    };
    long long n = 0;
    if (a == "--engine") {
      const std::string* v = value();
      if (!v) return false;
      s.engines.push_back({*v, "", {}});
    } else if (a == "--name" || a == "--option") {
      const std::string* v = value();
      if (!v) return false;
      if (s.engines.empty()) return error = a + " must follow the --engine it belongs to", false;
      if (a == "--name") {
        s.engines.back().name = *v;
      } else {
        const size_t eq = v->find('=');
        if (eq == std::string::npos || eq == 0) return error = "--option needs NAME=VALUE, not '" + *v + "'", false;
        s.engines.back().options.emplace_back(v->substr(0, eq), v->substr(eq + 1));
      }
    } else if (a == "--games") {
      const std::string* v = value();
      if (!v) return false;
      if (!parse_int(*v, 1, 10000000, n)) return error = "--games needs a positive number, not '" + *v + "'", false;
      s.games = int(n);
      have_games = true;
    } else if (a == "--tc") {
      const std::string* v = value();
      if (!v) return false;
      if (!ParseTimeControl(*v, s.base_ms, s.increment_ms))
        return error = "--tc needs BASE+INC in seconds (e.g. 10+0.1), not '" + *v + "'", false;
      s.time_control = *v;
      have_tc = true;
    } else if (a == "--openings" || a == "--pgn") {
      const std::string* v = value();
      if (!v) return false;
      (a == "--pgn" ? s.pgn_path : s.openings_path) = *v;
    } else if (a == "--concurrency") {
      const std::string* v = value();
      if (!v) return false;
      if (!parse_int(*v, 1, 256, n)) return error = "--concurrency needs a number from 1 to 256, not '" + *v + "'", false;
      s.concurrency = int(n);
    } else if (a == "--sprt") {
      const std::string* v = value(2);
      if (!v) return false;
      if (!parse_double(v[0], s.sprt.elo0) || !parse_double(v[1], s.sprt.elo1) || s.sprt.elo0 >= s.sprt.elo1)
        return error = "--sprt needs two Elo values ELO0 < ELO1", false;
      s.use_sprt = true;
    } else if (a == "--seed") {
      const std::string* v = value();
      if (!v) return false;
      if (!parse_int(*v, 0, INT64_MAX, n)) return error = "--seed needs a non-negative number, not '" + *v + "'", false;
      s.seed = uint64_t(n);
      s.shuffle = true;
    } else if (a == "--plies") {
      const std::string* v = value();
      if (!v) return false;
      if (!parse_int(*v, 0, 1000, n)) return error = "--plies needs a number from 0 to 1000, not '" + *v + "'", false;
      s.opening_plies = int(n);
    } else if (a == "--margin") {
      const std::string* v = value();
      if (!v) return false;
      if (!parse_int(*v, 0, 600000, n)) return error = "--margin needs milliseconds, not '" + *v + "'", false;
      s.margin_ms = n;
    } else {
      error = "unknown argument '" + a + "'";
      return false;
    }
  }
  if (s.engines.size() != 2) return error = "a match needs exactly two --engine options", false;
  if (!have_games) return error = "--games is required", false;
  if (!have_tc) return error = "--tc is required", false;
  return true;
}

std::string DefaultOpeningsPath() {
  const std::string source = __FILE__;
  const size_t slash = source.rfind('/');
  return (slash == std::string::npos ? std::string(".") : source.substr(0, slash)) + "/openings.epd";
}

namespace {

bool ends_with_pgn(const std::string& path) {
  if (path.size() < 4) return false;
  std::string tail = path.substr(path.size() - 4);
  for (char& c : tail) c = char(std::tolower(static_cast<unsigned char>(c)));
  return tail == ".pgn";
}

bool read_pgn_openings(const std::string& path, std::ifstream& in, int plies, std::vector<std::string>& fens,
                       std::string& error) {
  std::vector<PgnGame> games;
  if (!ReadPgn(in, games, error)) return error = path + ": " + error, false;
  Game game;
  for (const PgnGame& g : games) {
    if (!StartGame(game, g.fen)) continue;
    for (size_t i = 0; i < g.moves.size() && int(i) < plies; ++i) PlayMove(game, g.moves[i]);
    if (Adjudicate(game).result != GameResult::NONE) continue;
    fens.push_back(PositionFen(game.pos, game.halfmove_clock, CurrentFullmove(game)));
  }
  return true;
}

bool read_fen_openings(const std::string& path, std::ifstream& in, std::vector<std::string>& fens,
                       std::string& error) {
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const size_t first = line.find_first_not_of(" \t");
    if (first == std::string::npos || line[first] == '#') continue;
    if (const std::string e = FenError(line); !e.empty()) {
      error = path + ":" + std::to_string(number) + ": " + e;
      return false;
    }
    fens.push_back(normalized_fen(line));
  }
  return true;
}

}  // namespace

bool ReadOpeningFile(const std::string& path, int plies, std::vector<std::string>& fens, std::string& error) {
  std::ifstream in(path);
  if (!in) return error = "cannot read opening file '" + path + "'", false;
  fens.clear();
  const bool ok = ends_with_pgn(path) ? read_pgn_openings(path, in, plies, fens, error)
                                      : read_fen_openings(path, in, fens, error);
  if (!ok) return false;
  if (fens.empty()) return error = "opening file '" + path + "' holds no positions", false;
  return true;
}

int RunMatch(const MatchSettings& s) {
  MatchState st{s};
  std::string error;
  if (!s.openings_path.empty()) {
    if (!ReadOpeningFile(s.openings_path, s.opening_plies, st.openings, error)) {
      std::fprintf(stderr, "match: %s\n", error.c_str());
      return 2;
    }
  } else if (!ReadOpeningFile(DefaultOpeningsPath(), s.opening_plies, st.openings, error)) {
    std::printf("No opening set found (%s); every game starts from the initial position\n", error.c_str());
    st.openings.assign(1, START_FEN);
  }
  if (s.shuffle) std::shuffle(st.openings.begin(), st.openings.end(), std::mt19937_64(s.seed));

  for (const EngineConfig& config : s.engines) {
    std::vector<std::string> words;
    if (!SplitCommand(config.command, words) || words.empty() || FindExecutable(words[0]).empty()) {
      std::fprintf(stderr, "match: engine executable not found: '%s'\n", config.command.c_str());
      return 2;
    }
  }
  const int threads = std::max(1, std::min(s.concurrency, (s.games + 1) / 2));
  std::unique_ptr<EngineProcess[]> engines(new EngineProcess[2 * size_t(threads)]);
  for (int i = 0; i < 2 * threads; ++i) {
    if (!StartEngine(engines[i], s.engines[i % 2], error)) {
      std::fprintf(stderr, "match: %s\n", error.c_str());
      return 2;
    }
  }
  choose_names(s, engines.get(), st.names);
  st.date = utc_date();
  if (!s.pgn_path.empty() && !(st.pgn = std::fopen(s.pgn_path.c_str(), "w"))) {
    std::fprintf(stderr, "match: cannot write PGN file '%s'\n", s.pgn_path.c_str());
    return 2;
  }
  std::printf("Match %s vs %s: %d games, tc %s, %zu openings, concurrency %d\n", st.names[0].c_str(),
              st.names[1].c_str(), s.games, s.time_control.c_str(), st.openings.size(), threads);
  std::fflush(stdout);

  std::vector<std::thread> pool;
  for (int t = 0; t < threads; ++t) pool.emplace_back(worker, std::ref(st), engines.get() + 2 * t);
  for (std::thread& t : pool) t.join();
  if (st.pgn) std::fclose(st.pgn);
  print_summary(st);
  return 0;
}

int match_command(const Args& args) {
  MatchSettings settings;
  std::string error;
  if (!ParseMatchArgs(args, settings, error)) {
    std::fprintf(stderr, "match: %s\n", error.c_str());
    usage();
    return 2;
  }
  return RunMatch(settings);
}

}  // namespace vx::dev

#include "tools/match/pgn_reader.h"

#include <cctype>
#include <iterator>

#include "tools/match/san.h"

namespace vx::dev {

namespace {

constexpr const char* START_FEN = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

bool is_result(const std::string& t) { return t == "1-0" || t == "0-1" || t == "1/2-1/2" || t == "*"; }

// A move number: digits followed by dots ("12." or "12...").
bool is_move_number(const std::string& t) {
  size_t i = 0;
  while (i < t.size() && std::isdigit(static_cast<unsigned char>(t[i]))) ++i;
  return i > 0 && (i == t.size() || t.find_first_not_of('.', i) == std::string::npos);
}

// Reads one game after another from the text, keeping the line number for
// messages.
struct Reader {
  const std::string& text;
  size_t at = 0;
  int line = 1;
  int word_line = 1;  // where the token being read began
  std::vector<PgnGame>& games;
  std::string& error;
  PgnGame game;
  Position pos;
  bool started = false;  // the current game has a position

  char next() {
    const char c = text[at++];
    if (c == '\n') ++line;
    return c;
  }
  // Text up to (not including) the closing character, which is consumed.
  std::string until(char close) {
    std::string s;
    while (at < text.size()) {
      const char c = next();
      if (c == close) break;
      s += c;
    }
    return s;
  }
  bool fail(const std::string& what) {
    error = "line " + std::to_string(word_line) + ": " + what;
    return false;
  }
  bool start_position() {
    if (started) return true;
    if (game.fen.empty()) game.fen = START_FEN;
    if (!pos.SetFromFen(game.fen)) return fail("FEN tag with an unusable position '" + game.fen + "'");
    started = true;
    return true;
  }
  void finish(const std::string& result) {
    game.result = result;
    games.push_back(std::move(game));
    game = PgnGame{};
    started = false;
  }
  bool tag() {
    word_line = line;
    const std::string body = until(']');
    const size_t space = body.find(' ');
    const size_t open = body.find('"'), close = body.rfind('"');
    if (space == std::string::npos || open == std::string::npos || close <= open) return true;
    if (body.substr(0, space) == "FEN") {
      if (started || !game.moves.empty()) return fail("FEN tag after the moves");
      game.fen = body.substr(open + 1, close - open - 1);
    }
    return true;
  }
  bool token(const std::string& t) {
    if (t.empty() || is_move_number(t) || t[0] == '$') return true;
    if (is_result(t)) {
      if (!start_position()) return false;
      finish(t);
      return true;
    }
    std::string san = t;
    if (const size_t dots = san.rfind('.'); dots != std::string::npos) san = san.substr(dots + 1);  // "12.e4"
    if (!start_position()) return false;
    const Move m = ParseSan(pos, san);
    if (!m) return fail("no legal move '" + t + "'");
    pos.ApplyGameMove(m);
    game.moves.push_back(m);
    game.comments.emplace_back();
    return true;
  }
  bool run() {
    std::string word;
    int depth = 0;  // of variations being skipped
    while (at < text.size()) {
      const char c = next();
      const bool separator = std::isspace(static_cast<unsigned char>(c)) || c == '[' || c == '{' || c == ';' ||
                             c == '(' || c == ')';
      if (!separator) {
        if (word.empty()) word_line = line;
        word += c;
        continue;
      }
      if (depth == 0 && !token(word)) return false;
      word.clear();
      if (c == '{') {
        const std::string comment = until('}');
        if (depth == 0 && !game.comments.empty() && game.comments.back().empty()) game.comments.back() = comment;
      } else if (c == ';') {
        until('\n');
      } else if (c == '(') {
        ++depth;
      } else if (c == ')') {
        depth -= depth > 0;
      } else if (c == '[' && depth == 0) {
        if (!game.moves.empty()) finish("*");  // a game without a result token
        if (!tag()) return false;
      }
    }
    if (depth == 0 && !token(word)) return false;
    if (!game.moves.empty()) finish("*");
    return true;
  }
};

}  // namespace

bool ReadPgn(std::istream& in, std::vector<PgnGame>& games, std::string& error) {
  const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  games.clear();
  Reader reader{text, 0, 1, 1, games, error, {}, {}, false};
  return reader.run();
}

}  // namespace vx::dev

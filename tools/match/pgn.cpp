#include "tools/match/pgn.h"

#include "tools/match/san.h"

namespace vx::dev {

namespace {

std::string tag(const std::string& name, const std::string& value) {
  std::string escaped;
  for (char c : value) {
    if (c == '"' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return "[" + name + " \"" + escaped + "\"]\n";
}

// Appends a token, breaking lines before they pass 79 characters.
void append_token(std::string& text, size_t& line_length, const std::string& token) {
  if (line_length && line_length + 1 + token.size() > 79) {
    text += '\n';
    line_length = 0;
  } else if (line_length) {
    text += ' ';
    ++line_length;
  }
  text += token;
  line_length += token.size();
}

}  // namespace

std::string GamePgn(const Game& game, const PgnHeader& header, const Verdict& verdict,
                    const std::vector<std::string>& comments) {
  const std::string result = ResultText(verdict.result);
  std::string text = tag("Event", header.event) + tag("Site", "?") + tag("Date", header.date) +
                     tag("Round", header.round) + tag("White", header.white) + tag("Black", header.black) +
                     tag("Result", result) + tag("SetUp", "1") + tag("FEN", game.start_fen);
  if (header.chess960) text += tag("Variant", "Chess960");
  text += tag("TimeControl", header.time_control) + tag("Termination", verdict.termination) +
          tag("PlyCount", std::to_string(game.moves.size())) + "\n";

  Position pos;
  pos.SetFromFen(game.start_fen);
  std::string moves;
  size_t line_length = 0;
  int number = game.start_fullmove;
  for (size_t i = 0; i < game.moves.size(); ++i) {
    const Move m = game.moves[i];
    std::string token;
    if (pos.side_to_move == WHITE) token = std::to_string(number) + ". ";
    else if (i == 0) token = std::to_string(number) + "... ";
    append_token(moves, line_length, token + MoveSan(pos, m));
    if (i < comments.size() && !comments[i].empty()) append_token(moves, line_length, "{" + comments[i] + "}");
    if (pos.side_to_move == BLACK) ++number;
    pos.ApplyGameMove(m);
  }
  if (!verdict.reason.empty()) append_token(moves, line_length, "{" + verdict.reason + "}");
  append_token(moves, line_length, result);
  return text + moves + "\n\n";
}

}  // namespace vx::dev

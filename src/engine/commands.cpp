#include "engine/commands.h"

#include <algorithm>

#include "board/movegen.h"
#include "engine/output.h"

namespace vx {

namespace {

void Append(std::string& joined, const std::string& word) {
  if (!joined.empty()) joined += ' ';
  joined += word;
}

// Reads one number into the field; a token that is not a number (or does not
// fit) leaves the field as it was and reports failure.
template <typename T>
bool ReadNumber(std::istream& args, T& field) {
  T v{};
  if (!(args >> v)) return false;
  field = v;
  return true;
}

// A clock that was given but has run below zero (a GUI reporting an
// overstepped clock) still means "move now", not "no clock at all".
bool ReadClock(std::istream& args, int32_t& field) {
  if (!ReadNumber(args, field)) return false;
  field = std::max(field, 0);
  return true;
}

void ApplyMoveTokens(ThreadPool& pool, std::istream& args, GameMoves& game) {
  std::string token;
  while (args >> token) {
    for (Thread* t : pool.threads) {
      const Move m = ParseMove(*t->position, token);
      if (m == MOVE_NONE) continue;
      if (t == pool.threads[0]) {
        game.previous = game.last;
        game.last = m;
      }
      t->position->ApplyGameMove(m);
    }
  }
}

}  // namespace

bool IsSearchablePosition(const Position& pos) { return PositionDefect(pos) == nullptr; }

bool SetAllPositions(ThreadPool& pool, const std::string& fen) {
  bool ok = false;
  for (Thread* t : pool.threads) ok = t->position->SetFromFen(fen) && IsSearchablePosition(*t->position);
  return ok;
}

bool SetupPosition(ThreadPool& pool, std::istream& args, GameMoves& game) {
  game.position_valid = false;
  std::string token;
  args >> token;
  bool ok = false;
  if (token == "startpos") {
    ok = SetAllPositions(pool, START_FEN);
    if (args >> token && token != "moves") ok = false;
  } else if (token == "fen") {
    std::string fen;
    while (args >> token && token != "moves") fen += token + " ";
    ok = SetAllPositions(pool, fen);
  }
  if (!ok) return false;

  game.position_valid = true;
  game.previous = game.last = MOVE_NONE;
  ApplyMoveTokens(pool, args, game);
  return true;
}

void ParseGo(std::istream& args, const Position& pos, SearchLimits& limits, std::vector<Move>& searchMoves) {
  limits = SearchLimits{};
  MoveList legal;
  GenerateLegal(pos, legal);
  searchMoves.assign(legal.begin(), legal.end());

  std::string token;
  while (args >> token) {
    bool read = true;
    if (token == "ponder") limits.ponder = true;
    else if (token == "infinite") limits.infinite = true;
    else if (token == "depth") read = ReadNumber(args, limits.depth);
    else if (token == "mate") read = ReadNumber(args, limits.mate);
    else if (token == "movestogo") read = ReadNumber(args, limits.movestogo);
    else if (token == "movetime") read = ReadNumber(args, limits.movetime);
    else if (token == "wtime") read = ReadClock(args, limits.time[WHITE]);
    else if (token == "btime") read = ReadClock(args, limits.time[BLACK]);
    else if (token == "winc") read = ReadNumber(args, limits.inc[WHITE]);
    else if (token == "binc") read = ReadNumber(args, limits.inc[BLACK]);
    else if (token == "nodes") read = ReadNumber(args, limits.nodes);
    else if (token == "searchmoves") {
      searchMoves.clear();
      while (args >> token)
        if (const Move m = ParseMove(pos, token)) searchMoves.push_back(m);
    } else WriteLine("illegal go token " + token);
    if (!read) break;
  }
  // The search runs at least one iteration and at most 100, so any depth
  // outside 1..100 means the nearest end of that range; clamping here keeps
  // absurd values from overflowing once they are turned into quarter plies.
  limits.depth = std::clamp(limits.depth, 1, 100);
}

OptionCommand ParseSetOption(std::istream& args) {
  OptionCommand cmd;
  std::string token;
  args >> token;  // "name"
  while (args >> token && token != "value") Append(cmd.name, token);
  while (args >> token) Append(cmd.value, token);
  return cmd;
}

}  // namespace vx

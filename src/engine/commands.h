// Parsing of the three UCI commands with arguments: "position", "go" and
// "setoption". The dispatcher in uci.cpp hands them the rest of the line.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "board/position.h"
#include "search/thread.h"

namespace vx {

constexpr const char* START_FEN = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

// What the last "position" command left for the next "go".
struct GameMoves {
  bool position_valid = false;
  Move previous = MOVE_NONE;  // the last two moves applied, 0 = none
  Move last = MOVE_NONE;
};

// A position the search can stand on: one king per side, no pawn on the
// first or eighth rank, at most 16 pieces a side, the side not to move not
// in check.
bool IsSearchablePosition(const Position& pos);

// Sets every thread's position from the FEN; true when the last one was
// accepted and can be searched.
bool SetAllPositions(ThreadPool& pool, const std::string& fen);

// "position startpos|fen <fields> [moves ...]". False when the command is
// rejected; the moves that match no legal move are skipped.
bool SetupPosition(ThreadPool& pool, std::istream& args, GameMoves& game);

// "go": resets the limits, fills them from the tokens and fills the
// search-move list (all legal moves unless "searchmoves" names some).
// Writes "illegal go token " for every unknown token.
void ParseGo(std::istream& args, const Position& pos, SearchLimits& limits, std::vector<Move>& searchMoves);

struct OptionCommand {
  std::string name;
  std::string value;
};
// "setoption name <words> [value <words>]", words joined with single blanks.
OptionCommand ParseSetOption(std::istream& args);

}  // namespace vx

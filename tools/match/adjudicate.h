// The referee of one game between two engines: the board, the identity of
// every position reached (for threefold repetition), the fifty-move counter,
// and the verdict on the position after each move.
#pragma once

#include <string>
#include <vector>

#include "board/position.h"

namespace vx::dev {

enum class GameResult { NONE, WHITE_WINS, BLACK_WINS, DRAW };

struct Verdict {
  GameResult result = GameResult::NONE;
  std::string termination;  // PGN Termination tag: "normal", "time forfeit", "rules infraction", "abandoned"
  std::string reason;       // what happened, e.g. "checkmate", "threefold repetition"
};

struct Game {
  Position pos;
  std::string start_fen;
  int halfmove_clock = 0;     // plies since the last capture or pawn move
  int start_fullmove = 1;     // move number of the start position
  Color start_side = WHITE;
  std::vector<Key> identities;  // one per position, the start position first
  std::vector<Move> moves;
};

// Sets the game to the start of the FEN; false if the board code rejects it.
// The half-move clock and move number are taken from the FEN when present.
bool StartGame(Game& game, const std::string& fen);
void PlayMove(Game& game, Move m);
// Move number of the current position, counted on from the start FEN's.
int CurrentFullmove(const Game& game);
// The result of the position reached, or GameResult::NONE while play goes on.
Verdict Adjudicate(const Game& game);

// Key of the position as the repetition rule sees it: placement, side to
// move, castling rights, and an en-passant right only when some legal move
// captures en passant.
Key PositionIdentity(const Position& pos);
bool InsufficientMaterial(const Position& pos);
bool HasLegalEnPassant(const Position& pos);

// The verdict of a forfeit by the given side.
Verdict Forfeit(Color loser, const std::string& termination, const std::string& reason);
const char* ResultText(GameResult r);  // "1-0", "0-1", "1/2-1/2", "*"

}  // namespace vx::dev

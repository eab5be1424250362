#include "tools/match/adjudicate.h"

#include <algorithm>
#include <sstream>

#include "board/bitboard.h"
#include "board/movegen.h"

namespace vx::dev {

bool HasLegalEnPassant(const Position& pos) {
  if (!pos.state->ep_square) return false;
  MoveList list;
  GenerateLegal(pos, list);
  return std::any_of(list.begin(), list.end(), [](Move m) { return is_en_passant(m); });
}

Key PositionIdentity(const Position& pos) {
  Key key = pos.state->key;
  // The board keeps the en-passant square whenever an enemy pawn stands beside
  // the pawn that advanced; the right only counts when the capture is legal.
  if (pos.state->ep_square && !HasLegalEnPassant(pos)) key ^= zobrist_ep[file_of(Square(pos.state->ep_square))];
  return key;
}

bool InsufficientMaterial(const Position& pos) {
  const Bitboard heavy_or_pawn = pos.of(WHITE, PAWN) | pos.of(BLACK, PAWN) | pos.straight_sliders(WHITE) |
                                 pos.straight_sliders(BLACK);
  if (heavy_or_pawn) return false;
  const Bitboard knights = pos.of(WHITE, KNIGHT) | pos.of(BLACK, KNIGHT);
  const Bitboard bishops = pos.bishops(WHITE) | pos.bishops(BLACK);
  if (!more_than_one(knights | bishops)) return true;  // bare kings or a single minor piece
  // Bishops all on squares of one colour can never give mate.
  return !knights && (!(bishops & DARK_SQUARES) || !(bishops & ~DARK_SQUARES));
}

bool StartGame(Game& game, const std::string& fen) {
  if (!game.pos.SetFromFen(fen)) return false;
  game.start_fen = fen;
  game.moves.clear();
  game.identities.assign(1, PositionIdentity(game.pos));
  std::istringstream fields(fen);
  std::string placement, side, castling, ep;
  int halfmove = 0, fullmove = 1;
  fields >> placement >> side >> castling >> ep;
  if (!(fields >> halfmove) || halfmove < 0) halfmove = 0;
  if (!(fields >> fullmove) || fullmove < 1) fullmove = 1;
  game.halfmove_clock = halfmove;
  game.start_fullmove = fullmove;
  game.start_side = game.pos.side_to_move;
  return true;
}

int CurrentFullmove(const Game& game) {
  return game.start_fullmove + int(game.moves.size() + (game.start_side == BLACK)) / 2;
}

void PlayMove(Game& game, Move m) {
  // Only captures and pawn moves restart the fifty-move count (castling does
  // not, although the board treats it as irreversible).
  const bool resets = is_capture(m) || type_of(game.pos.piece_on(from_sq(m))) == PAWN;
  game.pos.ApplyGameMove(m);
  game.halfmove_clock = resets ? 0 : game.halfmove_clock + 1;
  game.moves.push_back(m);
  game.identities.push_back(PositionIdentity(game.pos));
}

Verdict Adjudicate(const Game& game) {
  const Position& pos = game.pos;
  if (!HasLegalMove(pos)) {
    if (InCheck(pos)) return Forfeit(pos.side_to_move, "normal", "checkmate");
    return {GameResult::DRAW, "normal", "stalemate"};
  }
  if (InsufficientMaterial(pos)) return {GameResult::DRAW, "normal", "insufficient material"};
  const Key current = game.identities.back();
  if (std::count(game.identities.begin(), game.identities.end(), current) >= 3)
    return {GameResult::DRAW, "normal", "threefold repetition"};
  if (game.halfmove_clock >= 100) return {GameResult::DRAW, "normal", "fifty-move rule"};
  return {};
}

Verdict Forfeit(Color loser, const std::string& termination, const std::string& reason) {
  return {loser == WHITE ? GameResult::BLACK_WINS : GameResult::WHITE_WINS, termination, reason};
}

const char* ResultText(GameResult r) {
  switch (r) {
    case GameResult::WHITE_WINS: return "1-0";
    case GameResult::BLACK_WINS: return "0-1";
    case GameResult::DRAW: return "1/2-1/2";
    default: return "*";
  }
}

}  // namespace vx::dev

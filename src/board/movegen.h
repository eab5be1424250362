// Bitboard move generators writing MoveEntry words into caller-owned arrays,
// and the legality tests that turn their output into legal moves.
#pragma once

#include <cstdint>

#include "board/position.h"

namespace vx {

// Room for the largest pseudo-legal output of any position.
constexpr int MAX_MOVES = 256;

// History values by moving piece code and to-square (the quiet-move ordering keys).
using HistoryTable = int32_t[16][64];

// Capture-ordering words by attacker type and victim type (victim 0 for a
// promotion without capture). The low half carries the capture flag, the high
// half the ordering key.
extern uint32_t capture_order[8][8];
void InitCaptureOrder();

template <Color Us> MoveEntry* GenerateCaptures(const Position& pos, const AttackInfo& ai, MoveEntry* list);
template <Color Us> MoveEntry* GenerateSearchCaptures(const Position& pos, const AttackInfo& ai, MoveEntry* list);
template <Color Us> MoveEntry* GenerateQuiets(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list);
template <Color Us> MoveEntry* GenerateEvasions(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list);
template <Color Us> MoveEntry* GenerateSearchEvasions(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list);
template <Color Us> MoveEntry* GenerateQuietChecks(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list);
template <Color Us> MoveEntry* GenerateAll(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list);
template <Color Us> MoveEntry* GenerateAllSearch(const Position& pos, const AttackInfo& ai, const HistoryTable& h, MoveEntry* list);

template <Color Us> bool IsLegal(const Position& pos, Move m, const AttackInfo& ai);
template <Color Us> bool IsPseudoLegal(const Position& pos, Move m, const AttackInfo& ai, bool in_check);
template <Color Us> bool GivesCheck(const Position& pos, Move m, const AttackInfo& ai);
// Enemy pieces (of the side not to move) attacking the square.
template <Color Us> Bitboard Checkers(const Position& pos, Square s);
template <Color Us> bool HasLegalMove(const Position& pos, const AttackInfo& ai);

// Legal moves of the side to move, in generation order.
struct MoveList {
  Move moves[MAX_MOVES];
  int size = 0;
  const Move* begin() const { return moves; }
  const Move* end() const { return moves + size; }
};
void GenerateLegal(const Position& pos, MoveList& list);
bool HasLegalMove(const Position& pos);
bool InCheck(const Position& pos);

// A history table holding the neutral value everywhere, for callers that do
// not order moves.
extern const HistoryTable& neutral_history;

}  // namespace vx

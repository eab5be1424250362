// The working record of one evaluation, shared by the term routines.
#pragma once

#include <cstdint>

#include "board/attacks.h"

namespace vx {

struct MaterialEntry;
struct PawnEntry;

// Slot of attackedBy / xrayAttacks that holds both bishop codes.
constexpr PieceType BISHOPS = BISHOP_L;

struct EvalInfo {
  const MaterialEntry* material;
  const PawnEntry* pawns;
  Bitboard pawnAttacks[2];
  Bitboard attackedBy[2][8];
  Bitboard xrayAttacks[2][8];
  Bitboard kingRing[2];
  Bitboard kingZone[2];
  Bitboard threatened;
  Bitboard attacksBeforeKings[2];
  int32_t kingDanger[2];           // by the king's owner
  int32_t zoneAttackCount[2];      // by the attacking side from here on
  int32_t adjacentAttackCount[2];
  int32_t attackerCount[2];
  int32_t attackWeight[2];
  uint16_t attackPattern[2];
  ValuePair score;                 // White's point of view
};

inline Bitboard& attacked(AttackInfo& ai, Color c) { return c == WHITE ? ai.attacked_by_white : ai.attacked_by_black; }
inline Bitboard& king_blockers(AttackInfo& ai, Color c) {
  return c == WHITE ? ai.white_king_blockers : ai.black_king_blockers;
}

// Adds a term for side Us to a White's-view score.
template <Color Us>
inline void add_score(EvalInfo& ei, ValuePair v) {
  if constexpr (Us == WHITE) ei.score += v;
  else ei.score -= v;
}

}  // namespace vx

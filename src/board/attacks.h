// Precomputed attack tables and attack queries.
#pragma once

#include "board/bitboard.h"

#ifdef VORLAXEN_BMI2
#include <immintrin.h>
#endif

namespace vx {

struct Position;

extern Bitboard king_attacks[64];
extern Bitboard knight_attacks[64];
extern Bitboard pawn_attacks[2][64];
extern Bitboard rook_pseudo[64];
extern Bitboard bishop_pseudo[64];
extern Bitboard queen_pseudo[64];
extern Bitboard between[64][64];
extern Bitboard line[64][64];
extern Bitboard knight_two[64];
extern Bitboard adjacent_files[8];
extern Bitboard files_east[8];
extern Bitboard files_west[8];
extern Bitboard forward_ranks[2][8];
extern Bitboard forward_file[2][64];
extern Bitboard pawn_attack_span[2][64];
extern Bitboard passed_pawn_mask[2][64];
extern Bitboard king_zone[2][64];

struct Magic {
  Bitboard mask;
  Bitboard magic;
  const Bitboard* table;
  unsigned shift;
#ifdef VORLAXEN_BMI2
  // Where pext exists the index is the masked occupancy packed into the low
  // bits: the same table size per square as the multiplier gives.
  unsigned index(Bitboard occ) const { return unsigned(_pext_u64(occ, mask)); }
#else
  unsigned index(Bitboard occ) const { return unsigned(((occ & mask) * magic) >> shift); }
#endif
};
extern Magic rook_magics[64];
extern Magic bishop_magics[64];

void InitAttackTables();

// Slider attacks by walking the rays, and the occupancy squares that matter
// for a magic index (the rays without the board edges they run into).
Bitboard SlidingAttacks(Square s, bool rook, Bitboard occ);
Bitboard RelevantOccupancy(Square s, bool rook);

inline Bitboard RookAttacks(Square s, Bitboard occ) { return rook_magics[s].table[rook_magics[s].index(occ)]; }
inline Bitboard BishopAttacks(Square s, Bitboard occ) { return bishop_magics[s].table[bishop_magics[s].index(occ)]; }
inline Bitboard QueenAttacks(Square s, Bitboard occ) { return RookAttacks(s, occ) | BishopAttacks(s, occ); }
inline int Distance(Square a, Square b) { return distance(a, b); }

// Squares a piece on s attacks with the given occupancy (none for NO_PIECE).
inline Bitboard PieceAttacks(Piece pc, Square s, Bitboard occ) {
  switch (type_of(pc)) {
    case PAWN: return pawn_attacks[color_of(pc)][s];
    case KNIGHT: return knight_attacks[s];
    case BISHOP_L:
    case BISHOP_D: return BishopAttacks(s, occ);
    case ROOK: return RookAttacks(s, occ);
    case QUEEN: return QueenAttacks(s, occ);
    case KING: return king_attacks[s];
    default: return 0;
  }
}

// Squares attacked by each side, and the pieces that alone stand between each
// king and an enemy slider (pins of the king's side, discovered-check
// candidates of the other side).
struct AttackInfo {
  Bitboard attacked_by_white;
  Bitboard attacked_by_black;
  Bitboard black_king_blockers;
  Bitboard white_king_blockers;

  Bitboard attacked_by(Color c) const { return c == WHITE ? attacked_by_white : attacked_by_black; }
  Bitboard king_blockers(Color c) const { return c == WHITE ? white_king_blockers : black_king_blockers; }
};

void ComputeAttackInfo(const Position& pos, AttackInfo& info);
// Attacked by a pawn, knight, bishop, rook or queen of that colour (kings ignored).
bool IsAttackedByWhite(const Position& pos, Square s);
bool IsAttackedByBlack(const Position& pos, Square s);
template <Color C> inline bool IsAttackedBy(const Position& pos, Square s) {
  return C == WHITE ? IsAttackedByWhite(pos, s) : IsAttackedByBlack(pos, s);
}

}  // namespace vx

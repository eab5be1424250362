#include "board/attacks.h"

#include "board/position.h"
#include "board/magics.h"

namespace vx {

Bitboard king_attacks[64];
Bitboard knight_attacks[64];
Bitboard pawn_attacks[2][64];
Bitboard rook_pseudo[64];
Bitboard bishop_pseudo[64];
Bitboard queen_pseudo[64];
Bitboard between[64][64];
Bitboard line[64][64];
Bitboard knight_two[64];
Bitboard adjacent_files[8];
Bitboard files_east[8];
Bitboard files_west[8];
Bitboard forward_ranks[2][8];
Bitboard forward_file[2][64];
Bitboard pawn_attack_span[2][64];
Bitboard passed_pawn_mask[2][64];
Bitboard king_zone[2][64];

Magic rook_magics[64];
Magic bishop_magics[64];

namespace {

constexpr int ROOK_DIRS[] = {8, 1, -8, -1, 0};
constexpr int BISHOP_DIRS[] = {9, -7, -9, 7, 0};
constexpr int KING_DIRS[] = {8, 9, 1, -7, -8, -9, -1, 7, 0};
constexpr int KNIGHT_DIRS[] = {17, 10, -6, -15, -17, -10, 6, 15, 0};
constexpr int WHITE_PAWN_DIRS[] = {9, 7, 0};
constexpr int BLACK_PAWN_DIRS[] = {-7, -9, 0};

// Attack arrays with one entry per occupancy subset of every square's mask.
Bitboard rook_table[102400];
Bitboard bishop_table[5248];

Bitboard sliding_attacks(Square s, const int* dirs, Bitboard occ) {
  Bitboard result = 0;
  for (; *dirs; ++dirs) {
    Square prev = s;
    for (Square t = s + *dirs; t >= 0 && t < 64 && distance(t, prev) == 1; prev = t, t += *dirs) {
      result |= sq_bb(t);
      if (occ & sq_bb(t)) break;
    }
  }
  return result;
}

Bitboard leaper_attacks(Square s, const int* dirs) {
  Bitboard result = 0;
  for (; *dirs; ++dirs) {
    Square t = s + *dirs;
    if (t >= 0 && t < 64 && distance(s, t) < 3) result |= sq_bb(t);
  }
  return result;
}

// Squares strictly between two squares on a common line, branch-free.
Bitboard in_between(Square s1, Square s2) {
  const uint64_t m1 = ~0ULL;
  const uint64_t a2a7 = 0x0001010101010100ULL, b2g7 = 0x0040201008040200ULL, h1b7 = 0x0002040810204080ULL;
  uint64_t btwn = (m1 << s1) ^ (m1 << s2);
  uint64_t file = uint64_t(int64_t(s2 & 7) - int64_t(s1 & 7));
  uint64_t rank = uint64_t((int64_t(s2 | 7) - int64_t(s1)) >> 3);
  uint64_t pattern = ((file & 7) - 1) & a2a7;
  pattern += 2 * (((rank & 7) - 1) >> 58);
  pattern += (((rank - file) & 15) - 1) & b2g7;
  pattern += (((rank + file) & 15) - 1) & h1b7;
  pattern *= btwn & (0 - btwn);
  return pattern & btwn;
}

// Fills one slider's attack array from the stored multipliers.
void init_magics(Magic* magics, Bitboard* table, const Bitboard* multipliers, bool rook) {
  Bitboard* next = table;
  for (Square s = 0; s < 64; ++s) {
    Magic& m = magics[s];
    m.mask = RelevantOccupancy(s, rook);
    m.magic = multipliers[s];
    m.shift = 64 - __builtin_popcountll(m.mask);
    m.table = next;
    Bitboard b = 0;
    do {
      next[m.index(b)] = SlidingAttacks(s, rook, b);
      b = (b - m.mask) & m.mask;
    } while (b);
    next += Bitboard(1) << (64 - m.shift);
  }
}

}  // namespace

Bitboard SlidingAttacks(Square s, bool rook, Bitboard occ) {
  return sliding_attacks(s, rook ? ROOK_DIRS : BISHOP_DIRS, occ);
}

Bitboard RelevantOccupancy(Square s, bool rook) {
  Bitboard edges = ((RANK_1_BB | RANK_8_BB) & ~rank_bb(rank_of(s))) | ((FILE_A_BB | FILE_H_BB) & ~file_bb(file_of(s)));
  return SlidingAttacks(s, rook, 0) & ~edges;
}

void InitAttackTables() {
  for (Square s = 0; s < 64; ++s) {
    rook_pseudo[s] = sliding_attacks(s, ROOK_DIRS, 0);
    bishop_pseudo[s] = sliding_attacks(s, BISHOP_DIRS, 0);
    queen_pseudo[s] = rook_pseudo[s] | bishop_pseudo[s];
    king_attacks[s] = leaper_attacks(s, KING_DIRS);
    knight_attacks[s] = leaper_attacks(s, KNIGHT_DIRS);
    pawn_attacks[WHITE][s] = leaper_attacks(s, WHITE_PAWN_DIRS);
    pawn_attacks[BLACK][s] = leaper_attacks(s, BLACK_PAWN_DIRS);
  }
  for (Square s1 = 0; s1 < 64; ++s1) {
    for (Square s2 = 0; s2 < 64; ++s2) between[s1][s2] = in_between(s1, s2);
    knight_two[s1] = 0;
    for (Bitboard b = knight_attacks[s1]; b;) knight_two[s1] |= knight_attacks[pop_lsb(b)];
  }
  for (Square s = 0; s < 64; ++s) {
    for (Bitboard b = rook_pseudo[s]; b;) {
      Square t = pop_lsb(b);
      line[s][t] = (rook_pseudo[t] & rook_pseudo[s]) | sq_bb(s) | sq_bb(t);
    }
    for (Bitboard b = bishop_pseudo[s]; b;) {
      Square t = pop_lsb(b);
      line[s][t] = (bishop_pseudo[t] & bishop_pseudo[s]) | sq_bb(s) | sq_bb(t);
    }
  }
  for (int f = 0; f < 8; ++f) {
    adjacent_files[f] = (f > 0 ? file_bb(f - 1) : 0) | (f < 7 ? file_bb(f + 1) : 0);
    files_east[f] = files_west[f] = 0;
    for (int g = 0; g < 8; ++g) {
      if (g > f) files_east[f] |= file_bb(g);
      if (g < f) files_west[f] |= file_bb(g);
    }
  }
  for (int r = 0; r < 8; ++r) {
    forward_ranks[WHITE][r] = forward_ranks[BLACK][r] = 0;
    for (int q = 0; q < 8; ++q) {
      if (q > r) forward_ranks[WHITE][r] |= rank_bb(q);
      if (q < r) forward_ranks[BLACK][r] |= rank_bb(q);
    }
  }
  for (Color c : {WHITE, BLACK}) {
    for (Square s = 0; s < 64; ++s) {
      forward_file[c][s] = forward_ranks[c][rank_of(s)] & file_bb(file_of(s));
      pawn_attack_span[c][s] = forward_ranks[c][rank_of(s)] & adjacent_files[file_of(s)];
      passed_pawn_mask[c][s] = forward_file[c][s] | pawn_attack_span[c][s];
      Bitboard zone = king_attacks[s] | sq_bb(s);
      if (c == WHITE && rank_of(s) <= 2) zone |= (king_attacks[s] & forward_ranks[WHITE][rank_of(s)]) << 8;
      if (c == BLACK && rank_of(s) >= 5) zone |= (king_attacks[s] & forward_ranks[BLACK][rank_of(s)]) >> 8;
      king_zone[c][s] = zone;
    }
  }
  init_magics(rook_magics, rook_table, ROOK_MULTIPLIERS, true);
  init_magics(bishop_magics, bishop_table, BISHOP_MULTIPLIERS, false);
}

namespace {

Bitboard attacks_of_color(const Position& pos, Color c) {
  Bitboard occ = pos.occupied();
  Bitboard pawns = pos.of(c, PAWN);
  Bitboard att = c == WHITE ? shift_cap9<WHITE>(pawns) | shift_cap7<WHITE>(pawns)
                            : shift_cap9<BLACK>(pawns) | shift_cap7<BLACK>(pawns);
  att |= king_attacks[pos.king_square(c)];
  for (Bitboard b = pos.of(c, KNIGHT); b;) att |= knight_attacks[pop_lsb(b)];
  for (Bitboard b = pos.diagonal_sliders(c); b;) att |= BishopAttacks(pop_lsb(b), occ);
  for (Bitboard b = pos.straight_sliders(c); b;) att |= RookAttacks(pop_lsb(b), occ);
  return att;
}

// Pieces of either colour that alone shield the king on k from an enemy slider.
Bitboard king_blockers(const Position& pos, Square k, Color enemy) {
  Bitboard occ = pos.occupied();
  Bitboard rook_first = RookAttacks(k, occ) & occ;
  Bitboard bishop_first = BishopAttacks(k, occ) & occ;
  Bitboard pinners = (RookAttacks(k, occ ^ rook_first) & pos.straight_sliders(enemy)) |
                     (BishopAttacks(k, occ ^ bishop_first) & pos.diagonal_sliders(enemy));
  Bitboard blockers = 0;
  while (pinners) blockers |= between[k][pop_lsb(pinners)];
  return blockers & (rook_first | bishop_first);
}

}  // namespace

void ComputeAttackInfo(const Position& pos, AttackInfo& info) {
  info.attacked_by_white = attacks_of_color(pos, WHITE);
  info.attacked_by_black = attacks_of_color(pos, BLACK);
  info.white_king_blockers = king_blockers(pos, pos.king_square(WHITE), BLACK);
  info.black_king_blockers = king_blockers(pos, pos.king_square(BLACK), WHITE);
}

template <Color C>
static bool is_attacked(const Position& pos, Square s) {
  if ((knight_attacks[s] & pos.of(C, KNIGHT)) || (pawn_attacks[~C][s] & pos.of(C, PAWN))) return true;
  Bitboard occ = pos.occupied();
  Bitboard diag = pos.diagonal_sliders(C);
  if ((bishop_pseudo[s] & diag) && (BishopAttacks(s, occ) & diag)) return true;
  Bitboard straight = pos.straight_sliders(C);
  return (rook_pseudo[s] & straight) && (RookAttacks(s, occ) & straight);
}

bool IsAttackedByWhite(const Position& pos, Square s) { return is_attacked<WHITE>(pos, s); }
bool IsAttackedByBlack(const Position& pos, Square s) { return is_attacked<BLACK>(pos, s); }

}  // namespace vx

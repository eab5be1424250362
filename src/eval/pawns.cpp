#include "eval/pawns.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "search/thread.h"

namespace vx {

namespace {

constexpr ValuePair S(int mg, int eg) { return make_pair(mg, eg); }

// File tables, files a-d given, e-h mirrored by init_pawns.
ValuePair Isolated[8] = {S(-7, -12), S(-12, -15), S(-16, -19), S(-19, -21)};
ValuePair Doubled[8] = {S(-5, -25), S(-10, -28), S(-12, -28), S(-15, -28)};
ValuePair Backward[8] = {S(-5, -7), S(-8, -16), S(-15, -16), S(-16, -16)};
ValuePair IsolatedOpen[8], BackwardOpen[8], BackwardHalf[8];

constexpr ValuePair Lever[8] = {0, 0, 0, S(2, 6), S(46, 34), S(22, 26), 0, 0};
constexpr ValuePair PassedFile[8] = {S(9, 7),    S(2, 7), S(0, -6), S(-20, -10),
                                     S(-20, -10), S(0, -6), S(2, 7), S(9, 7)};
constexpr ValuePair PassedRank[8] = {0, S(0, 3), S(1, 8), S(4, 52), S(41, 109), S(122, 214), S(193, 344), 0};
ValuePair Candidate[8];
constexpr ValuePair PassedKingSupport[8] = {0, 0, 0, S(0, 6), S(2, 15), S(10, 25), S(17, 37), 0};
constexpr ValuePair PassedKingAhead = S(3, -25);
constexpr ValuePair Wedge = S(19, 0);
constexpr int WEDGE_DANGER = 6;

constexpr ValuePair Supported[8] = {0, S(6, 6), S(11, 11), S(17, 17), S(35, 26), S(49, 30), S(57, 47), 0};
constexpr ValuePair Phalanx[8] = {0, 0, S(1, 0), S(36, 10), S(42, 35), S(78, 91), S(177, 189), 0};

// [phalanx][pawns on both sides or supported][rammed][passed][square, White's view]
ValuePair Connected[2][2][2][2][64];

// King shelter by file role (towards the centre, king file, towards the edge)
// and the relative rank of the nearest own pawn (0 = none).
enum { ROLE_CENTRE, ROLE_KING, ROLE_EDGE };
constexpr int Shelter[3][8] = {
    {-64, 0, -30, -36, -47, -44, -39, 0},
    {-72, 0, -16, -45, -56, -36, -41, 0},
    {-59, 0, -5, -23, -38, -39, -41, 0},
};
// [enemy king far][blocked][role][relative rank of the nearest enemy pawn]
constexpr int Storm[2][2][3][8] = {
    {{{0, 0, -6, -15, -2, 0, 0, 0}, {0, 0, -18, -10, -1, 0, 0, 0}, {0, 0, -23, -12, -1, 0, 0, 0}},
     {{0, 0, -27, -15, -6, 0, 0, 0}, {0, 0, -35, -14, -1, 0, 0, 0}, {0, 0, -19, -5, -14, 0, 0, 0}}},
    {{{-17, -17, -48, -31, -21, 0, 0, 0}, {-28, -25, -48, -21, -13, 0, 0, 0}, {-36, -24, -46, -31, -15, 0, 0, 0}},
     {{0, 0, -53, -34, -14, 0, 0, 0}, {0, 0, -49, -26, -10, 0, 0, 0}, {0, 0, -38, -15, -5, 0, 0, 0}}},
};

ValuePair scaled(ValuePair v, double fm, double fe) {
  return make_pair(int(mg_value(v) * fm), int(eg_value(v) * fe));
}

int popcnt(Bitboard b) { return popcount<false>(b); }

// Squares our pawns can step onto without being lost to a pawn exchange: not
// attacked by enemy pawns, or covered twice, or covered once against at most
// one enemy attack.
template <Color Us>
Bitboard safe_squares(Bitboard ours, Bitboard theirs) {
  constexpr Color Them = ~Us;
  const Bitboard o7 = shift_cap7<Us>(ours), o9 = shift_cap9<Us>(ours);
  const Bitboard t7 = shift_cap7<Them>(theirs), t9 = shift_cap9<Them>(theirs);
  return ~(t7 | t9) | (o7 & o9) | ((o7 ^ o9) & ~(t7 & t9));
}

template <Color Us>
Bitboard behind_ranks(Square s) {
  return forward_ranks[~Us][rank_of(s)];
}

// Relative rank of the nearest pawn of the set on the file at or above the
// king's rank, 0 when there is none.
template <Color Us>
int nearest_rank(Bitboard pawns, int file, Square ksq) {
  const Bitboard b = pawns & file_bb(file) & (rank_bb(rank_of(ksq)) | forward_ranks[Us][rank_of(ksq)]);
  if (!b) return 0;
  return relative_rank(Us, Us == WHITE ? lsb(b) : msb(b));
}

template <Color Us>
int32_t shelter_of(const Position& pos, Square ksq) {
  constexpr Color Them = ~Us;
  constexpr int Up = Us == WHITE ? 8 : -8;
  if (relative_rank(Us, ksq) >= 4) return -256;
  const Bitboard ours = pos.of(Us, PAWN), theirs = pos.of(Them, PAWN);
  const int f0 = std::clamp(file_of(ksq), 1, 6);
  const bool queen_side = f0 <= 3;
  const int files[3] = {queen_side ? f0 + 1 : f0 - 1, f0, queen_side ? f0 - 1 : f0 + 1};
  const int far = std::abs(file_of(pos.king_square(Them)) - f0) >= 3;
  int32_t value = 0;
  for (int role = ROLE_CENTRE; role <= ROLE_EDGE; ++role) {
    const int own = nearest_rank<Us>(ours, files[role], ksq);
    const int enemy = nearest_rank<Us>(theirs, files[role], ksq);
    const int blocked = own >= 1 && enemy == own + 1;
    value += Shelter[role][own] + Storm[far][blocked][role][enemy];
  }
  const Square front = ksq + Up;
  if (pos.board[front] == make_piece(Us, PAWN)) return value;
  const Square diagonal = front + (queen_side ? 1 : -1);  // towards the centre
  if (pos.board[diagonal] != make_piece(Us, PAWN)) value -= 12;
  if (pos.board[front] == make_piece(Them, PAWN)) value += 16;
  return value;
}

// Per-pawn facts of one side that do not depend on the kings.
template <Color Us>
void structure_side(PawnStructure& ps, const Position& pos) {
  constexpr Color Them = ~Us;
  constexpr int Up = Us == WHITE ? 8 : -8;
  const Bitboard ours = pos.of(Us, PAWN), theirs = pos.of(Them, PAWN);
  const Bitboard safe = safe_squares<Us>(ours, theirs);
  ValuePair score = 0;

  for (Bitboard b = ours; b;) {
    const Square s = pop_lsb(b);
    const int f = file_of(s), r = relative_rank(Us, s);
    const Square front = s + Up;
    const Bitboard behind = behind_ranks<Us>(s);
    const bool open = !(forward_file[Us][s] & (ours | theirs));
    const bool doubled = forward_file[Us][s] & ours;
    const bool passed = !doubled && !(passed_pawn_mask[Us][s] & theirs);
    const Bitboard neighbours = ours & adjacent_files[f];
    const Bitboard supporters = pawn_attacks[Them][s] & ours;
    const Bitboard phalanx = neighbours & rank_bb(rank_of(s));
    const bool rammed = theirs & sq_bb(front);
    const bool lever = pawn_attacks[Us][s] & theirs;
    const bool ahead_safe = safe & sq_bb(front);
    const bool backward = r <= 3 && neighbours && !ahead_safe && !(neighbours & behind);
    const bool no_support_behind = neighbours && !(neighbours & (rank_bb(rank_of(s)) | behind));

    bool stuck = false;
    if (!ahead_safe && neighbours && (neighbours & behind) && !supporters) {
      stuck = true;
      for (Bitboard rear = neighbours & behind; rear && stuck;) {
        const Square p = pop_lsb(rear);
        const Bitboard way = forward_file[Us][p] & behind;
        const bool way_unsafe = way & ~safe;
        const bool p_unsupported =
            !(ours & adjacent_files[file_of(p)] & (rank_bb(rank_of(p)) | behind_ranks<Us>(p)));
        stuck = way_unsafe && p_unsupported;
      }
    }

    if (open) ++ps.complexity;
    if (!neighbours) score += open ? IsolatedOpen[f] : Isolated[f];
    if (r <= 3) {
      if (backward) score += open ? BackwardOpen[f] : Backward[f];
      else if (no_support_behind && open) score += BackwardHalf[f];
    }
    if (doubled) score += Doubled[f];
    if (lever) score += Lever[r];
    if (supporters || phalanx) {
      const bool in_phalanx = phalanx;
      const Bitboard sides = phalanx | supporters;
      const bool both = in_phalanx ? (f > 0 && (sides & file_bb(f - 1)) && f < 7 && (sides & file_bb(f + 1)))
                                   : bool(supporters);
      score += Connected[in_phalanx][both][rammed][passed][Us == WHITE ? s : s ^ 56];
    }
    if (passed) {
      ps.passed[Us] |= sq_bb(s);
      score += PassedFile[f] + PassedRank[r];
    } else if (open && (safe & sq_bb(s)) && !(forward_file[Us][s] & ~safe)) {
      score += Candidate[r];
    }
    if (rammed && !lever && r == 5 && f != 3 && f != 4) ps.wedges[Us] |= sq_bb(s);
    if (backward || stuck || rammed || doubled || (!neighbours && !ahead_safe))
      ps.outposts[Them] &= ~pawn_attacks[Us][s];
    else
      ps.outposts[Them] &= ~pawn_attack_span[Us][s];
  }
  ps.score[Us] = score;

  int file_mask = 0;
  for (int f = 0; f < 8; ++f)
    if (ours & file_bb(f)) file_mask |= 1 << f;
  ps.fileSpan |= uint8_t(file_mask);
  const int n = __builtin_popcount(file_mask);
  const int w = file_mask ? (31 - __builtin_clz(file_mask)) - __builtin_ctz(file_mask) : 0;
  ps.fewFiles[Us] = int8_t((7 - w) * std::max(0, 5 - n));
}

// The terms of one side that depend on where the kings stand and on the
// castling rights, added to the side's structure score.
template <Color Us>
ValuePair king_side(PawnEntry& e, const PawnStructure& ps, const Position& pos) {
  constexpr Color Them = ~Us;
  constexpr int Up = Us == WHITE ? 8 : -8;
  const Bitboard ours = pos.of(Us, PAWN);
  const Square ksq = pos.king_square(Us), eksq = pos.king_square(Them);
  ValuePair score = ps.score[Us];

  // Kings near the pawns, own ones and the enemy's, and nearer still to passers.
  int own_sum = 0, enemy_sum = 0;
  for (Bitboard b = ours; b;) {
    const Square s = pop_lsb(b);
    own_sum += distance(ksq, s) + std::abs(file_of(ksq) - file_of(s));
    enemy_sum += distance(eksq, s) + std::abs(file_of(eksq) - file_of(s));
  }
  for (Bitboard b = ps.passed[Us]; b;) {
    const Square s = pop_lsb(b);
    const int r = relative_rank(Us, s);
    const Square front = s + Up;
    if (distance(ksq, front) <= 1) score += PassedKingSupport[r];
    if (passed_pawn_mask[Us][s] & sq_bb(eksq)) score += PassedKingAhead;
    const Square promo = make_square(file_of(s), Us == WHITE ? 7 : 0);
    own_sum += distance(ksq, promo) + 2 * distance(ksq, front);
    enemy_sum += 2 * (distance(eksq, promo) + 2 * distance(eksq, front));
  }
  score += (56 * enemy_sum - 80 * own_sum) / 32;

  if (file_of(eksq) != 3 && file_of(eksq) != 4)
    for (Bitboard b = ps.wedges[Us]; b;)
      if (king_attacks[eksq] & pawn_attacks[Us][pop_lsb(b)]) {
        e.kingDanger[Us] += WEDGE_DANGER;
        score += Wedge;
      }

  // Rook traps: the files between the king and the nearer edge all hold own pawns.
  if (relative_rank(Us, ksq) <= 1) {
    const int kf = file_of(ksq);
    const Bitboard files = kf <= 3 ? files_west[kf] : files_east[kf];
    bool all_blocked = true;
    for (int f = 0; f < 8; ++f)
      if ((files & file_bb(f)) && !(ours & file_bb(f))) all_blocked = false;
    if (all_blocked) {
      Bitboard ranks = rank_bb(rank_of(ksq));
      if (relative_rank(Us, ksq) == 0) ranks |= rank_bb(rank_of(ksq + Up));
      e.rookTraps |= files & ranks;
    }
  }

  int32_t shelter = shelter_of<Us>(pos, ksq);
  const uint32_t rights = pos.state->castling_rights;
  if (rights & (Us == WHITE ? WHITE_OO : BLACK_OO))
    shelter = std::max(shelter, shelter_of<Us>(pos, Us == WHITE ? SQ_G1 : SQ_G8));
  if (rights & (Us == WHITE ? WHITE_OOO : BLACK_OOO))
    shelter = std::max(shelter, shelter_of<Us>(pos, Us == WHITE ? SQ_C1 : SQ_C8));
  e.shelter[Us] = shelter;

  const Bitboard a7 = shift_cap7<Us>(ours), a9 = shift_cap9<Us>(ours);
  const Bitboard zone = king_zone[Them][eksq], ring = king_attacks[eksq];
  e.zoneAttacks[Us] = int8_t(popcnt(a7 & zone) + popcnt(a9 & zone));
  e.ringAttacks[Us] = int8_t(popcnt(a7 & ring) + popcnt(a9 & ring));
  e.attackWeight[Us] = int8_t(((a7 | a9) & ring) ? 16 : ((a7 | a9) & zone) ? 9 : 0);
  return score;
}

constexpr Bitboard OUTPOST_FILES = ~(FILE_A_BB | FILE_H_BB);
// Keeps the key of a structure without pawns away from 0, the empty slot.
constexpr Key STRUCTURE_KEY_SALT = 0x6A09E667F3BCC908ULL;

void compute_structure(PawnStructure& ps, const Position& pos, Key key) {
  const Bitboard all_pawns = pos.of(WHITE, PAWN) | pos.of(BLACK, PAWN);
  ps = PawnStructure{};
  ps.key = key;
  ps.complexity = int8_t(popcnt(all_pawns));
  ps.outposts[WHITE] = (rank_bb(3) | rank_bb(4) | rank_bb(5)) & OUTPOST_FILES & ~all_pawns;
  ps.outposts[BLACK] = (rank_bb(2) | rank_bb(3) | rank_bb(4)) & OUTPOST_FILES & ~all_pawns;
  structure_side<WHITE>(ps, pos);
  structure_side<BLACK>(ps, pos);
  const int mask = ps.fileSpan;
  ps.fileSpan = mask ? uint8_t((31 - __builtin_clz(mask)) - __builtin_ctz(mask) + 1) : 0;
}

void complete_entry(PawnEntry& e, const PawnStructure& ps, const Position& pos, ValuePair* side_scores) {
  e = PawnEntry{};
  e.key = pos.state->pawn_key;
  e.complexity = int8_t(ps.complexity + std::abs(file_of(pos.king_square(WHITE)) - file_of(pos.king_square(BLACK))));
  e.fileSpan = ps.fileSpan;
  for (Color c : {WHITE, BLACK}) {
    e.fewFiles[c] = ps.fewFiles[c];
    e.passed[c] = ps.passed[c];
    e.outposts[c] = ps.outposts[c];
  }
  const ValuePair white = king_side<WHITE>(e, ps, pos);
  const ValuePair black = king_side<BLACK>(e, ps, pos);
  e.score = white - black;
  if (side_scores) {
    side_scores[WHITE] = white;
    side_scores[BLACK] = -black;
  }
}

}  // namespace

int32_t king_shelter(const Position& pos, Color c, Square ksq) {
  return c == WHITE ? shelter_of<WHITE>(pos, ksq) : shelter_of<BLACK>(pos, ksq);
}

Key structure_key(const Position& pos) {
  return pos.state->pawn_key ^ zobrist_castle[pos.state->castling_rights] ^
         zobrist_psq[make_piece(WHITE, KING)][pos.king_square(WHITE)] ^
         zobrist_psq[make_piece(BLACK, KING)][pos.king_square(BLACK)] ^ STRUCTURE_KEY_SALT;
}

void compute_pawn_entry(PawnEntry& e, const Position& pos, ValuePair* side_scores) {
  PawnStructure ps;
  compute_structure(ps, pos, structure_key(pos));
  complete_entry(e, ps, pos, side_scores);
}

void init_pawns() {
  for (int f = 0; f < 4; ++f) {
    Isolated[7 - f] = Isolated[f];
    Doubled[7 - f] = Doubled[f];
    Backward[7 - f] = Backward[f];
  }
  for (int f = 0; f < 8; ++f) {
    IsolatedOpen[f] = scaled(Isolated[f], 1.2, 1.2);
    BackwardOpen[f] = scaled(Backward[f], 1.6, 1.6);
    BackwardHalf[f] = scaled(Backward[f], 0.5, 0.5);
  }
  for (int r = 0; r < 8; ++r) Candidate[r] = scaled(PassedRank[r], 0.5, 0.5);
  for (Square s = 0; s < 64; ++s) {
    const int r = rank_of(s);
    ValuePair v[2][2][2] = {};  // [phalanx][both sides][rammed]
    v[0][1][0] = Supported[r];
    v[0][1][1] = scaled(Supported[r], 0.54, 0.35);
    v[1][0][0] = Phalanx[r];
    v[1][0][1] = scaled(Phalanx[r], 0.49, 0.52);
    v[1][1][0] = scaled(Phalanx[r], 1.15, 1.26);
    v[1][1][1] = scaled(Phalanx[r], 0.5635, 0.6552);
    for (int ph = 0; ph < 2; ++ph)
      for (int both = 0; both < 2; ++both)
        for (int ram = 0; ram < 2; ++ram) {
          Connected[ph][both][ram][0][s] = v[ph][both][ram];
          Connected[ph][both][ram][1][s] = scaled(v[ph][both][ram], 1.0, 1.42);
        }
  }
}

PawnTables* AllocPawnTable() {
  auto* table = new PawnTables;
  ClearPawnTable(table);
  return table;
}

void ClearPawnTable(PawnTables* table) { std::memset(static_cast<void*>(table), 0, sizeof(PawnTables)); }

void FreePawnTable(PawnTables* table) { delete table; }

namespace PawnTable {

PawnEntry& probe(const Position& pos, SearchState& ss) {
  const Key key = pos.state->pawn_key;
  PawnEntry& e = ss.pawn_table->entries[key & (PAWN_TABLE_SIZE - 1)];
  ++ss.pawn_probes;
  if (e.key == key) {
    ++ss.pawn_hits;
    return e;
  }
  const Key skey = structure_key(pos);
  PawnStructure& ps = ss.pawn_table->structures[skey & (PAWN_STRUCTURE_TABLE_SIZE - 1)];
  if (ps.key != skey) compute_structure(ps, pos, skey);
  complete_entry(e, ps, pos, nullptr);
  return e;
}

}  // namespace PawnTable

}  // namespace vx

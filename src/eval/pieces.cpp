#include "eval/pieces.h"

#include <algorithm>

#include "eval/pawns.h"

namespace vx {

namespace {

constexpr ValuePair S(int mg, int eg) { return make_pair(mg, eg); }

constexpr ValuePair MobilityKnight[9] = {S(-54, -48), S(-11, -3), S(18, 25), S(37, 40), S(51, 48),
                                         S(58, 59),   S(73, 64),  S(75, 70), S(82, 71)};
constexpr ValuePair MobilityBishop[14] = {S(-49, -57), S(-9, -15), S(21, 17), S(36, 36), S(52, 45),
                                          S(65, 55),   S(67, 68),  S(73, 70), S(78, 71), S(80, 72),
                                          S(84, 80),   S(87, 81),  S(97, 82), S(98, 83)};
constexpr ValuePair MobilityRook[15] = {S(-42, -62), S(-8, -9), S(23, 31), S(27, 47),  S(32, 71),
                                        S(34, 76),   S(37, 89), S(45, 97), S(49, 99),  S(53, 112),
                                        S(57, 115),  S(59, 118), S(61, 120), S(63, 122), S(65, 124)};
constexpr ValuePair MobilityQueen[28] = {
    S(-35, -56), S(-8, -16), S(8, 2),   S(9, 22),  S(25, 24), S(27, 32), S(34, 41), S(38, 46), S(41, 51), S(44, 54),
    S(47, 57),   S(49, 60),  S(51, 63), S(53, 66), S(55, 68), S(57, 70), S(59, 72), S(61, 74), S(63, 76), S(65, 78),
    S(67, 80),   S(69, 82),  S(71, 84), S(73, 86), S(75, 88), S(77, 90), S(79, 92), S(81, 94)};

constexpr int KnightSpan[9] = {0, 0, 0, 0, -1, -2, -4, -7, -8};
constexpr int BishopSpan[9] = {0, 0, 0, 0, 1, 2, 3, 5, 6};

// Outpost bases by rank 4-6 and files a-d.
constexpr int KnightOutpostBase[3][4] = {{0, 3, 19, 23}, {0, 7, 30, 37}, {0, 2, 12, 30}};
constexpr int BishopOutpostBase[3][4] = {{0, 2, 8, 9}, {0, 5, 7, 11}, {0, 3, 4, 5}};
enum { OUTPOST_PLAIN, OUTPOST_SUPPORTED, OUTPOST_UNCHALLENGEABLE };
// [kind: 0 knight, 1 bishop][variant][square, White's view]
ValuePair Outpost[2][3][64];

constexpr ValuePair RookSemiOpen[6] = {S(37, 6), S(28, 6), S(28, 1), S(20, 7), S(38, 25), S(8, 4)};
constexpr ValuePair RookOpen[6] = {S(65, 28), S(38, 10), S(51, 27), S(42, 17), S(47, 33), S(47, 23)};
constexpr int SemiOpenDanger[3] = {4, 1, 0};
constexpr int OpenDanger[3] = {4, 3, 0};
constexpr ValuePair TrappedRook[8] = {S(-161, 0), S(-122, 0), S(-84, 0), S(-46, 0),
                                      S(-69, 0),  S(-52, 0),  S(-35, 0), S(-19, 0)};
constexpr ValuePair RookSeventhReach = S(11, 9);
constexpr ValuePair RookOnSeventh = S(19, 21);
constexpr ValuePair RookSeventhKing = S(7, 30);
constexpr ValuePair RookSeventhDoubled = S(13, 53);

constexpr ValuePair KnightBlockader = S(20, 23), BishopBlockader = S(16, 19);
constexpr ValuePair MinorShielded = S(14, 0), MinorNearKing = S(10, 0);
constexpr ValuePair BishopBadPawn = S(-6, -8);

// Lines to the enemy king through one piece.
constexpr ValuePair DiscoveryPawnCapture = S(28, 18), DiscoveryPawnPush = S(26, 24);
constexpr ValuePair DiscoveryPiece = S(47, 35);
constexpr ValuePair PinnedMinorDefended = S(25, 31), PinnedMinor = S(34, 42);
constexpr ValuePair PinnedDefended = S(23, 23), Pinned = S(36, 38);
constexpr ValuePair PinnedHeavy = S(78, 74);
constexpr int LINE_DANGER = 6;

// King-zone attack weights: W per attacker, P pattern bits, A1/A2 by ring hits.
struct KingAttackWeights {
  int weight, pattern, ring_one, ring_more;
};
constexpr KingAttackWeights KnightKA{19, 2, 5, 9}, BishopKA{12, 8, 3, 7}, RookKA{21, 32, 4, 6}, QueenKA{28, 128, 4, 9};

template <PieceType Kind> constexpr KingAttackWeights king_attack_weights() {
  return Kind == KNIGHT ? KnightKA : Kind == BISHOPS ? BishopKA : Kind == ROOK ? RookKA : QueenKA;
}

template <PieceType Kind>
Bitboard attacks_of(Square s, Bitboard occ) {
  if constexpr (Kind == KNIGHT) return knight_attacks[s];
  else if constexpr (Kind == BISHOPS) return BishopAttacks(s, occ);
  else if constexpr (Kind == ROOK) return RookAttacks(s, occ);
  else return QueenAttacks(s, occ);
}

template <PieceType Kind>
ValuePair mobility_bonus(int n) {
  if constexpr (Kind == KNIGHT) return MobilityKnight[n];
  else if constexpr (Kind == BISHOPS) return MobilityBishop[n];
  else if constexpr (Kind == ROOK) return MobilityRook[n];
  else return MobilityQueen[n];
}

// The single piece between a slider on s and the enemy king, judged by what
// it can do: discover a check (own piece) or stay pinned (enemy piece).
template <PieceType Kind, Color Us>
void king_line(const Position& pos, EvalInfo& ei, AttackInfo& ai, Square s) {
  constexpr Color Them = ~Us;
  const Square ksq = pos.king_square(Them);
  const Bitboard lines = Kind == BISHOPS ? bishop_pseudo[s] : Kind == ROOK ? rook_pseudo[s] : queen_pseudo[s];
  if (!(lines & sq_bb(ksq))) return;
  const Bitboard b = between[s][ksq] & pos.occupied();
  if (!b || more_than_one(b)) return;
  const Square bsq = lsb(b);
  king_blockers(ai, Them) |= b;
  const Piece p = pos.board[bsq];
  const PieceType t = type_of(p);
  if (color_of(p) == Us) {
    if (t == PAWN) {
      constexpr int Up = Us == WHITE ? 8 : -8;
      if (file_of(bsq) == file_of(s)) {
        if (pawn_attacks[Us][bsq] & pos.by_color(Them)) add_score<Us>(ei, DiscoveryPawnCapture);
      } else if (pos.board[bsq + Up] == NO_PIECE) {
        add_score<Us>(ei, DiscoveryPawnPush);
      }
    } else {
      add_score<Us>(ei, DiscoveryPiece);
      ei.kingDanger[Them] += LINE_DANGER;
    }
    return;
  }
  if (t == PAWN) return;
  const bool defended = ei.pawnAttacks[Them] & b;
  ValuePair bonus = 0;
  if constexpr (Kind == BISHOPS) {
    if (t == KNIGHT) bonus = defended ? PinnedMinorDefended : PinnedMinor;
    else if (t == ROOK || t == QUEEN) bonus = PinnedHeavy;
  } else if constexpr (Kind == ROOK) {
    if (t == KNIGHT || is_bishop(p)) bonus = defended ? PinnedDefended : Pinned;
    else if (t == QUEEN) bonus = PinnedHeavy;
  } else {
    const bool diagonal = bishop_pseudo[s] & sq_bb(ksq);
    const bool cannot_move_along =
        t == KNIGHT || (is_bishop(p) && !diagonal) || (t == ROOK && diagonal);
    if (cannot_move_along) bonus = defended ? PinnedDefended : Pinned;
  }
  if (bonus) {
    add_score<Us>(ei, bonus);
    ei.kingDanger[Them] += LINE_DANGER;
  }
}

// Outposts, blockades, pawn shields and king proximity of a knight or bishop.
template <PieceType Kind, Color Us>
void minor_terms(const Position& pos, EvalInfo& ei, Square s) {
  constexpr Color Them = ~Us;
  constexpr int Up = Us == WHITE ? 8 : -8;
  constexpr int K = Kind == KNIGHT ? 0 : 1;
  const Square rs = Us == WHITE ? s : s ^ 56;
  if (ei.pawns->outposts[Us] & sq_bb(s)) {
    if (ei.pawnAttacks[Us] & sq_bb(s)) {
      const Bitboard same_colour_bishops = pos.of(Them, bishop_type_on(s));
      const bool unchallengeable = !pos.of(Them, KNIGHT) && !same_colour_bishops;
      add_score<Us>(ei, Outpost[K][unchallengeable ? OUTPOST_UNCHALLENGEABLE : OUTPOST_SUPPORTED][rs]);
    } else {
      add_score<Us>(ei, Outpost[K][OUTPOST_PLAIN][rs]);
    }
  }
  const Bitboard push_squares = Us == WHITE ? ei.pawns->passed[Them] >> 8 : ei.pawns->passed[Them] << 8;
  if (push_squares & sq_bb(s)) add_score<Us>(ei, Kind == KNIGHT ? KnightBlockader : BishopBlockader);
  const int r = relative_rank(Us, s);
  if (r >= 1 && r <= 3 && pos.board[s + Up] == make_piece(Us, PAWN)) add_score<Us>(ei, MinorShielded);
  if (ei.kingZone[Us] & sq_bb(s)) add_score<Us>(ei, MinorNearKing);
}

template <Color Us, bool HwPopcnt>
void rook_terms(const Position& pos, EvalInfo& ei, Square s, Bitboard a, int mobility) {
  constexpr Color Them = ~Us;
  const Bitboard seventh = rank_bb(Us == WHITE ? 6 : 1), eighth = rank_bb(Us == WHITE ? 7 : 0);
  const Bitboard own_heavy = pos.of(Us, ROOK) | pos.of(Us, QUEEN);
  const Square eksq = pos.king_square(Them);
  if (!(pos.of(Us, PAWN) & forward_file[Us][s])) {
    int blocked = 0;
    ValuePair seventh_bonus = 0;
    if (a & seventh) {
      seventh_bonus = RookSeventhReach;
    } else {
      const Bitboard blockers = pos.of(Them, KNIGHT) | pos.bishops(Them) | pos.of(Them, PAWN);
      blocked = (forward_file[Us][s] & blockers & ei.pawnAttacks[Them]) ? 1 : 0;
    }
    const int df = file_of(s) - file_of(eksq);
    const int d = std::min(df < 0 ? -df : df, 2);
    if (pos.of(Them, PAWN) & forward_file[Us][s]) {
      add_score<Us>(ei, RookSemiOpen[blocked + 2 * d]);
      ei.kingDanger[Them] += SemiOpenDanger[d];
    } else {
      add_score<Us>(ei, RookOpen[blocked + 2 * d]);
      ei.kingDanger[Them] += OpenDanger[d];
    }
    add_score<Us>(ei, seventh_bonus);
    if (a & own_heavy & forward_file[Them][s]) add_score<Us>(ei, seventh_bonus);
  } else if (mobility < 4 && (ei.pawns->rookTraps & sq_bb(s))) {
    const bool can_castle = pos.state->castling_rights & (Us == WHITE ? WHITE_OO | WHITE_OOO : BLACK_OO | BLACK_OOO);
    add_score<Us>(ei, TrappedRook[(can_castle ? 4 : 0) + mobility]);
  }
  if (seventh & sq_bb(s)) {
    if ((pos.of(Them, PAWN) | pos.of(Them, KING)) & (seventh | eighth)) {
      add_score<Us>(ei, RookOnSeventh);
      if (sq_bb(eksq) & eighth) add_score<Us>(ei, RookSeventhKing);
      if (a & own_heavy & seventh) add_score<Us>(ei, RookSeventhDoubled);
    }
  }
}

}  // namespace

template <PieceType Kind, Color Us, bool HwPopcnt>
void evaluate_pieces(const Position& pos, EvalInfo& ei, Bitboard pieces, AttackInfo& ai, Bitboard area) {
  constexpr Color Them = ~Us;
  constexpr KingAttackWeights ka = king_attack_weights<Kind>();
  const Bitboard occ = pos.occupied();
  while (pieces) {
    const Square s = pop_lsb(pieces);
    const Bitboard a = attacks_of<Kind>(s, occ);
    attacked(ai, Us) |= a;
    ei.attackedBy[Us][Kind] |= a;
    const int mobility = popcount<HwPopcnt>(a & area);
    add_score<Us>(ei, mobility_bonus<Kind>(mobility));

    Bitboard king_set = a;
    if constexpr (Kind == KNIGHT) {
      add_score<Us>(ei, make_pair(0, KnightSpan[ei.pawns->fileSpan]));
      ei.threatened |= a & (pos.of(Them, ROOK) | pos.of(Them, QUEEN));
      minor_terms<Kind, Us>(pos, ei, s);
    } else if constexpr (Kind == BISHOPS) {
      king_line<Kind, Us>(pos, ei, ai, s);
      add_score<Us>(ei, make_pair(0, BishopSpan[ei.pawns->fileSpan]));
      ei.threatened |= a & (pos.of(Them, ROOK) | pos.of(Them, QUEEN));
      minor_terms<Kind, Us>(pos, ei, s);
      const Bitboard colour = is_dark(s) ? DARK_SQUARES : ~DARK_SQUARES;
      add_score<Us>(ei, BishopBadPawn * popcount<HwPopcnt>(pos.of(Us, PAWN) & colour));
      king_set = BishopAttacks(s, occ ^ pos.of(Us, QUEEN));
      ei.xrayAttacks[Us][Kind] |= king_set;
    } else if constexpr (Kind == ROOK) {
      king_line<Kind, Us>(pos, ei, ai, s);
      ei.threatened |= a & pos.of(Them, QUEEN);
      rook_terms<Us, HwPopcnt>(pos, ei, s, a, mobility);
      king_set = RookAttacks(s, occ ^ (pos.of(Us, QUEEN) | pos.of(Us, ROOK)));
      ei.xrayAttacks[Us][Kind] |= king_set;
    } else {
      king_line<Kind, Us>(pos, ei, ai, s);
    }

    if (king_set & ei.kingZone[Them]) {
      ++ei.attackerCount[Us];
      ei.attackWeight[Us] += ka.weight;
      if constexpr (Kind == QUEEN) ei.attackPattern[Us] |= ka.pattern;
      else ei.attackPattern[Us] += ka.pattern;
      ei.zoneAttackCount[Us] += popcount<HwPopcnt>(king_set & ei.kingZone[Them]);
      if (king_set & ei.kingRing[Them]) {
        const int hits = popcount<HwPopcnt>(king_set & ei.kingRing[Them]);
        ei.adjacentAttackCount[Us] += hits;
        ei.attackWeight[Us] += hits < 2 ? ka.ring_one : ka.ring_more;
      }
    }
  }
}

void init_piece_tables() {
  const int (*bases[2])[4] = {KnightOutpostBase, BishopOutpostBase};
  for (int k = 0; k < 2; ++k)
    for (Square s = 0; s < 64; ++s) {
      const int r = rank_of(s), f = file_of(s) < 4 ? file_of(s) : 7 - file_of(s);
      const int b = r >= 3 && r <= 5 ? bases[k][r - 3][f] : 0;
      const int mg = int(1.75 * b), eg = int(0.4 * b);
      Outpost[k][OUTPOST_PLAIN][s] = make_pair(mg, eg);
      Outpost[k][OUTPOST_SUPPORTED][s] = make_pair(int(1.45 * mg), int(1.45 * eg));
      Outpost[k][OUTPOST_UNCHALLENGEABLE][s] = make_pair(int(2.5 * mg), int(2.5 * eg));
    }
}

#define VX_INSTANTIATE(Kind, C, H) \
  template void evaluate_pieces<Kind, C, H>(const Position&, EvalInfo&, Bitboard, AttackInfo&, Bitboard);
#define VX_INSTANTIATE_KIND(Kind)                                                                  \
  VX_INSTANTIATE(Kind, WHITE, true) VX_INSTANTIATE(Kind, BLACK, true) VX_INSTANTIATE(Kind, WHITE, false) \
  VX_INSTANTIATE(Kind, BLACK, false)
VX_INSTANTIATE_KIND(KNIGHT)
VX_INSTANTIATE_KIND(BISHOPS)
VX_INSTANTIATE_KIND(ROOK)
VX_INSTANTIATE_KIND(QUEEN)
#undef VX_INSTANTIATE_KIND
#undef VX_INSTANTIATE

}  // namespace vx

#include "eval/kpk.h"

#include "board/attacks.h"

namespace vx {

namespace {

constexpr int PAWN_INDICES = 24;

// [side to move: 0 strong, 1 weak][pawn index * 64 + weak king] -> strong king squares that win.
Bitboard kpk_table[2][PAWN_INDICES * 64];

int pawn_index(Square pawn) { return (rank_of(pawn) - 1) * 4 + file_of(pawn); }
Square pawn_square(int index) { return make_square(index % 4, index / 4 + 1); }

// Squares with a king step into b: where a king stands that can move into b.
Bitboard king_reach(Bitboard b) {
  Bitboard r = 0;
  while (b) r |= king_attacks[pop_lsb(b)];
  return r;
}

// Strong-king squares that are legal with the given side to move.
Bitboard legal_kings(Square pawn, Square weak, bool strong_to_move) {
  if (weak == pawn) return 0;
  if (strong_to_move && (pawn_attacks[WHITE][pawn] & sq_bb(weak))) return 0;
  return ~(king_attacks[weak] | sq_bb(weak) | sq_bb(pawn));
}

// Strong side to move wins at once by promoting: the queen cannot be taken.
Bitboard promotion_wins(Square pawn, Square weak) {
  const Square q = pawn + 8;
  if (rank_of(pawn) != 6 || weak == q) return 0;
  Bitboard win = distance(weak, q) > 1 ? ~0ULL : king_attacks[q];
  return win & ~sq_bb(q) & legal_kings(pawn, weak, true);
}

Bitboard strong_to_move(int p, Square weak) {
  const Square pawn = pawn_square(p);
  const Bitboard legal = legal_kings(pawn, weak, true);
  if (!legal) return 0;
  const Bitboard* after = kpk_table[1];
  Bitboard win = promotion_wins(pawn, weak) | king_reach(after[p * 64 + weak]);
  const Square q = pawn + 8;
  if (rank_of(pawn) < 6 && weak != q) {
    win |= after[pawn_index(q) * 64 + weak] & ~sq_bb(q);
    const Square q2 = pawn + 16;
    if (rank_of(pawn) == 1 && weak != q2) win |= after[pawn_index(q2) * 64 + weak] & ~sq_bb(q);
  }
  return win & legal;
}

Bitboard weak_to_move(int p, Square weak) {
  const Square pawn = pawn_square(p);
  const Bitboard legal = legal_kings(pawn, weak, false);
  if (!legal) return 0;
  const Bitboard* after = kpk_table[0];
  Bitboard has_move = 0, escapes = 0;
  for (Bitboard b = king_attacks[weak] & ~pawn_attacks[WHITE][pawn]; b;) {
    const Square to = pop_lsb(b);
    const Bitboard allowed = ~(king_attacks[to] | sq_bb(to));  // strong kings that leave `to` free
    has_move |= allowed;
    // Taking the undefended pawn draws; any other move draws where it is not a loss.
    escapes |= to == pawn ? allowed : allowed & ~after[p * 64 + to];
  }
  return legal & has_move & ~escapes;
}

}  // namespace

void InitKpk() {
  for (auto& table : kpk_table)
    for (Bitboard& b : table) b = 0;
  for (bool changed = true; changed;) {
    changed = false;
    for (int p = 0; p < PAWN_INDICES; ++p)
      for (Square weak = 0; weak < 64; ++weak) {
        const int i = p * 64 + weak;
        const Bitboard s = strong_to_move(p, weak), w = weak_to_move(p, weak);
        changed |= s != kpk_table[0][i] || w != kpk_table[1][i];
        kpk_table[0][i] = s;
        kpk_table[1][i] = w;
      }
  }
}

bool kpk_probe(Square strong_king, Square weak_king, Square pawn, bool strong_to_move_flag) {
  return kpk_table[strong_to_move_flag ? 0 : 1][pawn_index(pawn) * 64 + weak_king] & sq_bb(strong_king);
}

}  // namespace vx

#include "eval/material.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "eval/endgame.h"
#include "search/thread.h"

namespace vx {

namespace {

// Material signatures with their own evaluation function, searched in order.
std::vector<std::pair<Key, uint8_t>> EndgameRegistry;

constexpr int NPM_KNIGHT_BISHOP = 768, NPM_ROOK = 1280, NPM_QUEEN = 2816;
constexpr int ENDGAME_LIMIT = 2816, PHASE_RANGE = 12544;

// Opposite-coloured bishops, by pawn difference and the column of the other
// material, as factors of 64.
constexpr double OppositeBishops[5][6] = {
    {0.45, 0.9, 0.66, 0.9, 0.66, 0.9},     {0.5, 0.92, 0.72, 0.92, 0.72, 0.92},
    {0.6, 0.92, 0.82, 0.92, 0.82, 0.92},   {0.75, 0.95, 0.9, 0.95, 0.9, 0.95},
    {0.85, 0.98, 0.95, 0.98, 0.95, 0.98},
};

// Quadratic imbalance weights, by pawn, knight, bishop, rook, queen.
constexpr int ImbalanceLinear[5] = {-151, -1120, -204, 219, -111};
constexpr int ImbalanceOurs[5][5] = {
    {-18}, {331, 11}, {162, 84, 0}, {33, 36, 126, -93}, {-1, 44, 197, -79, 0},
};
constexpr int ImbalanceTheirs[5][5] = {
    {0}, {8, 0}, {20, 34, 0}, {-47, 16, -54, 0}, {61, 10, 55, 289, 0},
};

int imbalance(const MaterialCount& us, const MaterialCount& them) {
  const int n_us[5] = {us.pawns, us.knights, us.bishops, us.rooks, us.queens};
  const int n_them[5] = {them.pawns, them.knights, them.bishops, them.rooks, them.queens};
  int bonus = 0;
  if (us.bishopPair)
    bonus = 1913 + 55 * us.pawns + 76 * us.knights - 13 * us.rooks - 81 * us.queens - 104 * them.pawns -
            49 * them.knights - 44 * them.bishops - 20 * them.rooks - 13 * them.queens;
  for (int t1 = 0; t1 < 5; ++t1) {
    if (!n_us[t1]) continue;
    int v = ImbalanceLinear[t1];
    for (int t2 = 0; t2 <= t1; ++t2) v += ImbalanceOurs[t1][t2] * n_us[t2] + ImbalanceTheirs[t1][t2] * n_them[t2];
    bonus += n_us[t1] * v;
  }
  return bonus;
}

// Scale factor of a side without pawns that is only a little ahead in pieces.
uint8_t pawnless_scale(const MaterialCount& us, const MaterialCount& them) {
  if (us.minors == them.minors + 1 && us.queens == them.queens && us.majors == them.majors) {
    const bool pair_v_knight = us.bishopPair && them.knights > 0;
    switch (them.minors) {
      case 0: return them.majors ? 5 : 0;
      case 1: return pair_v_knight ? (!them.majors && !them.pawns ? 63 : 48) : 3;
      case 2:
        if (!pair_v_knight) return 5;
        if (them.bishops) return them.majors ? 19 : 12;
        return them.majors ? 51 : 48;
      default: return them.majors ? 38 : 25;
    }
  }
  if (us.npm > them.npm && us.npm - them.npm <= NPM_KNIGHT_BISHOP) {
    if (us.queens && us.pieces > 2) return 8;
    return us.pieces >= 2 ? 6 : 5;
  }
  return SCALE_FACTOR_NORMAL;
}

bool qualifies_for_draw_hint(const MaterialCount& us, const MaterialCount& them) {
  if (us.npm <= NPM_KNIGHT_BISHOP && !us.pawns) return false;
  return (us.npm == them.npm && us.pawns > them.pawns) ||
         (us.npm > them.npm && (us.pawns >= them.pawns || them.pawns <= 2));
}

// Column of the opposite-bishop table for the material beside the bishop, or -1.
int opposite_bishop_column(const MaterialCount& m) {
  if (m.pieces == 1) return 0;
  if (m.knights == 1 && m.majors == 0) return 1;
  if (m.knights == 0 && m.queens == 0 && m.rooks == 1) return 2;
  if (m.knights == 0 && m.queens == 0 && m.rooks == 2) return 3;
  if (m.knights == 0 && m.queens == 1 && m.rooks == 0) return 4;
  if (m.knights == 0 && m.queens == 1 && m.rooks == 1) return 5;
  return -1;
}

bool same_pieces(const MaterialCount& w, const MaterialCount& b) {
  return w.minors == b.minors && w.queens == b.queens && w.majors == b.majors;
}

void set_both(MaterialEntry& e, uint8_t f) { e.scale[WHITE] = e.scale[BLACK] = f; }

// Drawish material kinds; each rule applies only while no earlier one did.
void endgame_kind_scale(MaterialEntry& e, const MaterialCount& w, const MaterialCount& b) {
  auto untouched = [&] { return e.scale[WHITE] == SCALE_FACTOR_NORMAL && e.scale[BLACK] == SCALE_FACTOR_NORMAL; };
  if (untouched() && w.bishops == 1 && b.bishops == 1 && (w.lightBishops != b.lightBishops) && w.minors <= 2 &&
      same_pieces(w, b)) {
    const int d = std::abs(w.pawns - b.pawns);
    if (w.pieces == 1 && b.pieces == 1 && w.pawns <= 1 && b.pawns <= 1) {
      set_both(e, 1);
    } else if (const int k = opposite_bishop_column(w); k >= 0 && d < 5) {
      set_both(e, uint8_t(OppositeBishops[d][k] * 64.0));
    }
  }
  if (untouched() && !w.minors && !b.minors && !w.queens && !b.queens && w.majors == b.majors && w.majors) {
    const int d = std::abs(w.pawns - b.pawns);
    if (d <= 2) set_both(e, d == 0 ? 57 : d == 1 ? 59 : 62);
  }
  if (untouched() && !w.majors && !b.majors && !w.bishops && !b.bishops && w.minors == b.minors && w.knights)
    set_both(e, 70);
  if (untouched() && !w.pieces && !b.pieces) set_both(e, 73);
}

}  // namespace

MaterialCount count_material(Key key, Color c) {
  const Piece base = make_piece(c, NO_PIECE_TYPE);
  MaterialCount m{};
  m.pawns = material_counter(key, base + PAWN);
  m.knights = material_counter(key, base + KNIGHT);
  m.lightBishops = material_counter(key, base + BISHOP_L);
  m.darkBishops = material_counter(key, base + BISHOP_D);
  m.rooks = material_counter(key, base + ROOK);
  m.queens = material_counter(key, base + QUEEN);
  m.bishops = m.lightBishops + m.darkBishops;
  m.minors = m.knights + m.bishops;
  m.majors = m.rooks + m.queens;
  m.pieces = m.minors + m.majors;
  m.npm = m.minors * NPM_KNIGHT_BISHOP + m.rooks * NPM_ROOK + m.queens * NPM_QUEEN;
  m.bishopPair = m.lightBishops && m.darkBishops;
  return m;
}

void compute_material_entry(MaterialEntry& e, Key key) {
  e = MaterialEntry{};
  e.key = key;
  set_both(e, SCALE_FACTOR_NORMAL);
  const MaterialCount w = count_material(key, WHITE), b = count_material(key, BLACK);
  e.phase = uint8_t(std::min(PHASE_MIDGAME, std::max(0, w.npm + b.npm - ENDGAME_LIMIT) * PHASE_MIDGAME / PHASE_RANGE));

  const Key signature = key & MATERIAL_SIGNATURE_MASK;
  for (const auto& [sig, fn] : EndgameRegistry)
    if (sig == signature) {
      e.evalFn = fn;
      return;
    }

  const MaterialCount* side[2] = {&w, &b};
  if (!w.pawns && !b.pawns && same_pieces(w, b) && w.pieces) set_both(e, 0);
  for (Color us : {WHITE, BLACK})
    if (!side[us]->pawns) {
      const uint8_t f = pawnless_scale(*side[us], *side[~us]);
      if (f != SCALE_FACTOR_NORMAL) e.scale[us] = f;
    }

  if (w.pawns + w.pieces + b.pawns + b.pieces <= 4)
    for (Color us : {WHITE, BLACK})
      if (qualifies_for_draw_hint(*side[us], *side[~us])) e.drawHint = us == WHITE ? 1 : -1;

  endgame_kind_scale(e, w, b);

  for (Color us : {WHITE, BLACK}) {
    const MaterialCount &u = *side[us], &t = *side[~us];
    if (!u.majors && u.minors == 1 && u.bishops == 1 && u.pawns) e.scaleFn[us] = us == WHITE ? 1 : 2;
    if (!w.pieces && !b.pieces && u.pawns && !t.pawns) e.scaleFn[us] = us == WHITE ? 3 : 4;
  }

  for (Color us : {WHITE, BLACK}) {
    const MaterialCount &u = *side[us], &t = *side[~us];
    if (u.pieces && same_pieces(u, t) && u.pawns == t.pawns + 1 && u.pawns <= 3)
      e.pawnUpCode = uint8_t(us == WHITE ? 2 * u.pawns - 1 : 2 * u.pawns);
  }

  const int v = (imbalance(w, b) - imbalance(b, w)) / 16;
  e.value = make_pair(v, v);
}

void init_material() {
  init_endgame_functions();
  EndgameRegistry.clear();
  auto sig = [](Piece p, int n) { return (material_key_table[p] * Key(n)) & MATERIAL_SIGNATURE_MASK; };
  EndgameRegistry.push_back({0, 1});
  for (Piece p : {W_KNIGHT, B_KNIGHT}) EndgameRegistry.push_back({sig(p, 1), 1});
  for (Piece p : {W_KNIGHT, B_KNIGHT}) EndgameRegistry.push_back({sig(p, 2), 1});
  for (Piece p : {W_BISHOP_L, B_BISHOP_L, W_BISHOP_D, B_BISHOP_D}) EndgameRegistry.push_back({sig(p, 1), 1});
  EndgameRegistry.push_back({sig(W_PAWN, 1), 2});
  EndgameRegistry.push_back({sig(B_PAWN, 1), 3});
}

MaterialEntry* AllocMaterialTable() {
  auto* table = new MaterialEntry[MATERIAL_TABLE_SIZE];
  ClearMaterialTable(table);
  return table;
}

void ClearMaterialTable(MaterialEntry* table) {
  std::memset(static_cast<void*>(table), 0, sizeof(MaterialEntry) * MATERIAL_TABLE_SIZE);
}

void FreeMaterialTable(MaterialEntry* table) { delete[] table; }

namespace MaterialTable {

MaterialEntry& probe(const Position& pos, SearchState& ss) {
  const Key key = pos.state->material_key;
  MaterialEntry& e = ss.material_table[(key >> 48) & (MATERIAL_TABLE_SIZE - 1)];
  ++ss.material_probes;
  if (e.key == key) {
    ++ss.material_hits;
    return e;
  }
  compute_material_entry(e, key);
  return e;
}

}  // namespace MaterialTable

}  // namespace vx

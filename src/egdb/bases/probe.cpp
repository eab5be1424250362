// Probing the Vorlaxenbases: colours normalised so that the stronger side is
// White, the table found by signature, the index walked through the
// side-to-move part's diagram, or a one-ply search where that part is missing.
#include "board/bitboard.h"
#include "board/position.h"
#include "egdb/bases/bases.h"
#include "egdb/bases/index.h"
#include "egdb/bases/library_moves.h"
#include "egdb/bases/library_position.h"
#include "egdb/bases/registry.h"

namespace vx {

namespace {

// A missing side-to-move part is answered through the other part; a chain of
// missing parts longer than this (only broken files make one) gives no answer.
constexpr int MAX_FALLBACK_DEPTH = 4;

BaseMaterial MaterialOf(const CChessPosition& p) {
  BaseMaterial m;
  for (int kind = 0; kind < BASE_KINDS; ++kind) {
    m.count[0][kind] = uint8_t(p.counts[LIB_QUEEN + kind] & 7);
    m.count[1][kind] = uint8_t(p.counts[LIB_QUEEN + LIB_BLACK + kind] & 7);
  }
  return m;
}

uint32_t Permute(uint32_t index, const uint8_t* perm) {
  uint32_t permuted = 0;
  for (uint32_t b = index; b; b &= b - 1) permuted |= 1u << perm[__builtin_ctz(b)];
  return permuted;
}

bool ProbeFrom(const CChessPosition& p, int depth, int& result);

// Every legal move probed: a loss of the opponent wins, then a reply without
// an answer spoils the answer, then a draw draws, else the side to move loses.
bool AnswerByOnePly(const CChessPosition& q, int depth, int& result) {
  if (depth >= MAX_FALLBACK_DEPTH) return false;
  CChessPosition p = q;
  bool any = false, win = false, unanswered = false, draw = false;
  ForEachLegalLibraryMove(p, [&](uint32_t) {
    int r = 0;
    const bool answered = ProbeFrom(p, depth + 1, r);
    any = true;
    win = answered && r == -1;
    unanswered |= !answered;
    draw |= answered && r == 0;
    return !win;
  });
  if (!any) {
    result = LibraryInCheck(p) ? -1 : 0;
    return true;
  }
  if (win) {
    result = 1;
    return true;
  }
  if (unanswered) return false;
  result = draw ? 0 : -1;
  return true;
}

bool ProbeTable(const CChessPosition& q, int depth, int& result) {
  const BaseTable* t = base_registry().find(MaterialOf(q).signature());
  if (!t) return false;
  if (!t->has_part(q.white_to_move() ? 0 : 1)) return AnswerByOnePly(q, depth, result);
  return ProbeStoredPart(*t, q, result);
}

bool ProbeFrom(const CChessPosition& p, int depth, int& result) {
  if (!MaterialOf(p).stored_swapped()) return ProbeTable(p, depth, result);
  CChessPosition mirrored;
  MirrorColours(p, mirrored);
  return ProbeTable(mirrored, depth, result);
}

template <Color Us>
void SetLibraryPosition(const Position& pos, CChessPosition& p) {
  p.clear();
  for (Bitboard b = pos.occupied(); b;) {
    const Square s = pop_lsb(b);
    p.put(LibraryCode(pos.piece_on(s)), s);
  }
  p.ep_square = Square(pos.state->ep_square);
  p.set_white_to_move(Us == WHITE);
}

template <Color Us>
int ProbeForSide(const Position& pos, int& success) {
  success = 0;
  const Bitboard kings = pos.of(WHITE, KING) | pos.of(BLACK, KING);
  const int men = __builtin_popcountll(pos.occupied());
  if (men > base_registry().largest_men()) return 0;
  if (!(pos.occupied() & ~kings)) {
    success = 1;
    return 0;
  }
  CChessPosition p;
  SetLibraryPosition<Us>(pos, p);
  int result = 0;
  if (!ProbeLibraryPosition(p, result)) return 0;
  success = 1;
  return result;
}

}  // namespace

bool ProbeStoredPart(const BaseTable& t, const CChessPosition& q, int& result) {
  const int black_to_move = q.white_to_move() ? 0 : 1;
  const uint64_t full = BaseIndex(CollectBaseMen(q, t.lead_white[black_to_move]), t.pawns);
  const int sub = BaseSubTableOf(full, t.men);
  if (sub >= t.subtables) return false;
  const BasePart& part = t.part[sub][black_to_move];
  if (!part.diagram.present()) return false;
  result = 1 - int(WalkDiagram(part.diagram, Permute(BaseLocalIndex(full, t.men), part.perm)));
  return true;
}

bool ProbeLibraryPosition(const CChessPosition& pos, int& result) { return ProbeFrom(pos, 0, result); }

int ProbeVorlaxenbases(Position& pos, int& success) {
  return pos.side_to_move == WHITE ? ProbeForSide<WHITE>(pos, success) : ProbeForSide<BLACK>(pos, success);
}

}  // namespace vx

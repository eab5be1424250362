#include "egdb/syzygy/syzygy.h"

#include <algorithm>

#include "board/movegen.h"
#include "egdb/syzygy/registry.h"
#include "egdb/syzygy/value.h"

namespace vx {

namespace {

using namespace syzygy;

constexpr Key COUNTERS_MASK = (Key(1) << 48) - 1;  // piece counts of the material key

// The table's WDL of the position, without looking at captures. Positions of
// bare kings are draws without a table.
int ProbeTable(const Position& pos, int& success) {
  const Key key = PositionTableKey(pos);
  if (!(key & COUNTERS_MASK)) return 0;
  const TableEntry* table = FindTable(pos, key);
  const int v = table ? StoredValue(*table, pos, key) : -1;
  if (v < 0) {
    success = 0;
    return 0;
  }
  return v - 2;
}

template <Color Us> bool InCheck(const Position& pos, const AttackInfo& ai) {
  return ai.attacked_by(~Us) & pos.of(Us, KING);
}

template <Color Us> MoveEntry* GenerateConversions(const Position& pos, const AttackInfo& ai, MoveEntry* list) {
  return InCheck<Us>(pos, ai) ? GenerateEvasions<Us>(pos, ai, neutral_history, list)
                              : GenerateCaptures<Us>(pos, ai, list);
}

// The tables store a position's value only as far as its captures do not
// decide it; so search the captures and promotions (en passant aside) with
// alpha-beta first and take the table's value where they do not reach it.
// success becomes 2 when a capture decided the value.
template <Color Us> int ProbeAlphaBeta(Position& pos, int alpha, int beta, int& success) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  MoveEntry list[MAX_MOVES];
  MoveEntry* end = GenerateConversions<Us>(pos, ai, list);
  for (MoveEntry* it = list; it != end; ++it) {
    const Move m = Move(*it);
    if (!is_tactical(m) || is_en_passant(m) || !IsLegal<Us>(pos, m, ai)) continue;
    pos.DoMove<Us>(m);
    const int v = -ProbeAlphaBeta<~Us>(pos, -beta, -alpha, success);
    pos.UndoMove<Us>(m);
    if (!success) return 0;
    if (v > alpha) {
      if (v >= beta) {
        success = 2;
        return v;
      }
      alpha = v;
    }
  }
  const int v = ProbeTable(pos, success);
  if (!success) return 0;
  if (alpha >= v) {
    success = 1 + (alpha > 0);
    return alpha;
  }
  success = 1;
  return v;
}

// Whether a legal move other than an en-passant capture exists, looking at
// the generated moves first and then, out of check, at the quiet moves.
template <Color Us>
bool HasNonEnPassantMove(const Position& pos, const AttackInfo& ai, MoveEntry* list, MoveEntry* end) {
  for (MoveEntry* it = list; it != end; ++it)
    if (!is_en_passant(Move(*it)) && IsLegal<Us>(pos, Move(*it), ai)) return true;
  if (InCheck<Us>(pos, ai)) return false;
  MoveEntry quiets[MAX_MOVES];
  MoveEntry* quiet_end = GenerateQuiets<Us>(pos, ai, neutral_history, quiets);
  for (MoveEntry* it = quiets; it != quiet_end; ++it)
    if (IsLegal<Us>(pos, Move(*it), ai)) return true;
  return false;
}

// The tables hold no en-passant rights: an available en-passant capture is
// searched here. It counts when it is at least as good as the rest, or when
// it is the only legal move of a position the rest scores as a draw.
template <Color Us> int ProbeWdlFor(Position& pos, int& success) {
  success = 1;
  int v = ProbeAlphaBeta<Us>(pos, -2, 2, success);
  if (!success) return 0;
  if (!pos.state->ep_square) return v;

  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  MoveEntry list[MAX_MOVES];
  MoveEntry* end = GenerateConversions<Us>(pos, ai, list);
  int best_ep = -3;
  for (MoveEntry* it = list; it != end; ++it) {
    const Move m = Move(*it);
    if (!is_en_passant(m) || !IsLegal<Us>(pos, m, ai)) continue;
    pos.DoMove<Us>(m);
    const int ep = -ProbeAlphaBeta<~Us>(pos, -2, 2, success);
    pos.UndoMove<Us>(m);
    if (!success) return 0;
    best_ep = std::max(best_ep, ep);
  }
  if (best_ep > -3) {
    if (best_ep >= v)
      v = best_ep;
    else if (v == 0 && !HasNonEnPassantMove<Us>(pos, ai, list, end))
      v = best_ep;
  }
  return v;
}

}  // namespace

int ProbeWdl(Position& pos, int& success) {
  return pos.side_to_move == WHITE ? ProbeWdlFor<WHITE>(pos, success) : ProbeWdlFor<BLACK>(pos, success);
}

}  // namespace vx

#include "search/movepick.h"

#include <algorithm>
#include <utility>

#include "board/see.h"

namespace vx {

namespace {

template <Color Us> bool InCheckNow(const Position& pos, const AttackInfo& ai) {
  return ai.attacked_by(~Us) & pos.of(Us, KING);
}

// Moves the largest remaining entry to the read cursor and returns it.
inline MoveEntry SelectBest(MovePicker& mp) {
  MoveEntry* best = mp.cur;
  for (MoveEntry* p = mp.cur + 1; p < mp.end; ++p)
    if (int32_t(*p) > int32_t(*best)) best = p;
  std::swap(*best, *mp.cur);
  return *mp.cur++;
}

inline bool IsSpecialQuiet(const MovePicker& mp, Move m) {
  return m == mp.tt_move || m == mp.killer0 || m == mp.killer1 || m == mp.counter0 || m == mp.counter1;
}

template <Color Us> Move PseudoLegalOrZero(const MovePicker& mp, Move m) {
  return m && IsPseudoLegal<Us>(*mp.pos, m, *mp.ai, false) ? m : MOVE_NONE;
}

// Quiet moves whose children are prefetched ahead of the one handed out.
constexpr long QUIET_PREFETCH_AHEAD = 2;

// Always inlined: each call site then gets its own loop, unrolled for the
// number of moves its stage usually has (measured 4 % faster than one shared copy).
[[gnu::always_inline]] inline void PrefetchChildren(const MovePicker& mp, const MoveEntry* begin,
                                                    const MoveEntry* end) {
  if (!mp.table) return;
  for (const MoveEntry* p = begin; p < end; ++p) mp.table->prefetch(mp.pos->KeyAfter(Move(*p)));
}

[[gnu::always_inline]] inline void PrefetchChild(const MovePicker& mp, Move m) {
  if (mp.table && m) mp.table->prefetch(mp.pos->KeyAfter(m));
}

}  // namespace

MoveEntry* PartitionGoodQuiets(MoveEntry* begin, MoveEntry* end) {
  MoveEntry* front = begin;
  MoveEntry* back = end;
  for (;;) {
    while (front < back && int32_t(*front) >= GOOD_QUIET_ENTRY) ++front;
    if (front >= back) break;
    do --back;
    while (back > front && int32_t(*back) < GOOD_QUIET_ENTRY);
    if (back <= front) break;
    std::swap(*front, *back);
    ++front;
  }
  return front;
}

void InsertionSortDescending(MoveEntry* begin, MoveEntry* end) {
  for (MoveEntry* p = begin + 1; p < end; ++p) {
    const MoveEntry e = *p;
    MoveEntry* q = p;
    for (; q > begin && int32_t(*(q - 1)) < int32_t(e); --q) *q = *(q - 1);
    *q = e;
  }
}

template <Color Us, bool Root>
void StartPicker(MovePicker& mp, const Position& pos, const AttackInfo& ai, const HistoryTable& history,
                 const TranspositionTable* table, int depth, Move tt_move, Move killer0, Move killer1, Move counter0,
                 Move counter1) {
  const bool in_check = InCheckNow<Us>(pos, ai);
  mp.depth = depth;
  mp.pos = &pos;
  mp.ai = &ai;
  mp.history = &history;
  mp.table = table;
  mp.tt_move = tt_move && IsPseudoLegal<Us>(pos, tt_move, ai, in_check) ? tt_move : MOVE_NONE;
  mp.killer0 = killer0;
  mp.killer1 = killer1;
  mp.counter0 = counter0;
  mp.counter1 = counter1;
  mp.stage = in_check ? STAGE_EVASION_TT : STAGE_TT;
  mp.cur = mp.end = mp.moves;
  mp.bad = mp.moves + PICKER_BUFFER;
}

template <Color Us>
void StartQPicker(MovePicker& mp, const Position& pos, const AttackInfo& ai, const HistoryTable& history,
                  const TranspositionTable* table, int qdepth, Move tt_move) {
  const bool in_check = InCheckNow<Us>(pos, ai);
  mp.depth = qdepth;
  mp.pos = &pos;
  mp.ai = &ai;
  mp.history = &history;
  mp.table = table;
  mp.tt_move = tt_move && IsPseudoLegal<Us>(pos, tt_move, ai, in_check) ? tt_move : MOVE_NONE;
  mp.killer0 = mp.killer1 = mp.counter0 = mp.counter1 = MOVE_NONE;
  mp.stage = in_check ? STAGE_EVASION_TT : STAGE_Q_TT;
  mp.cur = mp.end = mp.moves;
  mp.bad = mp.moves + PICKER_BUFFER;
}

template <Color Us, bool Root>
Move NextMove(MovePicker& mp) {
  const Position& pos = *mp.pos;
  const AttackInfo& ai = *mp.ai;
  for (;;) {
    switch (mp.stage) {
      // ---- main picker ----
      case STAGE_TT:
        ++mp.stage;
        if (mp.tt_move) return mp.tt_move;
        break;
      case STAGE_CAPTURES_INIT:
        mp.cur = mp.moves;
        mp.end = Root ? GenerateCaptures<Us>(pos, ai, mp.moves) : GenerateSearchCaptures<Us>(pos, ai, mp.moves);
        PrefetchChildren(mp, mp.moves, mp.end);
        for (Move m : {mp.killer0, mp.killer1, mp.counter0, mp.counter1}) PrefetchChild(mp, m);
        ++mp.stage;
        break;
      case STAGE_CAPTURES:
        while (mp.cur < mp.end) {
          const Move m = Move(SelectBest(mp));
          if (m == mp.tt_move) continue;
          if (SeeNotLosing<Us>(pos, m, ai)) return m;
          *--mp.bad = m;
        }
        ++mp.stage;
        break;
      case STAGE_KILLER0:
        ++mp.stage;
        if (mp.killer0 != mp.tt_move && PseudoLegalOrZero<Us>(mp, mp.killer0)) return mp.killer0;
        break;
      case STAGE_KILLER1:
        ++mp.stage;
        if (mp.killer1 != mp.tt_move && PseudoLegalOrZero<Us>(mp, mp.killer1)) return mp.killer1;
        break;
      case STAGE_COUNTER0:
        ++mp.stage;
        if (mp.counter0 != mp.tt_move && mp.counter0 != mp.killer0 && mp.counter0 != mp.killer1 &&
            PseudoLegalOrZero<Us>(mp, mp.counter0))
          return mp.counter0;
        break;
      case STAGE_COUNTER1:
        ++mp.stage;
        if (mp.counter1 != mp.tt_move && mp.counter1 != mp.killer0 && mp.counter1 != mp.killer1 &&
            PseudoLegalOrZero<Us>(mp, mp.counter1))
          return mp.counter1;
        break;
      case STAGE_QUIETS_INIT:
        mp.cur = mp.moves;
        mp.quiet_end = GenerateQuiets<Us>(pos, ai, *mp.history, mp.moves);
        mp.good_end = PartitionGoodQuiets(mp.moves, mp.quiet_end);
        InsertionSortDescending(mp.moves, mp.good_end);
        mp.end = mp.good_end;
        PrefetchChildren(mp, mp.moves, std::min(mp.moves + QUIET_PREFETCH_AHEAD, mp.quiet_end));
        ++mp.stage;
        break;
      case STAGE_GOOD_QUIETS:
      case STAGE_OTHER_QUIETS:
        while (mp.cur < mp.end) {
          const Move m = Move(*mp.cur++);
          if (mp.quiet_end - mp.cur >= QUIET_PREFETCH_AHEAD) PrefetchChild(mp, Move(mp.cur[QUIET_PREFETCH_AHEAD - 1]));
          if (!IsSpecialQuiet(mp, m)) return m;
        }
        ++mp.stage;
        break;
      case STAGE_OTHER_QUIETS_INIT:
        mp.cur = mp.good_end;
        mp.end = mp.quiet_end;
        if (mp.depth > 4) InsertionSortDescending(mp.cur, mp.end);
        ++mp.stage;
        break;
      case STAGE_LOSING_CAPTURES:
        // Deferred from the top of the buffer downward; yield them in that order.
        mp.cur = mp.moves + PICKER_BUFFER;
        mp.end = mp.bad;
        mp.stage = STAGE_END;
        [[fallthrough]];
      case STAGE_END:
        if (mp.cur > mp.end) return Move(*--mp.cur);
        return MOVE_NONE;

      // ---- in check ----
      case STAGE_EVASION_TT:
        ++mp.stage;
        if (mp.tt_move) return mp.tt_move;
        break;
      case STAGE_EVASIONS_INIT: {
        MoveEntry* end = Root ? GenerateEvasions<Us>(pos, ai, *mp.history, mp.moves)
                              : GenerateSearchEvasions<Us>(pos, ai, *mp.history, mp.moves);
        PrefetchChildren(mp, mp.moves, end);
        // Tactical evasions to the front; selection makes their order irrelevant.
        MoveEntry* split = mp.moves;
        for (MoveEntry* p = mp.moves; p < end; ++p)
          if (is_tactical(Move(*p))) std::swap(*p, *split++);
        mp.cur = mp.moves;
        mp.end = split;
        mp.quiet_end = end;
        ++mp.stage;
        break;
      }
      case STAGE_TACTICAL_EVASIONS:
      case STAGE_QUIET_EVASIONS:
        while (mp.cur < mp.end) {
          const Move m = Move(SelectBest(mp));
          if (m != mp.tt_move) return m;
        }
        if (mp.stage == STAGE_TACTICAL_EVASIONS) mp.end = mp.quiet_end;
        ++mp.stage;
        break;
      case STAGE_EVASIONS_END:
        return MOVE_NONE;

      // ---- quiescence ----
      case STAGE_Q_TT:
        ++mp.stage;
        if (mp.tt_move) return mp.tt_move;
        break;
      case STAGE_Q_CAPTURES_INIT:
        mp.cur = mp.moves;
        mp.end = GenerateSearchCaptures<Us>(pos, ai, mp.moves);
        PrefetchChildren(mp, mp.moves, mp.end);
        ++mp.stage;
        break;
      case STAGE_Q_CAPTURES:
      case STAGE_Q_CHECKS:
        while (mp.cur < mp.end) {
          const Move m = Move(SelectBest(mp));
          if (m != mp.tt_move && SeeNotLosing<Us>(pos, m, ai)) return m;
        }
        mp.stage = mp.stage == STAGE_Q_CAPTURES && mp.depth == 0 ? STAGE_Q_CHECKS_INIT : STAGE_Q_END;
        break;
      case STAGE_Q_CHECKS_INIT:
        mp.cur = mp.moves;
        mp.end = GenerateQuietChecks<Us>(pos, ai, *mp.history, mp.moves);
        PrefetchChildren(mp, mp.moves, mp.end);
        ++mp.stage;
        break;
      default:
        return MOVE_NONE;
    }
  }
}

#define VX_START_PICKER(C, R)                                                                                     \
  template void StartPicker<C, R>(MovePicker&, const Position&, const AttackInfo&, const HistoryTable&,         \
                                  const TranspositionTable*, int, Move, Move, Move, Move, Move);
VX_START_PICKER(WHITE, false)
VX_START_PICKER(BLACK, false)
VX_START_PICKER(WHITE, true)
VX_START_PICKER(BLACK, true)
template void StartQPicker<WHITE>(MovePicker&, const Position&, const AttackInfo&, const HistoryTable&,
                                  const TranspositionTable*, int, Move);
template void StartQPicker<BLACK>(MovePicker&, const Position&, const AttackInfo&, const HistoryTable&,
                                  const TranspositionTable*, int, Move);
template Move NextMove<WHITE, false>(MovePicker&);
template Move NextMove<BLACK, false>(MovePicker&);
template Move NextMove<WHITE, true>(MovePicker&);
template Move NextMove<BLACK, true>(MovePicker&);

}  // namespace vx

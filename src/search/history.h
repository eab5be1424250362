// The per-thread learning tables of move ordering and their update rules:
// killers, History rewards and penalties, Gains and CounterMoves.
#pragma once

#include "board/position.h"
#include "search/stack.h"
#include "search/thread.h"

namespace vx {

constexpr int HISTORY_NEUTRAL = 1024;
constexpr int MAX_QUIETS = 64;

// Pulls a History value a 32nd of the way to 2048; values from 2017 up no
// longer move.
inline void HistoryBonus(int32_t& h) { h += (2048 - h) >> 5; }
// Pulls a History value a 32nd of the way to 0; values of 31 and less no
// longer move.
inline void HistoryMalus(int32_t& h) { h -= h >> 5; }

// Newest-first pair update shared by killers and counter moves.
inline void PushPair(uint32_t* slot, Move m) {
  if (slot[0] != m) {
    slot[1] = slot[0];
    slot[0] = m;
  }
}

// The counter-move pair for the move that led to this node.
inline uint32_t* CounterSlot(SearchState& st, const Position& pos, Move prev) {
  if (prev == MOVE_NULL) return (*st.counter_moves)[0][1];
  return (*st.counter_moves)[pos.piece_on(to_sq(prev))][to_sq(prev)];
}

// Reward of a quiet move that refuted this node (before it is made).
inline void RewardQuiet(SearchState& st, const Position& pos, SearchStack* ss, Move m) {
  PushPair(ss->killers, m);
  HistoryBonus((*st.history)[pos.piece_on(from_sq(m))][to_sq(m)]);
  const Move prev = Move((ss - 1)->current_move);
  if (prev != MOVE_NONE) PushPair(CounterSlot(st, pos, prev), m);
}

// Penalty of the quiet moves searched before the refutation (the last
// element of the list is the refutation itself).
inline void PenaliseQuiets(SearchState& st, const Position& pos, const Move* quiets, int count) {
  for (int i = 0; i + 1 < count; ++i) HistoryMalus((*st.history)[pos.piece_on(from_sq(quiets[i]))][to_sq(quiets[i])]);
}

// Gains learns how much a quiet move changed the static evaluation: at least
// the observed swing, otherwise decaying by one per visit.
inline void UpdateGains(SearchState& st, const Position& pos, const SearchStack* ss) {
  const Move p = Move((ss - 1)->current_move);
  if (is_tactical(p) || p == MOVE_NULL || (ss - 1)->static_eval == VALUE_INFINITE) return;
  int32_t& g = (*st.gains)[pos.piece_on(to_sq(p))][to_sq(p)];
  const int32_t swing = -(ss->static_eval + (ss - 1)->static_eval);
  g = swing > g - 1 ? swing : g - 1;
}

}  // namespace vx

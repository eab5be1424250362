// Strength limitation: how a search plays at a requested Elo. Everything
// here draws from the process-wide generator of search/random.h, so two
// games at the same setting differ.
#pragma once

#include <cstdint>
#include <vector>

#include "board/position.h"
#include "search/random.h"
#include "search/stack.h"
#include "search/thread.h"

namespace vx {

// Nodes the limited search may spend: grows with the Elo, doubles from full
// material (phase 1.0) to a bare endgame (phase 0.0), and is shifted at
// random around its base value; a threatening last move shrinks the shift.
int64_t NodeBudget(int elo, bool threat, double phase);
// Its base value n and the largest random shifts below (down) and above (up)
// it; a shift that is not positive does not apply.
struct NodeBudgetBase {
  int64_t n, down, up;
};
NodeBudgetBase BaseNodeBudget(int elo, bool threat, double phase);

// Preference of a weak player for a root move (0 from 1700 Elo on): pawn
// and queen moves, queen promotions, captures, recaptures and moving the
// same piece again attract it; knight and king moves, moving a piece back
// and walking into a pawn's attack repel it. p and l are our previous and
// the opponent's last game move (0 = none).
int32_t RootBonus(int elo, const Position& pos, Move m, Move p, Move l);

// Random swaps of root moves that pull the larger bonuses to the front.
void ShuffleRootMoves(SearchState& st);

// Random amount added to a freshly computed static evaluation (0 from 1985 Elo on).
int32_t EvalNoise(int elo);

// Percent chance (0..85) that the search overlooks move m at this node:
// long moves are overlooked more, moves of the piece we moved last time
// and evasions less, recaptures never, and the chance grows with the
// distance from the root. p is our previous move (two
// plies back) and l the opponent's last (one ply back); 0 or the null move
// stands for none.
int SkipChance(int elo, const Position& pos, Move m, Move p, Move l, bool in_check, int ply);

// The skip test of a limited node: draws whether the move is overlooked.
inline bool OverlooksMove(const SearchState& st, const Position& pos, const SearchStack* ss, Move m, bool in_check) {
  const int chance =
      SkipChance(st.elo, pos, m, Move((ss - 2)->current_move), Move((ss - 1)->current_move), in_check, ss->ply);
  return Random(0, 100) < chance;
}

// The piece that the opponent's last move brought to its square attacks a
// more valuable piece of ours, or one that we do not defend.
bool LastMoveThreatens(const Position& pos, Move last);

// Launch of a limited search: the noisy piece-square tables, the node budget
// in the state's limits and a bonus for every search move.
void SetUpStrengthLimit(SearchState& st, const Position& pos, Move prev, Move last, const std::vector<Move>& moves);

// The bonus of a root move (0 for a move without one).
int32_t BonusOf(const SearchState& st, Move m);

}  // namespace vx

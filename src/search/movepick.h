// The staged move picker: hands a node its moves one at a time, best
// candidates first, generating each kind of move only when the earlier kinds
// are used up.
#pragma once

#include "board/movegen.h"
#include "search/tt.h"

namespace vx {

// Stage numbers; the picker walks them in increasing order within its group.
enum PickerStage : int {
  STAGE_TT = 1, STAGE_CAPTURES_INIT, STAGE_CAPTURES, STAGE_KILLER0, STAGE_KILLER1, STAGE_COUNTER0,
  STAGE_COUNTER1, STAGE_QUIETS_INIT, STAGE_GOOD_QUIETS, STAGE_OTHER_QUIETS_INIT, STAGE_OTHER_QUIETS,
  STAGE_LOSING_CAPTURES, STAGE_END,
  STAGE_EVASION_TT = 20, STAGE_EVASIONS_INIT, STAGE_TACTICAL_EVASIONS, STAGE_QUIET_EVASIONS, STAGE_EVASIONS_END,
  STAGE_Q_TT = 30, STAGE_Q_CAPTURES_INIT, STAGE_Q_CAPTURES, STAGE_Q_CHECKS_INIT, STAGE_Q_CHECKS, STAGE_Q_END,
};

constexpr int PICKER_BUFFER = MAX_MOVES;
// A quiet move with a History value above the neutral 1024 is a good quiet.
constexpr int32_t GOOD_QUIET_ENTRY = 1025 << 16;

struct MovePicker {
  int depth;  // depth units in Search, quiescence depth in QSearch
  const Position* pos;
  const AttackInfo* ai;
  const HistoryTable* history;
  const TranspositionTable* table;  // receives prefetches of the children's entries; may be null
  Move tt_move, killer0, killer1, counter0, counter1;
  int stage;
  MoveEntry* cur;
  MoveEntry* end;
  MoveEntry* good_end;   // end of the good quiets
  MoveEntry* quiet_end;  // end of all quiets
  MoveEntry* bad;        // deferred losing captures, written downward from the top
  MoveEntry moves[PICKER_BUFFER];
};

// Start for Search (Root = the root node, which generates complete promotion
// sets). The first stage depends on whether the side to move is in check.
// With a table, the picker prefetches the table entries of the positions
// after its moves as soon as it knows them: generated captures, evasions and
// checks at once, killers and counters with the captures, quiets a few moves
// ahead of the one it hands out. A probe that misses the cache costs about as
// much as a whole quiescence node, and the search reaches the child only a
// little later than the move is picked.
template <Color Us, bool Root = false>
void StartPicker(MovePicker& mp, const Position& pos, const AttackInfo& ai, const HistoryTable& history,
                 const TranspositionTable* table, int depth, Move tt_move, Move killer0, Move killer1, Move counter0,
                 Move counter1);

// Start for QSearch (and the capture-only picker of ProbCut, which passes a
// negative depth so that no quiet checks are added).
template <Color Us>
void StartQPicker(MovePicker& mp, const Position& pos, const AttackInfo& ai, const HistoryTable& history,
                  const TranspositionTable* table, int qdepth, Move tt_move);

// Next pseudo-legal move, or 0 when every stage is exhausted.
template <Color Us, bool Root = false>
Move NextMove(MovePicker& mp);

// Two-ended exchange partition of a quiet list into good quiets first and
// the rest after; returns the boundary.
MoveEntry* PartitionGoodQuiets(MoveEntry* begin, MoveEntry* end);
// Largest entry first; an entry moves only past strictly smaller ones.
void InsertionSortDescending(MoveEntry* begin, MoveEntry* end);

}  // namespace vx

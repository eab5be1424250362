// Pawn structure: everything the evaluation derives from the pawns, the two
// king squares and the castling rights, cached per search thread by pawn key,
// with the part that depends on the pawns alone cached behind it.
#pragma once

#include <cstdint>

#include "board/position.h"

namespace vx {

struct SearchState;

constexpr int PAWN_TABLE_SIZE = 16384;

struct PawnEntry {
  Key key;
  ValuePair score;         // White's point of view
  int32_t shelter[2];      // king shelter of each side's king
  int8_t zoneAttacks[2];   // pawn attacks of each side on the enemy king zone
  int8_t ringAttacks[2];   // ... on the squares next to the enemy king
  int8_t kingDanger[2];    // starting danger index of each side's own king
  int8_t attackWeight[2];  // weight of each side's pawn attack on the enemy king
  int8_t fewFiles[2];      // drawishness of each side's pawn files
  int8_t complexity;
  uint8_t fileSpan;        // highest - lowest pawn file + 1, 0 without pawns
  Bitboard passed[2];
  Bitboard outposts[2];    // squares where a side's minor cannot be chased by pawns
  Bitboard rookTraps;      // squares where a rook is shut in by its own king
};

// What the pawns decide on their own, whatever the kings and the castling
// rights: the part of an entry that a king move leaves as it is.
struct PawnStructure {
  Key key;                 // pawns only; see structure_key
  ValuePair score[2];      // each side's own terms, from its point of view
  Bitboard passed[2];
  Bitboard outposts[2];
  Bitboard wedges[2];      // rammed sixth-rank pawns off the centre files, not levering
  int8_t fewFiles[2];
  int8_t complexity;       // pawns plus open pawns
  uint8_t fileSpan;
};

constexpr int PAWN_STRUCTURE_TABLE_SIZE = 4096;

// A thread's pawn caches: entries by the pawn key (pawns, kings and castling
// rights) and, behind them, structures by the pawns alone, so that a king
// move costs only the king terms.
struct PawnTables {
  PawnEntry entries[PAWN_TABLE_SIZE];
  PawnStructure structures[PAWN_STRUCTURE_TABLE_SIZE];
};

// Builds the entry for the position's pawns and kings from scratch. When
// side_scores is given it receives the part of the score each side's pawns
// contribute (the two add up to e.score).
void compute_pawn_entry(PawnEntry& e, const Position& pos, ValuePair* side_scores = nullptr);

// The key of the position's pawn structure: the pawn key without the kings
// and the castling rights.
Key structure_key(const Position& pos);

// Shelter of one side's king if it stood on the given square.
int32_t king_shelter(const Position& pos, Color c, Square ksq);

// Derived pawn tables; start-up.
void init_pawns();

PawnTables* AllocPawnTable();
void FreePawnTable(PawnTables* table);
// Empties every slot (the per-search reset).
void ClearPawnTable(PawnTables* table);

namespace PawnTable {
PawnEntry& probe(const Position& pos, SearchState& ss);

// Asks for both cache lines of the entry of this pawn key (entries straddle
// lines). The search calls it right after its table probe, so that the two
// misses overlap: 1.5 % more nodes per second.
inline void prefetch(const PawnTables* table, Key pawn_key) {
  const char* e = reinterpret_cast<const char*>(&table->entries[pawn_key & (PAWN_TABLE_SIZE - 1)]);
  __builtin_prefetch(e);
  __builtin_prefetch(e + sizeof(PawnEntry) - 1);
}
}  // namespace PawnTable

}  // namespace vx

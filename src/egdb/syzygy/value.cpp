#include "egdb/syzygy/value.h"

#include "board/position.h"

namespace vx::syzygy {

namespace {

// Engine pieces of a table piece code (colour bit 3, type P 1 ... K 6).
Bitboard TablePieces(const Position& pos, int code) {
  constexpr PieceType TYPES[7][2] = {{0, 0},           {PAWN, PAWN}, {KNIGHT, KNIGHT}, {BISHOP_L, BISHOP_D},
                                     {ROOK, ROOK},     {QUEEN, QUEEN}, {KING, KING}};
  const Color c = Color(code >> 3);
  return pos.of(c, TYPES[code & 7][0]) | pos.of(c, TYPES[code & 7][1]);
}

// Squares of the men listed in `pieces` from `from` on, in that order, each
// run of one code taking all the position's men of it. False when the
// position's men do not fill the list exactly.
bool FillSquares(const Position& pos, const uint8_t* pieces, int from, int men, int color_flip, int square_flip,
                 int* sq) {
  for (int i = from; i < men;) {
    Bitboard b = TablePieces(pos, pieces[i] ^ color_flip);
    if (!b) return false;
    while (b) {
      if (i == men) return false;
      sq[i++] = pop_lsb(b) ^ square_flip;
    }
  }
  return true;
}

}  // namespace

int StoredValue(const TableEntry& table, const Position& pos, Key key) {
  const TableInfo& info = table.info;
  const bool black = pos.side_to_move == BLACK;
  // Which side of the table is to move, and whether the position's colours
  // (and so its ranks) are swapped against the table's.
  const bool swapped = info.symmetric ? black : key != table.key;
  const int side = info.symmetric ? 0 : int(black != swapped);
  const int color_flip = swapped ? 8 : 0, square_flip = swapped ? 56 : 0;
  const int men = info.material.men;
  int sq[TB_PIECES];
  const SubTable* sub;
  uint64_t idx;
  if (!info.has_pawns) {
    sub = &table.layout.sub[0][side];
    if (!FillSquares(pos, sub->index.pieces, 0, men, color_flip, 0, sq)) return -1;
    idx = EncodePieces(sub->index, men, info.encoding, sq);
  } else {
    const int leading = info.pawns[0];
    if (!FillSquares(pos, table.layout.sub[0][side].index.pieces, 0, leading, color_flip, square_flip, sq)) return -1;
    sub = &table.layout.sub[LeadingPawnFile(sq, leading)][side];
    if (!FillSquares(pos, sub->index.pieces, leading, men, color_flip, square_flip, sq)) return -1;
    idx = EncodePawns(sub->index, men, leading, info.pawns[1], sq);
  }
  if (idx >= sub->index.size) return -1;
  const int v = DecompressValue(sub->pairs, idx);
  return v <= 4 ? v : -1;
}

}  // namespace vx::syzygy

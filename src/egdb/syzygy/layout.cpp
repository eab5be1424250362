#include "egdb/syzygy/layout.h"

namespace vx::syzygy {

namespace {

constexpr uint8_t FLAG_SPLIT = 1, FLAG_PAWNS = 2;
constexpr int PAWN_CODE = 1;

int nibble(uint8_t byte, int side) { return side ? byte >> 4 : byte & 15; }

// The piece list holds exactly the table's men, men of one code side by side,
// and a pawn table's pawns first: the leading pawns, then the others.
bool valid_pieces(const uint8_t* pieces, const TableInfo& info) {
  const int men = info.material.men;
  int seen[16] = {};
  for (int i = 0; i < men; ++i) {
    const int code = pieces[i];
    if (seen[code] && pieces[i - 1] != code) return false;
    ++seen[code];
  }
  for (int code = 0; code < 16; ++code)
    if (seen[code] != info.material.count[code]) return false;
  if (!info.has_pawns) return true;
  const int lead = (info.leading_color << 3) | PAWN_CODE;
  for (int i = 0; i < info.pawns[0] + info.pawns[1]; ++i)
    if (pieces[i] != (i < info.pawns[0] ? lead : lead ^ 8)) return false;
  return true;
}

bool setup_index(IndexLayout& ix, const TableInfo& info, int order, int order2, int file) {
  if (!valid_pieces(ix.pieces, info)) return false;
  const int men = info.material.men;
  return info.has_pawns ? SetupPawnIndex(ix, men, info.pawns[0], info.pawns[1], order, order2, file)
                        : SetupPieceIndex(ix, men, info.encoding, order);
}

// Piece orders and index factors of every sub-table; returns the offset
// after them, or 0.
size_t read_piece_orders(const FileView& file, size_t pos, const TableInfo& info, WdlLayout& out) {
  const int men = info.material.men;
  const int order_bytes = info.has_pawns && info.pawns[1] ? 2 : 1;
  for (int f = 0; f < out.files; ++f) {
    if (pos + order_bytes + men > file.size) return 0;
    const uint8_t* p = file.data + pos;
    for (int side = 0; side < out.sides; ++side) {
      IndexLayout& ix = out.sub[f][side].index;
      for (int i = 0; i < men; ++i) ix.pieces[i] = uint8_t(nibble(p[order_bytes + i], side));
      const int order2 = order_bytes == 2 ? nibble(p[1], side) : 0xF;
      if (!setup_index(ix, info, nibble(p[0], side), order2, f)) return 0;
    }
    pos += order_bytes + men;
  }
  return pos;
}

template <class Step>
bool each_sub_table(WdlLayout& out, Step step) {
  for (int f = 0; f < out.files; ++f)
    for (int side = 0; side < out.sides; ++side)
      if (!step(out.sub[f][side])) return false;
  return true;
}

// An empty region may start anywhere (a one-value sub-table has none).
bool advance(uint64_t& pos, uint64_t bytes, const FileView& file) {
  if (!bytes) return true;
  if (bytes > file.size || pos + bytes > file.size) return false;
  pos += bytes;
  return true;
}

}  // namespace

TableInfo DescribeTable(const TableMaterial& mat, bool symmetric) {
  TableInfo info;
  info.material = mat;
  info.symmetric = symmetric;
  info.has_pawns = mat.pawns(WHITE) + mat.pawns(BLACK) > 0;
  if (info.has_pawns) {
    // The side with fewer pawns leads, unless it has none.
    const bool black_leads = mat.pawns(BLACK) > 0 && (mat.pawns(WHITE) == 0 || mat.pawns(BLACK) < mat.pawns(WHITE));
    info.leading_color = black_leads;
    info.pawns[0] = mat.pawns(Color(black_leads));
    info.pawns[1] = mat.pawns(Color(!black_leads));
    return info;
  }
  int unique = 0, smallest = 16;
  for (const int n : mat.count) {
    unique += n == 1;
    if (n > 1 && n < smallest) smallest = n;
  }
  info.encoding = unique >= 3 ? THREE_UNIQUE : unique == 2 ? TWO_KINGS : 1 + smallest;
  return info;
}

bool HasWdlMagic(const FileView& file) {
  if (file.size < 4) return false;
  const uint8_t* p = file.data;
  return (uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24) == WDL_MAGIC;
}

bool ReadWdlLayout(const FileView& file, const TableInfo& info, WdlLayout& out) {
  if (!HasWdlMagic(file) || file.size < 5) return false;
  const uint8_t flags = file.data[4];
  if (bool(flags & FLAG_PAWNS) != info.has_pawns || bool(flags & FLAG_SPLIT) == info.symmetric) return false;
  out.sides = info.symmetric ? 1 : 2;
  out.files = info.has_pawns ? 4 : 1;

  uint64_t pos = read_piece_orders(file, 5, info, out);
  if (!pos) return false;
  pos += pos & 1;
  // Headers, sparse indices, size tables, then the blocks (64-byte aligned),
  // each region holding every sub-table in turn.
  return each_sub_table(out, [&](SubTable& t) {
           pos = ReadPairsHeader(file, pos, t.index.size, t.pairs);
           return pos && (uint64_t(t.pairs.blocks) << t.pairs.block_bits) >> t.pairs.block_bits == t.pairs.blocks;
         }) &&
         each_sub_table(out, [&](SubTable& t) {
           t.pairs.index_table = pos;
           return advance(pos, IndexTableBytes(t.pairs), file);
         }) &&
         each_sub_table(out, [&](SubTable& t) {
           t.pairs.size_table = pos;
           return advance(pos, SizeTableBytes(t.pairs), file);
         }) &&
         each_sub_table(out, [&](SubTable& t) {
           pos = (pos + 63) & ~uint64_t(63);
           t.pairs.block_data = pos;
           return advance(pos, BlockDataBytes(t.pairs), file);
         });
}

}  // namespace vx::syzygy

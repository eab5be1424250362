#include "egdb/syzygy/pairs.h"

namespace vx::syzygy {

namespace {

constexpr int LEAF = 0xFFF;  // right half of a symbol that is a value
constexpr int MAX_SYMBOLS = 4096;

uint32_t le16(const uint8_t* p) { return uint32_t(p[0]) | uint32_t(p[1]) << 8; }
uint32_t le32(const uint8_t* p) { return le16(p) | le16(p + 2) << 16; }

// Big-endian word of `bytes` bytes at offset pos; bytes past the end of the
// file read as zero (the code reads a word ahead of what it decodes).
uint64_t read_be(const FileView& f, uint64_t pos, int bytes) {
  uint64_t v = 0;
  for (int i = 0; i < bytes; ++i) v = v << 8 | (pos + i < f.size ? f.data[pos + i] : 0);
  return v;
}

int left_of(const uint8_t* w) { return int((w[1] & 15) << 8 | w[0]); }
int right_of(const uint8_t* w) { return int(w[2] << 4 | w[1] >> 4); }

// How many values each symbol stands for (minus one), walking the pairs
// depth first. False for a pair that names a missing symbol, a cycle, or a
// symbol longer than the format allows.
bool compute_lengths(PairsData& d) {
  d.length.assign(size_t(d.symbols), 0);
  std::vector<uint8_t> state(size_t(d.symbols), 0);  // 0 unseen, 1 being expanded, 2 done
  std::vector<int> stack;
  for (int s0 = 0; s0 < d.symbols; ++s0) {
    if (state[s0]) continue;
    stack.push_back(s0);
    while (!stack.empty()) {
      const int s = stack.back();
      if (state[s] == 2) {  // reached twice, as the child of two pairs
        stack.pop_back();
        continue;
      }
      const uint8_t* w = d.pairs + 3 * s;
      const int l = left_of(w), r = right_of(w);
      state[s] = 1;
      if (r == LEAF) {
        state[s] = 2;
        stack.pop_back();
        continue;
      }
      if (l >= d.symbols || r >= d.symbols) return false;
      bool expanded = true;
      for (const int c : {l, r}) {
        if (state[c] == 1) return false;
        if (state[c] == 0) {
          stack.push_back(c);
          expanded = false;
        }
      }
      if (!expanded) continue;
      const int len = d.length[l] + d.length[r] + 1;
      if (len > 255) return false;
      d.length[s] = uint8_t(len);
      state[s] = 2;
      stack.pop_back();
    }
  }
  return true;
}

// Canonical code: longer codes have smaller values; base[l] is the smallest
// code of length l, left-aligned in 64 bits.
void compute_bases(PairsData& d) {
  d.base[d.max_length] = 0;
  for (int l = d.max_length - 1; l >= d.min_length; --l)
    d.base[l] = (d.base[l + 1] + d.first_symbol[l] - d.first_symbol[l + 1]) / 2;
  for (int l = d.min_length; l <= d.max_length; ++l) d.base[l] <<= 64 - l;
}

// Moves to the block holding the value `offset` values after the start of
// block `block` (offset may be negative). False when that leaves the table.
bool find_block(const PairsData& d, uint64_t& block, int64_t& offset) {
  const uint8_t* sizes = d.file.data + d.size_table;
  if (block >= d.size_entries) return false;
  while (offset < 0) {
    if (block == 0) return false;
    --block;
    offset += le16(sizes + 2 * block) + 1;
  }
  while (offset > int64_t(le16(sizes + 2 * block))) {
    offset -= le16(sizes + 2 * block) + 1;
    if (++block >= d.size_entries) return false;
  }
  return block < d.blocks;
}

}  // namespace

size_t ReadPairsHeader(const FileView& file, size_t offset, uint64_t positions, PairsData& d) {
  d = PairsData{};
  d.file = file;
  if (offset + 2 > file.size) return 0;
  const uint8_t* p = file.data + offset;
  if (p[0] & 0x80) {
    d.single = true;
    d.single_value = p[1];
    return offset + 2;
  }
  if (offset + 10 > file.size) return 0;
  d.block_bits = p[1];
  d.index_bits = p[2];
  d.blocks = le32(p + 4);
  d.size_entries = uint64_t(d.blocks) + p[3];
  d.max_length = p[8];
  d.min_length = p[9];
  if (d.block_bits > 32 || d.index_bits < 1 || d.index_bits > 32 || d.min_length < 1 ||
      d.max_length < d.min_length || d.max_length > MAX_CODE_LENGTH)
    return 0;
  d.index_entries = (positions + (uint64_t(1) << d.index_bits) - 1) >> d.index_bits;
  const size_t lengths = size_t(d.max_length - d.min_length + 1);
  if (offset + 12 + 2 * lengths > file.size) return 0;
  for (int l = d.min_length; l <= d.max_length; ++l) d.first_symbol[l] = uint16_t(le16(p + 10 + 2 * (l - d.min_length)));
  d.symbols = int(le16(p + 10 + 2 * lengths));
  const size_t pairs_at = offset + 12 + 2 * lengths;
  if (d.symbols < 1 || d.symbols > MAX_SYMBOLS || pairs_at + 3 * size_t(d.symbols) > file.size) return 0;
  d.pairs = file.data + pairs_at;
  if (!compute_lengths(d)) return 0;
  compute_bases(d);
  return pairs_at + 3 * size_t(d.symbols) + (d.symbols & 1);
}

uint64_t IndexTableBytes(const PairsData& d) { return d.single ? 0 : 6 * d.index_entries; }
uint64_t SizeTableBytes(const PairsData& d) { return d.single ? 0 : 2 * d.size_entries; }
uint64_t BlockDataBytes(const PairsData& d) { return d.single ? 0 : uint64_t(d.blocks) << d.block_bits; }

int DecompressValue(const PairsData& d, uint64_t idx) {
  if (d.single) return d.single_value;
  // The sparse-index entry nearest idx: a block and the offset in it of the
  // position in the middle of its span.
  const uint64_t entry = idx >> d.index_bits;
  if (entry >= d.index_entries) return -1;
  const uint8_t* e = d.file.data + d.index_table + 6 * entry;
  uint64_t block = le32(e);
  const uint64_t half = uint64_t(1) << (d.index_bits - 1);
  int64_t offset = int64_t(le16(e + 4)) + int64_t(idx & (2 * half - 1)) - int64_t(half);
  if (!find_block(d, block, offset)) return -1;

  // Decode symbols from the start of the block until the one covering offset.
  uint64_t pos = d.block_data + (block << d.block_bits);
  uint64_t code = read_be(d.file, pos, 8);
  pos += 8;
  int used = 0;  // bits shifted out since the last refill
  int sym;
  for (;;) {
    int l = d.min_length;
    while (code < d.base[l]) ++l;
    sym = d.first_symbol[l] + int((code - d.base[l]) >> (64 - l));
    if (sym >= d.symbols) return -1;
    if (offset <= d.length[sym]) break;
    offset -= d.length[sym] + 1;
    code <<= l;
    used += l;
    if (used >= 32) {
      used -= 32;
      code |= read_be(d.file, pos, 4) << used;
      pos += 4;
    }
  }
  // Walk down the pairs to the value.
  while (d.length[sym]) {
    const uint8_t* w = d.pairs + 3 * sym;
    const int left = left_of(w);
    if (offset <= d.length[left]) {
      sym = left;
    } else {
      offset -= d.length[left] + 1;
      sym = right_of(w);
    }
  }
  return d.pairs[3 * sym];
}

}  // namespace vx::syzygy

// The compressed value stream of one Syzygy sub-table. Values are compressed
// by recursive pairing: every symbol is a value or a pair of two earlier
// symbols, and the symbols are stored with a canonical Huffman code in blocks
// of fixed size. A sparse index gives, for every 2^idxbits-th position, the
// block and the offset inside it, and a size table the number of values in
// each block. A sub-table that holds one value only stores just that value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vx::syzygy {

// The mapped file, for reads that must stay inside it.
struct FileView {
  const uint8_t* data = nullptr;
  size_t size = 0;
};

constexpr int MAX_CODE_LENGTH = 32;

struct PairsData {
  FileView file;
  bool single = false;  // every position holds the same value: single_value
  uint8_t single_value = 0;

  int block_bits = 0;  // log2 of the bytes in a block
  int index_bits = 0;  // log2 of the positions between sparse-index entries
  uint32_t blocks = 0;         // blocks of compressed data
  uint64_t size_entries = 0;   // entries of the size table (blocks plus padding)
  uint64_t index_entries = 0;  // entries of the sparse index
  int min_length = 0, max_length = 0;
  uint64_t base[MAX_CODE_LENGTH + 1] = {};    // smallest code of each length, left-aligned
  uint16_t first_symbol[MAX_CODE_LENGTH + 1] = {};  // symbol number of that code
  int symbols = 0;
  const uint8_t* pairs = nullptr;  // 3 bytes per symbol: two 12-bit halves
  std::vector<uint8_t> length;     // values a symbol stands for, minus one

  // File offsets of the three regions, set by the table layout.
  size_t index_table = 0, size_table = 0, block_data = 0;
};

// Reads the header of a sub-table at `offset` for a table of `positions`
// indices. Returns the offset after the header, or 0 when the header is
// inconsistent or runs past the end of the file.
size_t ReadPairsHeader(const FileView& file, size_t offset, uint64_t positions, PairsData& d);

// Bytes of the sparse index, the size table and the block data.
uint64_t IndexTableBytes(const PairsData& d);
uint64_t SizeTableBytes(const PairsData& d);
uint64_t BlockDataBytes(const PairsData& d);

// The value stored for index idx, or -1 when the data leads outside the file
// or to an impossible symbol.
int DecompressValue(const PairsData& d, uint64_t idx);

}  // namespace vx::syzygy

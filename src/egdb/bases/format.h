// The ".tbe" file layout shared by the loader and the generator that writes
// the files: header words, the table-name scrambling and the checksum.
//
//   0  magic      4  version      8  checksum      12  table records ...
//
// A record: name length, scrambled name, 4 reserved bytes, the 32-byte bit
// permutation, 1 reserved byte, the number of levels N, per level its entry
// count, entry width and packed entries, then the N level thresholds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vx {

constexpr uint32_t BASE_MAGIC = 0xB17BA5E5;
// Recognised but not accepted: the same layout in the other byte order, and
// the single-table six-man files in both byte orders.
constexpr uint32_t BASE_MAGIC_SWAPPED = 0xE5A57BB1;
constexpr uint32_t BASE6_MAGIC = 0xB17BA5E6;
constexpr uint32_t BASE6_MAGIC_SWAPPED = 0xE6A57BB1;
constexpr uint32_t BASE_VERSION = 1;
constexpr size_t BASE_HEADER_SIZE = 12;
// Exclusive-or'ed into every byte of a table name.
constexpr uint8_t BASE_NAME_SCRAMBLE = 0x5C;
constexpr int BASE_MAX_LEVELS = 32;

inline uint32_t ReadLe32(const uint8_t* p) {
  return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

// Exclusive-or of the bytes from the header's end on, byte k shifted left by
// 8 * (k mod 4): the rest of the file as little-endian words.
uint32_t BaseChecksum(const uint8_t* data, size_t size);

// What a record name says besides its material: "<material>.<four
// characters><sub-table><w|b>tm". The letter after the number names the
// leading king; the presence of "wtm" anywhere selects the White-to-move part.
struct BaseRecordName {
  std::string material;  // the letters before "."
  int subtable = 0;
  bool lead_white = true;
  bool white_to_move = true;
};
bool ParseBaseRecordName(const std::string& name, BaseRecordName& out);
// The name the generator writes. A White-to-move part led by the black king
// carries "wtm" in its four free characters, since its number ends in "b".
std::string MakeBaseRecordName(const BaseRecordName& r);

}  // namespace vx

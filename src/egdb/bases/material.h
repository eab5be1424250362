// The material of a Vorlaxenbases table: piece counts per colour, the table
// name ("k" + White's pieces + "k" + Black's pieces) and the 30-bit signature
// under which the registry finds it.
#pragma once

#include <cstdint>
#include <string>

namespace vx {

// Piece kinds in signature order.
enum BaseKind : int { BASE_QUEEN, BASE_ROOK, BASE_BISHOP, BASE_KNIGHT, BASE_PAWN, BASE_KINDS };

constexpr char BASE_KIND_LETTERS[] = "qrbnp";

struct BaseMaterial {
  uint8_t count[2][BASE_KINDS] = {};  // [colour][kind], kings implicit

  int pieces(int color) const;
  int men() const { return 2 + pieces(0) + pieces(1); }
  bool has_pawns() const { return count[0][BASE_PAWN] + count[1][BASE_PAWN] > 0; }
  // Ten 3-bit counts, White's queens in the most significant place.
  uint32_t signature() const;
  std::string name() const;
  // The same material with the colours exchanged.
  BaseMaterial swapped() const;
  // Sum of queen 10000, rook 1000, bishop 100, knight 10, pawn 1, White
  // positive and Black negative: decides which colour a table calls White
  // when both sides have as many pieces.
  int tie_break() const;
  // True when a position of this material is stored with the colours
  // exchanged (White has fewer pieces, or as many and a negative tie-break).
  bool stored_swapped() const;
  bool operator==(const BaseMaterial& o) const { return signature() == o.signature(); }
};

// Reads the letters of a table name up to its end or its ".": "k", White's
// piece letters, "k", Black's piece letters. False on any other text or when
// a count leaves the 3-bit field.
bool ParseBaseMaterial(const std::string& text, BaseMaterial& out);

// King sub-tables of a table: one for three men, else 3 without pawns and 8
// with pawns.
int BaseSubTables(int men, bool pawns);

}  // namespace vx

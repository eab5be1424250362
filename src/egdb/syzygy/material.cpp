#include "egdb/syzygy/material.h"

#include "board/position.h"

namespace vx::syzygy {

namespace {

// Table piece letters by table type, and the engine piece types they cover.
constexpr char TYPE_LETTERS[] = " PNBRQK";
constexpr PieceType ENGINE_TYPE[7] = {NO_PIECE_TYPE, PAWN, KNIGHT, BISHOP_L, ROOK, QUEEN, KING};

// Letters after the K, strongest first, as they are tried in names.
constexpr char NAME_LETTERS[] = "QRBNP";

// Piece counts of the two sides in each name pattern, in the order tried.
constexpr int PATTERNS[][2] = {{1, 0}, {1, 1}, {2, 0}, {2, 1}, {3, 0}, {2, 2}, {3, 1}, {4, 0}};

// Every letter sequence of the given length whose letters never come earlier
// in NAME_LETTERS than the letter before them, in lexicographic order.
void Sequences(int length, std::string& prefix, std::vector<std::string>& out) {
  if (int(prefix.size()) == length) {
    out.push_back(prefix);
    return;
  }
  const size_t first = prefix.empty() ? 0 : std::string(NAME_LETTERS).find(prefix.back());
  for (size_t i = first; i < 5; ++i) {
    prefix.push_back(NAME_LETTERS[i]);
    Sequences(length, prefix, out);
    prefix.pop_back();
  }
}

std::vector<std::string> Sequences(int length) {
  std::vector<std::string> out;
  std::string prefix;
  Sequences(length, prefix, out);
  return out;
}

// Letter order rank in NAME_LETTERS, for comparing sides of equal length.
bool NotLaterThan(const std::string& a, const std::string& b) {
  const std::string order = NAME_LETTERS;
  for (size_t i = 0; i < a.size(); ++i) {
    const size_t x = order.find(a[i]), y = order.find(b[i]);
    if (x != y) return x < y;
  }
  return true;
}

int TypeOfLetter(char c) {
  for (int t = 1; t <= 6; ++t)
    if (TYPE_LETTERS[t] == c) return t;
  return 0;
}

// Counts of one colour read from the counters of the material key.
int KeyCount(Key key, Color c, PieceType t) { return int((key >> (24 * c + 4 * (t - 1))) & 15); }

}  // namespace

std::vector<std::string> TableNames() {
  std::vector<std::string> names;
  for (const auto& pattern : PATTERNS)
    for (const std::string& first : Sequences(pattern[0]))
      for (const std::string& second : Sequences(pattern[1]))
        if (pattern[0] != pattern[1] || NotLaterThan(first, second))
          names.push_back("K" + first + "vK" + second);
  return names;
}

bool ParseTableName(const std::string& name, TableMaterial& mat) {
  mat = TableMaterial{};
  int side = 0;
  for (const char c : name) {
    if (c == 'v' && side == 0) {
      side = 1;
      continue;
    }
    const int t = TypeOfLetter(c);
    if (!t) return false;
    ++mat.count[(side << 3) | t];
    ++mat.men;
  }
  return side == 1 && mat.of(WHITE, 6) == 1 && mat.of(BLACK, 6) == 1 && mat.men <= TB_PIECES;
}

Key TableKey(const TableMaterial& mat, bool swapped) {
  Key key = 0;
  for (int code = 1; code < 16; ++code) {
    if (!(code & 7) || (code & 7) == 7) continue;
    const Color c = Color((code >> 3) ^ int(swapped));
    key += Key(mat.count[code]) * material_key_table[make_piece(c, ENGINE_TYPE[code & 7])];
  }
  return key;
}

Key PositionTableKey(const Position& pos) {
  Key key = pos.state->material_key;
  for (const Color c : {WHITE, BLACK}) {
    const Key light = material_key_table[make_piece(c, BISHOP_L)];
    const Key dark = material_key_table[make_piece(c, BISHOP_D)];
    key += (light - dark) * Key(KeyCount(key, c, BISHOP_D));
  }
  return key;
}

std::string PositionTableName(const Position& pos, bool black_first) {
  std::string name;
  for (const Color c : {Color(black_first), Color(!black_first)}) {
    if (!name.empty()) name += 'v';
    for (int t = 6; t >= 1; --t) {
      const Bitboard b = t == 3 ? pos.bishops(c) : pos.of(c, ENGINE_TYPE[t]);
      name.append(size_t(__builtin_popcountll(b)), TYPE_LETTERS[t]);
    }
  }
  return name;
}

}  // namespace vx::syzygy

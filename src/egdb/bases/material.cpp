#include "egdb/bases/material.h"

namespace vx {

int BaseMaterial::pieces(int color) const {
  int n = 0;
  for (int k = 0; k < BASE_KINDS; ++k) n += count[color][k];
  return n;
}

uint32_t BaseMaterial::signature() const {
  uint32_t s = 0;
  for (int c = 0; c < 2; ++c)
    for (int k = 0; k < BASE_KINDS; ++k) s = (s << 3) | (count[c][k] & 7u);
  return s;
}

std::string BaseMaterial::name() const {
  std::string n;
  for (int c = 0; c < 2; ++c) {
    n += 'k';
    for (int k = 0; k < BASE_KINDS; ++k) n.append(count[c][k], BASE_KIND_LETTERS[k]);
  }
  return n;
}

BaseMaterial BaseMaterial::swapped() const {
  BaseMaterial m;
  for (int k = 0; k < BASE_KINDS; ++k) {
    m.count[0][k] = count[1][k];
    m.count[1][k] = count[0][k];
  }
  return m;
}

int BaseMaterial::tie_break() const {
  static constexpr int weight[BASE_KINDS] = {10000, 1000, 100, 10, 1};
  int sum = 0;
  for (int k = 0; k < BASE_KINDS; ++k) sum += weight[k] * (count[0][k] - count[1][k]);
  return sum;
}

bool BaseMaterial::stored_swapped() const {
  const int w = pieces(0), b = pieces(1);
  return w < b || (w == b && tie_break() < 0);
}

bool ParseBaseMaterial(const std::string& text, BaseMaterial& out) {
  out = BaseMaterial{};
  int color = -1;
  for (const char c : text) {
    if (c == '.') break;
    if (c == 'k') {
      if (++color > 1) return false;
      continue;
    }
    int kind = 0;
    while (kind < BASE_KINDS && BASE_KIND_LETTERS[kind] != c) ++kind;
    if (color < 0 || kind == BASE_KINDS || out.count[color][kind] == 7) return false;
    ++out.count[color][kind];
  }
  return color == 1;
}

int BaseSubTables(int men, bool pawns) { return men <= 3 ? 1 : pawns ? 8 : 3; }

}  // namespace vx

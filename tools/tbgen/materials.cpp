#include "tools/tbgen/materials.h"

#include <algorithm>
#include <cctype>
#include <functional>

namespace vx::tbgen {

namespace {

void AddUnique(std::vector<BaseMaterial>& list, const BaseMaterial& m) {
  const BaseMaterial s = Stored(m);
  if (s.men() >= 3 && std::find(list.begin(), list.end(), s) == list.end()) list.push_back(s);
}

// Every multiset of `n` piece kinds.
void ForEachPieceSet(int n, int first_kind, uint8_t* count, const std::function<void()>& f) {
  if (n == 0) return f();
  for (int k = first_kind; k < BASE_KINDS; ++k) {
    ++count[k];
    ForEachPieceSet(n - 1, k, count, f);
    --count[k];
  }
}

}  // namespace

bool ParseMaterialArgument(const std::string& text, BaseMaterial& out, std::string& error) {
  std::string name;
  for (const char c : text) name += char(std::tolower(static_cast<unsigned char>(c)));
  if (name.find('.') != std::string::npos || !ParseBaseMaterial(name, out) || name[0] != 'k') {
    error = "unknown material \"" + text + "\": expected k, White's pieces, k, Black's pieces (letters q r b n p), e.g. krk or kqkr";
    return false;
  }
  if (out.men() > MAX_GENERATED_MEN) {
    error = "material \"" + text + "\" has " + std::to_string(out.men()) + " men; at most five are supported";
    return false;
  }
  if (out.men() < 3) {
    error = "material \"" + text + "\" has no piece besides the kings";
    return false;
  }
  out = Stored(out);
  return true;
}

std::vector<BaseMaterial> AllMaterials(int max_men) {
  std::vector<BaseMaterial> all;
  for (int men = 3; men <= max_men; ++men)
    for (int white = 1; white <= men - 2; ++white) {
      BaseMaterial m;
      ForEachPieceSet(white, 0, m.count[0], [&] {
        ForEachPieceSet(men - 2 - white, 0, m.count[1], [&] { AddUnique(all, m); });
      });
    }
  std::stable_sort(all.begin(), all.end(), [](const BaseMaterial& a, const BaseMaterial& b) {
    return a.men() != b.men() ? a.men() < b.men() : a.name() < b.name();
  });
  return all;
}

std::vector<BaseMaterial> Conversions(const BaseMaterial& m) {
  std::vector<BaseMaterial> out;
  for (int c = 0; c < 2; ++c)
    for (int k = 0; k < BASE_KINDS; ++k) {
      if (!m.count[c][k]) continue;
      BaseMaterial captured = m;
      --captured.count[c][k];
      AddUnique(out, captured);
      if (k != BASE_PAWN) continue;
      for (int q = BASE_QUEEN; q <= BASE_KNIGHT; ++q) {
        BaseMaterial promoted = m;
        --promoted.count[c][BASE_PAWN];
        ++promoted.count[c][q];
        AddUnique(out, promoted);
        for (int v = BASE_QUEEN; v <= BASE_KNIGHT; ++v) {
          if (!promoted.count[1 - c][v]) continue;
          BaseMaterial both = promoted;
          --both.count[1 - c][v];
          AddUnique(out, both);
        }
      }
    }
  return out;
}

std::vector<BaseMaterial> SolveOrder(const std::vector<BaseMaterial>& wanted) {
  std::vector<BaseMaterial> order;
  std::function<void(const BaseMaterial&)> visit = [&](const BaseMaterial& m) {
    if (std::find(order.begin(), order.end(), m) != order.end()) return;
    for (const BaseMaterial& c : Conversions(m)) visit(c);
    order.push_back(m);
  };
  for (const BaseMaterial& m : wanted) visit(Stored(m));
  return order;
}

}  // namespace vx::tbgen

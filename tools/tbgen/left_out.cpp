#include "tools/tbgen/left_out.h"

#include <algorithm>
#include <array>
#include <map>

#include "tools/tbgen/materials.h"

namespace vx::tbgen {

namespace {

constexpr uint64_t NODE_LIMIT = 2'000'000;

struct PartRef {
  int material, side;
};

class Search {
 public:
  explicit Search(const std::vector<PartSizes>& m) : m_(m), choice_(m.size(), -1), best_(m.size(), -1) {
    std::map<uint32_t, int> index;
    for (int i = 0; i < int(m.size()); ++i) index[m[size_t(i)].material.signature()] = i;
    needs_.resize(m.size());
    needed_by_.resize(m.size());
    possible_.resize(m.size());
    for (int i = 0; i < int(m.size()); ++i)
      for (int side = 0; side < 2; ++side) {
        possible_[size_t(i)][side] = m[size_t(i)].bytes[side] >= MIN_LEFT_OUT;
        for (const BaseMaterial& c : ConversionsBy(m[size_t(i)].material, side)) {
          const auto it = index.find(Stored(c).signature());
          if (c.men() < 3 || it == index.end()) {
            possible_[size_t(i)][side] = false;  // bare kings or a table outside the run
            continue;
          }
          const int part = c.stored_swapped() ? side : 1 - side;
          needs_[size_t(i)][side].push_back({it->second, part});
          needed_by_[size_t(it->second)][part].push_back({i, side});
        }
      }
    for (int i = 0; i < int(m.size()); ++i) order_.push_back(i);
    std::stable_sort(order_.begin(), order_.end(), [&](int a, int b) { return largest(a) > largest(b); });
    rest_.assign(m.size() + 1, 0);
    for (size_t k = m.size(); k-- > 0;) rest_[k] = rest_[k + 1] + largest(order_[k]);
  }

  std::vector<int> run() {
    visit(0, 0);
    return best_;
  }

 private:
  // The most a material can leave out.
  uint64_t largest(int i) const {
    uint64_t b = 0;
    for (int side = 0; side < 2; ++side)
      if (possible_[size_t(i)][side]) b = std::max(b, m_[size_t(i)].bytes[side]);
    return b;
  }

  // Leaving out part `side` of material i fits the choices made so far: the
  // parts it relies on are kept, and no part left out relies on it.
  bool fits(int i, int side) const {
    if (!possible_[size_t(i)][side]) return false;
    for (const PartRef& r : needs_[size_t(i)][side])
      if (choice_[size_t(r.material)] == r.side) return false;
    for (const PartRef& r : needed_by_[size_t(i)][side])
      if (choice_[size_t(r.material)] == r.side) return false;
    return true;
  }

  void visit(size_t k, uint64_t value) {
    if (++nodes_ > NODE_LIMIT && found_) return;
    if (value + rest_[k] <= best_value_ && found_) return;
    if (k == order_.size()) {
      if (!found_ || value > best_value_) best_value_ = value, best_ = choice_, found_ = true;
      return;
    }
    const int i = order_[k];
    const PartSizes& p = m_[size_t(i)];
    const int larger = p.bytes[0] >= p.bytes[1] ? 0 : 1;
    for (const int side : {larger, 1 - larger})
      if (fits(i, side)) {
        choice_[size_t(i)] = side;
        visit(k + 1, value + p.bytes[side]);
        choice_[size_t(i)] = -1;
      }
    visit(k + 1, value);
  }

  const std::vector<PartSizes>& m_;
  std::vector<std::array<bool, 2>> possible_;
  std::vector<std::array<std::vector<PartRef>, 2>> needs_, needed_by_;
  std::vector<int> order_, choice_, best_;
  std::vector<uint64_t> rest_;
  uint64_t best_value_ = 0, nodes_ = 0;
  bool found_ = false;
};

}  // namespace

std::vector<int> ChoosePartsToLeaveOut(const std::vector<PartSizes>& materials) {
  return Search(materials).run();
}

}  // namespace vx::tbgen

#include "tools/tbgen/solver.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

#include "tools/tbgen/parallel.h"
#include "tools/tbgen/solver_moves.h"

namespace vx::tbgen {

namespace {

constexpr uint64_t CHUNK = 1 << 14;  // indices per work item (a multiple of 64)
constexpr uint8_t CANNOT_LOSE = 100;  // added to a counter when a capture or promotion draws
constexpr int MAX_LIST = 256;

int KindOf(Piece p) {
  switch (type_of(p)) {
    case QUEEN: return BASE_QUEEN;
    case ROOK: return BASE_ROOK;
    case KNIGHT: return BASE_KNIGHT;
    case PAWN: return BASE_PAWN;
    default: return BASE_BISHOP;
  }
}

// Sorts a list of indices and drops repeats; returns the new length.
int Distinct(uint64_t* list, int n) {
  std::sort(list, list + n);
  return int(std::unique(list, list + n) - list);
}

void SetBit(std::vector<uint64_t>& bits, uint64_t i) {
  std::atomic_ref<uint64_t>(bits[i >> 6]).fetch_or(uint64_t(1) << (i & 63), std::memory_order_relaxed);
}

// A counter or nothing becomes a win; true when this call made it one.
bool MarkWin(uint8_t& v) {
  std::atomic_ref<uint8_t> a(v);
  for (uint8_t cur = a.load(std::memory_order_relaxed); cur < V_WIN;)
    if (a.compare_exchange_weak(cur, V_WIN, std::memory_order_relaxed)) return true;
  return false;
}

// One more move refuted; true when that was the last one and v became a loss.
bool CountDown(uint8_t& v) {
  std::atomic_ref<uint8_t> a(v);
  for (uint8_t cur = a.load(std::memory_order_relaxed); cur < V_WIN;) {
    const uint8_t next = cur <= 1 ? uint8_t(V_LOSS) : uint8_t(cur - 1);
    if (a.compare_exchange_weak(cur, next, std::memory_order_relaxed)) return next == V_LOSS;
  }
  return false;
}

class Analysis {
 public:
  Analysis(const SolverLayout& l, const SolutionStore& subs, Solution& out, int threads)
      : l_(l), subs_(subs), value_(out.value), threads_(threads) {
    for (int c = 0; c < 2; ++c) {
      value_[c].assign(l.size, 0);
      frontier_[c].assign((l.size + 63) / 64, 0);
      next_[c].assign((l.size + 63) / 64, 0);
    }
  }

  bool run(SolveStats& stats) {
    for (Color stm : {WHITE, BLACK})
      ParallelFor(l_.size, CHUNK, threads_, [&](uint64_t b, uint64_t e) { init(stm, b, e); });
    if (missing_) return false;
    for (bool more = true; more; ++stats.passes) {
      for (Color stm : {WHITE, BLACK})
        ParallelFor(frontier_[stm].size(), CHUNK / 64, threads_, [&](uint64_t b, uint64_t e) { spread(stm, b, e); });
      more = false;
      for (int c = 0; c < 2; ++c) {
        frontier_[c].swap(next_[c]);
        std::fill(next_[c].begin(), next_[c].end(), 0);
        more |= std::any_of(frontier_[c].begin(), frontier_[c].end(), [](uint64_t w) { return w != 0; });
      }
    }
    std::atomic<uint64_t> legal{0};
    for (int c = 0; c < 2; ++c)
      ParallelFor(l_.size, CHUNK, threads_, [&](uint64_t b, uint64_t e) {
        uint64_t n = 0;
        for (uint64_t i = b; i < e; ++i) {
          uint8_t& v = value_[c][i];
          if (v < V_WIN) v = V_DRAW;
          n += v != V_INVALID;
        }
        legal += n;
      });
    stats.legal = legal;
    return true;
  }

 private:
  // The value of a position from its moves alone: a win or loss known at
  // once, else a counter of the moves that keep the material.
  void init(Color stm, uint64_t begin, uint64_t end) {
    uint64_t succ[MAX_LIST];
    for (uint64_t i = begin; i < end; ++i) {
      SolverPosition p;
      uint8_t& v = value_[stm][i];
      if (!IsLegalIndex(l_, i, stm, p)) {
        v = V_INVALID;
        continue;
      }
      int n = 0;
      bool win = false, draw = false;
      const int legal = ForEachMove(
          l_, p, stm, [&](const SolverPosition& q) { if (n < MAX_LIST) succ[n++] = CanonicalIndex(l_, q, ~stm); },
          [&](const ManList& r) {
            const uint8_t after = subs_.ValueOf(r, ~stm);
            win |= after == V_LOSS;
            draw |= after == V_DRAW;
            if (after == V_INVALID) missing_ = true;
          });
      n = Distinct(succ, n);
      if (win)
        v = V_WIN;
      else if (legal == 0)
        v = Attacked(BoardsOf(l_, p), p.sq[stm == WHITE ? 0 : 1], ~stm) ? V_LOSS : V_DRAW;
      else if (n == 0)
        v = draw ? V_DRAW : V_LOSS;
      else
        v = uint8_t(n + (draw ? CANNOT_LOSE : 0));
      if (v == V_WIN || v == V_LOSS) SetBit(frontier_[stm], i);
    }
  }

  // Hands the newly decided positions of stm to their predecessors.
  void spread(Color stm, uint64_t word_begin, uint64_t word_end) {
    uint64_t pred[MAX_LIST];
    std::vector<uint8_t>& before = value_[~stm];
    for (uint64_t w = word_begin; w < word_end; ++w)
      for (uint64_t bits = frontier_[stm][w]; bits; bits &= bits - 1) {
        const uint64_t y = w * 64 + uint64_t(__builtin_ctzll(bits));
        const bool lost = value_[stm][y] == V_LOSS;
        int n = 0;
        ForEachPredecessor(l_, Decode(l_, y, stm), stm, [&](const SolverPosition& x) {
          if (n < MAX_LIST) pred[n++] = CanonicalIndex(l_, x, ~stm);
        });
        n = Distinct(pred, n);
        for (int k = 0; k < n; ++k)
          if (lost ? MarkWin(before[pred[k]]) : CountDown(before[pred[k]])) SetBit(next_[~stm], pred[k]);
      }
  }

  const SolverLayout& l_;
  const SolutionStore& subs_;
  std::vector<uint8_t>* value_;
  int threads_;
  std::vector<uint64_t> frontier_[2], next_[2];
  std::atomic<bool> missing_{false};
};

}  // namespace

BaseMaterial MaterialOf(const ManList& men) {
  BaseMaterial m;
  for (int i = 0; i < men.n; ++i)
    if (type_of(men.piece[i]) != KING) ++m.count[color_of(men.piece[i])][KindOf(men.piece[i])];
  return m;
}

const Solution* SolutionStore::find(uint32_t signature) const {
  const auto it = solved_.find(signature);
  return it == solved_.end() ? nullptr : it->second.get();
}

void SolutionStore::add(std::unique_ptr<Solution> s) {
  const uint32_t sig = s->layout.material.signature();
  solved_[sig] = std::move(s);
}

void SolutionStore::drop(uint32_t signature) { solved_.erase(signature); }

uint8_t SolutionStore::ValueOf(const ManList& men, Color stm) const {
  BaseMaterial m = MaterialOf(men);
  if (m.men() == 2) return V_DRAW;
  ManList x = men;
  if (m.stored_swapped()) {
    for (int i = 0; i < x.n; ++i) x.piece[i] ^= 8, x.sq[i] ^= 56;
    stm = ~stm;
    m = m.swapped();
  }
  const Solution* s = find(m.signature());
  if (!s) return V_INVALID;
  // The men in the layout's order.
  SolverPosition p;
  bool used[MAX_SOLVER_MEN] = {};
  for (int j = 0; j < s->layout.men; ++j)
    for (int i = 0; i < x.n; ++i)
      if (!used[i] && color_of(x.piece[i]) == color_of(s->layout.piece[j]) &&
          (type_of(x.piece[i]) == KING) == (type_of(s->layout.piece[j]) == KING) &&
          KindOf(x.piece[i]) == KindOf(s->layout.piece[j])) {
        used[i] = true;
        p.sq[j] = x.sq[i];
        break;
      }
  return s->value[stm][CanonicalIndex(s->layout, p, stm)];
}

std::unique_ptr<Solution> Solve(const SolverLayout& l, const SolutionStore& subs, int threads, SolveStats& stats) {
  auto s = std::make_unique<Solution>();
  s->layout = l;
  Analysis a(l, subs, *s, threads);
  if (!a.run(stats)) return nullptr;
  return s;
}

uint64_t CountInconsistencies(const Solution& s, const SolutionStore& subs, int threads) {
  const SolverLayout& l = s.layout;
  std::atomic<uint64_t> bad{0};
  for (Color stm : {WHITE, BLACK})
    ParallelFor(l.size, CHUNK, threads, [&](uint64_t b, uint64_t e) {
      for (uint64_t i = b; i < e; ++i) {
        SolverPosition p;
        const uint8_t v = s.value[stm][i];
        if (!IsLegalIndex(l, i, stm, p)) {
          bad += v != V_INVALID;
          continue;
        }
        bool win = false, all_lose = true;
        auto seen = [&](uint8_t after) {
          win |= after == V_LOSS;
          all_lose &= after == V_WIN;
        };
        const int legal = ForEachMove(
            l, p, stm, [&](const SolverPosition& q) { seen(s.value[~stm][CanonicalIndex(l, q, ~stm)]); },
            [&](const ManList& r) { seen(subs.ValueOf(r, ~stm)); });
        const bool mated = legal == 0 && Attacked(BoardsOf(l, p), p.sq[stm == WHITE ? 0 : 1], ~stm);
        const uint8_t expected = win ? V_WIN : legal == 0 ? (mated ? V_LOSS : V_DRAW) : all_lose ? V_LOSS : V_DRAW;
        bad += v != expected;
      }
    });
  return bad;
}

}  // namespace vx::tbgen

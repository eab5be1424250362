#include "tools/tbgen/verify.h"

#include <atomic>
#include <mutex>

#include "board/position.h"
#include "egdb/bases/bases.h"
#include "egdb/bases/index.h"
#include "egdb/bases/library_position.h"
#include "egdb/bases/registry.h"
#include "tools/tbgen/parallel.h"

namespace vx::tbgen {

namespace {

constexpr uint64_t FEN_SAMPLE_EVERY = 997;  // positions also probed through a FEN

int Expected(uint8_t v) { return v == V_WIN ? 1 : v == V_DRAW ? 0 : -1; }

// The position with every square mirrored through the a1-h8 diagonal.
SolverPosition DiagonalMirror(const SolverLayout& l, SolverPosition p) {
  for (int i = 0; i < l.men; ++i) p.sq[i] = Transformed(4, p.sq[i]);
  return p;
}

// A leading king that normalises onto the a1-h8 diagonal: only then does
// the mirror image through that diagonal have an index of its own.
bool LeadOnDiagonal(Square lead) {
  const Square s = Transformed(BaseTransform(false, lead), lead);
  return rank_of(s) == file_of(s);
}

}  // namespace

void SetLibraryPosition(const SolverLayout& l, const SolverPosition& p, Color stm, CChessPosition& out) {
  out.clear();
  for (int i = 0; i < l.men; ++i) out.put(LibraryCode(l.piece[i]), p.sq[i]);
  if (p.ep >= 0) out.ep_square = stm == WHITE ? p.sq[p.ep] + 8 : p.sq[p.ep] - 8;
  out.set_white_to_move(stm == WHITE);
}

VerifyResult VerifyLeftOutPart(const SolverLayout& l, const BaseTable& full, Color stm, int threads) {
  std::atomic<uint64_t> probed{0}, bad{0};
  std::mutex first_lock;
  VerifyResult r;
  ParallelFor(l.size, 1 << 14, threads, [&](uint64_t b, uint64_t e) {
    uint64_t n = 0;
    CChessPosition pos;
    for (uint64_t i = b; i < e; ++i) {
      SolverPosition p;
      if (!IsLegalIndex(l, i, stm, p)) continue;
      SetLibraryPosition(l, p, stm, pos);
      int expected = 0, got = 0;
      const bool stored = ProbeStoredPart(full, pos, expected);
      const bool answered = ProbeLibraryPosition(pos, got);
      ++n;
      if (stored && answered && got == expected) continue;
      ++bad;
      std::lock_guard<std::mutex> lock(first_lock);
      if (r.first.empty())
        r.first = LibraryFen(pos) + " (one-ply search): expected " + std::to_string(expected) + ", probe " +
                  (answered ? std::to_string(got) : std::string("gave no answer"));
    }
    probed += n;
  });
  r.probed = probed;
  r.mismatches = bad;
  return r;
}

VerifyResult VerifyMaterial(const Solution& s, int threads) {
  const SolverLayout& l = s.layout;
  // Positions of a left-out part are answered by the one-ply search over
  // parts verified here; their mirror images would only repeat those probes.
  const BaseTable* table = base_registry().find(l.material.signature());
  const bool stored[2] = {table && table->has_part(WHITE), table && table->has_part(BLACK)};
  std::atomic<uint64_t> probed{0}, bad{0};
  std::mutex first_lock;
  VerifyResult r;
  auto report = [&](const CChessPosition& pos, int expected, bool answered, int got, const char* how) {
    ++bad;
    std::lock_guard<std::mutex> lock(first_lock);
    if (!r.first.empty()) return;
    r.first = LibraryFen(pos) + " (" + how + "): expected " + std::to_string(expected) + ", probe " +
              (answered ? std::to_string(got) : std::string("gave no answer"));
  };
  auto check = [&](const CChessPosition& pos, int expected, const char* how) {
    int got = 0;
    const bool answered = ProbeLibraryPosition(pos, got);
    if (!answered || got != expected) report(pos, expected, answered, got, how);
  };
  for (Color stm : {WHITE, BLACK})
    ParallelFor(l.size, 1 << 14, threads, [&](uint64_t b, uint64_t e) {
      uint64_t n = 0;
      CChessPosition pos, other;
      for (uint64_t i = b; i < e; ++i) {
        SolverPosition p;
        if (!IsLegalIndex(l, i, stm, p)) continue;
        const int expected = Expected(s.value[stm][i]);
        SetLibraryPosition(l, p, stm, pos);
        check(pos, expected, stored[stm] ? "library position" : "one-ply search");
        ++n;
        if (!stored[stm]) continue;
        if (!l.pawns && LeadOnDiagonal(p.sq[table->lead_white[stm] ? 0 : 1])) {
          SetLibraryPosition(l, DiagonalMirror(l, p), stm, other);
          check(other, expected, "diagonal mirror");
        }
        if (i % 8 == 0) {
          MirrorColours(pos, other);
          check(other, expected, "colours exchanged");
        }
        if (i % FEN_SAMPLE_EVERY == 0) {
          Position engine;
          int success = 0;
          const int got = engine.SetFromFen(LibraryFen(pos)) ? ProbeVorlaxenbases(engine, success) : 0;
          if (!success || got != expected) report(pos, expected, success, got, "engine position");
        }
      }
      probed += n;
    });
  r.probed = probed;
  r.mismatches = bad;
  return r;
}

}  // namespace vx::tbgen

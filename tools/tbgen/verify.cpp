#include "tools/tbgen/verify.h"

#include <atomic>
#include <mutex>

#include "board/position.h"
#include "egdb/base_index.h"
#include "egdb/bases.h"
#include "egdb/library_position.h"
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

// The same position upside down with the colours exchanged.
void ColourMirror(const CChessPosition& p, CChessPosition& out) {
  out.clear();
  for (Square s = 0; s < 64; ++s)
    if (p.board[s]) out.put(IsWhiteCode(p.board[s]) ? uint8_t(p.board[s] + LIB_BLACK) : uint8_t(p.board[s] - LIB_BLACK), s ^ 56);
  out.ep_square = p.ep_square ? p.ep_square ^ 56 : 0;
  out.set_white_to_move(!p.white_to_move());
}

}  // namespace

void SetLibraryPosition(const SolverLayout& l, const SolverPosition& p, Color stm, CChessPosition& out) {
  out.clear();
  for (int i = 0; i < l.men; ++i) out.put(LibraryCode(l.piece[i]), p.sq[i]);
  if (p.ep >= 0) out.ep_square = stm == WHITE ? p.sq[p.ep] + 8 : p.sq[p.ep] - 8;
  out.set_white_to_move(stm == WHITE);
}

std::string LibraryFen(const CChessPosition& p) {
  static constexpr char letters[] = " KQRBNPkqrbnp";
  std::string fen;
  for (int rank = 7; rank >= 0; --rank) {
    int empty = 0;
    for (int file = 0; file < 8; ++file) {
      const uint8_t c = p.board[make_square(file, rank)];
      if (!c) {
        ++empty;
        continue;
      }
      if (empty) fen += char('0' + empty), empty = 0;
      fen += letters[c];
    }
    if (empty) fen += char('0' + empty);
    if (rank) fen += '/';
  }
  fen += p.white_to_move() ? " w - " : " b - ";
  fen += p.ep_square ? square_text(p.ep_square) : "-";
  return fen + " 0 1";
}

VerifyResult VerifyMaterial(const Solution& s, int threads) {
  const SolverLayout& l = s.layout;
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
        check(pos, expected, "library position");
        ++n;
        if (!l.pawns) {
          SetLibraryPosition(l, DiagonalMirror(l, p), stm, other);
          check(other, expected, "diagonal mirror");
        }
        if (i % 8 == 0) {
          ColourMirror(pos, other);
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

#include "engine/bench.h"

#include <sstream>

#include "board/movegen.h"
#include "board/random.h"
#include "engine/diagram.h"
#include "engine/launch.h"
#include "engine/output.h"
#include "eval/evaluate.h"
#include "eval/material.h"
#include "eval/pawns.h"
#include "search/history.h"
#include "search/movepick.h"
#include "search/thread.h"
#include "search/tt.h"

namespace vx {

namespace {

struct BenchEntry {
  const char* fen;
  int depth;
};

constexpr BenchEntry BENCH_POSITIONS[] = {
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 16},
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 13},
    {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -", 15},
    {"r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ -", 14},
    {"rnbqkb1r/pp1p1ppp/2p5/4P3/2B5/8/PPP1NnPP/RNBQK2R w KQkq -", 16},
    {"r1bqkb1r/pp1n1ppp/2pp1n2/4p3/P2PP3/2N2NP1/1PP2P1P/R1BQKB1R b KQkq -", 14},
    {"r2q1rk1/1b1nbppp/p2p1n2/1pp1p3/3PP3/1PP2N1P/P1BN1PP1/R1BQR1K1 b - -", 14},
    {"rn1qk2r/ppp1bppp/3ppn2/8/3PP1b1/2PB1N2/PP1N1PPP/R1BQK2R b KQkq -", 14},
    {"rn1qkb1r/pp2pppp/5n2/2Pb4/2Q5/5NP1/PP2PP1P/RNB1KB1R w KQkq -", 13},
    {"rn1q1rk1/pbp2ppp/1p1ppn2/8/2PP4/N4NP1/PP1QPPBP/R4RK1 w - -", 15},
    {"r1bq1rk1/pp1pnpbp/2n1p1p1/2p5/2P2N2/2N1P1P1/PP1P1PBP/R1BQ1RK1 b - -", 14},
    {"2kr1bnr/ppqb2pp/4p3/2ppP3/2P5/8/PP2BPPP/RNBQR1K1 b - -", 15},
    {"r2qr1k1/pp2bppp/8/2np4/4n3/4BN2/PPP2PPP/R2QRNK1 w - -", 14},
    {"1nb1kb1r/r4ppp/p3p3/1p2q3/8/2NQ1N2/PPP1B1PP/3RKR2 b k -", 15},
    {"r2r2k1/ppp2p1p/6p1/2n1Pb2/2P1N3/5B2/PPK3PP/R1B1R3 b - -", 16},
    {"r1k4r/1ppbbppp/2p5/p3Pn2/8/1PN2N1P/PBP2PP1/3R1RK1 b - -", 16},
    {"r1bk1b1r/ppp2pp1/2p4p/4Pn2/8/5N2/PPP1NPPP/R1B2RK1 b - -", 16},
    {"rnb4r/1p2kppp/p3pn2/2b5/8/1P2PN2/P3BPPP/RNB2RK1 b - -", 16},
    {"r3kbnr/1b3ppp/p3p3/1p6/3N4/8/PPP1BPPP/R1B2RK1 w kq -", 16},
    {"r4rk1/p1R1ppbp/6p1/8/3PP1b1/4BN2/q4PPP/3Q1RK1 b - -", 16},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 21},
    {"8/1ppr1kp1/p1p4p/8/8/5P2/PPP1RKPP/8 w - -", 18},
    {"8/1pk3pp/p7/3p1p2/8/3K2P1/PP2PP1P/8 w - -", 18},
    {"8/4k3/r4pp1/pR6/P4KP1/5P2/8/8 b - -", 18},
    {"8/p1p1k3/1p1p2p1/3Pq2p/2P1P3/1P3QPK/P7/8 w - -", 18},
    {"8/p3ppk1/1p4pp/3nN3/6PP/1P3P2/P3PK2/8 w - -", 18},
    {"7k/pp4pp/2n5/8/8/P7/1P4PP/2K1B3 b - -", 20},
    {"8/8/p4Bp1/1pPb2P1/1P2kp2/P7/5K2/8 w - -", 26},
    {"8/4k3/p1B4p/2K5/1P4bP/8/8/8 b - -", 22},
    {"3R4/1p6/2b5/2P1k2p/p3p2P/P6r/1P2KB2/8 b - -", 16},
    {"3R4/1p6/2b5/2P1k2p/p3p2P/P6r/1P2KB2/8 b - -", 16},
    {"8/p2k1ppp/8/8/8/8/PP1K2PP/8 w - -", 18},
    {"1r6/3k1ppp/3n4/8/8/5N2/P2K2PP/2R5 w - -", 16},
    {"1r4k1/p4p1p/3n4/3q4/8/4QN2/P5PP/2R3K1 w - -", 16},
    {"8/8/4P1k1/8/2p5/8/2P5/1K3n2 w - - 0 1", 22},
};

}  // namespace

void RunBench(ThreadPool& pool, int offset, bool helpers) {
  pool.main().table->clear();
  const int64_t start = Clock();
  uint64_t total = 0;
  for (const BenchEntry& e : BENCH_POSITIONS) {
    for (Thread* t : pool.threads) {
      t->state->reset_history();
      t->position->SetFromFen(e.fen);
    }
    SearchState& st = pool.main();
    st.limits = SearchLimits{};
    st.limits.depth = e.depth + offset;
    MoveList legal;
    GenerateLegal(pool.main_position(), legal);
    std::vector<Move> moves(legal.begin(), legal.end());
    LaunchSearch(pool, MOVE_NONE, MOVE_NONE, moves, helpers);
    total += pool.nodes();
  }
  const int64_t elapsed = Clock() - start + 1;
  WriteLine("");
  WriteLine("Total time (ms) : " + std::to_string(elapsed));
  WriteLine("Nodes searched  : " + std::to_string(total));
  WriteLine("Nodes/second    : " + std::to_string(total * 1000 / uint64_t(elapsed)));
}

}  // namespace vx

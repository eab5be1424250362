// The "perft" self-test: a move-path enumeration over stored positions that
// runs through the search's machinery (evaluation, staged picker, ordering
// updates) and compares the leaf counts with known results.
#include <sstream>

#include "board/random.h"
#include "engine/bench.h"
#include "engine/diagram.h"
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

struct SelfTestEntry {
  bool enabled;
  const char* fen;
  int depth;
  uint64_t expected;
};

constexpr SelfTestEntry SELF_TEST[] = {
    {false, "r1k1r2q/p1ppp1pp/8/8/8/8/P1PPP1PP/R1K1R2Q w AEae - 0 1", 5, 7096972},
    {false, "r1k2r1q/p1ppp1pp/8/8/8/8/P1PPP1PP/R1K2R1Q w FAfa -", 5, 15194841},
    {false, "8/8/8/4B2b/6nN/8/5P2/2R1K2k w C -", 6, 44554839},
    {false, "2r5/8/8/8/8/8/6PP/k2KR3 w E -", 6, 14751778},
    {false, "4r3/3k4/8/8/8/8/6PP/qR1K1R2 w FB -", 5, 8992652},
    {false, "r1k1r2q/p1ppp1pp/8/8/8/8/P1PPP1PP/R1K1R2Q w AEae - 0 1", 7, 4557457200ULL},
    {false, "r1k2r1q/p1ppp1pp/8/8/8/8/P1PPP1PP/R1K2R1Q w FAfa -", 7, 12094237108ULL},
    {false, "8/8/8/4B2b/6nN/8/5P2/2R1K2k w C -", 7, 1205627532},
    {false, "2r5/8/8/8/8/8/6PP/k2KR3 w E -", 8, 3914405614ULL},
    {false, "4r3/3k4/8/8/8/8/6PP/qR1K1R2 w FB -", 7, 6447669114ULL},
    {true, "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 4, 4085603},
    {true, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 5, 4865609},
    {true, "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 5, 674624},
    {true, "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1", 5, 15833292},
    {true, "r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ - 0 1", 5, 15833292},
    {true, "rnbqkb1r/pp1p1ppp/2p5/4P3/2B5/8/PPP1NnPP/RNBQK2R w KQkq - 0 6", 3, 53392},
    {true, "8/8/1k6/2b5/2pP4/8/5K2/8 b - d3 0 1", 6, 1440467},
    {true, "8/5k2/8/2Pp4/2B5/1K6/8/8 w - d6 0 1", 6, 1440467},
    {true, "5k2/8/8/8/8/8/8/4K2R w K - 0 1", 6, 661072},
    {true, "4k2r/8/8/8/8/8/8/5K2 b k - 0 1", 6, 661072},
    {true, "3k4/8/8/8/8/8/8/R3K3 w Q - 0 1", 6, 803711},
    {true, "r3k3/8/8/8/8/8/8/3K4 b q - 0 1", 6, 803711},
    {true, "r3k2r/1b4bq/8/8/8/8/7B/R3K2R w KQkq - 0 1", 4, 1274206},
    {true, "r3k2r/7b/8/8/8/8/1B4BQ/R3K2R b KQkq - 0 1", 4, 1274206},
    {true, "r3k2r/8/3Q4/8/8/5q2/8/R3K2R b KQkq - 0 1", 4, 1720476},
    {true, "r3k2r/8/5Q2/8/8/3q4/8/R3K2R w KQkq - 0 1", 4, 1720476},
    {true, "2K2r2/4P3/8/8/8/8/8/3k4 w - - 0 1", 6, 3821001},
    {true, "3K4/8/8/8/8/8/4p3/2k2R2 b - - 0 1", 6, 3821001},
    {true, "8/8/1P2K3/8/2n5/1q6/8/5k2 b - - 0 1", 5, 1004658},
    {true, "5K2/8/1Q6/2N5/8/1p2k3/8/8 w - - 0 1", 5, 1004658},
    {true, "4k3/1P6/8/8/8/8/K7/8 w - - 0 1", 6, 217342},
    {true, "8/k7/8/8/8/8/1p6/4K3 b - - 0 1", 6, 217342},
    {true, "8/P1k5/K7/8/8/8/8/8 w - - 0 1", 6, 92683},
    {true, "8/8/8/8/8/k7/p1K5/8 b - - 0 1", 6, 92683},
    {true, "K1k5/8/P7/8/8/8/8/8 w - - 0 1", 6, 2217},
    {true, "8/8/8/8/8/p7/8/k1K5 b - - 0 1", 6, 2217},
    {true, "8/k1P5/8/1K6/8/8/8/8 w - - 0 1", 7, 567584},
    {true, "8/8/8/8/1k6/8/K1p5/8 b - - 0 1", 7, 567584},
    {true, "8/8/2k5/5q2/5n2/8/5K2/8 b - - 0 1", 4, 23527},
    {true, "8/5k2/8/5N2/5Q2/2K5/8/8 w - - 0 1", 4, 23527},
    {false, "r3k2r/8/8/8/3pPp2/8/8/R3K1RR b KQkq e3 0 1", 6, 485647607},
    {false, "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1", 6, 706045033},
    {false, "8/7p/p5pb/4k3/P1pPn3/8/P5PP/1rB2RK1 b - d3 0 28", 6, 38633283},
    {false, "8/3K4/2p5/p2b2r1/5k2/8/8/1q6 b - - 1 67", 7, 493407574},
    {false, "rnbqkb1r/ppppp1pp/7n/4Pp2/8/8/PPPP1PPP/RNBQKBNR w KQkq f6 0 3", 6, 244063299},
    {false, "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 5, 193690690},
    {false, "8/p7/8/1P6/K1k3p1/6P1/7P/8 w - -", 8, 8103790},
    {false, "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -", 6, 71179139},
    {false, "r3k2r/p6p/8/B7/1pp1p3/3b4/P6P/R3K2R w KQkq -", 6, 77054993},
    {false, "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 7, 178633661},
    {false, "8/5p2/8/2k3P1/p3K3/8/1P6/8 b - -", 8, 64451405},
    {false, "r3k2r/pb3p2/5npp/n2p4/1p1PPB2/6P1/P2N1PBP/R3K2R w KQkq -", 5, 29179893},
    {false, "", 0, 0},
};

struct PerftCounters {
  uint64_t checks = 0, castles = 0, en_passant = 0, captures = 0, promotions = 0;
  uint64_t random = 0;  // the walk's generator
};

template <bool HwPopcnt, Color Us>
uint64_t PerftWalk(PerftCounters& c, SearchState& st, Position& pos, SearchStack* ss, int depth) {
  AttackInfo ai;
  evaluate<HwPopcnt>(st, pos, ai);
  const Move prev = Move((ss - 1)->current_move);
  Move counter0 = MOVE_NONE, counter1 = MOVE_NONE;
  if (prev != MOVE_NONE) {
    const uint32_t* slot = CounterSlot(st, pos, prev);
    counter0 = Move(slot[0]);
    counter1 = Move(slot[1]);
  }
  // The picker with complete promotion sets, so that the counts are those of
  // a full move-path enumeration.
  MovePicker mp;
  StartPicker<Us, true>(mp, pos, ai, *st.history, nullptr, depth, MOVE_NONE, Move(ss->killers[0]),
                        Move(ss->killers[1]), counter0, counter1);
  Move quiets[MAX_QUIETS];
  int quiet_count = 0;
  Move chosen = MOVE_NONE;
  uint64_t leaves = 0;
  while (const Move m = NextMove<Us, true>(mp)) {
    if (!IsLegal<Us>(pos, m, ai)) {
      pos.DoMove<Us>(m);
      pos.UndoMove<Us>(m);
      continue;
    }
    if (!is_tactical(m) && quiet_count < MAX_QUIETS) quiets[quiet_count++] = m;
    ss->current_move = m;
    pos.DoMove<Us>(m);
    if (depth > 4) {
      leaves += PerftWalk<HwPopcnt, ~Us>(c, st, pos, ss + 1, depth - 4);
    } else {
      c.checks += InCheck(pos);
      c.castles += is_castling(m);
      c.en_passant += is_en_passant(m);
      c.captures += is_capture(m);
      c.promotions += is_promotion(m);
      ++leaves;
    }
    pos.UndoMove<Us>(m);
    xorshift_step(c.random);
    if ((c.random & 0xFF) * 253 % 8 == 0) chosen = m;
  }
  if (chosen && !is_tactical(chosen)) {
    PushPair(ss->killers, chosen);
    HistoryBonus((*st.history)[pos.piece_on(from_sq(chosen))][to_sq(chosen)]);
    if (prev != MOVE_NONE && prev != MOVE_NULL) PushPair(CounterSlot(st, pos, prev), chosen);
    for (int i = 0; i < quiet_count; ++i)
      if (quiets[i] != chosen) HistoryMalus((*st.history)[pos.piece_on(from_sq(quiets[i]))][to_sq(quiets[i])]);
  }
  return leaves;
}

template <bool HwPopcnt>
uint64_t RootPerft(PerftCounters& c, SearchState& st, Position& pos, int depth) {
  static SearchStack stack[SEARCH_STACK_SIZE];
  for (int k = 0; k < SEARCH_STACK_SIZE; ++k) {
    stack[k] = SearchStack{};
    stack[k].ply = k >= ROOT_ENTRY ? k - ROOT_ENTRY : 0;
    stack[k].static_eval = VALUE_INFINITE;
  }
  c.checks = c.castles = c.en_passant = c.captures = c.promotions = 0;
  SearchStack* ss = stack + ROOT_ENTRY;
  const uint64_t n = pos.side_to_move == WHITE ? PerftWalk<HwPopcnt, WHITE>(c, st, pos, ss, depth)
                                                : PerftWalk<HwPopcnt, BLACK>(c, st, pos, ss, depth);
  WriteLine("");
  WriteLine("perft " + std::to_string(depth / 4) + ": " + std::to_string(n));
  WriteLine("");
  WriteLine("captures: " + std::to_string(c.captures));
  WriteLine("ep: " + std::to_string(c.en_passant));
  WriteLine("castles: " + std::to_string(c.castles));
  WriteLine("promotions: " + std::to_string(c.promotions));
  WriteLine("checks: " + std::to_string(c.checks));
  return n;
}

std::string DoubleText(double x) {
  std::ostringstream s;
  s << x;
  return s.str();
}

}  // namespace

bool RunSelfTest(ThreadPool& pool) {
  SearchState& st = pool.main();
  PerftCounters c;
  SeedRandom(c.random, 17);
  int errors = 0;
  uint64_t total_nodes = 0;
  int64_t total_time = 1;
  static Position pos;
  for (const SelfTestEntry* e = SELF_TEST; e->depth > 0; ++e) {
    if (!e->enabled) continue;
    pos.SetFromFen(e->fen);
    st.table->new_search();
    st.reset_history();
    st.reset_eval_caches();
    WriteLine("Testing position:\n" + BoardDiagram(pos) + "fen: " + e->fen);
    const int64_t t0 = Clock();
    const uint64_t n =
        st.hasPopcnt ? RootPerft<true>(c, st, pos, e->depth * 4) : RootPerft<false>(c, st, pos, e->depth * 4);
    const int64_t elapsed = Clock() - t0 + 1;
    total_nodes += n;
    total_time += elapsed;
    if (n != e->expected) ++errors;
    std::string text = n == e->expected ? "###### Test OK ########\n" : "###### Error in Test ########\n";
    if (st.material_probes)
      text += "\nMaterial hit rate " + DoubleText(st.material_hits * 100.0 / st.material_probes) + "%\n";
    if (st.pawn_probes) text += "Pawn hit rate " + DoubleText(st.pawn_hits * 100.0 / st.pawn_probes) + "%\n";
    text += "\nTime: " + DoubleText(elapsed * 0.001) + " sec -> " + std::to_string(n * 1000 / uint64_t(elapsed)) +
            " nps\n\n\n";
    text += "Errors so far: " + std::to_string(errors) + " errors\n\n";
    WriteLine(text);
  }
  WriteLine("\nTotal Time: " + DoubleText(total_time * 0.001) + " sec -> " +
            std::to_string(total_nodes * 1000 / uint64_t(total_time)) + " nps\n\n");
  WriteLine("------ Test finished with " + std::to_string(errors) + " errors ------");
  return errors == 0;
}

}  // namespace vx

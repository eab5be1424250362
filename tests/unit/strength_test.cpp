// Strength limitation: node budgets, root bonuses and their shuffle,
// evaluation noise, overlook chances, the think delay, the threat flag and
// the limited copy of the search.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "engine/launch.h"
#include "engine/timeman.h"
#include "engine_test_util.h"
#include "eval/psq.h"
#include "search/random.h"
#include "search/search.h"
#include "search/strength.h"
#include "search/tbhook.h"

namespace vx {
namespace {

// Every test starts the generator from its start word, so the draws do not
// depend on which tests ran before.
struct Strength : testing::Test {
  void SetUp() override {
    test::init();
    ResetRandom();
  }
};

// Smallest and largest value of many draws of f.
std::pair<int64_t, int64_t> DrawRange(const std::function<int64_t()>& f, int draws = 3000) {
  int64_t lo = INT64_MAX, hi = INT64_MIN;
  for (int i = 0; i < draws; ++i) {
    const int64_t v = f();
    lo = std::min(lo, v);
    hi = std::max(hi, v);
  }
  return {lo, hi};
}

TEST_F(Strength, NodeBudgetBaseAndShifts) {
  struct Case {
    int elo;
    bool threat;
    double phase;
    int64_t n, down, up;
  } cases[] = {
      {850, false, 1.0, 10, 7, 6},        {1450, false, 1.0, 640, 367, 110},
      {1450, true, 1.0, 640, 45, 55},     {1450, false, 0.0, 1280, 734, 220},
      {2000, false, 1.0, 28963, 13663, 0}, {850, true, 1.0, 10, 0, 3},
  };
  for (const Case& c : cases) {
    const NodeBudgetBase b = BaseNodeBudget(c.elo, c.threat, c.phase);
    EXPECT_EQ(b.n, c.n) << c.elo;
    EXPECT_EQ(b.down, c.down) << c.elo;
    if (c.up > 0) EXPECT_EQ(b.up, c.up) << c.elo;
    else EXPECT_LT(b.up, 0) << c.elo;  // from about 2000 Elo the budget only shrinks

    const auto [lo, hi] = DrawRange([&] { return NodeBudget(c.elo, c.threat, c.phase); });
    EXPECT_GE(lo, std::max<int64_t>(c.n - c.down, 3)) << c.elo;
    EXPECT_LE(hi, c.n + c.up) << c.elo;
    if (c.n < 1000) {  // small ranges are covered end to end
      EXPECT_EQ(lo, std::max<int64_t>(c.n - c.down, 3)) << c.elo;
      EXPECT_EQ(hi, c.n + c.up) << c.elo;
    }
  }
}

TEST_F(Strength, EvalNoiseWidthAndItsEnd) {
  const std::pair<int, int> cases[] = {{850, 105}, {1400, 37}, {1984, 1}, {1985, 0}, {2800, 0}};
  for (const auto& [elo, w] : cases) {
    const auto [lo, hi] = DrawRange([elo = elo] { return EvalNoise(elo); });
    EXPECT_EQ(lo, -w) << elo;
    EXPECT_EQ(hi, w) << elo;
  }
  // Without noise the generator is not even advanced.
  ResetRandom();
  EvalNoise(1985);
  const int first = Random(0, 1 << 30);
  ResetRandom();
  EXPECT_EQ(Random(0, 1 << 30), first);
}

// A position reached from a FEN by playing moves; p and l are the last two.
struct Played {
  Position pos;
  Move p = MOVE_NONE, l = MOVE_NONE;
};
Played Play(const char* fen, std::initializer_list<const char*> moves) {
  Played r{test::from_fen(fen)};
  for (const char* text : moves) {
    const Move m = test::move_of(r.pos, text);
    test::play(r.pos, m);
    r.p = r.l;
    r.l = m;
  }
  return r;
}

const char* const START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

TEST_F(Strength, SkipChanceCases) {
  struct Case {
    const char* fen;
    std::initializer_list<const char*> moves;
    const char* m;
    int elo, ply, expected;
  } cases[] = {
      {START, {}, "g1f3", 850, 0, 73},                        // 2 x 36.93
      {START, {}, "g1f3", 850, 3, 85},                        // 73.9 x 1.6, capped
      {START, {"e2e4", "e7e5"}, "f1c4", 850, 0, 55},          // bishop, three squares
      {START, {"g1f3", "b8c6"}, "f3g5", 850, 0, 9},           // the same piece again: 29.5 / 3
      {START, {"g1f3", "e7e5"}, "f3g5", 850, 0, 0},           // ... right after a pawn move
      {START, {"e2e4", "g8f6"}, "e4e5", 850, 0, 1},           // ... a pawn, attacked by the knight
      {START, {"e2e4", "d7d5", "e4d5"}, "d8d5", 850, 6, 0},   // recapture
      {"4k3/8/5n2/8/8/2N5/8/4K3 b - - 0 1", {"f6d5"}, "c3e4", 850, 0, 36},  // knight attacker: halved
      {"4k3/8/8/1p6/8/2N5/8/4K3 b - - 0 1", {"b5b4"}, "c3e4", 850, 0, 0},   // pawn attacker
      {"4k3/8/8/1p6/8/2N5/8/4K3 b - - 0 1", {"b5b4"}, "e1e2", 850, 0, 18},  // king
      {"R3k3/8/8/8/8/8/8/4K3 b - - 0 1", {}, "e8e7", 850, 0, 6},             // evasion: a third
      {"4k3/8/8/3p4/4P3/8/8/4K3 w - - 0 1", {}, "e4d5", 850, 0, 9},          // pawn capture
      {"4k3/1P6/8/8/8/8/8/4K3 w - - 0 1", {}, "b7b8q", 850, 0, 9},           // promotion
      {"4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", {}, "e5d6", 850, 0, 55},         // en passant: 3 x, halved
      {"4k3/8/8/8/8/8/8/4K2R w K - 0 1", {}, "e1g1", 850, 0, 73},            // castling
      {"4k3/8/8/8/8/8/8/Q3K3 w - - 0 1", {}, "a1a7", 850, 0, 55},            // queen on a file: 6 x 0.25
      {"4k3/8/8/8/8/8/8/Q3K3 w - - 0 1", {}, "a1d4", 850, 0, 55},            // queen on a diagonal: 3 x 0.5
  };
  for (const Case& c : cases) {
    const Played g = Play(c.fen, c.moves);
    const Move m = test::move_of(g.pos, c.m);
    AttackInfo ai;
    ComputeAttackInfo(g.pos, ai);
    const bool in_check = ai.attacked_by(~g.pos.side_to_move) & g.pos.of(g.pos.side_to_move, KING);
    EXPECT_EQ(SkipChance(c.elo, g.pos, m, g.p, g.l, in_check, c.ply), c.expected) << c.m;
  }
}

// Over every legal move, every ply and game moves of all kinds: the chance
// stays within 0..85, and from 2475 Elo on no move is ever overlooked.
TEST_F(Strength, SkipChanceRangeAndItsEnd) {
  const char* fens[] = {START, "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
                        "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1", "4k3/1P6/8/8/8/8/6p1/4K3 b - - 0 1"};
  for (const char* fen : fens) {
    const Position pos = test::from_fen(fen);
    MoveList legal;
    GenerateLegal(pos, legal);
    for (const Move m : legal)
      for (const Move other : legal)
        for (int ply = 0; ply < 14; ply += 3) {
          EXPECT_EQ(SkipChance(2475, pos, m, other, other, false, ply), 0);
          EXPECT_EQ(SkipChance(2800, pos, m, m, MOVE_NONE, true, ply), 0);
          for (const int elo : {850, 1400, 2000}) {
            const int s = SkipChance(elo, pos, m, other, m, ply & 1, ply);
            ASSERT_GE(s, 0);
            ASSERT_LE(s, 85);
          }
        }
  }
}

TEST_F(Strength, RootBonusRanges) {
  struct Case {
    const char* fen;
    std::initializer_list<const char*> moves;
    const char* m;
    int elo, lo, hi;
  } cases[] = {
      {START, {}, "a2a3", 850, 3, 10},                   // pawn: 650 / 90 = 7
      {START, {}, "g1f3", 850, -30, -10},                // knight: 650 / 31 = 20
      {START, {"g1f3", "e7e5"}, "f3g1", 850, -78, -26},  // knight back where it came from
      {START, {"e2e4", "e7e5"}, "d2d4", 850, -78, -17},  // into a pawn's attack
      {START, {"e2e4", "d7d5"}, "e4d5", 850, 85, 257},   // pawn, capture, same value, l's square, p's piece
      {"4k3/1P6/8/8/8/8/8/4K3 w - - 0 1", {}, "b7b8q", 1600, 12, 37},
      {"4k3/1P6/8/8/8/8/8/4K3 w - - 0 1", {}, "b7b8r", 1600, 0, 0},
      {"4k3/1P6/8/8/8/8/8/4K3 w - - 0 1", {}, "b7b8q", 1700, 0, 0},
      {START, {"e2e4", "d7d5"}, "e4d5", 1500, 0, 0},
  };
  for (const Case& c : cases) {
    const Played g = Play(c.fen, c.moves);
    const Move m = test::move_of(g.pos, c.m);
    const auto [lo, hi] = DrawRange([&] { return RootBonus(c.elo, g.pos, m, g.p, g.l); }, 2000);
    EXPECT_GE(lo, c.lo) << c.m;
    EXPECT_LE(hi, c.hi) << c.m;
    EXPECT_GE(hi - lo, (c.hi - c.lo) / 2) << c.m;  // the terms really vary
  }
}

struct StrengthSearch : Strength, test::EngineFixture {};

TEST_F(StrengthSearch, ShuffleDrawsLargerBonusesForward) {
  const int n = 30;
  state->root_moves.clear();
  state->strength_bonus.clear();
  for (int i = 0; i < n; ++i) {
    const Move m = make_move(i, i + 1);
    state->root_moves.push_back(m);
    state->strength_bonus[m] = i;  // worst order: every pair inverted
  }
  auto inversions = [&] {
    int count = 0;
    for (int i = 0; i < n; ++i)
      for (int j = i + 1; j < n; ++j) count += BonusOf(*state, state->root_moves[i]) < BonusOf(*state, state->root_moves[j]);
    return count;
  };
  ShuffleRootMoves(*state);
  std::vector<Move> sorted = state->root_moves;
  std::sort(sorted.begin(), sorted.end());
  for (int i = 0; i < n; ++i) ASSERT_EQ(sorted[i], make_move(i, i + 1));
  EXPECT_LT(inversions(), n * (n - 1) / 2 / 3);

  // Equal bonuses (every bonus is 0 from 1700 Elo on) never swap.
  for (auto& [m, b] : state->strength_bonus) b = 0;
  const std::vector<Move> before = state->root_moves;
  ShuffleRootMoves(*state);
  EXPECT_EQ(state->root_moves, before);
}

TEST_F(Strength, ThinkDelayWaitsAThirdToTwiceTheTarget) {
  time_manager.target = 1000;
  const auto [lo, hi] = DrawRange([] { return 50 + ThinkDelay(50); });
  EXPECT_EQ(lo, 330);
  EXPECT_EQ(hi, 2000);
  EXPECT_EQ(DrawRange([] { return ThinkDelay(2000); }).second, 0);
}

TEST_F(Strength, ThreatOfTheLastMove) {
  struct Case {
    const char* fen;
    Move last;
    bool threat;
  } cases[] = {
      {"4k3/8/8/8/1p6/2N5/8/4K3 w - - 0 1", make_move(SQ_B5, SQ_B4), true},   // pawn hits a knight
      {"4k3/8/8/8/3n4/8/4R3/4K3 w - - 0 1", make_move(SQ_C6, SQ_D4), true},   // knight hits a rook
      {"3rk3/8/8/8/8/8/3Q4/4K3 w - - 0 1", make_move(SQ_A8, SQ_D8), true},    // rook hits the queen
      {"4k3/8/8/8/1b6/2N5/8/4K3 w - - 0 1", make_move(SQ_F8, SQ_B4), true},   // undefended knight
      {"4k3/8/8/8/1b6/2N5/1P6/4K3 w - - 0 1", make_move(SQ_F8, SQ_B4), false},  // defended knight
      {"4k3/8/8/8/8/8/q3R3/4K3 w - - 0 1", make_move(SQ_A8, SQ_A2), false},   // queen hits a defended rook
      {"4k3/8/8/8/1p6/2N5/8/4K3 w - - 0 1", MOVE_NONE, false},
  };
  for (const Case& c : cases)
    EXPECT_EQ(LastMoveThreatens(test::from_fen(c.fen), c.last), c.threat) << c.fen;
}

// Counts the probes of a prober that always answers "draw".
int probes = 0;
int CountingProbe(Position&, int& success) {
  ++probes;
  success = 1;
  return 0;
}
void NoHit(SearchState&) {}

TEST_F(StrengthSearch, LimitedNodesNeverProbeTablebases) {
  // Black to move after a capture, three men: every node may probe.
  position.SetFromFen("8/8/8/2K5/8/8/8/k6q b - - 0 1");
  SearchStack stack[SEARCH_STACK_SIZE] = {};
  for (int k = 0; k < SEARCH_STACK_SIZE; ++k) {
    stack[k].ply = k >= ROOT_ENTRY ? k - ROOT_ENTRY : 0;
    stack[k].static_eval = VALUE_INFINITE;
  }
  stack[ROOT_ENTRY - 1].current_move = make_move(SQ_E4, SQ_D5) | CAPTURE_FLAG;
  const TablebaseHook saved = tb_hook;
  tb_hook = TablebaseHook{32, CountingProbe, false, NoHit};
  state->next_check = INT64_MAX;
  state->stop = 0;
  state->elo = 2800;  // no noise, nothing overlooked

  probes = 0;
  Search<true, false, BLACK, true, NORMAL, false>(*state, position, stack + ROOT_ENTRY, -32501, 32501, 12, false);
  EXPECT_GT(probes, 0);
  probes = 0;
  tt.clear();
  Search<true, true, BLACK, true, NORMAL, false>(*state, position, stack + ROOT_ENTRY, -32501, 32501, 12, false);
  EXPECT_EQ(probes, 0);
  tb_hook = saved;
}

TEST_F(StrengthSearch, LimitedLaunchSetsUpNoiseBudgetAndBonuses) {
  ValuePair clean[16][64];
  std::memcpy(clean, PSQ, sizeof(PSQ));
  position.SetFromFen(START);
  MoveList legal;
  GenerateLegal(position, legal);
  std::vector<Move> moves(legal.begin(), legal.end());
  const std::vector<Move> all = moves;
  SetOption("UCI_Elo", "850");
  SetOption("UCI_LimitStrength", "true");
  state->limits = SearchLimits{};
  state->limits.depth = 30;
  testing::internal::CaptureStdout();
  LaunchSearch(pool, MOVE_NONE, MOVE_NONE, moves);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_NE(std::memcmp(clean, PSQ, sizeof(PSQ)), 0);  // the noisy tables were in use
  SetOption("UCI_LimitStrength", "false");

  EXPECT_EQ(state->elo, 850);
  EXPECT_GE(state->limits.nodes, 3);
  EXPECT_LE(state->limits.nodes, 16);
  EXPECT_LE(state->nodes, uint64_t(state->limits.nodes) + 40);  // stops right after the budget
  EXPECT_EQ(state->strength_bonus.size(), all.size());
  std::vector<Move> shuffled = state->root_moves;
  std::sort(shuffled.begin(), shuffled.end());
  std::vector<Move> sorted = all;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(shuffled, sorted);
  EXPECT_NE(out.find("bestmove "), std::string::npos);
  // Switching the limitation off restores the clean tables.
  EXPECT_EQ(std::memcmp(clean, PSQ, sizeof(PSQ)), 0);
}

TEST_F(StrengthSearch, LimitedCheckWithoutAClock) {
  state->limits = SearchLimits{};
  state->search_start = uint32_t(Clock());
  state->limits.nodes = 100;
  state->nodes = 99;
  state->stop = 0;
  CheckLimitsLimited(*state, PHASE_TREE);
  EXPECT_EQ(state->stop, 0);
  state->nodes = 100;
  CheckLimitsLimited(*state, PHASE_TREE);
  EXPECT_EQ(state->stop, 2);
  state->stop = 1;  // a "stop" command stays one
  CheckLimitsLimited(*state, PHASE_TREE);
  EXPECT_EQ(state->stop, 1);
  state->stop = 0;
  state->nodes = 0;
  state->limits.ponder = true;  // pondering does not suspend the limited check
  state->limits.movetime = 1;
  state->search_start -= 5;
  CheckLimitsLimited(*state, PHASE_TREE);
  EXPECT_EQ(state->stop, 2);
}

}  // namespace
}  // namespace vx

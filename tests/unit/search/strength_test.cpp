// Strength limitation: the worked numbers of the formulas of limited play.
#include <gtest/gtest.h>

#include <functional>

#include "engine/timeman.h"
#include "engine_test_util.h"
#include "search/strength.h"

namespace vx {
namespace {

// The generator restarts from its start word, so draws do not depend on the tests run before.
struct Strength : testing::Test, test::EngineFixture {
  void SetUp() override { ResetRandom(); }
};

using Range = std::pair<int64_t, int64_t>;

Range DrawRange(const std::function<int64_t()>& f) {
  int64_t lo = INT64_MAX, hi = INT64_MIN;
  for (int i = 0; i < 3000; ++i) {
    const int64_t v = f();
    lo = std::min(lo, v), hi = std::max(hi, v);
  }
  return {lo, hi};
}

TEST_F(Strength, NodeBudget) {
  struct { int elo; bool threat; double phase; int64_t n, down, up; } cases[] = {
      {850, false, 1, 10, 7, 6},   {1450, false, 1, 640, 367, 110},    {1450, true, 1, 640, 45, 55},
      {1450, false, 0, 1280, 734, 220}, {2000, false, 1, 28963, 13663, -1}};
  for (const auto& c : cases) {
    const NodeBudgetBase b = BaseNodeBudget(c.elo, c.threat, c.phase);
    EXPECT_EQ(b.n, c.n);
    EXPECT_EQ(b.down, c.down);
    EXPECT_EQ(std::max<int64_t>(b.up, -1), c.up);  // from about 2000 Elo on the budget only shrinks
    const auto [lo, hi] = DrawRange([&] { return NodeBudget(c.elo, c.threat, c.phase); });
    EXPECT_GE(lo, std::max<int64_t>(c.n - c.down, 3));
    EXPECT_LE(hi, c.n + std::max<int64_t>(c.up, 0));
    if (c.n < 20) {  // a small range is covered end to end
      EXPECT_EQ(hi - lo, c.n + c.up - std::max<int64_t>(c.n - c.down, 3)) << c.elo;
    }
  }
}

TEST_F(Strength, EvalNoiseAndThinkDelay) {
  const int widths[][2] = {{850, 105}, {1400, 37}, {1984, 1}, {1985, 0}};
  for (const auto& [elo, w] : widths)
    EXPECT_EQ(DrawRange([elo = elo] { return EvalNoise(elo); }), Range(-w, w)) << elo;
  time_manager.target = 1000;  // spent the budget after 50 ms: 330..2000 ms in all
  EXPECT_EQ(DrawRange([] { return 50 + ThinkDelay(50); }), Range(330, 2000));
}

// A position from a FEN and moves; p and l are the last two moves played.
struct Played {
  Position pos;
  Move p = MOVE_NONE, l = MOVE_NONE;
};
Played Play(const char* fen, std::initializer_list<const char*> moves) {
  Played r{test::from_fen(fen)};
  for (const char* text : moves) {
    r.p = r.l;
    r.l = test::move_of(r.pos, text);
    test::play(r.pos, r.l);
  }
  return r;
}
const char* const START = test::START_FEN;

TEST_F(Strength, SkipChance) {
  struct { const char* fen; std::initializer_list<const char*> moves; const char* m; int ply, chance; } cases[] = {
      {START, {}, "g1f3", 0, 73}, {START, {}, "g1f3", 3, 85},         // 2 x 36.93, then x 1.6 capped
      {START, {"e2e4", "e7e5"}, "f1c4", 0, 55},                        // bishop: 3 squares x 0.5
      {START, {"g1f3", "b8c6"}, "f3g5", 0, 9},                         // the same piece: 2 x 14.77 / 3
      {START, {"g1f3", "e7e5"}, "f3g5", 0, 0},                         // ... right after a pawn move
      {START, {"e2e4", "d7d5", "e4d5"}, "d8d5", 6, 0},                 // a recapture
      {"4k3/8/5n2/8/8/2N5/8/4K3 b - - 0 1", {"f6d5"}, "c3e4", 0, 36},  // attacked by the knight: halved
      {"4k3/8/8/1p6/8/2N5/8/4K3 b - - 0 1", {"b5b4"}, "c3e4", 0, 0},   // attacked by the pawn
      {"R3k3/8/8/8/8/8/8/4K3 b - - 0 1", {}, "e8e7", 0, 6},            // king evasion: 0.5 / 3
      {"4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", {}, "e5d6", 0, 55}};       // en passant x 3, capture x 0.5
  for (const auto& c : cases) {
    const Played g = Play(c.fen, c.moves);
    EXPECT_EQ(SkipChance(850, g.pos, test::move_of(g.pos, c.m), g.p, g.l, InCheck(g.pos), c.ply), c.chance) << c.m;
  }
  // Every move, every ply: 0..85, and nothing is overlooked from 2475 Elo on.
  const Position pos = test::from_fen(test::KIWIPETE);
  MoveList legal;
  GenerateLegal(pos, legal);
  for (const Move m : legal)
    for (const Move other : legal)
      for (int ply = 0; ply < 14; ply += 3) {
        const int s = SkipChance(850, pos, m, other, m, ply & 1, ply);
        ASSERT_TRUE(s >= 0 && s <= 85 && SkipChance(2475, pos, m, other, m, ply & 1, ply) == 0);
      }
}

TEST_F(Strength, RootBonusAndShuffle) {
  struct { std::initializer_list<const char*> moves; const char* m; int elo, lo, hi; } cases[] = {
      {{}, "g1f3", 850, -30, -10},                 // knight: r x 20 / 100
      {{"g1f3", "e7e5"}, "f3g1", 850, -78, -26},   // ... and back where it came from
      {{"e2e4", "e7e5"}, "d2d4", 850, -78, -17},   // pawn, into a pawn's attack
      {{"e2e4", "d7d5"}, "e4d5", 850, 85, 257},    // pawn, capture, same value, l's square, p's piece
      {{"e2e4", "d7d5"}, "e4d5", 1700, 0, 0}};
  for (const auto& c : cases) {
    const Played g = Play(START, c.moves);
    const Move m = test::move_of(g.pos, c.m);
    const auto [lo, hi] = DrawRange([&] { return RootBonus(c.elo, g.pos, m, g.p, g.l); });
    EXPECT_TRUE(lo >= c.lo && hi <= c.hi && hi - lo >= (c.hi - c.lo) / 2) << c.m << " " << lo << ".." << hi;
  }
  // Bonuses 29..0 in the worst order: most inversions go.
  for (int i = 0; i < 30; ++i) state->strength_bonus[state->root_moves.emplace_back(make_move(i, i + 1))] = i;
  ShuffleRootMoves(*state);
  int inversions = 0;
  for (int i = 0; i < 30; ++i)
    for (int j = i + 1; j < 30; ++j) inversions += BonusOf(*state, state->root_moves[i]) < BonusOf(*state, state->root_moves[j]);
  EXPECT_LT(inversions, 435 / 3);
}

TEST_F(Strength, ThreatOfTheLastMove) {
  struct { const char* fen; Square from, to; bool threat; } cases[] = {
      {"4k3/8/8/8/1p6/2N5/8/4K3 w - - 0 1", SQ_B5, SQ_B4, true},    // a pawn hits a knight
      {"4k3/8/8/8/1b6/2N5/8/4K3 w - - 0 1", SQ_F8, SQ_B4, true},    // an undefended knight
      {"4k3/8/8/8/1b6/2N5/1P6/4K3 w - - 0 1", SQ_F8, SQ_B4, false}, // a defended one
      {"4k3/8/8/8/8/8/q3R3/4K3 w - - 0 1", SQ_A8, SQ_A2, false}};   // the queen hits a defended rook
  for (const auto& c : cases)
    EXPECT_EQ(LastMoveThreatens(test::from_fen(c.fen), make_move(c.from, c.to)), c.threat) << c.fen;
  EXPECT_FALSE(LastMoveThreatens(test::from_fen(cases[0].fen), MOVE_NONE));
}

}  // namespace
}  // namespace vx

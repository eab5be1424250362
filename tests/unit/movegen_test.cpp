// Move generators and legality tests.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "test_util.h"

namespace vx {
namespace {

using test::move_of;

template <Color Us>
std::vector<Move> generated(const Position& pos, bool search_set) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  MoveEntry list[MAX_MOVES];
  MoveEntry* end = search_set ? GenerateSearchCaptures<Us>(pos, ai, list) : GenerateCaptures<Us>(pos, ai, list);
  std::vector<Move> out;
  for (MoveEntry* e = list; e != end; ++e) out.push_back(Move(*e));
  return out;
}

std::vector<std::string> texts(const std::vector<Move>& moves) {
  std::vector<std::string> t;
  for (Move m : moves) t.push_back(move_text(m));
  return t;
}

TEST(MoveGen, LegalMoveCounts) {
  MoveList list;
  GenerateLegal(test::startpos(), list);
  EXPECT_EQ(list.size, 20);
  GenerateLegal(test::from_fen("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -"), list);
  EXPECT_EQ(list.size, 48);
}

TEST(MoveGen, BothEnPassantCapturesNextToTheKingRank) {
  Position pos = test::from_fen("r3k2r/8/8/8/3pPp2/8/8/R3K1RR b KQkq e3 0 1");
  EXPECT_NE(ParseMove(pos, "d4e3"), MOVE_NONE);
  EXPECT_NE(ParseMove(pos, "f4e3"), MOVE_NONE);
  // With the king on the rank and a rook behind, the capture uncovers check.
  Position pinned = test::from_fen("8/8/8/8/k2pP2R/8/8/4K3 b - e3 0 1");
  EXPECT_EQ(ParseMove(pinned, "d4e3"), MOVE_NONE);
}

TEST(MoveGen, PromotionSets) {
  // Knight promotion to e8 checks the king on d6; f8 would not.
  Position pos = test::from_fen("8/4P3/3k4/8/8/8/8/4K3 w - - 0 1");
  auto search = texts(generated<WHITE>(pos, true));
  EXPECT_EQ(search, (std::vector<std::string>{"e7e8q", "e7e8n"}));
  auto full = texts(generated<WHITE>(pos, false));
  EXPECT_EQ(full, (std::vector<std::string>{"e7e8q", "e7e8r", "e7e8b", "e7e8n"}));
  Position quiet = test::from_fen("8/4P3/8/8/8/k7/8/4K3 w - - 0 1");
  EXPECT_EQ(texts(generated<WHITE>(quiet, true)), (std::vector<std::string>{"e7e8q"}));
  // Bishop promotion kind follows the square colour.
  Position light = test::from_fen("8/P7/8/8/8/k7/8/4K3 w - - 0 1");
  MoveList list;
  GenerateLegal(light, list);
  int bishops = 0;
  for (Move m : list)
    if (is_promotion(m) && (promotion_type(m) == BISHOP_L || promotion_type(m) == BISHOP_D)) {
      EXPECT_EQ(promotion_type(m), BISHOP_L);  // a8 is light
      ++bishops;
    }
  EXPECT_EQ(bishops, 1);
}

TEST(MoveGen, MoveTextAndEncoding) {
  EXPECT_EQ(move_text(Move(0x6000 | (60 << 6) | 52)), "e7e8q");
  EXPECT_EQ(move_text(MOVE_NULL), "0000");
  EXPECT_EQ(move_text(make_move(SQ_E2, SQ_E4)), "e2e4");
}

TEST(MoveGen, DoubleCheckAllowsOnlyKingMoves) {
  Position pos = test::from_fen("4k3/8/8/8/8/5n2/8/r3K3 w - - 0 1");
  pos = test::from_fen("4r1k1/8/8/8/8/3n4/8/4K2R w K - 0 1");
  MoveList list;
  GenerateLegal(pos, list);
  ASSERT_GT(list.size, 0);
  for (Move m : list) EXPECT_EQ(from_sq(m), SQ_E1) << move_text(m);
  // Stepping back along the checking rook's line is not allowed.
  Position rook = test::from_fen("4r1k1/8/8/8/8/8/8/4K3 w - - 0 1");
  GenerateLegal(rook, list);
  for (Move m : list) EXPECT_NE(to_sq(m), SQ_E2) << move_text(m);
  Position line = test::from_fen("6k1/8/8/8/8/4r3/4K3/8 w - - 0 1");
  GenerateLegal(line, list);
  for (Move m : list) EXPECT_NE(to_sq(m), SQ_E1) << move_text(m);
}

TEST(MoveGen, Chess960QueenSideCastlingBlockedByRookXray) {
  // King c1, rook b1, black rook a1: once the rook leaves b1, a1 attacks c1.
  Position pos = test::from_fen("4k3/8/8/8/8/8/8/rRK5 w B - 0 1");
  EXPECT_EQ(ParseMove(pos, "c1b1"), MOVE_NONE);
  Position free_path = test::from_fen("4k3/8/8/8/8/8/8/1RK5 w B - 0 1");
  EXPECT_NE(ParseMove(free_path, "c1b1"), MOVE_NONE);
  // An attacked square on the king's path forbids it, also in Chess960.
  Position attacked = test::from_fen("4r1k1/8/8/8/8/8/8/1K5R w H - 0 1");
  EXPECT_EQ(ParseMove(attacked, "b1h1"), MOVE_NONE);
  Position safe = test::from_fen("6k1/8/8/8/8/8/8/1K5R w H - 0 1");
  EXPECT_NE(ParseMove(safe, "b1h1"), MOVE_NONE);
  // An occupied square on the rook's path too.
  Position occupied = test::from_fen("4k3/8/8/8/8/8/8/1RKN4 w B - 0 1");
  EXPECT_EQ(ParseMove(occupied, "c1b1"), MOVE_NONE);
}

TEST(MoveGen, StalemateHasNoLegalMove) {
  Position pos = test::from_fen("7k/5Q2/6K1/8/8/8/8/8 b - - 0 1");
  EXPECT_FALSE(HasLegalMove(pos));
  EXPECT_FALSE(InCheck(pos));
  EXPECT_TRUE(HasLegalMove(test::startpos()));
}

TEST(MoveGen, PseudoLegalTestRejectsImpossibleHashMoves) {
  Position pos = test::from_fen("4k3/8/8/8/8/4p3/4P3/4K2R w K - 0 1");
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  EXPECT_FALSE(IsPseudoLegal<WHITE>(pos, make_move(SQ_E2, SQ_E4), ai, false));  // blocked double push
  EXPECT_TRUE(IsPseudoLegal<WHITE>(pos, Move(CASTLING | make_move(SQ_E1, SQ_G1)), ai, false));
  Position attacked = test::from_fen("4k3/8/8/8/8/8/4P1r1/4K2R w K - 0 1");
  ComputeAttackInfo(attacked, ai);
  EXPECT_FALSE(IsPseudoLegal<WHITE>(attacked, Move(CASTLING | make_move(SQ_E1, SQ_G1)), ai, false));
}

// Random 16-bit words in positions reached by random play: IsPseudoLegal and
// IsLegal together accept exactly the moves GenerateLegal returns. Captures,
// promotions and specials are over-sampled by building words from legal moves
// with bits flipped.
template <Color Us>
void check_words(const Position& pos, uint64_t& rng, const std::set<Move>& legal) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  const bool in_check = ai.attacked_by(~Us) & pos.of(Us, KING);
  std::vector<Move> words;
  for (int i = 0; i < 300; ++i) words.push_back(Move(xorshift_step(rng)));
  for (Move m : legal) {
    words.push_back(m);
    for (int bit = 0; bit < 16; ++bit) words.push_back(Move(m ^ (1 << bit)));
  }
  for (Move w : words) {
    bool accepted = IsPseudoLegal<Us>(pos, w, ai, in_check) && IsLegal<Us>(pos, w, ai);
    ASSERT_EQ(accepted, legal.count(w) == 1) << move_text(w) << " " << std::hex << w;
  }
}

TEST(MoveGen, PseudoLegalAgreesWithTheGeneratorsOnRandomWords) {
  const char* starts[] = {
      "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
      "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
      "r1k1r2q/p1ppp1pp/8/8/8/8/P1PPP1PP/R1K1R2Q w AEae - 0 1",
      "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -",
      "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
  };
  uint64_t rng = 7;
  int checks = 0;
  for (const char* fen : starts)
    for (int game = 0; game < 12; ++game) {
      Position pos = test::from_fen(fen);
      for (int ply = 0; ply < 80; ++ply) {
        MoveList list;
        GenerateLegal(pos, list);
        if (!list.size) break;
        std::set<Move> legal(list.begin(), list.end());
        checks += InCheck(pos);
        if (pos.side_to_move == WHITE) check_words<WHITE>(pos, rng, legal);
        else check_words<BLACK>(pos, rng, legal);
        pos.ApplyGameMove(list.moves[xorshift_step(rng) % list.size]);
      }
    }
  EXPECT_GT(checks, 20);
}

// GivesCheck agrees with making the move and testing the enemy king.
TEST(MoveGen, GivesCheckAgreesWithMakingTheMove) {
  const char* starts[] = {
      "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
      "4r3/3k4/8/8/8/8/6PP/qR1K1R2 w FB -",
      "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
      "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -",
  };
  uint64_t rng = 3;
  for (const char* fen : starts)
    for (int game = 0; game < 20; ++game) {
      Position pos = test::from_fen(fen);
      for (int ply = 0; ply < 60; ++ply) {
        MoveList list;
        GenerateLegal(pos, list);
        if (!list.size) break;
        AttackInfo ai;
        ComputeAttackInfo(pos, ai);
        for (Move m : list) {
          bool predicted = pos.side_to_move == WHITE ? GivesCheck<WHITE>(pos, m, ai) : GivesCheck<BLACK>(pos, m, ai);
          Position after = pos;
          after.ApplyGameMove(m);
          ASSERT_EQ(predicted, InCheck(after)) << fen << " " << move_text(m);
        }
        pos.ApplyGameMove(list.moves[xorshift_step(rng) % list.size]);
      }
    }
}

// Quiet checks: exactly the non-capturing, non-promoting legal moves that
// give check (castling aside, which the generator leaves out).
TEST(MoveGen, QuietChecksAreExactlyTheCheckingQuietMoves) {
  uint64_t rng = 11;
  for (int game = 0; game < 60; ++game) {
    Position pos = test::from_fen(game % 2 ? "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -"
                                           : "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
    for (int ply = 0; ply < 60; ++ply) {
      MoveList list;
      GenerateLegal(pos, list);
      if (!list.size) break;
      if (!InCheck(pos)) {
        AttackInfo ai;
        ComputeAttackInfo(pos, ai);
        MoveEntry buf[MAX_MOVES];
        MoveEntry* end = pos.side_to_move == WHITE ? GenerateQuietChecks<WHITE>(pos, ai, neutral_history, buf)
                                                   : GenerateQuietChecks<BLACK>(pos, ai, neutral_history, buf);
        std::multiset<Move> got;
        for (MoveEntry* e = buf; e != end; ++e)
          if (pos.side_to_move == WHITE ? IsLegal<WHITE>(pos, Move(*e), ai) : IsLegal<BLACK>(pos, Move(*e), ai))
            got.insert(Move(*e));
        std::multiset<Move> want;
        for (Move m : list) {
          if (is_tactical(m) || is_castling(m)) continue;
          Position after = pos;
          after.ApplyGameMove(m);
          if (InCheck(after)) want.insert(m);
        }
        ASSERT_EQ(got, want);
      }
      pos.ApplyGameMove(list.moves[xorshift_step(rng) % list.size]);
    }
  }
}

}  // namespace
}  // namespace vx

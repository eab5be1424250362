// Move generators and legality tests. Perft counts guard the legal move set
// as a whole; these tests pin the capture sets, the special-move rules and
// the per-move predicates the search relies on.
#include <gtest/gtest.h>

#include <set>

#include "test_util.h"

namespace vx {
namespace {

std::vector<std::string> capture_texts(const Position& pos, bool search_set) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  MoveEntry list[MAX_MOVES];
  MoveEntry* end = search_set ? GenerateSearchCaptures<WHITE>(pos, ai, list) : GenerateCaptures<WHITE>(pos, ai, list);
  std::vector<std::string> out;
  for (MoveEntry* e = list; e != end; ++e) out.push_back(move_text(Move(*e)));
  return out;
}

TEST(MoveGen, PromotionSets) {
  // Knight promotion to e8 checks the king on d6: the search takes it with the queen promotion only.
  Position pos = test::from_fen("8/4P3/3k4/8/8/8/8/4K3 w - - 0 1");
  EXPECT_EQ(capture_texts(pos, true), (std::vector<std::string>{"e7e8q", "e7e8n"}));
  EXPECT_EQ(capture_texts(pos, false), (std::vector<std::string>{"e7e8q", "e7e8r", "e7e8b", "e7e8n"}));
  EXPECT_EQ(capture_texts(test::from_fen("8/4P3/8/8/8/k7/8/4K3 w - - 0 1"), true), std::vector<std::string>{"e7e8q"});
  // The bishop promotion kind follows the square colour: a8 is light, h8 dark.
  Position light = test::from_fen("8/P6P/8/8/8/k7/8/4K3 w - - 0 1");
  EXPECT_EQ(promotion_type(test::move_of(light, "a7a8b")), BISHOP_L);
  EXPECT_EQ(promotion_type(test::move_of(light, "h7h8b")), BISHOP_D);
}

// Castling: whether a move text names a legal move. Perft counts cover the
// en-passant pins and the ordinary castlings of both arrays.
TEST(MoveGen, CastlingAcceptedOrRefused) {
  const struct { const char* fen; const char* move; bool legal; } cases[] = {
      // Chess960: once the rook leaves b1, the a1 rook attacks the king on c1.
      {"4k3/8/8/8/8/8/8/rRK5 w B - 0 1", "c1b1", false},
      {"4r1k1/8/8/8/8/8/8/1K5R w H - 0 1", "b1h1", false},  // e1 on the king's path is attacked
      // Rook-file letters on the standard array: castling is written king takes rook.
      {"r3k2r/8/8/8/8/8/8/R3K2R w HAha - 0 1", "e1h1", true},
      {"r3k2r/8/8/8/8/8/8/R3K2R w HAha - 0 1", "e1g1", false},
      {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", "e1g1", true},
      {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", "e1h1", false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ParseMove(test::from_fen(c.fen), c.move) != MOVE_NONE, c.legal) << c.fen << " " << c.move;
}

// Random 16-bit words in positions reached by random play: IsPseudoLegal and
// IsLegal together accept exactly the moves GenerateLegal returns (a hash move
// from another position must never be played). Captures, promotions and
// specials are over-sampled by building words from legal moves with one bit
// flipped. HasLegalMove agrees with the generator on the way.
template <Color Us>
void check_words(const Position& pos, uint64_t& rng, const MoveList& list) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  const bool in_check = ai.attacked_by(~Us) & pos.of(Us, KING);
  const std::set<Move> legal(list.begin(), list.end());
  std::vector<Move> words;
  for (int i = 0; i < 300; ++i) words.push_back(Move(xorshift_step(rng)));
  for (Move m : legal)
    for (int bit = -1; bit < 16; ++bit) words.push_back(bit < 0 ? m : Move(m ^ (1 << bit)));
  for (Move w : words) {
    bool accepted = IsPseudoLegal<Us>(pos, w, ai, in_check) && IsLegal<Us>(pos, w, ai);
    ASSERT_EQ(accepted, legal.count(w) == 1) << move_text(w) << " " << std::hex << w;
  }
}

TEST(MoveGen, PseudoLegalAgreesWithTheGeneratorsOnRandomWords) {
  uint64_t rng = 7;
  int checks = 0;
  test::random_walks({test::START_FEN, test::KIWIPETE, test::CHESS960, test::PROMOTIONS, test::ROOK_ENDING,
                      "7k/5Q2/6K1/8/8/8/8/8 b - - 0 1" /* stalemate */},
                     12, 80, 1, [&](const Position& pos, const MoveList& list) {
                       ASSERT_EQ(HasLegalMove(pos), list.size > 0);
                       checks += InCheck(pos);
                       if (pos.side_to_move == WHITE) check_words<WHITE>(pos, rng, list);
                       else check_words<BLACK>(pos, rng, list);
                     });
  EXPECT_GT(checks, 20);
}

// GivesCheck agrees with making the move and testing the enemy king, and the
// quiet checks are exactly the non-capturing, non-promoting legal moves that
// give check, except castling and the double push of a pawn that shields the
// enemy king (a discovering pawn moves by single pushes only).
template <Color Us>
void check_checks(const Position& pos, const MoveList& list) {
  AttackInfo ai;
  ComputeAttackInfo(pos, ai);
  const Bitboard shields = pos.of(Us, PAWN) & (Us == WHITE ? ai.black_king_blockers : ai.white_king_blockers);
  std::multiset<Move> quiet_checks;
  for (Move m : list) {
    Position after = pos;
    after.ApplyGameMove(m);
    ASSERT_EQ(GivesCheck<Us>(pos, m, ai), InCheck(after)) << move_text(m);
    const bool shield_double_push = (shields & sq_bb(from_sq(m))) && distance(from_sq(m), to_sq(m)) == 2;
    if (InCheck(after) && !is_tactical(m) && !is_castling(m) && !shield_double_push) quiet_checks.insert(m);
  }
  if (InCheck(pos)) return;
  MoveEntry buf[MAX_MOVES];
  MoveEntry* const end = GenerateQuietChecks<Us>(pos, ai, neutral_history, buf);
  std::multiset<Move> generated;
  for (MoveEntry* e = buf; e != end; ++e)
    if (IsLegal<Us>(pos, Move(*e), ai)) generated.insert(Move(*e));
  ASSERT_EQ(generated, quiet_checks);
}

TEST(MoveGen, CheckPredicatesAgreeWithMakingTheMove) {
  test::random_walks({test::START_FEN, test::KIWIPETE, "4r3/3k4/8/8/8/8/6PP/qR1K1R2 w FB - 0 1", test::ROOK_ENDING,
                      test::PROMOTIONS},
                     20, 60, 3, [](const Position& pos, const MoveList& list) {
                       if (pos.side_to_move == WHITE) check_checks<WHITE>(pos, list);
                       else check_checks<BLACK>(pos, list);
                     });
}

}  // namespace
}  // namespace vx

// Leaf counts of the legal move tree against known results, for both bit-count builds.
#include <gtest/gtest.h>

#include "board/perft.h"
#include "test_util.h"

namespace vx {
namespace {

struct PerftCase { const char* fen; int depth; uint64_t nodes; };

const PerftCase kStandard[] = {
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 4, 4085603},
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 5, 4865609},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 5, 674624},
    {"rnbqkb1r/pp1p1ppp/2p5/4P3/2B5/8/PPP1NnPP/RNBQK2R w KQkq - 0 6", 3, 53392},
    {"n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -", 4, 182838},  // promotions everywhere
};

// Counted as given and with the board turned and the colours swapped (test::colour_mirror).
const PerftCase kMirrored[] = {
    {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1", 5, 15833292},
    {"8/8/1k6/2b5/2pP4/8/5K2/8 b - d3 0 1", 6, 1440467},
    {"5k2/8/8/8/8/8/8/4K2R w K - 0 1", 6, 661072},
    {"3k4/8/8/8/8/8/8/R3K3 w Q - 0 1", 6, 803711},
    {"r3k2r/1b4bq/8/8/8/8/7B/R3K2R w KQkq - 0 1", 4, 1274206},
    {"r3k2r/8/3Q4/8/8/5q2/8/R3K2R b KQkq - 0 1", 4, 1720476},
    {"2K2r2/4P3/8/8/8/8/8/3k4 w - - 0 1", 6, 3821001},
    {"8/8/1P2K3/8/2n5/1q6/8/5k2 b - - 0 1", 5, 1004658},
    {"4k3/1P6/8/8/8/8/K7/8 w - - 0 1", 6, 217342},
    {"8/P1k5/K7/8/8/8/8/8 w - - 0 1", 6, 92683},
    {"K1k5/8/P7/8/8/8/8/8 w - - 0 1", 6, 2217},
    {"8/k1P5/8/1K6/8/8/8/8 w - - 0 1", 7, 567584},
    {"8/8/2k5/5q2/5n2/8/5K2/8 b - - 0 1", 4, 23527},
};

// Chess960 starting arrays with rights given by rook files.
const PerftCase kChess960[] = {
    {"r1k1r2q/p1ppp1pp/8/8/8/8/P1PPP1PP/R1K1R2Q w AEae - 0 1", 5, 7096972},
    {"r1k2r1q/p1ppp1pp/8/8/8/8/P1PPP1PP/R1K2R1Q w FAfa -", 5, 15194841},
    {"8/8/8/4B2b/6nN/8/5P2/2R1K2k w C -", 6, 44554839},
    {"2r5/8/8/8/8/8/6PP/k2KR3 w E -", 6, 14751778},
    {"4r3/3k4/8/8/8/8/6PP/qR1K1R2 w FB -", 5, 8992652},
};

// Both builds count, the portable one through the divided count.
void expect_count(const std::string& fen, int depth, uint64_t nodes) {
  Position pos = test::from_fen(fen);
  EXPECT_EQ(Perft<true>(pos, depth), nodes) << fen;
  EXPECT_EQ(PerftDivide<false>(pos, depth).nodes, nodes) << fen;
}

TEST(Perft, StandardPositionsMatchKnownCounts) {
  for (const PerftCase& c : kStandard) expect_count(c.fen, c.depth, c.nodes);
  for (const PerftCase& c : kMirrored) {
    expect_count(c.fen, c.depth, c.nodes);
    expect_count(test::colour_mirror(c.fen), c.depth, c.nodes);
  }
}

TEST(Perft, Chess960PositionsMatchKnownCounts) {
  for (const PerftCase& c : kChess960) expect_count(c.fen, c.depth, c.nodes);
}

}  // namespace
}  // namespace vx

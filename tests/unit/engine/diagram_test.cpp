#include <gtest/gtest.h>

#include "engine/diagram.h"
#include "test_util.h"

namespace vx {
namespace {

TEST(BoardDiagram, StartPosition) {
  const std::string border = "  +---+---+---+---+---+---+---+---+\n";
  std::string expected = "  wtm WOO WOOO BOO BOOO \n" + border;
  const char* ranks[] = {
      "8 |*R*|*N*|*B*|*Q*|*K*|*B*|*N*|*R*|\n", "7 |*P*|*P*|*P*|*P*|*P*|*P*|*P*|*P*|\n",
      "6 |   |:::|   |:::|   |:::|   |:::|\n", "5 |:::|   |:::|   |:::|   |:::|   |\n",
      "4 |   |:::|   |:::|   |:::|   |:::|\n", "3 |:::|   |:::|   |:::|   |:::|   |\n",
      "2 | P | P | P | P | P | P | P | P |\n", "1 | R | N | B | Q | K | B | N | R |\n",
  };
  for (const char* r : ranks) expected += r + border;
  expected += "    a   b   c   d   e   f   g   h\n";
  EXPECT_EQ(BoardDiagram(test::startpos()), expected);
}

TEST(BoardDiagram, SideRightsAndEnPassant) {
  Position pos = test::from_fen("4k2r/8/8/8/3pP3/8/8/R3K3 b Qk e3 0 1");
  EXPECT_EQ(BoardDiagram(pos).substr(0, BoardDiagram(pos).find('\n')), "  btm WOOO BOO e3");
}

}  // namespace
}  // namespace vx

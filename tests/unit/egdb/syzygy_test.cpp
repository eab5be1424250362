// The Syzygy prober on the tables of SyzygyDir(): the generator's databases
// and one ply of search as oracles (on random positions, bishops of either
// colour among them), mirror images, the root filter, a second directory and
// the en-passant rule.
#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "egdb/bases/bases.h"
#include "egdb/hook.h"
#include "egdb/syzygy/registry.h"
#include "egdb/syzygy/syzygy.h"
#include "engine/launch.h"
#include "tablebase_util.h"
#include "tbgen_test_util.h"
#include "tools/tbgen/generator.h"

namespace vx {
namespace {

using test::SyzygyDir;

int ProbeFen(const std::string& fen, int& success) {
  Position pos = test::from_fen(fen);
  return ProbeWdl(pos, success);
}

TEST(SyzygyNames, EveryMaterialUpToSixMenOnceAndTheHashHoldsThemAll) {
  test::init();
  std::set<Key> keys;
  for (const std::string& name : syzygy::TableNames()) {
    syzygy::TableMaterial mat;
    ASSERT_TRUE(syzygy::ParseTableName(name, mat)) << name;
    const Key key = syzygy::TableKey(mat, false), swapped = syzygy::TableKey(mat, true);
    EXPECT_TRUE(keys.insert(key).second && (swapped == key || keys.insert(swapped).second)) << name;
  }
  EXPECT_EQ(syzygy::TableNames().size(), 510u);  // every WDL table up to six men
  EXPECT_LE(syzygy::FullestBucketOfAllNames(), syzygy::HSHMAX);
}

TEST(SyzygyWithoutTables, KingsAloneAreADrawAndOtherMaterialIsUnknown) {
  test::init();
  InitSyzygy("<empty>");
  EXPECT_EQ(SyzygyLargest(), 0);
  int success = 0;
  EXPECT_EQ(ProbeFen("8/8/8/3k4/8/8/8/4K3 b - - 0 1", success), 0);
  EXPECT_EQ(success, 1);
  ProbeFen("8/8/8/3k4/8/8/8/4K2Q b - - 0 1", success);
  EXPECT_EQ(success, 0);
}

class SyzygyTables : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    test::init();
    found_line = test::output_of([] { InitSyzygy(SyzygyDir()); });
  }
  static void TearDownTestSuite() { InitSyzygy("<empty>"); }
  void SetUp() override {
    if (!test::HasTable(SyzygyDir(), "KRvK")) GTEST_SKIP() << "no Syzygy tables in " << SyzygyDir();
  }
  static inline std::string found_line;
};

// The side to move's result by one ply: the best over its moves of minus the
// sign of the child's value; mated -1, stalemate 0; 2 when a child's probe fails.
int OnePlySign(Position& pos) {
  MoveList moves;
  GenerateLegal(pos, moves);
  if (!moves.size) return InCheck(pos) ? -1 : 0;
  int best = -1;
  for (const Move m : moves) {
    test::play(pos, m);
    int success = 0;
    const int v = ProbeWdl(pos, success);
    test::unplay(pos, m);
    if (!success) return 2;
    best = std::max(best, (v < 0) - (v > 0));
  }
  return best;
}

// The generator's databases made by "make test-tables" when they are there,
// else the 3-men ones, made here.
std::string GeneratorBases(const std::string& scratch) {
  const std::string made = VORLAXEN_TABLES_ORACLE;
  if (std::filesystem::exists(made + "/.made-3-4-men")) return made;
  tbgen::GeneratorOptions options;
  options.out_dir = scratch;
  std::vector<tbgen::MaterialReport> reports;
  std::string error;
  EXPECT_TRUE(tbgen::GenerateBases(tbgen::AllMaterials(3), options, reports, error)) << error;
  return scratch;
}

// Random positions of every table against the generator's databases where
// they cover it (every position in "make test-tables"), against one ply of
// search over the tables themselves (the only oracle of the 5-men tables), and
// against their mirror images.
TEST_F(SyzygyTables, RandomPositionsAgreeWithTheGeneratorTheirChildrenAndMirrorImages) {
  const std::string scratch = test::temp_dir("syzygy-oracle");
  test::output_of([&] { LoadVorlaxenbases(GeneratorBases(scratch)); });
  std::mt19937_64 rng(2024);
  int tables = 0, largest = 0, compared = 0;
  for (const std::string& name : syzygy::TableNames()) {
    if (!test::HasTable(SyzygyDir(), name)) continue;
    syzygy::TableMaterial mat;
    syzygy::ParseTableName(name, mat);
    ++tables, largest = std::max(largest, mat.men);
    for (int i = 0; i < 2000; ++i) {
      Position pos = test::RandomSeriesPosition(rng, mat, i);
      const std::string fen = test::BoardFen(pos.board, pos.side_to_move, Square(pos.state->ep_square)), at = name + " " + fen;
      int success = 0, base_ok = 0;
      const int v = ProbeWdl(pos, success), sign = (v > 0) - (v < 0), base = ProbeVorlaxenbases(pos, base_ok);
      ASSERT_TRUE(success) << at;
      ASSERT_TRUE(!base_ok || base == sign) << at << " wdl " << v << " generator " << base;
      compared += base_ok && i < 2;  // the second with the colours turned
      ASSERT_EQ(sign, OnePlySign(pos)) << at << " wdl " << v;
      for (const std::string& image : {test::colour_mirror(fen), test::file_mirror(fen)}) {
        Position mirrored = test::from_fen(image);
        ASSERT_EQ(ProbeWdl(mirrored, success), v) << at << " / " << image;
        ASSERT_TRUE(success) << at;
      }
    }
  }
  EXPECT_EQ(found_line, "info string Found " + std::to_string(tables) + " syzygy tablebases\n");
  EXPECT_EQ(SyzygyLargest(), largest);
  EXPECT_GE(compared, 10);
  FreeVorlaxenbases();
  std::filesystem::remove_all(scratch);
}

TEST_F(SyzygyTables, RootFilterKeepsOnlyTheMovesThatKeepTheWin) {
  Position pos = test::from_fen("8/8/8/8/8/1k6/R7/3K4 w - - 0 1");  // the king attacks the rook
  MoveList legal;
  GenerateLegal(pos, legal);
  tb_hook.probe = ProbeWdl;
  std::set<std::string> kept;
  for (const Move m : FilterRootMovesByTablebase(pos, std::vector<Move>(legal.begin(), legal.end()), 2))
    kept.insert(move_text(m));
  EXPECT_EQ(kept, (std::set<std::string>{"a2a1", "a2a5", "a2a6", "a2a7", "a2a8", "a2c2", "a2d2", "a2e2", "a2f2",
                                         "a2g2", "a2h2"}));
}

// A KRPvKP table that scores every position a draw: the pawn layout's four
// files with both sides' piece orders, then eight one-value sub-tables.
void WriteDrawnTable(const std::string& path) {
  std::string bytes = "\x71\xE8\x23\x5D\x03";  // magic, both sides stored, pawns
  for (int file = 0; file < 4; ++file) bytes += std::string("\x00\x11\x11\x99\x44\x66\xEE", 7);
  if (bytes.size() & 1) bytes += '\0';
  for (int sub = 0; sub < 8; ++sub) bytes += "\x80\x02";
  std::ofstream(path, std::ios::binary) << bytes;
}

// The table is found in the second directory; Black's only legal move is
// bxa3 e.p., after which White wins, whatever the table says.
TEST_F(SyzygyTables, AnEnPassantCaptureThatIsTheOnlyMoveOverridesTheTable) {
  const std::string dir = test::temp_dir("syzygy-ep");
  WriteDrawnTable(dir + "/KRPvKP.rtbw");
  test::output_of([&] { InitSyzygy(SyzygyDir() + ";" + dir); });
  int success = 0;
  EXPECT_EQ(ProbeFen("8/8/2R5/k7/Pp6/1K6/8/8 b - - 0 1", success), 0);
  EXPECT_EQ(ProbeFen("8/8/2R5/k7/Pp6/1K6/8/8 b - a3 0 1", success), -2);
  EXPECT_TRUE(success);
  std::filesystem::remove_all(dir);
  SetUpTestSuite();
}

}  // namespace
}  // namespace vx

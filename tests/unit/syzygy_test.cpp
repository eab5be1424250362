#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>
#include <set>

#include "egdb/bases.h"
#include "egdb/syzygy.h"
#include "egdb/syzygy_registry.h"
#include "engine/launch.h"
#include "eval/kpk.h"
#include "search/tbhook.h"
#include "tablebase_util.h"
#include "tools/tbgen/generator.h"
#include "tools/tbgen/materials.h"

namespace vx {
namespace {

using test::SyzygyDir;

int Probe(Position& pos, int& success) { return ProbeWdl(pos, success); }

int ProbeFen(const std::string& fen, int& success) {
  Position pos = test::from_fen(fen);
  return ProbeWdl(pos, success);
}

TEST(SyzygyNames, EveryMaterialUpToSixMenOnceAndTheHashHoldsThemAll) {
  test::init();
  const std::vector<std::string> names = syzygy::TableNames();
  EXPECT_EQ(names.size(), 510u);  // the complete set of WDL tables up to six men
  std::set<Key> keys;
  for (const std::string& name : names) {
    syzygy::TableMaterial mat;
    ASSERT_TRUE(syzygy::ParseTableName(name, mat)) << name;
    const Key key = syzygy::TableKey(mat, false), swapped = syzygy::TableKey(mat, true);
    EXPECT_TRUE(keys.insert(key).second) << name;
    if (swapped != key) {
      EXPECT_TRUE(keys.insert(swapped).second) << name;
    }
  }
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
    testing::internal::CaptureStdout();
    InitSyzygy(SyzygyDir());
    found_line = testing::internal::GetCapturedStdout();
  }
  static void TearDownTestSuite() { InitSyzygy("<empty>"); }
  void SetUp() override {
    if (!test::HasTable(SyzygyDir(), "KRvK")) GTEST_SKIP() << "no Syzygy tables in " << SyzygyDir();
  }
  // The tables of the directory with their material.
  static std::vector<std::pair<std::string, syzygy::TableMaterial>> Present() {
    std::vector<std::pair<std::string, syzygy::TableMaterial>> present;
    for (const std::string& name : syzygy::TableNames())
      if (test::HasTable(SyzygyDir(), name)) {
        present.emplace_back(name, syzygy::TableMaterial{});
        syzygy::ParseTableName(name, present.back().second);
      }
    return present;
  }
  static inline std::string found_line;
};

TEST_F(SyzygyTables, RegistersEveryTableOfTheDirectory) {
  int largest = 0;
  for (const auto& [name, mat] : Present()) largest = std::max(largest, mat.men);
  EXPECT_EQ(found_line, "info string Found " + std::to_string(Present().size()) + " syzygy tablebases\n");
  EXPECT_EQ(SyzygyLargest(), largest);
}

// Every table against one ply of search over the tables themselves (mates
// and stalemates anchor it), and against its own mirror images.
TEST_F(SyzygyTables, RandomPositionsAgreeWithTheirChildrenAndMirrorImages) {
  std::mt19937_64 rng(2024);
  for (const auto& [name, mat] : Present()) {
    for (int i = 0; i < 1200; ++i) {
      Position pos = test::RandomSeriesPosition(rng, mat, i);
      const std::string fen = test::BoardFen(pos.board, pos.side_to_move, Square(pos.state->ep_square));
      int success = 0;
      const int v = ProbeWdl(pos, success);
      ASSERT_TRUE(success) << name << " " << fen;
      bool ok = true;
      ASSERT_EQ((v > 0) - (v < 0), test::OnePlySign(pos, Probe, ok)) << name << " " << fen << " wdl " << v;
      ASSERT_TRUE(ok) << fen;
      for (const bool colors : {false, true}) {
        Position image = test::Mirrored(pos, colors);
        ASSERT_EQ(ProbeWdl(image, success), v) << name << " " << fen << (colors ? " colours" : " files");
        ASSERT_TRUE(success);
      }
    }
  }
}

// The generator's databases made by "make test-tables" when they are there,
// else the 3-men ones, made here.
std::string GeneratorBases(const std::filesystem::path& scratch) {
  const std::string made = VORLAXEN_TABLES_ORACLE;
  if (std::filesystem::exists(made + "/.made-3-4-men")) return made;
  tbgen::GeneratorOptions options;
  options.out_dir = scratch.string();
  std::vector<tbgen::MaterialReport> reports;
  std::string error;
  EXPECT_TRUE(tbgen::GenerateBases(tbgen::AllMaterials(3), options, reports, error)) << error;
  return options.out_dir;
}

// Sampled here; every position of the 3- and 4-men tables in "make test-tables".
TEST_F(SyzygyTables, RandomPositionsAgreeWithTheGenerator) {
  const std::filesystem::path scratch = std::filesystem::temp_directory_path() / ("vx_tbgen_" + std::to_string(getpid()));
  std::filesystem::create_directories(scratch);
  testing::internal::CaptureStdout();
  LoadVorlaxenbases(GeneratorBases(scratch));
  testing::internal::GetCapturedStdout();
  std::mt19937_64 rng(99);
  int compared = 0;
  for (const auto& [name, mat] : Present()) {
    for (int i = 0; i < 2000; ++i) {
      Position pos = test::RandomSeriesPosition(rng, mat, i);
      int base_ok = 0, success = 0;
      const int base = ProbeVorlaxenbases(pos, base_ok);
      if (!base_ok) break;  // no database of this material
      const int v = ProbeWdl(pos, success);
      ASSERT_TRUE(success);
      ASSERT_EQ((v > 0) - (v < 0), base) << test::BoardFen(pos.board, pos.side_to_move, Square(pos.state->ep_square));
      compared += i == 0;
    }
  }
  EXPECT_GE(compared, 5);
  FreeVorlaxenbases();
  std::filesystem::remove_all(scratch);
}

TEST_F(SyzygyTables, KingAndPawnAgainstKingAgreesWithTheBitbase) {
  for (const Color stm : {WHITE, BLACK})
    for (Square k = 0; k < 64; ++k)
      for (Square weak = 0; weak < 64; ++weak)
        for (Square p = 8; p < 56; ++p) {
          Piece board[64] = {};
          board[k] = W_KING;
          board[weak] = B_KING;
          board[p] = W_PAWN;
          Position pos;
          if (k == weak || k == p || weak == p || !test::SetIfSearchable(pos, board, stm)) continue;
          const int m = file_of(p) > 3 ? 7 : 0;
          const bool win = kpk_probe(k ^ m, weak ^ m, p ^ m, stm == WHITE);
          int success = 0;
          const int v = ProbeWdl(pos, success);
          ASSERT_EQ(v, win ? (stm == WHITE ? 2 : -2) : 0) << test::BoardFen(board, stm);
        }
}

TEST_F(SyzygyTables, BishopsOfEitherColourProbeTheSameTable) {
  for (const char* fen : {"8/8/8/3k4/8/8/8/2B1K3 w - - 0 1", "8/8/8/3k4/8/8/8/3BK3 w - - 0 1"}) {
    int success = 0;
    EXPECT_EQ(ProbeFen(fen, success), 0) << fen;
    EXPECT_EQ(success, 1) << fen;
  }
  int light = 0, dark = 0;  // a won KBNvK with either bishop
  EXPECT_EQ(ProbeFen("8/8/8/8/8/5k2/8/4KB1N w - - 0 1", light), 2);
  EXPECT_EQ(ProbeFen("8/8/8/8/8/5k2/8/2B1K2N w - - 0 1", dark), 2);
  EXPECT_TRUE(light && dark);
}

TEST_F(SyzygyTables, RootFilterKeepsOnlyTheMovesThatKeepTheWin) {
  Position pos = test::from_fen("8/8/8/8/8/1k6/R7/3K4 w - - 0 1");  // the king attacks the rook
  int success = 0;
  ASSERT_EQ(ProbeWdl(pos, success), 2);
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
  std::vector<uint8_t> bytes = {0x71, 0xE8, 0x23, 0x5D, 0x03};  // magic, both sides stored, pawns
  for (int file = 0; file < 4; ++file) bytes.insert(bytes.end(), {0x00, 0x11, 0x11, 0x99, 0x44, 0x66, 0xEE});
  if (bytes.size() & 1) bytes.push_back(0);
  for (int sub = 0; sub < 8; ++sub) bytes.insert(bytes.end(), {0x80, 0x02});
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

TEST_F(SyzygyTables, AnEnPassantCaptureThatIsTheOnlyMoveOverridesTheTable) {
  const std::filesystem::path dir = std::filesystem::temp_directory_path() / ("vx_syzygy_" + std::to_string(getpid()));
  std::filesystem::create_directories(dir);
  WriteDrawnTable((dir / "KRPvKP.rtbw").string());
  testing::internal::CaptureStdout();
  InitSyzygy(SyzygyDir() + ";" + dir.string());
  testing::internal::GetCapturedStdout();
  int success = 0;
  // Black's only legal move is bxa3 e.p., after which White wins.
  EXPECT_EQ(ProbeFen("8/8/2R5/k7/Pp6/1K6/8/8 b - - 0 1", success), 0);
  EXPECT_EQ(ProbeFen("8/8/2R5/k7/Pp6/1K6/8/8 b - a3 0 1", success), -2);
  EXPECT_TRUE(success);
  std::filesystem::remove_all(dir);
  SetUpTestSuite();
}

}  // namespace
}  // namespace vx

// Loading Vorlaxenbases: the path forms, the messages, freeing on reload,
// and broken files: one damage of each part of the header and records here,
// any damage at all in fuzz_bases.
#include <gtest/gtest.h>

#include <fstream>

#include "egdb/bases/bases.h"
#include "egdb/bases/format.h"
#include "tbgen_test_util.h"

namespace vx {
namespace {

void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

// A file of one sub-table, every position a draw, for a material whose values do not matter.
void WriteAllDraws(const std::string& path, const char* name, int variables) {
  std::vector<tbgen::TableRecord> records(1);
  records[0].name = {name, 0, true, true};
  std::vector<uint32_t> draws(size_t(1) << variables, 1);
  records[0].diagram = tbgen::BuildDiagram(draws, variables);
  std::string error;
  ASSERT_TRUE(tbgen::WriteBaseFile(path, records, error)) << error;
}

// The lines LoadVorlaxenbases writes.
std::vector<std::string> Load(const std::string& path) {
  return test::split(test::output_of([&] { LoadVorlaxenbases(path); }), '\n');
}

bool Answers(const std::string& fen) {
  Position pos = test::from_fen(fen);
  int success = 0;
  ProbeVorlaxenbases(pos, success);
  return success == 1;
}

const std::string KRK_FEN = "8/8/8/4k3/8/8/8/R3K3 w - - 0 1", KQK_FEN = "8/8/8/4k3/8/8/8/Q3K3 b - - 0 1";
const std::string KPK_FEN = "8/8/8/4k3/8/8/4P3/4K3 w - - 0 1", KNNK_FEN = "8/8/8/4k3/8/8/8/1N2K1N1 w - - 0 1";
const std::string FOUND_3 = "info string vorlaxenbasses with 3 men found (0 MB)";

class BasesLoader : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    tbgen::SolutionStore store = test::solve({"krk", "kqk", "kpk"});
    dir_ = test::temp_dir("loader");
    for (const char* n : {"krk", "kqk", "kpk"}) test::write_material(test::solution(store, n), path(n) + ".tbe");
    WriteAllDraws(path("knnk.tbe"), "knnk", 20);
  }
  static void TearDownTestSuite() {
    FreeVorlaxenbases();
    std::filesystem::remove_all(dir_);
  }
  static std::string path(const std::string& name) { return dir_ + "/" + name; }
  static std::string loading(const std::string& name) {
    std::string line = "info string loading vorlaxenbases ";
    return line += path(name);
  }

  static inline std::string dir_;
};

TEST_F(BasesLoader, AListFileLoadsExactlyItsLines) {
  std::ofstream(path("list.ini")) << "# the rook\n\nkrk.tbe\r\n" + path("kqk.tbe") + "\nmissing.tbe\n";
  EXPECT_EQ(Load(path("list.ini")),
            (std::vector<std::string>{loading("krk.tbe"), loading("kqk.tbe"),
                                      "info string vorlaxenbases not found: " + path("missing.tbe"), FOUND_3}));
  EXPECT_TRUE(Answers(KRK_FEN) && Answers(KQK_FEN));
  EXPECT_FALSE(Answers(KPK_FEN));
}

// A directory (named with its separator here, without it in the round trip)
// loads its ".tbe" files, not the list file beside them; a second load frees
// the first. Bare kings are a draw once anything is loaded, and unknown when
// nothing is.
TEST_F(BasesLoader, ADirectoryLoadsEveryTbeFileAndASecondLoadFreesTheFirst) {
  std::vector<std::string> lines = Load(dir_ + "/");
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.back(), "info string vorlaxenbasses with 4 men found (0 MB)");
  lines.pop_back();
  std::sort(lines.begin(), lines.end());
  EXPECT_EQ(lines, (std::vector<std::string>{loading("knnk.tbe"), loading("kpk.tbe"), loading("kqk.tbe"),
                                             loading("krk.tbe")}));
  EXPECT_EQ(VorlaxenbasesLargestMen(), 4);
  EXPECT_TRUE(Answers(KNNK_FEN) && Answers(KPK_FEN));
  EXPECT_EQ(Load(path("krk.tbe")), (std::vector<std::string>{loading("krk.tbe"), FOUND_3}));
  EXPECT_EQ(VorlaxenbasesLargestMen(), 3);
  EXPECT_FALSE(Answers(KNNK_FEN));
  EXPECT_TRUE(Answers(KRK_FEN));
  Position kings = test::from_fen("8/8/8/4k3/8/8/8/4K3 w - - 0 1");
  int success = 0;
  EXPECT_EQ(ProbeVorlaxenbases(kings, success), 0);
  EXPECT_EQ(success, 1);
  EXPECT_TRUE(Load("").empty());
  EXPECT_EQ(VorlaxenbasesLargestMen(), 0);
  EXPECT_FALSE(Answers("8/8/8/4k3/8/8/8/4K3 w - - 0 1"));
}

// A new checksum, so that only the record reader can object.
std::vector<uint8_t> Resealed(std::vector<uint8_t> b) {
  if (b.size() < BASE_HEADER_SIZE) return b;
  const uint32_t sum = BaseChecksum(b.data(), b.size());
  for (int i = 0; i < 4; ++i) b[size_t(8 + i)] = uint8_t(sum >> (8 * i));
  return b;
}

TEST_F(BasesLoader, BrokenFilesAreReportedAndSkipped) {
  std::ifstream in(path("krk.tbe"), std::ios::binary);
  const std::vector<uint8_t> good{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  auto with = [&](size_t at, uint32_t v, bool reseal = false) {
    std::vector<uint8_t> b = good;
    for (int i = 0; i < 4; ++i) b[at + size_t(i)] = uint8_t(v >> (8 * i));
    return reseal ? Resealed(b) : b;
  };
  auto cut = [&](size_t size) { return Resealed({good.begin(), good.begin() + long(size)}); };
  auto flipped = [&](size_t at, bool reseal) {
    std::vector<uint8_t> b = good;
    b[at] ^= 0x01;
    return reseal ? Resealed(b) : b;
  };
  const size_t levels = 12 + 1 + good[12] + 4 + 32 + 1;  // offset of the level count
  std::vector<std::pair<std::string, std::vector<uint8_t>>> cases = {
      {"wrong magic", with(0, 0x12345678)},
      {"six men", with(0, BASE6_MAGIC)},
      {"version 2", with(4, 2)},
      {"checksum", flipped(good.size() / 2, false)},
      {"empty", {}},
      {"cut in the name", cut(15)},
      {"cut in the levels", cut(levels + 10)},
      {"name letter (r to s)", flipped(14, true)},
      {"no levels", with(levels, 0, true)},
      {"width 32", with(levels + 8, 32, true)},
      {"entry past the level below", flipped(levels + 12, true)},
      {"huge threshold", with(good.size() - 4, 0x7FFFFFFF, true)},
  };
  std::mt19937 rng(7);
  std::vector<uint8_t> noise = with(0, BASE_MAGIC);
  noise.resize(BASE_HEADER_SIZE + 300);
  for (size_t i = BASE_HEADER_SIZE; i < noise.size(); ++i) noise[i] = uint8_t(rng());
  cases.push_back({"random records", Resealed(noise)});
  std::ofstream(path("bad.ini")) << "bad.tbe\nkqk.tbe\n";
  for (const auto& [what, bytes] : cases) {
    WriteBytes(path("bad.tbe"), bytes);
    EXPECT_EQ(Load(path("bad.ini")),
              (std::vector<std::string>{"info string error in vorlaxenbases " + path("bad.tbe"), loading("kqk.tbe"), FOUND_3}))
        << what;
    EXPECT_FALSE(Answers(KRK_FEN)) << what;
    EXPECT_TRUE(Answers(KQK_FEN)) << what;
  }
}

TEST_F(BasesLoader, TablesOfFewerThanThreeOrMoreThanSixMenEndTheProgram) {
  for (const char* name : {"kk", "kqqqqqk"}) {
    WriteAllDraws(path("odd.tbe"), name, 4);
    EXPECT_EXIT(LoadVorlaxenbases(path("odd.tbe")), testing::ExitedWithCode(0), "") << name;
  }
}

}  // namespace
}  // namespace vx

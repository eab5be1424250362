// Loading Vorlaxenbases: the path forms, the messages, freeing on reload,
// and files that are broken in every way the header and records can be.
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "egdb/base_format.h"
#include "egdb/bases.h"
#include "tbgen_test_util.h"

namespace vx {
namespace {

std::vector<uint8_t> ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

void WriteText(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

// A new checksum, so that only the record reader can object.
void Reseal(std::vector<uint8_t>& b) {
  if (b.size() < BASE_HEADER_SIZE) return;
  const uint32_t sum = BaseChecksum(b.data(), b.size());
  for (int i = 0; i < 4; ++i) b[size_t(8 + i)] = uint8_t(sum >> (8 * i));
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string l; std::getline(in, l);) lines.push_back(l);
  return lines;
}

// The lines LoadVorlaxenbases writes.
std::vector<std::string> Load(const std::string& path) {
  testing::internal::CaptureStdout();
  LoadVorlaxenbases(path);
  return Lines(testing::internal::GetCapturedStdout());
}

bool Answers(const std::string& fen) {
  Position pos = test::from_fen(fen);
  int success = 0;
  ProbeVorlaxenbases(pos, success);
  return success == 1;
}

const std::string KRK_FEN = "8/8/8/4k3/8/8/8/R3K3 w - - 0 1";
const std::string KQK_FEN = "8/8/8/4k3/8/8/8/Q3K3 b - - 0 1";
const std::string KPK_FEN = "8/8/8/4k3/8/8/4P3/4K3 w - - 0 1";
const std::string KNNK_FEN = "8/8/8/4k3/8/8/8/1N2K1N1 w - - 0 1";

class BasesLoader : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    tbgen::SolutionStore store = test::solve({"krk", "kqk", "kpk"});
    dir_ = test::temp_dir("loader");
    for (const char* n : {"krk", "kqk", "kpk"}) test::write_material(test::solution(store, n), dir_ + "/" + n + ".tbe");
    // A four-men file whose values do not matter: one sub-table, all draws.
    std::vector<tbgen::TableRecord> knnk(1);
    knnk[0].name = {"knnk", 0, true, true};
    std::vector<uint32_t> draws(size_t(1) << 20, 1);
    knnk[0].diagram = tbgen::BuildDiagram(draws, 20);
    std::string error;
    tbgen::WriteBaseFile(dir_ + "/knnk.tbe", knnk, error);
    krk_ = test::solution(store, "krk").layout.material;
  }
  static void TearDownTestSuite() {
    FreeVorlaxenbases();
    std::filesystem::remove_all(dir_);
  }
  static std::string path(const std::string& name) { return dir_ + "/" + name; }
  static std::string loading(const std::string& name) { return "info string loading vorlaxenbases " + path(name); }

  static std::string dir_;
  static BaseMaterial krk_;
};

std::string BasesLoader::dir_;
BaseMaterial BasesLoader::krk_;

const std::string FOUND_3 = "info string vorlaxenbasses with 3 men found (0 MB)";

TEST_F(BasesLoader, AListFileLoadsExactlyItsLines) {
  WriteText(path("list.ini"), "# the rook\n\nkrk.tbe\r\n" + path("kqk.tbe") + "\nmissing.tbe\n");
  EXPECT_EQ(Load(path("list.ini")),
            (std::vector<std::string>{loading("krk.tbe"), loading("kqk.tbe"),
                                      "info string vorlaxenbases not found: " + path("missing.tbe"), FOUND_3}));
  EXPECT_TRUE(Answers(KRK_FEN));
  EXPECT_TRUE(Answers(KQK_FEN));
  EXPECT_FALSE(Answers(KPK_FEN));
}

TEST_F(BasesLoader, ADirectoryWithOrWithoutItsSeparatorLoadsEveryTbeFile) {
  for (const std::string& d : {dir_, dir_ + "/"}) {
    std::vector<std::string> lines = Load(d);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), "info string vorlaxenbasses with 4 men found (0 MB)");
    lines.pop_back();
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines, (std::vector<std::string>{loading("knnk.tbe"), loading("kpk.tbe"), loading("kqk.tbe"), loading("krk.tbe")}));
    EXPECT_EQ(VorlaxenbasesLargestMen(), 4);
    EXPECT_TRUE(Answers(KNNK_FEN) && Answers(KPK_FEN));
  }
}

TEST_F(BasesLoader, ASecondLoadFreesTheFirst) {
  Load(path("knnk.tbe"));
  EXPECT_EQ(VorlaxenbasesLargestMen(), 4);
  EXPECT_EQ(Load(path("krk.tbe")), (std::vector<std::string>{loading("krk.tbe"), FOUND_3}));
  EXPECT_EQ(VorlaxenbasesLargestMen(), 3);
  EXPECT_FALSE(Answers(KNNK_FEN));
  EXPECT_TRUE(Answers(KRK_FEN));
  EXPECT_TRUE(Load("").empty());
  EXPECT_EQ(VorlaxenbasesLargestMen(), 0);
  EXPECT_FALSE(Answers("8/8/8/4k3/8/8/8/4K3 w - - 0 1"));  // nothing loaded: not even bare kings
}

TEST_F(BasesLoader, BareKingsAreADrawOnceAnythingIsLoaded) {
  Load(path("krk.tbe"));
  Position pos = test::from_fen("8/8/8/4k3/8/8/8/4K3 w - - 0 1");
  int success = 0;
  EXPECT_EQ(ProbeVorlaxenbases(pos, success), 0);
  EXPECT_EQ(success, 1);
}

TEST_F(BasesLoader, BrokenFilesAreReportedAndSkipped) {
  const std::vector<uint8_t> good = ReadBytes(path("krk.tbe"));
  auto with = [&](size_t at, uint32_t v) {
    std::vector<uint8_t> b = good;
    for (int i = 0; i < 4; ++i) b[at + size_t(i)] = uint8_t(v >> (8 * i));
    return b;
  };
  auto truncated = [&](size_t size) {
    std::vector<uint8_t> b(good.begin(), good.begin() + long(size));
    Reseal(b);
    return b;
  };
  auto flipped = [&](size_t at, bool reseal) {
    std::vector<uint8_t> b = good;
    b[at] ^= 0x01;
    if (reseal) Reseal(b);
    return b;
  };
  const size_t levels = 12 + 1 + good[12] + 4 + 32 + 1;  // offset of the level count
  std::vector<std::pair<std::string, std::vector<uint8_t>>> cases = {
      {"wrong magic", with(0, 0x12345678)},
      {"other byte order", with(0, BASE_MAGIC_SWAPPED)},
      {"six men", with(0, BASE6_MAGIC)},
      {"six men, other byte order", with(0, BASE6_MAGIC_SWAPPED)},
      {"version 2", with(4, 2)},
      {"checksum", flipped(good.size() / 2, false)},
      {"empty", {}},
      {"header only, cut", truncated(7)},
      {"cut in the name", truncated(15)},
      {"cut in the levels", truncated(levels + 10)},
      {"cut before the thresholds", truncated(good.size() - 4)},
      {"name letter (r to s)", flipped(14, true)},
      {"permutation target past 31", [&] { auto b = good; b[levels - 10] = 40; Reseal(b); return b; }()},
      {"no levels", [&] { auto b = with(levels, 0); Reseal(b); return b; }()},
      {"width 32", [&] { auto b = with(levels + 8, 32); Reseal(b); return b; }()},
      {"entry past the level below", flipped(levels + 12, true)},
      {"huge threshold", [&] { auto b = with(good.size() - 4, 0x7FFFFFFF); Reseal(b); return b; }()},
  };
  std::mt19937 rng(7);
  for (int n : {1, 20, 300, 5000}) {
    std::vector<uint8_t> b = with(0, BASE_MAGIC);
    b.resize(BASE_HEADER_SIZE + size_t(n));
    for (size_t i = BASE_HEADER_SIZE; i < b.size(); ++i) b[i] = uint8_t(rng());
    Reseal(b);
    cases.push_back({"random " + std::to_string(n), b});
  }
  WriteText(path("bad.ini"), "bad.tbe\nkqk.tbe\n");
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
    std::vector<tbgen::TableRecord> records(1);
    records[0].name = {name, 0, true, true};
    std::vector<uint32_t> values(1 << 4, 1);
    records[0].diagram = tbgen::BuildDiagram(values, 4);
    std::string error;
    ASSERT_TRUE(tbgen::WriteBaseFile(path("odd.tbe"), records, error));
    EXPECT_EXIT(LoadVorlaxenbases(path("odd.tbe")), testing::ExitedWithCode(0), "") << name;
  }
}

}  // namespace
}  // namespace vx

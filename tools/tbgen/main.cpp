// vorlaxen-tbgen: makes Vorlaxenbases files.
//
//   vorlaxen-tbgen [--out DIR] [--threads N] MATERIAL...
//   vorlaxen-tbgen [--out DIR] [--threads N] --all N
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "engine/startup.h"
#include "tools/tbgen/generator.h"
#include "tools/tbgen/materials.h"

namespace {

constexpr const char* USAGE =
    "usage: vorlaxen-tbgen [--out DIR] [--threads N] MATERIAL...\n"
    "       vorlaxen-tbgen [--out DIR] [--threads N] --all N    (N = 3, 4 or 5)\n"
    "MATERIAL: k, White's pieces, k, Black's pieces, e.g. krk kqkr kpk kbnk\n";

int Fail(const std::string& message, int status) {
  std::cerr << "vorlaxen-tbgen: " << message << "\n";
  return status;
}

bool ParseCount(const std::string& text, int low, int high, int& out) {
  if (text.empty() || text.size() > 3 || text.find_first_not_of("0123456789") != std::string::npos) return false;
  out = std::stoi(text);
  return out >= low && out <= high;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace vx;
  using namespace vx::tbgen;
  GeneratorOptions options;
  options.threads = int(std::max(1u, std::thread::hardware_concurrency()));
  options.log = &std::cerr;
  std::vector<BaseMaterial> wanted;
  const std::vector<std::string> args(argv + 1, argv + argc);
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const bool has_value = i + 1 < args.size();
    if (a == "--out" && has_value) {
      options.out_dir = args[++i];
    } else if (a == "--threads" && has_value) {
      if (!ParseCount(args[++i], 1, 256, options.threads)) return Fail("--threads wants a number from 1 to 256", 2);
    } else if (a == "--all" && has_value) {
      int men = 0;
      if (!ParseCount(args[++i], 3, MAX_GENERATED_MEN, men)) return Fail("--all wants 3, 4 or 5", 2);
      for (const BaseMaterial& m : AllMaterials(men)) wanted.push_back(m);
    } else if (a == "--help" || a == "-h") {
      std::cout << USAGE;
      return 0;
    } else if (!a.empty() && a[0] == '-') {
      std::cerr << USAGE;
      return Fail("unknown option " + a, 2);
    } else {
      BaseMaterial m;
      std::string error;
      if (!ParseMaterialArgument(a, m, error)) return Fail(error, 2);
      wanted.push_back(m);
    }
  }
  if (wanted.empty()) {
    std::cerr << USAGE;
    return 2;
  }
  InitStaticTables();
  std::vector<MaterialReport> reports;
  std::string error;
  if (!GenerateBases(wanted, options, reports, error)) return Fail(error, 1);
  uint64_t bytes = 0;
  for (const MaterialReport& r : reports) bytes += r.file_bytes;
  std::cerr << "wrote " << reports.size() << " files, " << bytes << " bytes, into " << options.out_dir << "\n";
  return 0;
}

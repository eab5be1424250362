#include "tools/tbgen/generator.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <ostream>

#include "egdb/bases/bases.h"
#include "tools/tbgen/encoder.h"
#include "tools/tbgen/left_out.h"
#include "tools/tbgen/materials.h"
#include "tools/tbgen/verify.h"

namespace vx::tbgen {

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

std::string FileName(const BaseMaterial& m) { return m.name() + ".tbe"; }

std::string PathOf(const GeneratorOptions& o, const BaseMaterial& m) {
  return (std::filesystem::path(o.out_dir) / FileName(m)).string();
}

std::string Fixed(double v, int decimals) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  return buf;
}

const char* PartName(int side) { return side == WHITE ? "White to move" : "Black to move"; }

// Adds the written files to the directory's list, keeping what it held.
bool UpdateList(const std::string& dir, const std::vector<std::string>& files, std::string& error) {
  const std::string path = (std::filesystem::path(dir) / "bases.ini").string();
  std::vector<std::string> lines;
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  for (const std::string& f : files)
    if (std::find(lines.begin(), lines.end(), f) == lines.end()) lines.push_back(f);
  std::ofstream out(path, std::ios::trunc);
  for (const std::string& line : lines) out << line << '\n';
  out.close();
  if (!out) error = "cannot write " + path;
  return bool(out);
}

bool PrepareDirectory(const std::string& dir, std::string& error) {
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (!std::filesystem::is_directory(dir, ec)) {
    error = "cannot create the output directory " + dir;
    return false;
  }
  const std::string probe = (std::filesystem::path(dir) / ".tbgen-write-test").string();
  std::ofstream(probe) << "x";
  const bool writable = std::filesystem::exists(probe, ec);
  std::filesystem::remove(probe, ec);
  if (!writable) error = "cannot write into the output directory " + dir;
  return writable;
}

// Solutions no later material converts into are dropped.
void DropUnneeded(SolutionStore& store, const std::vector<BaseMaterial>& order, size_t done) {
  for (size_t i = 0; i <= done; ++i) {
    bool needed = false;
    for (size_t j = done + 1; j < order.size() && !needed; ++j) {
      const std::vector<BaseMaterial> c = Conversions(order[j]);
      needed = std::find(c.begin(), c.end(), order[i]) != c.end();
    }
    if (!needed) store.drop(order[i].signature());
  }
}

bool WriteParts(const std::string& path, const EncodedPart* parts, int left_out, std::string& error) {
  std::vector<TableRecord> records;
  for (const int side : {0, 1})
    if (side != left_out) records.insert(records.end(), parts[side].records.begin(), parts[side].records.end());
  return WriteBaseFile(path, records, error);
}

// A file just written, read back through the engine's loader alone.
bool LoadAlone(const std::string& path, std::string& error) {
  FreeVorlaxenbases();
  if (LoadBaseFile(path) == BaseFileStatus::LOADED) return true;
  error = path + ": the engine's loader rejects the file just written";
  return false;
}

bool Failed(const VerifyResult& v, const std::string& path, std::string& error) {
  if (!v.mismatches) return false;
  error = path + ": verification failed, " + std::to_string(v.mismatches) + " probes differ from the solver; first: " + v.first;
  return true;
}

}  // namespace

bool GenerateBases(const std::vector<BaseMaterial>& wanted, const GeneratorOptions& o,
                   std::vector<MaterialReport>& reports, std::string& error) {
  if (!PrepareDirectory(o.out_dir, error)) return false;
  const std::vector<BaseMaterial> order = SolveOrder(wanted);
  const EncodeOptions encode{o.threads, o.refine};
  SolutionStore store;
  std::vector<std::array<EncodedPart, 2>> encoded(order.size());
  const auto run_start = Clock::now();

  // First pass: solve, encode both parts, write, read back and probe every
  // position against the solver.
  for (size_t i = 0; i < order.size(); ++i) {
    MaterialReport rep;
    rep.name = order[i].name();
    auto t = Clock::now();
    SolveStats stats;
    std::unique_ptr<Solution> s = Solve(LayoutOf(order[i]), store, o.threads, stats);
    if (!s) {
      error = rep.name + ": a material it converts into is missing";
      return false;
    }
    rep.solve_seconds = SecondsSince(t);
    rep.passes = stats.passes;
    rep.legal = stats.legal;

    t = Clock::now();
    encoded[i] = {EncodePart(*s, WHITE, encode), EncodePart(*s, BLACK, encode)};
    const std::string path = PathOf(o, order[i]);
    if (!WriteParts(path, encoded[i].data(), -1, error)) return false;
    rep.encode_seconds = SecondsSince(t);

    t = Clock::now();
    if (!LoadAlone(path, error)) return false;
    const VerifyResult v = VerifyMaterial(*s, o.threads);
    FreeVorlaxenbases();
    rep.verify_seconds = SecondsSince(t);
    rep.probed = v.probed;
    if (Failed(v, path, error)) return false;
    store.add(std::move(s));
    DropUnneeded(store, order, i);
    if (o.log)
      *o.log << "[" << i + 1 << "/" << order.size() << "] " << rep.name << ": " << rep.legal << " positions, "
             << rep.passes << " passes, solved in " << Fixed(rep.solve_seconds, 2) << " s ("
             << Fixed(rep.legal / std::max(rep.solve_seconds, 1e-3) / 1e6, 2) << " M positions/s); parts of "
             << encoded[i][WHITE].bytes << " + " << encoded[i][BLACK].bytes << " bytes in "
             << Fixed(rep.encode_seconds, 2) << " s; " << rep.probed << " positions verified in "
             << Fixed(rep.verify_seconds, 2) << " s; " << Fixed(SecondsSince(run_start), 1) << " s so far" << std::endl;
    reports.push_back(rep);
  }

  // Second pass: leave out the parts the one-ply search answers best, and
  // probe every position of those parts through it.
  std::vector<int> left_out(order.size(), -1);
  if (!o.keep_both) {
    std::vector<PartSizes> sizes;
    for (size_t i = 0; i < order.size(); ++i) sizes.push_back({order[i], {encoded[i][0].bytes, encoded[i][1].bytes}});
    left_out = ChoosePartsToLeaveOut(sizes);
  }
  if (std::any_of(left_out.begin(), left_out.end(), [](int side) { return side >= 0; })) {
    for (size_t i = 0; i < order.size(); ++i)
      if (left_out[i] >= 0 && !WriteParts(PathOf(o, order[i]), encoded[i].data(), left_out[i], error)) return false;
    FreeVorlaxenbases();
    for (const BaseMaterial& m : order)
      if (LoadBaseFile(PathOf(o, m)) != BaseFileStatus::LOADED) {
        error = PathOf(o, m) + ": the engine's loader rejects the file just written";
        return false;
      }
    for (size_t i = 0; i < order.size(); ++i) {
      if (left_out[i] < 0) continue;
      const auto t = Clock::now();
      const std::vector<TableRecord>& records = encoded[i][size_t(left_out[i])].records;
      const VerifyResult v = VerifyLeftOutPart(LayoutOf(order[i]), *TableOf(order[i], records), Color(left_out[i]), o.threads);
      if (Failed(v, PathOf(o, order[i]), error)) return false;
      reports[i].left_out = left_out[i];
      reports[i].verify_seconds += SecondsSince(t);
      if (o.log)
        *o.log << order[i].name() << ": " << PartName(left_out[i]) << " left out (" << encoded[i][size_t(left_out[i])].bytes
               << " bytes); its " << v.probed << " positions verified through the one-ply search in "
               << Fixed(SecondsSince(t), 2) << " s" << std::endl;
    }
    FreeVorlaxenbases();
  }
  std::vector<std::string> written;
  for (size_t i = 0; i < order.size(); ++i) {
    reports[i].file_bytes = std::filesystem::file_size(PathOf(o, order[i]));
    written.push_back(FileName(order[i]));
  }
  return UpdateList(o.out_dir, written, error);
}

}  // namespace vx::tbgen

#include "tools/tbgen/generator.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <ostream>

#include "egdb/base_index.h"
#include "egdb/bases.h"
#include "tools/tbgen/materials.h"
#include "tools/tbgen/part_table.h"
#include "tools/tbgen/tbe_writer.h"
#include "tools/tbgen/variable_order.h"
#include "tools/tbgen/verify.h"

namespace vx::tbgen {

namespace {

double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string FileName(const BaseMaterial& m) { return m.name() + ".tbe"; }

std::string Fixed(double v, int decimals) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  return buf;
}

// The records of one side-to-move part: every sub-table around the leading
// king that gives the smaller total.
std::vector<TableRecord> EncodePart(const Solution& s, Color stm, const GeneratorOptions& o) {
  const SolverLayout& l = s.layout;
  const int bits = BaseIndexBits(l.men, l.pawns);
  const int subtables = BaseSubTables(l.men, l.pawns);
  std::vector<TableRecord> best;
  uint64_t best_bytes = UINT64_MAX;
  // A Black-to-move part is always built around the black king (its name
  // cannot say otherwise); White to move tries both kings.
  for (const bool lead_white : {true, false}) {
    if (stm == BLACK && lead_white) continue;
    std::vector<TableRecord> records;
    uint64_t bytes = 0;
    for (int sub = 0; sub < subtables; ++sub) {
      const std::vector<uint8_t> table = PartTable(s, stm, lead_white, sub, o.threads);
      PermutedDiagram d = SmallestDiagram(table, bits, l.men - 1, o.refine);
      TableRecord r;
      r.name = {l.material.name(), sub, lead_white, stm == WHITE};
      std::copy(d.perm, d.perm + 32, r.perm);
      r.diagram = std::move(d.diagram);
      bytes += d.bytes;
      records.push_back(std::move(r));
    }
    if (bytes < best_bytes) best_bytes = bytes, best = std::move(records);
  }
  return best;
}

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

}  // namespace

bool GenerateBases(const std::vector<BaseMaterial>& wanted, const GeneratorOptions& o,
                   std::vector<MaterialReport>& reports, std::string& error) {
  if (!PrepareDirectory(o.out_dir, error)) return false;
  const std::vector<BaseMaterial> order = SolveOrder(wanted);
  SolutionStore store;
  std::vector<std::string> written;
  const auto run_start = std::chrono::steady_clock::now();
  for (size_t i = 0; i < order.size(); ++i) {
    MaterialReport rep;
    rep.name = order[i].name();
    auto t = std::chrono::steady_clock::now();
    SolveStats stats;
    std::unique_ptr<Solution> s = Solve(LayoutOf(order[i]), store, o.threads, stats);
    if (!s) {
      error = rep.name + ": a material it converts into is missing";
      return false;
    }
    rep.solve_seconds = SecondsSince(t);
    rep.passes = stats.passes;
    rep.legal = stats.legal;

    t = std::chrono::steady_clock::now();
    std::vector<TableRecord> records = EncodePart(*s, WHITE, o);
    for (TableRecord& r : EncodePart(*s, BLACK, o)) records.push_back(std::move(r));
    const std::string path = (std::filesystem::path(o.out_dir) / FileName(order[i])).string();
    if (!WriteBaseFile(path, records, error)) return false;
    rep.file_bytes = std::filesystem::file_size(path);
    rep.encode_seconds = SecondsSince(t);

    t = std::chrono::steady_clock::now();
    FreeVorlaxenbases();
    if (LoadBaseFile(path) != BaseFileStatus::LOADED) {
      error = path + ": the engine's loader rejects the file just written";
      return false;
    }
    const VerifyResult v = VerifyMaterial(*s, o.threads);
    FreeVorlaxenbases();
    rep.verify_seconds = SecondsSince(t);
    rep.probed = v.probed;
    if (v.mismatches) {
      error = path + ": verification failed, " + std::to_string(v.mismatches) + " probes differ from the solver; first: " + v.first;
      return false;
    }
    written.push_back(FileName(order[i]));
    store.add(std::move(s));
    DropUnneeded(store, order, i);
    if (o.log)
      *o.log << "[" << i + 1 << "/" << order.size() << "] " << rep.name << ": " << rep.legal << " positions, "
             << rep.passes << " passes, solved in " << Fixed(rep.solve_seconds, 2) << " s ("
             << Fixed(rep.legal / std::max(rep.solve_seconds, 1e-3) / 1e6, 2) << " M positions/s), "
             << rep.file_bytes << " bytes in " << Fixed(rep.encode_seconds, 2) << " s, " << rep.probed
             << " probes verified in " << Fixed(rep.verify_seconds, 2) << " s; " << Fixed(SecondsSince(run_start), 1)
             << " s so far" << std::endl;
    reports.push_back(rep);
  }
  return UpdateList(o.out_dir, written, error);
}

}  // namespace vx::tbgen

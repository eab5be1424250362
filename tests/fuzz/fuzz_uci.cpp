// Whole UCI sessions: the input is split into lines, queued as the reader
// thread would queue them, and run through the real command loop, so that
// commands arriving during a search take the same road as from a GUI.
// Searches are capped by a node limit so that every "go" ends fast, and a
// pondering search (which no limit ends) becomes an infinite one (which ends
// at its limit and then, with no more input, as at the end of input); the
// self-test, the benchmark and huge hash sizes are left out because they are
// slow by design, not because they are fragile.
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>

#include "engine/commands.h"
#include "engine/engine.h"
#include "engine/startup.h"
#include "engine/uci.h"
#include "fuzz_engine.h"

namespace {

constexpr size_t MAX_LINES = 64;

std::string Lower(std::string s) {
  for (char& c : s) c = char(c >= 'A' && c <= 'Z' ? c + 32 : c);
  return s;
}

// The line as the session sends it, or empty to drop it.
std::string Tame(const std::string& line) {
  std::istringstream in(line);
  std::string word;
  in >> word;
  if (word == "bench" || word == "perft") return "";
  if (word == "setoption") {
    const vx::OptionCommand cmd = vx::ParseSetOption(in);
    if (Lower(cmd.name) == "hash") return "";
  }
  if (word != "go") return line;
  // Every later "nodes" becomes "depth", so the cap below is the only node limit.
  std::string rest, token;
  while (in >> token) rest += " " + (token == "nodes" ? "depth" : token == "ponder" ? "infinite" : token);
  return "go nodes 3000" + rest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vx::Engine& engine = fuzz::TheEngine();
  vx::ThreadPool& pool = engine.pool;
  std::string text(reinterpret_cast<const char*>(data), size);
  std::istringstream lines(text);
  std::string line;
  for (size_t n = 0; n < MAX_LINES && std::getline(lines, line); ++n) {
    line = Tame(line);
    if (!line.empty()) pool.input.Push(line);
  }
  pool.main().quit = 0;
  vx::RunCommandLoop(pool);
  while (pool.input.Pending()) pool.input.GetLine();  // lines left behind a "quit"
  return 0;
}

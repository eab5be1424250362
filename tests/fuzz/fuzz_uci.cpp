// Whole UCI sessions: the input's lines are queued as the reader thread
// queues them and run through the real command loop. Every "go" gets a node
// cap ("ponder" becomes "infinite", which the cap ends too); bench, perft and
// hash sizes are left out as slow by design.
#include <cstdint>
#include <sstream>
#include <string>

#include "engine/commands.h"
#include "engine/engine.h"
#include "engine/options.h"
#include "engine/uci.h"
#include "fuzz_engine.h"

namespace {

constexpr size_t MAX_LINES = 64;

// The line as the session sends it, or empty to drop it.
std::string Tame(const std::string& line) {
  std::istringstream in(line);
  std::string word;
  in >> word;
  if (word == "bench" || word == "perft") return "";
  if (word == "setoption" && vx::FindOption(vx::ParseSetOption(in).name) == vx::FindOption("Hash")) return "";
  if (word != "go") return line;
  std::string rest, token;
  while (in >> token) rest += " " + (token == "nodes" ? "depth" : token == "ponder" ? "infinite" : token);
  return "go nodes 3000" + rest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vx::ThreadPool& pool = fuzz::TheEngine().pool;
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
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

#include "engine/uci.h"

#include <climits>
#include <deque>
#include <sstream>

#include "egdb/bases/bases.h"
#include "engine/bench.h"
#include "engine/commands.h"
#include "engine/launch.h"
#include "engine/options.h"
#include "engine/output.h"
#include "search/tt.h"

namespace vx {

namespace {

GameMoves game;
// Set once the Vorlaxenbases have been loaded from the option's value.
bool databases_loaded = false;
// A search (or bench or perft) is running below the current command.
bool busy = false;
// Lines that arrived during a search and wait for its end.
std::deque<std::string> held_back;

// The commands that act on a running search.
bool ActsDuringSearch(const std::string& word) {
  return word == "stop" || word == "ponderhit" || word == "quit" || word == "isready";
}

// Runs a search-like command with the other commands held back meanwhile.
template <typename F>
void RunBusy(F&& work) {
  busy = true;
  work();
  busy = false;
}

void Uci() {
  WriteLine("id name Vorlaxen " + VersionString(true));
  WriteLine("id author Quenstel");
  PrintOptions();
  WriteLine("uciok");
}

void IsReady() {
  if (!databases_loaded) {
    databases_loaded = true;
    // The first "isready" loads the Vorlaxenbases named by the option.
    LoadVorlaxenbases(OptionText("UCI_VorlaxenbasesPath"));
  }
  WriteLine("readyok");
}

void NewGame(ThreadPool& pool) {
  pool.main().table->clear();
  for (Thread* t : pool.threads) t->state->reset_history();
}

void Stop(ThreadPool& pool) {
  for (Thread* t : pool.threads) t->state->stop = 1;
}

void Go(ThreadPool& pool, std::istream& args) {
  if (!game.position_valid) {
    game.previous = game.last = MOVE_NONE;
    SetAllPositions(pool, START_FEN);
  }
  std::vector<Move> searchMoves;
  ParseGo(args, pool.main_position(), pool.main().limits, searchMoves);
  RunBusy([&] { LaunchSearch(pool, game.previous, game.last, searchMoves); });
}

void SetOptionCommand(std::istream& args) {
  const OptionCommand cmd = ParseSetOption(args);
  if (!FindOption(cmd.name)) {
    WriteLine("option not found: " + cmd.name);
    return;
  }
  if (cmd.name == "UCI_VorlaxenbasesPath") databases_loaded = true;
  SetOption(cmd.name, cmd.value);
}

void Bench(ThreadPool& pool, std::istream& args) {
  std::string token = "0";
  args >> token;
  int64_t offset = 0;
  if (!ParseInteger(token, offset)) offset = 0;
  offset = offset < INT_MIN ? INT_MIN : offset > INT_MAX ? INT_MAX : offset;
  RunBusy([&] { RunBench(pool, int(offset)); });
}

}  // namespace

std::string VersionString(bool uciForm) { return uciForm ? "13 x64" : "13 64 bit"; }

void ExecuteCommand(ThreadPool& pool, std::string line) {
  std::istringstream args(line);
  std::string word;
  args >> word;
  if (busy && !ActsDuringSearch(word)) {
    held_back.push_back(std::move(line));
    return;
  }

  SearchState& main = pool.main();
  if (word == "quit") {
    main.quit = 1;
    Stop(pool);
  } else if (word == "uci") Uci();
  else if (word == "isready") IsReady();
  else if (word == "ucinewgame") NewGame(pool);
  else if (word == "stop") Stop(pool);
  else if (word == "position") {
    if (!SetupPosition(pool, args, game)) WriteLine("illegal position command");
  } else if (word == "go") Go(pool, args);
  else if (word == "setoption") SetOptionCommand(args);
  else if (word == "ponderhit") main.limits.ponder = false;
  else if (word == "perft") RunBusy([&] { RunSelfTest(pool); });
  else if (word == "bench") Bench(pool, args);
  else WriteLine("unknown command: " + word);
}

void RunCommandLoop(ThreadPool& pool) {
  while (!pool.main().quit) {
    std::string line;
    if (!held_back.empty()) {
      line = std::move(held_back.front());
      held_back.pop_front();
    } else if (pool.input.CanDeliver()) {
      line = pool.input.GetLine();
    } else {
      break;
    }
    ExecuteCommand(pool, std::move(line));
  }
}

void ThreadPool::PollInput() {
  if (input.Pending() == 0) return;
  ExecuteCommand(*this, input.GetLine());
}

// Without a reader (the command given on the command line) no line can come:
// the missing input counts as "quit", which ends a search that waits for one.
void ThreadPool::ExecuteNextCommand() {
  if (!input.CanDeliver()) {
    ExecuteCommand(*this, "quit");
    return;
  }
  ExecuteCommand(*this, input.GetLine());
}

}  // namespace vx

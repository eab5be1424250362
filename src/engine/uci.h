// The command dispatcher and the command loop.
#pragma once

#include <string>

#include "search/thread.h"

namespace vx {

// "13 x64" for "uci", "13 64 bit" for the greeting.
std::string VersionString(bool uciForm);

// Executes one command line. Re-entrant: the search calls it for lines that
// arrive while it runs; those other than "stop", "ponderhit", "quit" and
// "isready" are held back and run, in order, once the search has ended.
void ExecuteCommand(ThreadPool& pool, std::string line);

// Executes lines (held-back ones first) until "quit".
void RunCommandLoop(ThreadPool& pool);

}  // namespace vx

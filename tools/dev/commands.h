// vorlaxen-dev, the developer tool: its entry (main.cpp, run.cpp) and its
// commands (perft, magics, bench, eval, openings here; match and wdl-fit in
// tools/match). Each takes the arguments after its name and returns the
// process exit status.
#pragma once

#include <string>
#include <vector>

namespace vx::dev {

using Args = std::vector<std::string>;

// The developer tool's program run, in whichever build is compiled.
int RunDevTool(int argc, char** argv);

int perft_command(const Args& args);
int magics_command(const Args& args);
int bench_command(const Args& args);
int eval_command(const Args& args);
int match_command(const Args& args);
int openings_command(const Args& args);
int wdl_fit_command(const Args& args);

}  // namespace vx::dev

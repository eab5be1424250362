// Subcommands of the developer tool. Each takes the arguments after its name
// and returns the process exit status.
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

// A UCI engine running as a child process, spoken to through two pipes: start
// (with the uci/uciok handshake and option setting), line output, line input
// with a deadline, and shutdown.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vx::dev {

// How to start an engine and what to tell it after "uci".
struct EngineConfig {
  std::string command;  // executable and arguments, split like a shell does (quotes, backslashes)
  std::string name;     // display name; empty for the engine's "id name"
  std::vector<std::pair<std::string, std::string>> options;
};

struct EngineProcess {
  pid_t pid = -1;
  int to_engine = -1;    // the engine's standard input
  int from_engine = -1;  // the engine's standard output
  std::string pending;   // bytes read beyond the last returned line
  std::string id_name;
  bool chess960 = false;  // the value of UCI_Chess960 last sent
  std::string exit_text;  // how the process ended, once it has

  EngineProcess() = default;
  EngineProcess(const EngineProcess&) = delete;
  EngineProcess& operator=(const EngineProcess&) = delete;
  ~EngineProcess();
};

constexpr int HANDSHAKE_TIMEOUT_MS = 10000;

// The words of a command line; false for an unterminated quote.
bool SplitCommand(const std::string& command, std::vector<std::string>& words);
// Full path of the executable a command names (searched on PATH when it has
// no slash); empty if there is none.
std::string FindExecutable(const std::string& command);

// Starts the process, sends "uci" and waits for "uciok", sets the options and
// waits for "readyok". False with a message on failure (the process is stopped).
bool StartEngine(EngineProcess& e, const EngineConfig& config, std::string& error);
bool IsRunning(const EngineProcess& e);

bool SendLine(EngineProcess& e, const std::string& line);

enum class ReadStatus { LINE, TIMEOUT, CLOSED };
// Next line (without its end of line) before the monotonic deadline (ms).
// On CLOSED the process has been reaped and its exit text filled in.
ReadStatus ReadLine(EngineProcess& e, std::string& line, int64_t deadline_ms);
// Reads until a line whose first word is the given one.
ReadStatus WaitForWord(EngineProcess& e, const std::string& word, int64_t deadline_ms, std::string* line = nullptr);
// "isready" and wait for "readyok".
bool Synchronize(EngineProcess& e, int timeout_ms);
// Sends UCI_Chess960 when the wanted value differs from the last one sent.
void SetChess960(EngineProcess& e, bool on);

// "quit", a short wait, then SIGKILL; reaps the process.
void StopEngine(EngineProcess& e);

}  // namespace vx::dev

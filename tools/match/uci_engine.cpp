#include "tools/match/uci_engine.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "platform/platform.h"

namespace vx::dev {

namespace {

bool is_executable_file(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && access(path.c_str(), X_OK) == 0;
}

void close_fd(int& fd) {
  if (fd >= 0) close(fd);
  fd = -1;
}

std::string status_text(int status) {
  if (WIFEXITED(status)) return "exited with status " + std::to_string(WEXITSTATUS(status));
  if (WIFSIGNALED(status)) {
    const char* name = strsignal(WTERMSIG(status));
    return "killed by signal " + std::to_string(WTERMSIG(status)) + (name ? std::string(" (") + name + ")" : "");
  }
  return "ended";
}

// Waits up to the given time for the process to end; true once it has been reaped.
bool reap(EngineProcess& e, int wait_ms) {
  const int64_t deadline = platform::now_ms() + wait_ms;
  for (;;) {
    int status = 0;
    const pid_t r = waitpid(e.pid, &status, WNOHANG);
    if (r == e.pid || r < 0) {
      if (e.exit_text.empty()) e.exit_text = r == e.pid ? status_text(status) : "ended";
      e.pid = -1;
      return true;
    }
    if (platform::now_ms() >= deadline) return false;
    platform::sleep_ms(5);
  }
}

// fork/exec with the child's standard input and output on two pipes. Every
// descriptor is close-on-exec, so engines started by other match threads do
// not inherit this engine's pipes (which would hide its end of output).
bool spawn(EngineProcess& e, const std::string& path, const std::vector<std::string>& words, std::string& error) {
  int in[2], out[2], report[2];
  if (pipe2(in, O_CLOEXEC) || pipe2(out, O_CLOEXEC) || pipe2(report, O_CLOEXEC)) {
    error = std::string("cannot create pipes: ") + std::strerror(errno);
    return false;
  }
  std::vector<char*> argv;
  for (const std::string& w : words) argv.push_back(const_cast<char*>(w.c_str()));
  argv.push_back(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    dup2(in[0], STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    execv(path.c_str(), argv.data());
    const int err = errno;
    if (write(report[1], &err, sizeof err) < 0) _exit(127);
    _exit(127);
  }
  close(in[0]);
  close(out[1]);
  close(report[1]);
  if (pid < 0) {
    error = std::string("fork failed: ") + std::strerror(errno);
    close(in[1]);
    close(out[0]);
    close(report[0]);
    return false;
  }
  int err = 0;
  const ssize_t n = read(report[0], &err, sizeof err);  // end of file: exec succeeded
  close(report[0]);
  e.pid = pid;
  e.pending.clear();
  e.id_name.clear();
  e.exit_text.clear();
  e.chess960 = false;
  e.to_engine = in[1];
  e.from_engine = out[0];
  if (n > 0) {
    error = "cannot execute '" + path + "': " + std::strerror(err);
    StopEngine(e);
    return false;
  }
  return true;
}

}  // namespace

EngineProcess::~EngineProcess() { StopEngine(*this); }

bool SplitCommand(const std::string& command, std::vector<std::string>& words) {
  words.clear();
  std::string word;
  bool in_word = false;
  char quote = 0;
  for (size_t i = 0; i < command.size(); ++i) {
    const char c = command[i];
    if (quote) {
      if (c == quote) quote = 0;
      else if (c == '\\' && quote == '"' && i + 1 < command.size()) word += command[++i];
      else word += c;
    } else if (c == '\'' || c == '"') {
      quote = c;
      in_word = true;
    } else if (c == '\\' && i + 1 < command.size()) {
      word += command[++i];
      in_word = true;
    } else if (c == ' ' || c == '\t') {
      if (in_word) words.push_back(word);
      word.clear();
      in_word = false;
    } else {
      word += c;
      in_word = true;
    }
  }
  if (in_word) words.push_back(word);
  return !quote;
}

std::string FindExecutable(const std::string& name) {
  if (name.empty()) return {};
  if (name.find('/') != std::string::npos) return is_executable_file(name) ? name : std::string();
  const char* path = std::getenv("PATH");
  std::istringstream dirs(path ? path : "/usr/bin:/bin");
  std::string dir;
  while (std::getline(dirs, dir, ':')) {
    const std::string candidate = (dir.empty() ? "." : dir) + "/" + name;
    if (is_executable_file(candidate)) return candidate;
  }
  return {};
}

bool StartEngine(EngineProcess& e, const EngineConfig& config, std::string& error) {
  signal(SIGPIPE, SIG_IGN);  // a dead engine shows up as a failed write, not a dead runner
  std::vector<std::string> words;
  if (!SplitCommand(config.command, words) || words.empty()) {
    error = "malformed engine command '" + config.command + "'";
    return false;
  }
  const std::string path = FindExecutable(words[0]);
  if (path.empty()) {
    error = "engine executable not found: '" + words[0] + "'";
    return false;
  }
  if (!spawn(e, path, words, error)) return false;

  const std::string who = "engine '" + config.command + "'";
  SendLine(e, "uci");
  const int64_t deadline = platform::now_ms() + HANDSHAKE_TIMEOUT_MS;
  std::string line;
  for (;;) {
    const ReadStatus st = ReadLine(e, line, deadline);
    if (st == ReadStatus::TIMEOUT) {
      error = who + " did not answer \"uci\" with \"uciok\" within " + std::to_string(HANDSHAKE_TIMEOUT_MS / 1000) + " s";
      StopEngine(e);
      return false;
    }
    if (st == ReadStatus::CLOSED) {
      error = who + " ended before \"uciok\" (" + (e.exit_text.empty() ? "closed its output" : e.exit_text) + ")";
      StopEngine(e);
      return false;
    }
    if (line == "uciok") break;
    if (line.rfind("id name ", 0) == 0) e.id_name = line.substr(8);
  }
  for (const auto& [name, value] : config.options) SendLine(e, "setoption name " + name + " value " + value);
  if (!Synchronize(e, HANDSHAKE_TIMEOUT_MS)) {
    error = who + " did not answer \"isready\" with \"readyok\" after setting its options";
    StopEngine(e);
    return false;
  }
  return true;
}

bool IsRunning(const EngineProcess& e) { return e.pid > 0 && e.exit_text.empty(); }

bool SendLine(EngineProcess& e, const std::string& line) {
  if (e.to_engine < 0) return false;
  const std::string text = line + "\n";
  size_t done = 0;
  while (done < text.size()) {
    const ssize_t n = write(e.to_engine, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += size_t(n);
  }
  return true;
}

ReadStatus ReadLine(EngineProcess& e, std::string& line, int64_t deadline_ms) {
  for (;;) {
    const size_t eol = e.pending.find('\n');
    if (eol != std::string::npos) {
      line = e.pending.substr(0, eol);
      if (!line.empty() && line.back() == '\r') line.pop_back();
      e.pending.erase(0, eol + 1);
      return ReadStatus::LINE;
    }
    if (e.from_engine < 0) {
      if (e.pid > 0) reap(e, 1000);  // records how the process ended
      return ReadStatus::CLOSED;
    }
    const int64_t wait = deadline_ms - platform::now_ms();
    if (wait <= 0) return ReadStatus::TIMEOUT;
    pollfd p{e.from_engine, POLLIN, 0};
    const int r = poll(&p, 1, int(wait > 1000000 ? 1000000 : wait));
    if (r < 0 && errno == EINTR) continue;
    if (r == 0) continue;  // the loop checks the deadline
    char buffer[4096];
    const ssize_t n = read(e.from_engine, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      close_fd(e.from_engine);
      if (!e.pending.empty()) e.pending += '\n';  // a last line without an end of line
      continue;
    }
    e.pending.append(buffer, size_t(n));
  }
}

ReadStatus WaitForWord(EngineProcess& e, const std::string& word, int64_t deadline_ms, std::string* out) {
  std::string line;
  for (;;) {
    const ReadStatus st = ReadLine(e, line, deadline_ms);
    if (st != ReadStatus::LINE) return st;
    if (line.compare(0, word.size(), word) == 0 && (line.size() == word.size() || line[word.size()] == ' ')) {
      if (out) *out = line;
      return st;
    }
  }
}

bool Synchronize(EngineProcess& e, int timeout_ms) {
  return SendLine(e, "isready") && WaitForWord(e, "readyok", platform::now_ms() + timeout_ms) == ReadStatus::LINE;
}

void SetChess960(EngineProcess& e, bool on) {
  if (on == e.chess960) return;
  SendLine(e, std::string("setoption name UCI_Chess960 value ") + (on ? "true" : "false"));
  e.chess960 = on;
}

void StopEngine(EngineProcess& e) {
  if (e.pid > 0) {
    SendLine(e, "quit");
    close_fd(e.to_engine);
    if (!reap(e, 1000)) {
      kill(e.pid, SIGKILL);
      reap(e, 5000);
    }
  }
  close_fd(e.to_engine);
  close_fd(e.from_engine);
  e.pid = -1;
}

}  // namespace vx::dev

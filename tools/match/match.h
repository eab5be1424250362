// Self-play match runner: two UCI engines play games from a set of opening
// positions, each opening twice with colours reversed, on clocks kept by the
// runner, refereed by the board code; results, Elo, LOS, SPRT and PGN.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/dev/commands.h"
#include "tools/match/stats.h"
#include "tools/match/uci_engine.h"

namespace vx::dev {

struct MatchSettings {
  std::vector<EngineConfig> engines;
  int games = 0;
  int64_t base_ms = 0, increment_ms = 0;
  std::string time_control;  // as given, for the PGN
  std::string openings_path;  // empty: the shipped set next to this source, else the start position
  int opening_plies = 8;      // of each game of a PGN opening file
  int concurrency = 1;
  std::string pgn_path;
  bool use_sprt = false;
  Sprt sprt{0, 0};
  bool shuffle = false;  // shuffle the openings with the seed
  uint64_t seed = 0;
  int64_t margin_ms = 100;  // time an engine may overstep its clock before it loses
};

// "BASE+INC" in seconds ("10+0.1", "0.5+0.05", "60"); false if malformed.
bool ParseTimeControl(const std::string& text, int64_t& base_ms, int64_t& increment_ms);
// Reads the options of the match command; false with a message on a usage error.
bool ParseMatchArgs(const Args& args, MatchSettings& settings, std::string& error);
// Opening positions as FENs. From an EPD or FEN file (any name not ending in
// ".pgn"): one per line, blank lines and lines starting with '#' skipped, EPD
// operations after the four FEN fields dropped. From a PGN file: the position
// after the first `plies` plies of each game (after all of a shorter game's
// moves), games that end there left out. False with "FILE:LINE: what" on the
// first bad line, or when the file yields no position.
bool ReadOpeningFile(const std::string& path, int plies, std::vector<std::string>& fens, std::string& error);
// The opening set shipped with the tool (tools/match/openings.epd of the source tree).
std::string DefaultOpeningsPath();

int RunMatch(const MatchSettings& settings);

}  // namespace vx::dev

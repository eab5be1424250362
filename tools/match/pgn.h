// PGN text of a finished match game, moves in standard algebraic notation.
#pragma once

#include <string>
#include <vector>

#include "tools/match/adjudicate.h"

namespace vx::dev {

struct PgnHeader {
  std::string event, date, round, white, black, time_control;
  bool chess960 = false;
};

// One game: the seven standard tags, SetUp/FEN, Variant for Chess960,
// TimeControl, Termination and PlyCount, then the moves with an optional
// comment each (empty strings are left out), the reason and the result.
std::string GamePgn(const Game& game, const PgnHeader& header, const Verdict& verdict,
                    const std::vector<std::string>& comments);

}  // namespace vx::dev

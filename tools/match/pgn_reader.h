// Games read back from PGN text (the match runner's, or any collection of
// games): the start position, the moves in standard algebraic notation, the
// comment after each move and the result. Variations, NAGs, move numbers and
// ";" comments are passed over.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "board/position.h"

namespace vx::dev {

struct PgnGame {
  std::string fen;                    // the FEN tag, else the start position
  std::vector<Move> moves;
  std::vector<std::string> comments;  // one per move, "" where none follows it
  std::string result;                 // "1-0", "0-1", "1/2-1/2" or "*"
};

// Every game of the text; false with "line N: what" at the first move or FEN
// that cannot be read.
bool ReadPgn(std::istream& in, std::vector<PgnGame>& games, std::string& error);

}  // namespace vx::dev

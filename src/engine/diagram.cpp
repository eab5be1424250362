#include "engine/diagram.h"

namespace vx {

std::string BoardDiagram(const Position& pos) {
  static const char* const border = "  +---+---+---+---+---+---+---+---+\n";
  std::string text = "  ";
  text += pos.side_to_move == BLACK ? "btm " : "wtm ";
  const char* rights[] = {"WOO ", "WOOO ", "BOO ", "BOOO "};
  for (int i = 0; i < 4; ++i)
    if (pos.state->castling_rights & (1u << i)) text += rights[i];
  if (pos.state->ep_square) text += square_text(Square(pos.state->ep_square));
  text += "\n";
  text += border;
  for (int rank = 7; rank >= 0; --rank) {
    text += char('1' + rank);
    text += ' ';
    for (int file = 0; file < 8; ++file) {
      const Square s = make_square(file, rank);
      const Piece p = pos.board[s];
      text += '|';
      if (p == NO_PIECE) {
        text += is_dark(s) ? ":::" : "   ";
      } else {
        const char edge = color_of(p) == BLACK ? '*' : ' ';
        text += edge;
        text += PIECE_LETTERS[type_of(p)];
        text += edge;
      }
    }
    text += "|\n";
    text += border;
  }
  text += "    a   b   c   d   e   f   g   h\n";
  return text;
}

}  // namespace vx

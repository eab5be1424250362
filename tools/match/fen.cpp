#include "tools/match/fen.h"

#include <cctype>
#include <sstream>
#include <vector>

#include "board/movegen.h"
#include "tools/match/adjudicate.h"

namespace vx::dev {

namespace {

std::string placement_error(const std::string& placement) {
  int rank = 0, file = 0;
  for (char c : placement) {
    if (c == '/') {
      if (file != 8) return "rank " + std::to_string(8 - rank) + " does not have 8 squares";
      ++rank;
      file = 0;
    } else if (c >= '1' && c <= '8') {
      file += c - '0';
    } else if (std::string("PNBRQKpnbrqk").find(c) != std::string::npos) {
      ++file;
    } else {
      return std::string("unexpected character '") + c + "' in the placement";
    }
    if (file > 8) return "rank " + std::to_string(8 - rank) + " has more than 8 squares";
  }
  if (rank != 7 || file != 8) return "the placement does not describe 8 ranks of 8 squares";
  return {};
}

bool is_number(const std::string& s) {
  if (s.empty()) return false;
  for (char c : s)
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  return true;
}

char castling_letter(const Position& pos, uint32_t right) {
  const CastlingRecord& r = pos.castling_of(right);
  const bool white = right & (WHITE_OO | WHITE_OOO);
  const Square king_home = white ? SQ_E1 : SQ_E8;
  const Square corner = white ? (right == WHITE_OO ? SQ_H1 : SQ_A1) : (right == BLACK_OO ? SQ_H8 : SQ_A8);
  if (r.king_from == king_home && r.rook_from == corner) return "KQkq"[__builtin_ctz(right)];
  return char((white ? 'A' : 'a') + file_of(r.rook_from));
}

}  // namespace

std::string PlacementFen(const Piece* board) {
  std::string fen;
  for (int rank = 7; rank >= 0; --rank) {
    int empty = 0;
    for (int file = 0; file < 8; ++file) {
      const Piece p = board[make_square(file, rank)];
      if (!p) {
        ++empty;
        continue;
      }
      if (empty) fen += char('0' + empty);
      empty = 0;
      fen += PIECE_LETTERS[p];
    }
    if (empty) fen += char('0' + empty);
    if (rank) fen += '/';
  }
  return fen;
}

std::string PositionFen(const Position& pos, int halfmove_clock, int fullmove) {
  std::string fen = PlacementFen(pos.board);
  fen += pos.side_to_move == WHITE ? " w " : " b ";
  std::string castling;
  for (uint32_t right : {WHITE_OO, WHITE_OOO, BLACK_OO, BLACK_OOO})
    if (pos.state->castling_rights & right) castling += castling_letter(pos, right);
  fen += castling.empty() ? "-" : castling;
  fen += ' ';
  fen += HasLegalEnPassant(pos) ? square_text(Square(pos.state->ep_square)) : "-";
  fen += ' ';
  fen += std::to_string(halfmove_clock);
  fen += ' ';
  fen += std::to_string(fullmove);
  return fen;
}

std::string FenError(const std::string& fen) {
  std::istringstream in(fen);
  std::vector<std::string> f;
  for (std::string w; in >> w;) f.push_back(w);
  if (f.size() < 4) return "a FEN needs at least 4 fields (placement, side, castling, en passant)";
  if (std::string e = placement_error(f[0]); !e.empty()) return e;
  if (f[1] != "w" && f[1] != "b") return "side to move must be 'w' or 'b', not '" + f[1] + "'";
  if (f[2] != "-")
    for (char c : f[2])
      if (std::string("KQkqABCDEFGHabcdefgh").find(c) == std::string::npos)
        return "unexpected character '" + std::string(1, c) + "' in the castling field";
  if (f[3] != "-" && (f[3].size() != 2 || f[3][0] < 'a' || f[3][0] > 'h' || (f[3][1] != '3' && f[3][1] != '6')))
    return "malformed en-passant field '" + f[3] + "'";
  // Two numeric fields make a FEN; anything else after four fields is EPD operations.
  if (f.size() >= 5 && is_number(f[4]) && f.size() >= 6 && !is_number(f[5]))
    return "malformed move number '" + f[5] + "'";
  Position pos;
  if (!pos.SetFromFen(fen)) return "the board does not accept this FEN";
  if (const char* defect = PositionDefect(pos)) return defect;
  if (!HasLegalMove(pos)) return "the side to move has no legal move";
  return {};
}

bool IsChess960Fen(const std::string& fen) {
  std::istringstream in(fen);
  std::string placement, side, castling;
  in >> placement >> side >> castling;
  for (char c : castling)
    if ((c >= 'A' && c <= 'H') || (c >= 'a' && c <= 'h')) return true;
  return false;
}

}  // namespace vx::dev

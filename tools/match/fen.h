// FEN text for the developer tool: writing a position back as FEN, checking
// the layout of a FEN line, and recognising Chess960 castling letters.
#pragma once

#include <string>

#include "board/position.h"

namespace vx::dev {

// The placement field of a FEN: the 64 squares of a board, rank 8 first.
std::string PlacementFen(const Piece* board);

// FEN of the position; castling as KQkq where the rook stands in its corner
// and the king on the e-file, else as rook-file letters; the en-passant square
// only when a legal capture there exists.
std::string PositionFen(const Position& pos, int halfmove_clock, int fullmove);

// Empty if the text is a FEN (or an EPD line: four fields and operations) of
// a position that can be played, else what is wrong with it.
std::string FenError(const std::string& fen);

// The castling field names rook files (A-H, a-h), as Chess960 FENs do.
bool IsChess960Fen(const std::string& fen);

}  // namespace vx::dev

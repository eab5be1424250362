// FEN text: read it as "position fen" does; when the position is accepted,
// walk its move tree two plies deep in both bit-count builds (checking that
// they agree and that no king is ever captured) and run a tiny search on it.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "board/perft.h"
#include "engine/engine.h"
#include "engine/uci.h"
#include "fuzz_engine.h"

namespace {

// Two plies by hand: every legal move leaves a sound position (one king a
// side, the mover's not attacked).
void CheckTwoPlies(vx::Position& pos) {
  vx::MoveList list;
  vx::GenerateLegal(pos, list);
  for (vx::Move m : list) {
    vx::Position after = pos;
    after.ApplyGameMove(m);
    if (vx::PositionDefect(after)) std::abort();
  }
  if (vx::Perft<true>(pos, 2) != vx::Perft<false>(pos, 2)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 512) return 0;
  vx::Engine& engine = fuzz::TheEngine();
  std::string fen(reinterpret_cast<const char*>(data), size);
  for (char& c : fen)
    if (c == '\n' || c == '\r') c = ' ';
  vx::Position pos;
  if (!pos.SetFromFen(fen) || vx::PositionDefect(pos)) return 0;
  CheckTwoPlies(pos);
  vx::ExecuteCommand(engine.pool, "position fen " + fen);
  vx::ExecuteCommand(engine.pool, "go nodes 400");
  return 0;
}

#include "eval/psq.h"

#include "search/random.h"

namespace vx {

ValuePair PSQ[16][64];

const int PieceValueMg[8] = {0, 157, 836, 856, 856, 1271, 2567, 0};
const int PieceValueEg[8] = {0, 215, 805, 826, 826, 1337, 2597, 0};

namespace {

// Placement bonuses in 1/256 pawn, by piece kind (pawn, knight, bishop, rook,
// queen, king), rank 1 to 8, files a-d; files e-h mirror them.
constexpr int PlacementMg[6][32] = {
    {0, 0, 0, 0, 3, 22, 4, 3, -4, 12, 12, 23, -7, -4, 13, 35,
     1, 9, 17, 47, -10, -2, 14, 13, -17, 9, -8, 13, 0, 0, 0, 0},
    {-73, -15, -9, 1, 2, -10, -1, 15, -16, 13, 19, 41, 27, 31, 36, 46,
     8, 25, 34, 49, 5, 21, 42, 46, -11, 0, 12, 17, -211, -10, 1, -23},
    {-34, -17, -28, -10, -10, -2, 4, -9, -16, 9, 7, 13, -9, 8, -3, 18,
     -4, 10, 17, 34, -5, 7, 8, -3, -14, 5, -13, -6, -26, -21, -9, -9},
    {-10, -11, 4, 5, -26, -15, -14, -9, -28, -22, -5, -3, -19, -10, -10, -3,
     -15, -3, -5, 12, -24, -1, -6, -3, -27, -2, 3, 12, 0, -12, 0, -5},
    {-17, -9, -16, 17, 8, -3, 16, 16, -12, 1, 16, 9, -15, -4, 4, 14,
     0, 11, 4, 14, -5, 15, 5, 11, 0, -5, 2, 3, -8, -10, -6, -7},
    {-7, 33, 3, -51, 4, 26, -12, -30, -25, -24, -36, -64, -54, -61, -80, -78,
     -63, -96, -96, -102, -96, -106, -114, -129, -109, -143, -165, -150, -154, -171, -179, -158},
};

constexpr int PlacementEg[6][32] = {
    {0, 0, 0, 0, -15, 4, 16, 1, -9, -4, 0, 9, -2, 0, 7, -5,
     24, 19, -1, -9, 13, 10, 22, 0, -29, 5, 5, -12, 0, 0, 0, 0},
    {-54, -27, -41, -3, -42, -18, 17, 2, -22, -4, 3, 37, -21, -4, 21, 40,
     -31, -5, 15, 34, -21, -15, 8, 36, -47, -37, 2, 17, -95, -48, -36, 7},
    {-8, -13, -9, 2, -20, -27, -7, 2, -4, -3, 9, 12, -15, -10, 14, -9,
     9, -2, 19, 1, 0, -3, 14, 14, -27, 3, 1, -7, -33, -1, 10, 0},
    {-15, -3, -16, -10, 0, -18, -1, -3, 0, -6, -15, -2, -3, -5, 10, -2,
     -2, 15, 18, 14, 1, 6, 17, 9, 3, 7, 10, -3, -3, 3, 7, 5},
    {-34, -40, -28, -11, -12, 1, -8, -6, -7, 17, 17, 3, 11, 1, 26, 3,
     -7, 12, 12, 9, 5, 0, 24, 13, -2, 2, -10, 3, -21, -20, 4, 4},
    {-55, -31, -14, -28, -5, 3, 13, 25, -12, 15, 31, 44, 7, 43, 62, 69,
     15, 77, 85, 92, 18, 68, 94, 95, 14, 48, 52, 65, -19, -35, -1, 6},
};

// Row of the placement tables for a piece type (both bishop codes share one).
constexpr int placement_row(PieceType t) { return t <= BISHOP_L ? t - 1 : t - 2; }

// Index into a files a-d table of the square mirrored onto files a-d.
constexpr int half_board_index(Square s) {
  const int f = file_of(s);
  return rank_of(s) * 4 + (f < 4 ? f : 7 - f);
}

void add_noise(int noise) {
  for (Piece p = W_PAWN; p <= W_KING; ++p)
    for (Square s = 0; s < 64; ++s) {
      const int r1 = Random(-noise, noise), r2 = Random(-noise, noise);
      PSQ[p][s] += make_pair(r2, r1);
      const int r3 = Random(-noise, noise), r4 = Random(-noise, noise);
      PSQ[p + 8][s] += make_pair(r4, r3);
    }
}

}  // namespace

void init_psq(int noise) {
  for (Square s = 0; s < 64; ++s) PSQ[NO_PIECE][s] = PSQ[8][s] = 0;
  for (PieceType t = PAWN; t <= KING; ++t)
    for (Square s = 0; s < 64; ++s) {
      const int row = placement_row(t), i = half_board_index(s);
      PSQ[t][s] = make_pair(PlacementMg[row][i] + PieceValueMg[t], PlacementEg[row][i] + PieceValueEg[t]);
    }
  for (PieceType t = PAWN; t <= KING; ++t)
    for (Square s = 0; s < 64; ++s) PSQ[t + 8][s] = -PSQ[t][s ^ 56];
  if (noise > 0) add_noise(noise);
}

}  // namespace vx

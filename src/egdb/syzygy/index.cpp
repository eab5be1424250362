#include "egdb/syzygy/index.h"

#include <algorithm>
#include <utility>

namespace vx::syzygy {

namespace {

constexpr int file_of(int sq) { return sq & 7; }
constexpr int rank_of(int sq) { return sq >> 3; }
constexpr int transpose(int sq) { return ((sq >> 3) | (sq << 3)) & 63; }
// Side of the a1-h8 diagonal: positive above it, negative below, 0 on it.
constexpr int off_diagonal(int sq) { return rank_of(sq) - file_of(sq); }

// Number of leading-group positions of a pawnless table: three unique men
// with the first in the triangle, and the two kings.
constexpr uint64_t THREE_UNIQUE_COUNT = 31332;
constexpr uint64_t TWO_KINGS_COUNT = 462;

struct Tables {
  uint8_t triangle[64] = {};   // a1-d1-d4 triangle: below-diagonal squares 0-5, then a1, b2, c3, d4 6-9
  uint8_t below[64] = {};      // squares below the diagonal 0-27 in square order, diagonal squares 28-35
  int16_t kings[10][64] = {};  // the two kings, the first by its triangle number; -1 where impossible
  uint8_t pawn_rank[64] = {};  // 47 for a2 down to 0 for e7: the leading pawn is the highest
  uint64_t binomial[TB_PIECES + 1][64] = {};          // [k][n] = n choose k
  uint64_t lead_index[TB_PIECES + 1][64] = {};        // by leading pawn count and leading square
  uint64_t lead_size[TB_PIECES + 1][4] = {};          // by leading pawn count and file a-d
};

constexpr bool kings_apart(int a, int b) {
  const int df = file_of(a) - file_of(b), dr = rank_of(a) - rank_of(b);
  return df * df > 1 || dr * dr > 1;
}

constexpr void init_squares(Tables& t) {
  int n = 0;
  for (int sq = 0; sq < 64; ++sq)
    if (file_of(sq) <= 3 && off_diagonal(sq) < 0) t.triangle[sq] = uint8_t(n++);
  for (int sq = 0; sq < 64; sq += 9)
    if (file_of(sq) <= 3) t.triangle[sq] = uint8_t(n++);
  n = 0;
  for (int sq = 0; sq < 64; ++sq)
    if (off_diagonal(sq) < 0) t.below[sq] = t.below[transpose(sq)] = uint8_t(n++);
  for (int sq = 0; sq < 64; sq += 9) t.below[sq] = uint8_t(n++);
}

// The first king in the triangle; on the diagonal the second king may not
// stand above it. Pairs with both kings on the diagonal are numbered last.
constexpr void init_kings(Tables& t) {
  int n = 0;
  for (int pass = 0; pass < 2; ++pass)
    for (int first = 0; first < 10; ++first)
      for (int k1 = 0; k1 < 64; ++k1) {
        if (file_of(k1) > 3 || off_diagonal(k1) > 0 || t.triangle[k1] != first) continue;
        for (int k2 = 0; k2 < 64; ++k2) {
          if (pass == 0) t.kings[first][k2] = -1;
          if (!kings_apart(k1, k2) || (!off_diagonal(k1) && off_diagonal(k2) > 0)) continue;
          const bool both_on_diagonal = !off_diagonal(k1) && !off_diagonal(k2);
          if (both_on_diagonal == (pass == 1)) t.kings[first][k2] = int16_t(n++);
        }
      }
}

constexpr void init_pawns(Tables& t) {
  for (int n = 0; n < 64; ++n) {
    t.binomial[0][n] = 1;
    for (int k = 1; k <= TB_PIECES; ++k) t.binomial[k][n] = n ? t.binomial[k][n - 1] + t.binomial[k - 1][n - 1] : 0;
  }
  // Nearest the edge first, then the lowest rank; the h-file just after the a-file.
  int value = 47;
  for (int f = 0; f < 4; ++f)
    for (int r = 1; r <= 6; ++r) {
      t.pawn_rank[8 * r + f] = uint8_t(value--);
      t.pawn_rank[8 * r + 7 - f] = uint8_t(value--);
    }
  // The other leading pawns stand on squares of a lower rank than the leader.
  for (int count = 1; count <= TB_PIECES; ++count)
    for (int f = 0; f < 4; ++f) {
      uint64_t n = 0;
      for (int r = 1; r <= 6; ++r) {
        t.lead_index[count][8 * r + f] = n;
        n += t.binomial[count - 1][t.pawn_rank[8 * r + f]];
      }
      t.lead_size[count][f] = n;
    }
}

constexpr Tables make_tables() {
  Tables t;
  init_squares(t);
  init_kings(t);
  init_pawns(t);
  return t;
}

constexpr Tables T = make_tables();

void mirror_files(int* sq, int men) {
  for (int i = 0; i < men; ++i) sq[i] ^= 7;
}

// Groups of the leading men, the second pawn group, then runs of equal codes.
void set_groups(IndexLayout& ix, int men, int leading, int second) {
  std::fill(ix.group, ix.group + TB_PIECES, 0);
  ix.group[0] = uint8_t(leading);
  if (second) ix.group[leading] = uint8_t(second);
  for (int i = leading + second; i < men;) {
    int j = i;
    while (j < men && ix.pieces[j] == ix.pieces[i]) ++j;
    ix.group[i] = uint8_t(j - i);
    i = j;
  }
}

// Factors in the order the header gives: the leading group at place `order`,
// the second pawn group (when there is one) at `order2`, the other groups in
// turn at the remaining places.
bool set_factors(IndexLayout& ix, int men, int order, int order2, uint64_t leading_count) {
  const int leading = ix.group[0];
  const int second = leading < men && order2 != 0xF ? ix.group[leading] : 0;
  int places = 1 + (second > 0);
  for (int i = leading + second; i < men; i += ix.group[i]) ++places;
  if (order >= places || (second && (order2 >= places || order2 == order))) return false;
  int free = 64 - leading - second;
  uint64_t f = 1;
  for (int k = 0, i = leading + second; k < places; ++k) {
    if (k == order) {
      ix.factor[0] = f;
      f *= leading_count;
    } else if (second && k == order2) {
      ix.factor[leading] = f;
      f *= T.binomial[second][48 - leading];
    } else {
      ix.factor[i] = f;
      f *= T.binomial[ix.group[i]][free];
      free -= ix.group[i];
      i += ix.group[i];
    }
  }
  ix.size = f;
  return true;
}

// Each group after the first ones as a combination of the squares that the
// earlier groups leave free (the second pawn group only has ranks 2-7).
uint64_t encode_groups(const IndexLayout& ix, int men, int first, bool pawn_group, int* sq) {
  uint64_t idx = 0;
  for (int i = first; i < men; i += ix.group[i]) {
    const int len = ix.group[i];
    std::sort(sq + i, sq + i + len);
    uint64_t n = 0;
    for (int k = 0; k < len; ++k) {
      int free = sq[i + k] - (pawn_group ? 8 : 0);
      for (int j = 0; j < i; ++j) free -= sq[j] < sq[i + k];
      if (free < 0) return ix.size;
      n += T.binomial[k + 1][free];
    }
    pawn_group = false;
    idx += n * ix.factor[i];
  }
  return idx;
}

uint64_t encode_three_unique(const int* sq) {
  const int a = sq[0], b = sq[1] - (sq[1] > a), c = sq[2] - (sq[2] > sq[0]) - (sq[2] > sq[1]);
  if (off_diagonal(sq[0])) return (T.triangle[sq[0]] * 63 + b) * 62 + c;
  if (off_diagonal(sq[1])) return (6 * 63 + rank_of(a) * 28 + T.below[sq[1]]) * 62 + c;
  constexpr uint64_t TWO_ON_DIAGONAL = 6 * 63 * 62 + 4 * 28 * 62;
  const int rb = rank_of(sq[1]) - (sq[1] > a);
  if (off_diagonal(sq[2])) return TWO_ON_DIAGONAL + (rank_of(a) * 7 + rb) * 28 + T.below[sq[2]];
  const int rc = rank_of(sq[2]) - (sq[2] > sq[0]) - (sq[2] > sq[1]);
  return TWO_ON_DIAGONAL + 4 * 7 * 28 + (rank_of(a) * 7 + rb) * 6 + rc;
}

}  // namespace

bool SetupPieceIndex(IndexLayout& ix, int men, int encoding, int order) {
  if (encoding != THREE_UNIQUE && encoding != TWO_KINGS) return false;
  const int leading = encoding == THREE_UNIQUE ? 3 : 2;
  if (men < leading) return false;
  set_groups(ix, men, leading, 0);
  return set_factors(ix, men, order, 0xF, encoding == THREE_UNIQUE ? THREE_UNIQUE_COUNT : TWO_KINGS_COUNT);
}

bool SetupPawnIndex(IndexLayout& ix, int men, int leading, int second, int order, int order2, int file) {
  if (leading < 1 || leading + second > men) return false;
  set_groups(ix, men, leading, second);
  return set_factors(ix, men, order, second ? order2 : 0xF, T.lead_size[leading][file]);
}

int LeadingPawnFile(int* sq, int count) {
  int best = 0;
  for (int i = 1; i < count; ++i)
    if (T.pawn_rank[sq[i]] > T.pawn_rank[sq[best]]) best = i;
  std::swap(sq[0], sq[best]);
  return std::min(file_of(sq[0]), 7 - file_of(sq[0]));
}

uint64_t EncodePieces(const IndexLayout& ix, int men, int encoding, int* sq) {
  if (file_of(sq[0]) > 3) mirror_files(sq, men);
  if (rank_of(sq[0]) > 3)
    for (int i = 0; i < men; ++i) sq[i] ^= 56;
  const int leading = encoding == THREE_UNIQUE ? 3 : 2;
  // The first leading man off the diagonal goes below it.
  for (int i = 0; i < leading; ++i) {
    if (!off_diagonal(sq[i])) continue;
    if (off_diagonal(sq[i]) > 0)
      for (int j = 0; j < men; ++j) sq[j] = transpose(sq[j]);
    break;
  }
  uint64_t idx;
  if (encoding == THREE_UNIQUE) {
    idx = encode_three_unique(sq);
  } else {
    const int k = T.kings[T.triangle[sq[0]]][sq[1]];
    if (k < 0) return ix.size;
    idx = uint64_t(k);
  }
  return idx * ix.factor[0] + encode_groups(ix, men, leading, false, sq);
}

uint64_t EncodePawns(const IndexLayout& ix, int men, int leading, int second, int* sq) {
  if (file_of(sq[0]) > 3) mirror_files(sq, men);
  std::sort(sq + 1, sq + leading, [](int a, int b) { return T.pawn_rank[a] < T.pawn_rank[b]; });
  uint64_t idx = T.lead_index[leading][sq[0]];
  for (int i = 1; i < leading; ++i) idx += T.binomial[i][T.pawn_rank[sq[i]]];
  return idx * ix.factor[0] + encode_groups(ix, men, leading, second > 0, sq);
}

}  // namespace vx::syzygy

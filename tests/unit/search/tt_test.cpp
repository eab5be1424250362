// Transposition table: bound merging, replacement, generations, sizing.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "search/tt.h"

namespace vx {
namespace {

// Keys that share cluster `index` and differ in their check half.
Key key_in(uint64_t index, uint32_t check) { return (Key(check) << 32) | index; }

struct TTFixture : ::testing::Test {
  TranspositionTable tt;
  void SetUp() override {
    tt.resize(1);
    tt.clear();
    tt.new_search();
  }
  const TTEntry& slot(uint64_t index, int i) const { return tt.clusters()[index].entry[i]; }
};

// Sizes round down to a power of two of clusters; a size change that keeps
// the cluster count keeps the memory and its contents.
TEST(TranspositionTableSize, RoundsDownToPowerOfTwoClusters) {
  TranspositionTable tt;
  tt.resize(1);
  EXPECT_EQ(tt.cluster_count(), uint64_t(1) << 14);
  tt.resize(64);
  tt.clear();
  const TTCluster* before = tt.clusters();
  const Key key = 0x123456789ABCDEF0ULL;
  tt.store(key, 77, 8, BOUND_EXACT, 10, 3);
  tt.resize(100);
  EXPECT_EQ(tt.cluster_count(), uint64_t(1) << 20);
  EXPECT_EQ(tt.clusters(), before);
  EXPECT_EQ(tt.probe(key).move, 77);
  tt.resize(128);
  EXPECT_EQ(tt.cluster_count(), uint64_t(1) << 21);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(tt.clusters()) % 64, 0u);
}

// Runs in a death-test child: resizes with standard output routed to the
// stream the death test checks, optionally under an address-space limit.
void resize_in_child(uint32_t megabytes, uint64_t address_limit = 0) {
  dup2(2, 1);
  if (address_limit) {
    rlimit rl;
    rl.rlim_cur = rl.rlim_max = address_limit;
    setrlimit(RLIMIT_AS, &rl);
  }
  TranspositionTable tt;
  tt.resize(megabytes);
}

TEST(TranspositionTableSize, UnallocatableSizeEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  // More than the machine has: refused before anything is touched, so the
  // process ends with a message instead of meeting the out-of-memory killer.
  const uint64_t phys_mb = uint64_t(sysconf(_SC_PHYS_PAGES)) * uint64_t(sysconf(_SC_PAGESIZE)) >> 20;
  const uint32_t huge = uint32_t(std::max<uint64_t>(65536, 2 * phys_mb));
  EXPECT_EXIT(resize_in_child(huge), ::testing::ExitedWithCode(1),
              "Error allocating hash memory \\(" + std::to_string(huge) + " mb\n");
}

// The allocation itself fails (a user's "ulimit -v"): the same message, no crash.
TEST(TranspositionTableSize, AddressSpaceLimitIsRespected) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the address sanitizer cannot run under an address-space limit";
#endif
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(resize_in_child(1024, uint64_t(512) << 20), ::testing::ExitedWithCode(1),
              "Error allocating hash memory \\(1024 mb\n");
}

// The merged part of a slot: the move, the lower bound and its draft, the
// upper bound and its draft with the exact flag.
using Merged = std::tuple<int, int, int, int, int>;
Merged merged(const TTEntry& e) { return {e.move, e.lower, e.lower_depth(), e.upper, e.upper_depth_flags}; }

// Stores into one slot, the last one a search later: how the two bounds,
// their drafts, the exact flag and the move merge.
TEST_F(TTFixture, BoundsMerge) {
  struct Store { Move move; int depth, bound; Value value; };
  const std::pair<std::vector<Store>, Merged> cases[] = {
      {{{1234, 12, BOUND_EXACT, -70}}, {1234, -70, 12, -70, 12 | TT_EXACT_FLAG}},
      // A fresh slot has no other bound; an upper bound brings no move.
      {{{10, 8, BOUND_LOWER, 40}}, {10, 40, 8, VALUE_INFINITE, 0}},
      {{{10, 8, BOUND_UPPER, 40}}, {0, VALUE_INFINITE, 0, 40, 8}},
      // An upper bound below the lower one drops it and keeps the move.
      {{{111, 8, BOUND_LOWER, 80}, {222, 12, BOUND_UPPER, 50}}, {111, VALUE_INFINITE, 0, 50, 12}},
      {{{111, 8, BOUND_LOWER, 80}, {222, 12, BOUND_UPPER, 90}}, {111, 80, 8, 90, 12}},
      // A lower bound keeps a consistent upper one and clears the exact flag.
      {{{10, 16, BOUND_EXACT, 100}, {20, 8, BOUND_LOWER, 40}}, {20, 40, 8, 100, 16}},
      // A lower bound above the upper one drops it and overwrites the deeper old lower bound.
      {{{10, 6, BOUND_UPPER, 100}, {20, 8, BOUND_LOWER, 40}, {30, 4, BOUND_LOWER, 120}},
       {30, 120, 4, VALUE_INFINITE, 0}},
  };
  uint64_t cluster = 0;
  for (const auto& [stores, expected] : cases) {
    const Key key = key_in(++cluster, 7);
    SCOPED_TRACE(testing::Message() << "case " << cluster);
    for (size_t i = 0; i < stores.size(); ++i) {
      if (i + 1 == stores.size()) tt.new_search();
      tt.store(key, stores[i].move, stores[i].depth, stores[i].bound, stores[i].value, 25);
    }
    EXPECT_EQ(tt.probe(key ^ (Key(1) << 40)).key32, 0u);  // another check half misses
    const TTEntry e = tt.probe(key);
    EXPECT_EQ(std::tuple(int(e.key32), int(e.eval), e.generation()), std::tuple(7, 25, tt.generation()));
    EXPECT_EQ(merged(e), expected);
  }
}

// Fills slots 0-3 of cluster 0 with check halves 1-4.
void fill_cluster(TranspositionTable& tt, const int (&depths)[4], const int (&bounds)[4]) {
  for (int i = 0; i < 4; ++i) tt.store(key_in(0, i + 1), 0, depths[i], bounds[i], 0, 0);
}

TEST_F(TTFixture, ReplacementTakesShallowestThenLowestSlot) {
  fill_cluster(tt, {40, 20, 20, 60}, {BOUND_LOWER, BOUND_UPPER, BOUND_LOWER, BOUND_LOWER});
  tt.store(key_in(0, 99), 5, 4, BOUND_LOWER, 7, 0);
  EXPECT_EQ(slot(0, 1).key32, 99u);  // draft 20, the lower of two equal slots
  EXPECT_EQ(slot(0, 1).upper, VALUE_INFINITE);
  EXPECT_EQ(slot(0, 1).upper_depth_flags, 0);
  EXPECT_EQ(slot(0, 2).key32, 3u);
}

TEST_F(TTFixture, ReplacementPrefersOldEntriesAndSparesExactOnes) {
  fill_cluster(tt, {1000, 900, 800, 700}, {BOUND_LOWER, BOUND_LOWER, BOUND_LOWER, BOUND_LOWER});
  tt.new_search();
  tt.probe(key_in(0, 4));  // used in this search: current again
  tt.store(key_in(0, 50), 0, 4, BOUND_UPPER, 0, 0);
  EXPECT_EQ(slot(0, 2).key32, 50u);  // the shallowest old one, not the current slot 3
  tt.store(key_in(0, 51), 0, 4, BOUND_UPPER, 0, 0);
  EXPECT_EQ(slot(0, 1).key32, 51u);

  // Among current entries of equal draft an exact one is worth 1000 more.
  tt.clear();
  fill_cluster(tt, {8, 8, 8, 8}, {BOUND_EXACT, BOUND_EXACT, BOUND_LOWER, BOUND_EXACT});
  tt.store(key_in(0, 60), 0, 8, BOUND_EXACT, 0, 0);
  EXPECT_EQ(slot(0, 2).key32, 60u);
  EXPECT_EQ(slot(0, 2).upper_depth_flags, 8 | TT_EXACT_FLAG);
  // One search later every one of them is worth less than a current
  // shallow bound: the first goes, then the next old one.
  tt.new_search();
  tt.store(key_in(0, 61), 0, 4, BOUND_LOWER, 0, 0);
  EXPECT_EQ(slot(0, 0).key32, 61u);
  tt.store(key_in(0, 62), 0, 4, BOUND_LOWER, 0, 0);
  EXPECT_EQ(slot(0, 0).key32, 61u);
  EXPECT_EQ(slot(0, 1).key32, 62u);
}

TEST_F(TTFixture, GenerationWrapsAfter64Searches) {
  const uint16_t start = tt.generation();
  tt.store(key_in(0, 1), 0, 50, BOUND_LOWER, 0, 0);
  for (int i = 0; i < 63; ++i) tt.new_search();
  EXPECT_NE(tt.generation(), start);
  for (int check = 2; check <= 4; ++check) tt.store(key_in(0, check), 0, 10, BOUND_LOWER, 0, 0);
  tt.new_search();
  EXPECT_EQ(tt.generation(), start);
  // Slot 0 was written 64 searches ago and is of age 0 again; the three
  // written one search ago are the older ones now.
  tt.store(key_in(0, 5), 0, 4, BOUND_LOWER, 0, 0);
  EXPECT_EQ(slot(0, 0).key32, 1u);
  EXPECT_EQ(slot(0, 1).key32, 5u);
}

TEST_F(TTFixture, HashfullCountsCurrentEntriesOfFirst250Clusters) {
  EXPECT_EQ(tt.hashfull(), 0);
  for (uint64_t c = 0; c < 300; ++c)
    for (uint32_t check = 1; check <= 4; ++check) tt.store(key_in(c, check), 0, 4, BOUND_LOWER, 0, 0);
  EXPECT_EQ(tt.hashfull(), 1000);
  tt.new_search();
  EXPECT_EQ(tt.hashfull(), 0);
  tt.probe(key_in(17, 3));
  EXPECT_EQ(tt.hashfull(), 1);
}

TEST(TranspositionTableScores, MateScoresAreStoredRelativeToTheNode) {
  EXPECT_EQ(value_from_tt(32767, 7), 32767);
  for (int ply : {0, 1, 5, 60}) EXPECT_EQ(value_to_tt(31995, ply), 31995);
  EXPECT_EQ(value_to_tt(32491, 5), 32496);
  EXPECT_EQ(value_from_tt(32496, 2), 32494);
  EXPECT_EQ(value_to_tt(-32010, 3), -32013);
  EXPECT_EQ(value_to_tt(32000, 4), 32004);
  EXPECT_EQ(value_from_tt(-31999, 4), -31999);
}

}  // namespace
}  // namespace vx

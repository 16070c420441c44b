// Map tables: new ones, and the places of entries after a reallocation.
#include "host/storage.h"

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

using Maps = Blocks;

// The integer key in a slot; -1: free, -2: deleted.
int64_t keyIn(const table_t* read, int64_t slot) {
  const slot_t& found = slotsOf(read)[slot];
  if (isDeleted(found)) return -2;
  return isLive(found) ? found.key.value.integer : -1;
}

std::vector<int64_t> keysOf(const table_t* read) {
  std::vector<int64_t> keys;
  for (int64_t i = 0; i < read->capacity; ++i) keys.push_back(keyIn(read, i));
  return keys;
}

placed_t entry(int64_t slot, uint64_t hash, int64_t key) {
  return {slot, hash, integer(key), empty()};
}

std::vector<int64_t> keysAfterReallocation(table_t* old, int64_t capacity) {
  table_t* made = vlt_reallocate_map(old, capacity);
  auto keys = keysOf(made);
  vlt_free_map(made);
  return keys;
}

TEST_F(Maps, AllocatedTableIsZeroButForItsCapacity) {
  table_t* made = vlt_allocate_map(8);
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->live, 0);
  EXPECT_EQ(made->deleted, 0);
  EXPECT_EQ(made->capacity, 8);
  const auto* bytes = reinterpret_cast<const char*>(slotsOf(made));
  EXPECT_EQ(std::count(bytes, bytes + 8 * sizeof(slot_t), '\0'), 320);
  vlt_free_map(made);
}

TEST_F(Maps, TableWithoutSlotsIsATable) {
  table_t* made = vlt_allocate_map(0);
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->capacity, 0);
  vlt_free_map(made);
}

TEST_F(Maps, ImpossibleCapacityIsExhaustion) {
  EXPECT_EQ(vlt_allocate_map(-1), nullptr);
  EXPECT_EQ(vlt_allocate_map(std::numeric_limits<int64_t>::max()), nullptr);
  EXPECT_EQ(vlt_allocate_map(std::numeric_limits<int64_t>::max() / 40), nullptr);
}

TEST_F(Maps, EntriesMoveToTheirHomeSlots) {
  table_t* old = tableOf(2, {entry(0, 6, 60), entry(1, 13, 130)});
  EXPECT_EQ(keysAfterReallocation(old, 8), (std::vector<int64_t>{-1, -1, -1, -1, -1, 130, 60, -1}));
}

TEST_F(Maps, CollidingEntriesProbeUpwardsInOldSlotOrder) {
  table_t* old = tableOf(3, {entry(0, 9, 1), entry(1, 5, 2), entry(2, 13, 3)});
  EXPECT_EQ(keysAfterReallocation(old, 4), (std::vector<int64_t>{-1, 1, 2, 3}));
}

TEST_F(Maps, ProbingWrapsToTheFirstSlot) {
  table_t* old = tableOf(2, {entry(0, 3, 1), entry(1, 7, 2)});
  EXPECT_EQ(keysAfterReallocation(old, 4), (std::vector<int64_t>{2, -1, -1, 1}));
}

TEST_F(Maps, HashesWithTheHighestBitAreUnsigned) {
  table_t* old = tableOf(1, {entry(0, 0xffffffffffffffff, 1)});
  EXPECT_EQ(keysAfterReallocation(old, 10),
            (std::vector<int64_t>{-1, -1, -1, -1, -1, 1, -1, -1, -1, -1}));
}

TEST_F(Maps, DeletedSlotsAreDropped) {
  table_t* old = tableOf(4, {entry(0, 4, 1), entry(2, 4, 2)});
  markDeleted(old, 1);
  table_t* made = vlt_reallocate_map(old, 4);
  EXPECT_EQ(keysOf(made), (std::vector<int64_t>{1, 2, -1, -1}));
  EXPECT_EQ(made->live, 2);
  EXPECT_EQ(made->deleted, 0);
  vlt_free_map(made);
}

TEST_F(Maps, LiveEntriesMayHashToZeroOrOne) {
  table_t* old = tableOf(2, {entry(0, 0, 10), entry(1, 1, 11)});
  EXPECT_EQ(keysAfterReallocation(old, 3), (std::vector<int64_t>{10, 11, -1}));
}

TEST_F(Maps, EntriesKeepHashKeyAndValueBlocks) {
  table_t* old = tableOf(1, {{0, 77, string("key"), string("value")}});
  const slot_t before = slotsOf(old)[0];
  table_t* made = vlt_reallocate_map(old, 8);
  const slot_t after = slotsOf(made)[77 % 8];
  EXPECT_EQ(after.hash, 77U);
  EXPECT_EQ(after.key.value.string, before.key.value.string);
  EXPECT_EQ(after.value.value.string, before.value.value.string);
  vlt_free_map(made);
}

TEST_F(Maps, TableMayShrinkToItsLiveCount) {
  table_t* old = tableOf(8, {entry(5, 5, 1), entry(7, 7, 2)});
  EXPECT_EQ(keysAfterReallocation(old, 2), (std::vector<int64_t>{2, 1}));
}

TEST_F(Maps, TooFewSlotsLeaveTheTableAlone) {
  table_t* old = tableOf(2, {entry(0, 2, 1), entry(1, 3, 2)});
  EXPECT_EQ(vlt_reallocate_map(old, 1), nullptr);
  EXPECT_EQ(vlt_reallocate_map(old, -1), nullptr);
  EXPECT_EQ(keysOf(old), (std::vector<int64_t>{1, 2}));
  vlt_free_map(old);
}

TEST_F(Maps, ExhaustionLeavesTheOldTableUntouched) {
  table_t* old = tableOf(3, {entry(0, 3, 1), entry(2, 4, 2)});
  markDeleted(old, 1);
  standin_fail_allocation(1);
  EXPECT_EQ(vlt_reallocate_map(old, 8), nullptr);
  EXPECT_EQ(keysOf(old), (std::vector<int64_t>{1, -2, 2}));
  EXPECT_EQ(old->live, 2);
  EXPECT_EQ(old->deleted, 1);
  vlt_free_map(old);
}

TEST_F(Maps, NoTableReallocatesToANewOne) {
  table_t* made = vlt_reallocate_map(nullptr, 2);
  EXPECT_EQ(keysOf(made), (std::vector<int64_t>{-1, -1}));
  vlt_free_map(made);
}

// Found as a reader finds it: from the home slot on, up to the first free slot.
bool found(const table_t* read, uint64_t hash, int64_t key) {
  const auto capacity = static_cast<uint64_t>(read->capacity);
  for (uint64_t i = hash % capacity, left = capacity; left > 0; i = (i + 1) % capacity, --left) {
    const auto slot = static_cast<int64_t>(i);
    if (keyIn(read, slot) == key) return true;
    if (keyIn(read, slot) == -1) return false;
  }
  return false;
}

TEST_F(Maps, ReallocationKeepsEveryEntryOfARandomTable) {
  std::mt19937_64 random(7);
  table_t* old = vlt_allocate_map(500);
  std::map<int64_t, uint64_t> hashes;
  for (int64_t i = 0; i < 500; ++i) {
    const uint64_t hash = random() % 40;
    if (i % 3 == 0) {
      markDeleted(old, i);
    } else {
      slotsOf(old)[i] = {hash, integer(i), empty()};
      hashes[i] = hash;
    }
  }
  table_t* made = vlt_reallocate_map(old, 350);
  EXPECT_EQ(made->live, static_cast<int64_t>(hashes.size()));
  for (const auto& [key, hash] : hashes) EXPECT_TRUE(found(made, hash, key)) << "key " << key;
  vlt_free_map(made);
}

} // namespace
} // namespace standin::test

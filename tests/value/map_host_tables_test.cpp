// Tables that this side never builds but a host may hand over: without slots, full, crowded with
// deleted slots, of odd capacities. String keys hash to the number at their start.
#include <gtest/gtest.h>

#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

class HostTables : public PlacedKeys {
 protected:
  // Every slot live: key "i" in slot i.
  static map_t full_table(std::int64_t capacity) {
    map_t map = table_of(capacity);
    for (std::int64_t i = 0; i < capacity; ++i) {
      put(map, i, static_cast<std::uint64_t>(i), data_t(std::to_string(i).c_str()), whole(i));
    }
    return map;
  }
};

TEST_F(HostTables, TableWithoutSlotsHasNoEntries) {
  map_t map = table_of(0);
  EXPECT_TRUE(map.empty());
  EXPECT_FALSE(has(map, "3"));
  EXPECT_TRUE(map.begin() == map.end());
  map.erase(map.end());
  EXPECT_EQ(counts_of(map.copy()), (counts_t{0, 0, 0}));
}

TEST_F(HostTables, TableWithoutSlotsGrowsBeforeTheFirstInsertion) {
  map_t map = table_of(0);
  map[text("3")] = whole(1);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
  EXPECT_EQ(slot_of(map, "3"), 3);
  map_t copied_into = table_of(0);
  const data_t key = text("3");
  copied_into.maybe_insert(map_t::const_pair(key, key));
  EXPECT_EQ(counts_of(copied_into), (counts_t{1, 8, 0}));
}

TEST_F(HostTables, TableOfOneSlotGrowsAfterOneKey) {
  map_t map = table_of(1);
  map[text("5")] = whole(1);
  EXPECT_EQ(counts_of(map), (counts_t{1, 1, 0}));
  EXPECT_EQ(slot_of(map, "5"), 0);
  map[text("6")] = whole(2);
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 0}));
}

TEST_F(HostTables, FullTableIsSearchedOnceAround) {
  map_t map = full_table(5);
  for (const char* key : {"0", "1", "2", "3", "4"}) EXPECT_TRUE(has(map, key)) << key;
  EXPECT_FALSE(has(map, "7"));
  EXPECT_FALSE(map.insert(text("4"), whole(9)).second);
  EXPECT_TRUE(map.insert(text("3, too"), whole(9)).second); // of an equal hash
}

TEST_F(HostTables, FullTableGrowsOnInsertion) {
  map_t map = full_table(5);
  map[text("7")] = whole(7);
  EXPECT_EQ(counts_of(map), (counts_t{6, 12, 0}));
  EXPECT_EQ(slot_of(map, "7"), 7);
  EXPECT_EQ(at(map, "4"), whole(4));
}

TEST_F(HostTables, OnlyDeletedSlotsEndTheSearch) {
  map_t map = table_of(4);
  for (std::int64_t i = 0; i < 4; ++i) put_deleted_slot(map, i);
  EXPECT_FALSE(has(map, "2"));
  map[text("2")] = whole(2);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
}

TEST_F(HostTables, UncountedDeletedSlotsAreReusedInProbeOrder) {
  map_t map = table_of(4);
  for (std::int64_t i = 0; i < 4; ++i) put_deleted_slot(map, i);
  head_of(map).deleted = 0;
  map[text("6")] = whole(6);
  EXPECT_EQ(counts_of(map), (counts_t{1, 4, 0}));
  EXPECT_EQ(slot_of(map, "6"), 2);
}

TEST_F(HostTables, FullTableGrowsWithAnyCounts) {
  map_t map = full_table(4);
  head_of(map).live = 2; // too few: three quarters of 4 seem free
  map[text("7")] = whole(7);
  EXPECT_EQ(counts_of(map).capacity, 8);
  EXPECT_EQ(slot_of(map, "7"), 7);
}

TEST_F(HostTables, OddCapacitiesReduceTheHash) {
  map_t map = table_of(7);
  map[text("20")] = whole(1); // 20 mod 7
  EXPECT_EQ(slot_of(map, "20"), 6);
  map[text("27")] = whole(2);
  EXPECT_EQ(slot_of(map, "27"), 0);
}

TEST_F(HostTables, KeyUnderAnotherHashIsNotFound) {
  map_t map = table_of(8);
  put(map, 3, 11, text("3"), whole(1));
  EXPECT_FALSE(has(map, "3"));
  EXPECT_TRUE(map.insert(text("3"), whole(2)).second);
  EXPECT_EQ(slot_at(map, 4).value, whole(2));
}

TEST_F(HostTables, FullTableIsCopiedComparedAndErasedFrom) {
  map_t map = full_table(3);
  const map_t copy = map.copy();
  EXPECT_TRUE(copy == map);
  EXPECT_EQ(counts_of(copy), (counts_t{3, 3, 0}));
  map.erase(map.find(text("2")));
  EXPECT_EQ(counts_of(map), (counts_t{2, 3, 1}));
  EXPECT_FALSE(has(map, "5"));
  EXPECT_FALSE(copy == map);
}

TEST_F(HostTables, HostsWordIsNeitherReadNorWritten) {
  map_t map = table_of(8);
  head_of(map).host = 0xfedcba9876543210;
  map[text("3")] = whole(1);
  map[text("4")] = whole(1);
  map.erase(map.begin());
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(head_of(map).host, 0xfedcba9876543210);
}

TEST_F(HostTables, MapFreesATableItTookOver) {
  standin_reset_calls();
  { const map_t map(vlt_allocate_map(8)); }
  EXPECT_EQ(standin_calls(STANDIN_FREE_MAP), 1);
}

} // namespace
} // namespace com::velanto::connectivity::test

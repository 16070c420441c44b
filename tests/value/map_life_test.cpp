// Whole maps: copying, moving, comparing, erasing. String keys hash to the number at their start.
#include <gtest/gtest.h>

#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

// ---- erasing

using MapErase = PlacedKeys;

TEST_F(MapErase, LeavesADeletedSlotWithoutKeyAndValue) {
  map_t map = with_keys("3");
  map.erase(map.find(text("3")));
  EXPECT_EQ(counts_of(map), (counts_t{0, 8, 1}));
  EXPECT_EQ(slot_at(map, 3).hash, 1u);
  EXPECT_TRUE(is_zeroed(slot_at(map, 3).key));
  EXPECT_TRUE(is_zeroed(slot_at(map, 3).value));
  EXPECT_FALSE(has(map, "3"));
}

TEST_F(MapErase, FreesKeyAndValue) {
  map_t map;
  map.insert(text("3"), listOf(text("v")));
  const std::int64_t before = standin_live_blocks_total();
  map.erase(map.begin());
  EXPECT_EQ(standin_live_blocks_total(), before - 3);
}

TEST_F(MapErase, AtTheEndErasesNothing) {
  map_t map = with_keys("3");
  map.erase(map.end());
  map.erase(map.find(text("4")));
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
  map_t none;
  none.erase(none.end());
  EXPECT_EQ(none.table(), nullptr);
}

TEST_F(MapErase, EntriesDisplacedPastTheSlotStayReachable) {
  map_t map = with_keys("3", "11", "19");
  map.erase(map.find(text("3")));
  map.erase(map.find(text("11")));
  EXPECT_EQ(at(map, "19"), text("19"));
  EXPECT_EQ(slot_of(map, "19"), 5);
}

TEST_F(MapErase, WrappedEntryAndTheOneBeforeIt) {
  map_t map = with_keys("7", "15", "23");
  map.erase(map.find(text("15"))); // in slot 0
  EXPECT_EQ(at(map, "23"), text("23"));
  map.erase(map.find(text("7")));
  EXPECT_EQ(at(map, "23"), text("23"));
  EXPECT_EQ(slot_at(map, 0).hash, 1u);
  EXPECT_EQ(slot_at(map, 7).hash, 1u);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 2}));
}

TEST_F(MapErase, FirstAndLastSlot) {
  map_t map = with_keys("0", "4", "7");
  map.erase(map.begin());
  EXPECT_EQ(slot_at(map, 0).hash, 1u);
  map.erase(map.find(text("7")));
  EXPECT_EQ(slot_at(map, 7).hash, 1u);
  ASSERT_EQ(map.size(), 1u);
  EXPECT_EQ((*map.begin()).first, text("4"));
}

TEST_F(MapErase, InsertedAgainReusesTheDeletedSlot) {
  map_t map = with_keys("3");
  map.erase(map.find(text("3")));
  map.insert(text("3"), whole(2));
  EXPECT_EQ(slot_of(map, "3"), 3);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 1}));
}

TEST_F(MapErase, FirstOfSeveralDeletedSlotsIsReused) {
  map_t map = with_keys("3", "11", "19");
  map.erase(map.find(text("11")));
  map.erase(map.find(text("3")));
  map.insert(text("27"), whole(27));
  EXPECT_EQ(slot_of(map, "27"), 3);
  EXPECT_EQ(slot_at(map, 4).hash, 1u);
}

TEST_F(MapErase, KeyAfterADeletedSlotIsFound) {
  map_t map = with_keys("3", "11");
  map.erase(map.find(text("3")));
  EXPECT_FALSE(map.insert(text("11"), whole(1)).second);
  EXPECT_EQ(slot_of(map, "11"), 4);
  EXPECT_EQ(slot_at(map, 3).hash, 1u);
}

TEST_F(MapErase, EraseAndInsertBringTheRebuildForward) {
  map_t map = with_keys("3");
  standin_reset_calls();
  for (int i = 0; i < 6; ++i) {
    map.erase(map.find(text("3")));
    map.insert(text("3"), whole(i));
  }
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 6}));
  map.erase(map.find(text("3")));
  EXPECT_EQ(standin_calls(STANDIN_REALLOCATE_MAP), 0);
  map.insert(text("3"), whole(9));
  EXPECT_EQ(standin_calls(STANDIN_REALLOCATE_MAP), 1);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
}

// ---- copying

using MapCopy = PlacedKeys;

TEST_F(MapCopy, MapWithoutTableIsCopiedWithoutOne) {
  standin_reset_calls();
  EXPECT_EQ(map_t().copy().table(), nullptr);
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(MapCopy, KeepsEverySlotDeletedSlotsIncluded) {
  map_t map = with_keys("3", "11", "19", "0", "1");
  map.erase(map.find(text("3")));
  map.erase(map.find(text("0")));
  map_t copy = map.copy();
  EXPECT_EQ(counts_of(copy), (counts_t{3, 8, 2}));
  for (std::int64_t i = 0; i < 8; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(slot_at(copy, i).hash, slot_at(map, i).hash);
    EXPECT_EQ(slot_at(copy, i).key, slot_at(map, i).key);
    EXPECT_EQ(slot_at(copy, i).value, slot_at(map, i).value);
  }
  EXPECT_EQ(at(copy, "19"), text("19"));
}

TEST_F(MapCopy, SharesNoBlock) {
  map_t map;
  for (const kind_t& kind : KINDS) map.insert(text(kind.name), kind.make());
  const map_t copy = map.copy();
  EXPECT_EQ(to_string(copy), to_string(map));
  for (std::int64_t i = 0; i < counts_of(map).capacity; ++i) {
    const data_t& value = slot_at(map, i).value;
    if (value.type_tag() < 5 || value.type_tag() > 10) continue;
    EXPECT_NE(content_bits(slot_at(copy, i).value), content_bits(value)) << value.type_tag();
    EXPECT_NE(content_bits(slot_at(copy, i).key), content_bits(slot_at(map, i).key));
  }
}

TEST_F(MapCopy, BorrowedStringsBecomeOwned) {
  map_t map;
  map.insert(borrowed("3"), borrowed("v"));
  const map_t copy = map.copy();
  EXPECT_EQ(slot_at(copy, 3).key, text("3"));
  EXPECT_EQ(slot_at(copy, 3).value, text("v"));
}

TEST_F(MapCopy, CopiedValueKeepsTheDeletedSlotsOfItsMap) {
  map_t map = with_keys("3", "11");
  map.erase(map.find(text("3")));
  const data_t value(std::move(map));
  data_t copy = value;
  EXPECT_EQ(counts_of(copy.get<map_t>()), (counts_t{1, 8, 1}));
  EXPECT_EQ(at(copy.get<map_t>(), "11"), text("11"));
}

TEST_F(MapCopy, StaleValuesOfVacantSlotsAreNotCopied) {
  const map_t map = with_keys("3", "11");
  put_deleted_slot(map, 0);
  const data_t stale = text("freed elsewhere");
  for (const std::int64_t vacant : {0, 1}) {
    std::memcpy(static_cast<void*>(&slot_at(map, vacant).value), static_cast<const void*>(&stale),
                sizeof stale);
  }
  const std::int64_t before = standin_live_blocks_total();
  {
    const map_t copy = map.copy();
    for (const std::int64_t vacant : {0, 1}) EXPECT_TRUE(is_zeroed(slot_at(copy, vacant).value));
    EXPECT_TRUE(is_deleted(slot_at(copy, 0)));
    EXPECT_EQ(copy, map);
  }
  EXPECT_EQ(standin_live_blocks_total(), before);
  for (const std::int64_t vacant : {0, 1}) {
    std::memset(static_cast<void*>(&slot_at(map, vacant).value), 0, sizeof stale);
  }
}

TEST_F(MapCopy, HashesOfZeroAndOneStayLive) {
  map_t copy = with_keys("0", "1").copy();
  EXPECT_EQ(at(copy, "0"), text("0"));
  EXPECT_EQ(at(copy, "1"), text("1"));
}

// ---- moving

using MapMove = PlacedKeys;

TEST_F(MapMove, LeavesTheSourceWithoutTable) {
  map_t source = with_keys("3");
  const void* const table = source.table();
  standin_reset_calls();
  map_t target(std::move(source));
  map_t assigned;
  assigned = std::move(target);
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(source.table(), nullptr);
  EXPECT_EQ(target.table(), nullptr);
  EXPECT_EQ(assigned.table(), table);
}

TEST_F(MapMove, AssignmentFreesTheTargetsTable) {
  map_t source = with_keys("3");
  map_t target = with_keys("4");
  standin_reset_calls();
  target = std::move(source);
  EXPECT_EQ(standin_calls(STANDIN_FREE_MAP), 1);
  EXPECT_EQ(standin_calls_total(), 1);
  EXPECT_TRUE(has(target, "3"));
}

TEST_F(MapMove, AssignmentToItselfKeepsTheEntries) {
  map_t map = with_keys("3");
  map_t& alias = map;
  map = std::move(alias);
  EXPECT_TRUE(has(map, "3"));
}

TEST_F(MapMove, MovedFromMapCanBeUsedOn) {
  map_t map = with_keys("3");
  const map_t taken(std::move(map));
  EXPECT_TRUE(map.begin() == map.end());
  map[text("4")] = whole(4);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
}

TEST_F(MapMove, DestructionFreesTheTableOnce) {
  {
    const map_t map = with_keys("3", "4");
    standin_reset_calls();
  }
  EXPECT_EQ(standin_calls(STANDIN_FREE_MAP), 1);
  EXPECT_EQ(standin_calls_total(), 1);
}

// ---- equality

using MapEquality = PlacedKeys;

TEST_F(MapEquality, OrderAndCapacityDoNotMatter) {
  map_t large = table_of(100);
  fill(large, "11", text("11"), "19", text("19"), "3", text("3"));
  EXPECT_TRUE(with_keys("3", "11", "19") == with_keys("19", "11", "3"));
  EXPECT_TRUE(with_keys("3", "11", "19") == large);
  EXPECT_TRUE(large == with_keys("3", "11", "19"));
}

TEST_F(MapEquality, DeletedSlotsDoNotMatter) {
  map_t map = with_keys("3", "11", "19");
  map.erase(map.find(text("3")));
  EXPECT_TRUE(map == with_keys("11", "19"));
  EXPECT_TRUE(with_keys("11", "19") == map);
}

TEST_F(MapEquality, KeysAndValuesMatter) {
  EXPECT_FALSE(with_keys("3", "4") == with_keys("3"));
  EXPECT_FALSE(with_keys("3") == with_keys("3", "4"));
  EXPECT_FALSE(with_keys("3", "4") == with_keys("3", "5"));
  EXPECT_FALSE(mapOf("3", whole(1)) == mapOf("3", whole(2)));
  EXPECT_TRUE(mapOf("3", whole(1)) != mapOf("3", real(1.0)));
}

TEST_F(MapEquality, MapsWithoutEntriesAreEqual) {
  map_t erased = with_keys("3");
  erased.erase(erased.begin());
  EXPECT_TRUE(map_t() == map_t());
  EXPECT_TRUE(map_t() == table_of(8));
  EXPECT_TRUE(table_of(8) == map_t());
  EXPECT_TRUE(table_of(0) == erased);
  EXPECT_FALSE(map_t() == with_keys("3"));
}

TEST_F(MapEquality, MapWithACustomValueDiffersFromItself) {
  const map_t map = mapOf("3", custom(1));
  EXPECT_FALSE(map == map);
  const map_t unknown = mapOf(tagged(11), whole(1));
  EXPECT_FALSE(unknown == unknown);
}

} // namespace
} // namespace com::velanto::connectivity::test

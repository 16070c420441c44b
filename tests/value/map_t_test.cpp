// The content of a map after insertions, look-ups, copies and moves, slot by slot. String keys hash
// to the number at their start.
#include "value/map_t.hpp"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

static_assert(sizeof(map_t) == sizeof(void*));

using MapT = PlacedKeys;

// ---- growth

TEST_F(MapT, DefaultHasNoTable) {
  standin_reset_calls();
  map_t map;
  EXPECT_EQ(map.table(), nullptr);
  EXPECT_EQ(map.size(), 0u);
  EXPECT_TRUE(map.empty());
  EXPECT_TRUE(map.find(whole(1)) == map.end());
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(MapT, FirstKeyAllocatesEightSlots) {
  standin_reset_calls();
  const map_t map = with_keys("3");
  EXPECT_EQ(standin_calls(STANDIN_ALLOCATE_MAP), 1);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
  EXPECT_EQ(slot_at(map, 3).hash, 3u);
  EXPECT_EQ(slot_at(map, 3).key, text("3"));
  EXPECT_EQ(slot_at(map, 3).value, text("3"));
}

TEST_F(MapT, SeventhKeyStaysInEightSlots) {
  standin_reset_calls();
  EXPECT_EQ(counts_of(with_keys("0", "1", "2", "3", "4", "5", "6")), (counts_t{7, 8, 0}));
  EXPECT_EQ(standin_calls(STANDIN_REALLOCATE_MAP), 0);
}

TEST_F(MapT, EighthKeyGrowsToSixteenSlots) {
  standin_reset_calls();
  const map_t map = with_keys("8", "9", "10", "11", "12", "13", "14", "15");
  EXPECT_EQ(standin_calls(STANDIN_REALLOCATE_MAP), 1);
  EXPECT_EQ(counts_of(map), (counts_t{8, 16, 0}));
  EXPECT_EQ(slot_of(map, "8"), 8);
  EXPECT_EQ(slot_of(map, "15"), 15);
}

TEST_F(MapT, GrowthFollowsTheLiveCountNotTheCapacity) {
  map_t map;
  const std::array<std::int64_t, 5> capacities = {8, 16, 28, 46, 72}; // after key 1, 8, 14, 23, 36
  std::size_t seen = 0;
  for (std::int64_t key = 1; key <= 40; ++key) {
    map.insert(whole(key), data_t());
    if (counts_of(map).capacity != capacities[seen]) ++seen;
    ASSERT_EQ(counts_of(map), (counts_t{key, capacities.at(seen), 0})) << "key " << key;
  }
  EXPECT_EQ(seen, 4u);
}

TEST_F(MapT, DeletedSlotsCountTowardsGrowthThatDropsThem) {
  map_t map = with_keys("0", "1", "2", "3", "4", "5", "6");
  for (const char* key : {"1", "2", "3", "4", "5", "6"}) map.erase(map.find(text(key)));
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 6}));
  map.insert(text("5"), whole(1));
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 0}));
  for (std::int64_t i = 1; i < 8; ++i) EXPECT_EQ(slot_at(map, i).hash, i == 5 ? 5u : 0u) << i;
}

TEST_F(MapT, TableFullOfDeletedSlotsIsRebuiltSmaller) {
  map_t map = table_of(100);
  put(map, 99, 99, text("99"), whole(9));
  for (std::int64_t i = 0; i < 75; ++i) put_deleted_slot(map, i);
  map.insert(text("80"), whole(8)); // 75 is below 1 + 75
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 0}));
  EXPECT_EQ(slot_of(map, "99"), 3);
  EXPECT_EQ(slot_of(map, "80"), 0);
}

TEST_F(MapT, ThreeQuartersAreNotYetTooMuch) {
  map_t map = table_of(100);
  for (std::int64_t i = 0; i < 75; ++i) put_deleted_slot(map, i);
  map.insert(text("80"), whole(8)); // 75 is not below 0 + 75
  EXPECT_EQ(counts_of(map), (counts_t{1, 100, 75}));
}

TEST_F(MapT, PresentKeyNeverGrowsTheTable) {
  map_t map = with_keys("0", "1", "2", "3", "4", "5", "6");
  standin_reset_calls();
  EXPECT_FALSE(map.insert(text("6"), whole(1)).second);
  map[text("6")] = whole(2);
  EXPECT_EQ(standin_calls(STANDIN_REALLOCATE_MAP), 0);
  EXPECT_EQ(counts_of(map), (counts_t{7, 8, 0}));
}

TEST_F(MapT, GrowthKeepsKeysAndValuesInTheirBlocks) {
  map_t map = with_keys("0", "1", "2", "3", "4", "5", "6");
  const void* const value = slot_at(map, 4).value.get<const char*>();
  map[text("7")] = whole(7);
  EXPECT_EQ(map.size(), 8u);
  EXPECT_EQ(at(map, "4").get<const char*>(), value);
}

// ---- probing

TEST_F(MapT, CollidingKeysTakeTheNextSlots) {
  map_t map = with_keys("3", "11", "19");
  EXPECT_EQ(slot_of(map, "3"), 3);
  EXPECT_EQ(slot_of(map, "11"), 4);
  EXPECT_EQ(slot_of(map, "19"), 5);
  for (const char* key : {"3", "11", "19"}) EXPECT_EQ(at(map, key), text(key));
  EXPECT_FALSE(has(map, "27"));
}

TEST_F(MapT, ProbingWrapsToTheFirstSlot) {
  map_t map = with_keys("7", "15", "23");
  EXPECT_EQ(slot_of(map, "7"), 7);
  EXPECT_EQ(slot_of(map, "15"), 0);
  EXPECT_EQ(slot_of(map, "23"), 1);
  EXPECT_EQ(at(map, "23"), text("23"));
}

TEST_F(MapT, HashIsReducedUnsigned) {
  map_t map = with_keys("18446744073709551615"); // all bits set: slot 7, not −1
  EXPECT_EQ(slot_of(map, "18446744073709551615"), 7);
  EXPECT_TRUE(has(map, "18446744073709551615"));
}

TEST_F(MapT, KeysTellEqualHashesApart) {
  map_t map = with_keys("3", "3 other");
  EXPECT_EQ(map.size(), 2u);
  EXPECT_EQ(at(map, "3 other"), text("3 other"));
  EXPECT_FALSE(has(map, "3 third"));
}

TEST_F(MapT, HashesZeroAndOneAreLive) {
  map_t map = with_keys("0", "1", "0 again", "1 again");
  EXPECT_EQ(map.size(), 4u);
  EXPECT_EQ(slot_of(map, "0 again"), 2);
  EXPECT_EQ(slot_of(map, "1 again"), 3);
  for (const char* key : {"0", "1", "0 again", "1 again"}) EXPECT_EQ(at(map, key), text(key));
}

// ---- insert, operator[], maybe_insert

TEST_F(MapT, InsertTakesKeyAndValueOver) {
  map_t map;
  data_t key = text("3");
  data_t value = listOf(text("v"));
  const void* const block = value.underlying()->value.list;
  const auto [entry, inserted] = map.insert(std::move(key), std::move(value));
  EXPECT_TRUE(inserted);
  EXPECT_EQ(&(*entry).first, &slot_at(map, 3).key);
  EXPECT_EQ((*entry).second.underlying()->value.list, block);
  EXPECT_TRUE(key.empty());
  EXPECT_TRUE(value.empty());
}

TEST_F(MapT, InsertingAPresentKeyChangesNothing) {
  map_t map = with_keys("3");
  data_t key = text("3");
  data_t value = whole(4);
  const auto [entry, inserted] = map.insert(std::move(key), std::move(value));
  EXPECT_FALSE(inserted);
  EXPECT_EQ(&(*entry).second, &slot_at(map, 3).value);
  EXPECT_EQ(at(map, "3"), text("3"));
  EXPECT_EQ(key, text("3"));
  EXPECT_EQ(value, whole(4));
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
}

TEST_F(MapT, InsertOfAPairFollowsTheSameRules) {
  map_t map;
  std::pair<data_t, data_t> entry(text("3"), whole(1));
  EXPECT_TRUE(map.insert(std::move(entry)).second);
  EXPECT_TRUE(entry.first.empty());
  EXPECT_TRUE(entry.second.empty());
  entry = {text("3"), whole(2)};
  EXPECT_FALSE(map.insert(std::move(entry)).second);
  EXPECT_EQ(entry.second, whole(2));
  EXPECT_EQ(at(map, "3"), whole(1));
}

TEST_F(MapT, SubscriptInsertsAnEmptyValue) {
  map_t map;
  data_t key = text("3");
  data_t& value = map[std::move(key)];
  EXPECT_EQ(&value, &slot_at(map, 3).value);
  EXPECT_TRUE(value.empty());
  EXPECT_TRUE(key.empty());
  EXPECT_EQ(map.size(), 1u);
}

TEST_F(MapT, SubscriptReachesTheValueAndConsumesTheKey) {
  map_t map = with_keys("3");
  data_t key = text("3");
  map[std::move(key)] = whole(5);
  EXPECT_TRUE(key.empty());
  EXPECT_EQ(at(map, "3"), whole(5));
  EXPECT_EQ(map.size(), 1u);
}

TEST_F(MapT, CopyingInsertKeepsItsSources) {
  map_t map;
  const data_t key = borrowed("3");
  const data_t value = listOf(text("v"));
  EXPECT_TRUE(map.maybe_insert(map_t::const_pair(key, value)).second);
  EXPECT_EQ(key.type_tag(), 10u);
  EXPECT_EQ(slot_at(map, 3).key, text("3")) << "a copied borrowed string becomes an owned one";
  EXPECT_EQ(slot_at(map, 3).value, value);
  EXPECT_NE(slot_at(map, 3).value.underlying()->value.list, value.underlying()->value.list);
}

TEST_F(MapT, CopyingInsertOfAPresentKeyCopiesNothing) {
  map_t map = with_keys("3");
  const data_t key = text("3");
  const data_t value = text("other");
  standin_reset_calls();
  const auto [entry, inserted] = map.maybe_insert(map_t::const_pair(key, value));
  EXPECT_FALSE(inserted);
  EXPECT_EQ((*entry).second, text("3"));
  EXPECT_EQ(standin_calls(STANDIN_COPY_DATA), 0);
}

// The lookup does not find the borrowed key, so it is inserted. Its owned copy equals a present
// key: the search for a slot must not compare it with that one.
TEST_F(MapT, CopiedBorrowedKeyGrowsBesideItsTwin) {
  map_t map = with_keys("0", "1", "2", "3", "4", "5", "6");
  const data_t key = borrowed("6");
  const data_t value = whole(1);
  const auto [entry, inserted] = map.maybe_insert(map_t::const_pair(key, value));
  ASSERT_EQ(counts_of(map), (counts_t{8, 16, 0}));
  EXPECT_TRUE(inserted);
  EXPECT_EQ(slot_at(map, 6).value, text("6"));
  EXPECT_EQ(slot_at(map, 7).key, text("6"));
  EXPECT_EQ((*entry).second, whole(1));
}

TEST_F(MapT, MovingInsertLeavesBorrowedStringsBorrowed) {
  map_t map;
  data_t key = borrowed("3");
  data_t value = borrowed("v");
  EXPECT_TRUE(map.maybe_insert(map_t::pair(key, value)).second);
  EXPECT_TRUE(key.empty());
  EXPECT_EQ(slot_at(map, 3).key.type_tag(), 10u);
  EXPECT_EQ(slot_at(map, 3).value.type_tag(), 10u);
}

// ---- refused and odd keys

// Offers `key` by every way that moves it in; each must fail with `error` and change nothing.
void expect_refused(const data_t& key, const char* error, map_t& map) {
  EXPECT_EQ(errorOf([&] { map[data_t(key)]; }), error);
  EXPECT_EQ(errorOf([&] { map.insert(data_t(key), whole(1)); }), error);
  EXPECT_EQ(errorOf([&] { map.insert(std::pair<data_t, data_t>(key, whole(1))); }), error);
  data_t moved = key;
  data_t value = whole(1);
  EXPECT_EQ(errorOf([&] { map.maybe_insert(map_t::pair(moved, value)); }), error);
  EXPECT_THROW(map.insert(data_t(key), whole(1)), std::runtime_error);
}

TEST_F(MapT, EmptyKeyIsRefusedByTheMovingInserts) {
  map_t none;
  expect_refused(data_t(), NULL_KEY, none);
  EXPECT_EQ(none.table(), nullptr);
  map_t map = with_keys("3");
  expect_refused(data_t(), NULL_KEY, map);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
}

TEST_F(MapT, CopyingInsertTakesAnEmptyKey) {
  map_t map;
  const data_t key;
  const data_t value = whole(1);
  EXPECT_TRUE(map.maybe_insert(map_t::const_pair(key, value)).second);
  EXPECT_FALSE(map.maybe_insert(map_t::const_pair(key, value)).second);
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(slot_at(map, 0x243FCAF1 % 8).hash, 0x243FCAF1u);
  EXPECT_EQ((*map.find(data_t())).second, whole(1));
}

TEST_F(MapT, CustomKeyIsRefusedByEveryFunction) {
  map_t none;
  expect_refused(custom(1), CUSTOM_KEY, none);
  EXPECT_EQ(none.table(), nullptr);
  map_t map = with_keys("3");
  const data_t key = listOf(custom(1));
  const data_t value;
  expect_refused(key, CUSTOM_KEY, map);
  EXPECT_EQ(errorOf([&] { map.maybe_insert(map_t::const_pair(key, value)); }), CUSTOM_KEY);
  EXPECT_EQ(errorOf([&] { static_cast<void>(map.find(key)); }), CUSTOM_KEY);
  EXPECT_EQ(errorOf([&] { static_cast<void>(none.find(key)); }), CUSTOM_KEY);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
}

TEST_F(MapT, BorrowedKeysAreAKindOfTheirOwn) {
  map_t map;
  map.insert(borrowed("3"), whole(1));
  EXPECT_FALSE(has(map, "3"));
  EXPECT_EQ((*map.find(borrowed("3"))).second, whole(1));
  map.insert(text("3"), whole(2));
  EXPECT_EQ(map.size(), 2u);
}

TEST_F(MapT, UnknownKeysAreAcceptedAndNeverFound) {
  map_t map;
  EXPECT_TRUE(map.insert(tagged(11, 5), whole(1)).second);
  EXPECT_TRUE(map.insert(tagged(11, 5), whole(2)).second);
  EXPECT_EQ(map.size(), 2u);
  EXPECT_EQ(slot_at(map, 0x243FCAF1 % 8).hash, 0x243FCAF1u);
  EXPECT_TRUE(map.find(tagged(11, 5)) == map.end());
}

TEST_F(MapT, NullKeyIsTheEmptyString) {
  map_t map = mapOf(nullText(), whole(1));
  EXPECT_EQ(at(map, ""), whole(1));
  EXPECT_FALSE(map.insert(text(""), whole(2)).second);
}

TEST_F(MapT, ConstantMapsAreSearchedToo) {
  const map_t map = with_keys("3", "11");
  EXPECT_EQ((*map.find(text("11"))).second, text("11"));
  EXPECT_TRUE(map.find(text("19")) == map.end());
}

} // namespace
} // namespace com::velanto::connectivity::test

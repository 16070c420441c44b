// Looking an entry up and taking it out of a map. String keys hash to the number at their start.
#include <gtest/gtest.h>

#include <utility>

#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"
#include "value/hashed_key.hpp"

namespace com::velanto::connectivity::test {
namespace {

// ---- find_value

using MapFind = PlacedKeys;

TEST_F(MapFind, PresentKeyLeadsToItsValue) {
  const map_t map = with_keys("3", "11", "7", "15");
  for (const char* key : {"3", "11", "7", "15"}) {
    EXPECT_EQ(map.find_value(text(key)), &slot_at(map, slot_of(map, key)).value) << key;
  }
}

TEST_F(MapFind, AbsentKeyLeadsNowhere) {
  const map_t none;
  const map_t no_slots = table_of(0);
  const map_t map = with_keys("3", "11");
  for (const map_t* searched : {&none, &no_slots, &map}) {
    EXPECT_EQ(searched->find_value(text("19")), nullptr);
    EXPECT_EQ(searched->find_value(data_t()), nullptr);
  }
}

TEST_F(MapFind, KeyWithAnotherHashIsAnotherKey) {
  const map_t map = with_keys("3");
  const map_entry_t elsewhere{4, text("3"), data_t()};
  const map_entry_t same_slot{11, text("3"), data_t()};
  EXPECT_EQ(map.find_value(elsewhere), nullptr);
  EXPECT_EQ(map.find_value(same_slot), nullptr);
  const map_entry_t same{3, text("3"), data_t()};
  EXPECT_EQ(map.find_value(same), &slot_at(map, 3).value);
}

TEST_F(MapFind, PassesDeletedSlotsAndEndsWithoutFreeSlots) {
  const map_t map = table_of(3);
  put_deleted_slot(map, 0);
  put(map, 1, 0, text("0"), whole(0));
  put(map, 2, 3, text("3"), whole(3));
  EXPECT_EQ(map.find_value(text("3")), &slot_at(map, 2).value);
  EXPECT_EQ(map.find_value(text("6")), nullptr);
}

TEST_F(MapFind, CustomKeyIsRefused) {
  const map_t map = with_keys("3");
  const data_t key = listOf(custom(1));
  const char* const error = "Cannot use custom values as a key";
  EXPECT_EQ(errorOf([&] { static_cast<void>(map.find_value(key)); }), error);
}

// ---- extract

using MapExtract = PlacedKeys;

TEST_F(MapExtract, AbsentKeyGivesNoEntry) {
  map_t none;
  map_t no_slots = table_of(0);
  map_t map = with_keys("3");
  for (map_t* searched : {&none, &no_slots, &map}) {
    const map_entry_t entry = extracted(*searched, text("11"));
    EXPECT_TRUE(entry.key.empty());
    EXPECT_TRUE(entry.value.empty());
  }
  EXPECT_EQ(none.table(), nullptr);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
}

TEST_F(MapExtract, PresentKeyGivesItsEntryAndADeletedSlot) {
  map_t map = with_keys("3", "11", "19");
  const std::uint64_t key_block = content_bits(slot_at(map, 4).key);
  const std::uint64_t value_block = content_bits(slot_at(map, 4).value);
  const map_entry_t entry = extracted(map, text("11"));
  EXPECT_FALSE(entry.key.empty());
  EXPECT_EQ(entry.hash, 11u);
  EXPECT_EQ(entry.key, text("11"));
  EXPECT_EQ(content_bits(entry.key), key_block);
  EXPECT_EQ(content_bits(entry.value), value_block);
  EXPECT_TRUE(is_deleted(slot_at(map, 4)));
  EXPECT_TRUE(is_zeroed(slot_at(map, 4).key));
  EXPECT_TRUE(is_zeroed(slot_at(map, 4).value));
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 1}));
}

TEST_F(MapExtract, EntriesDisplacedPastTheSlotStayReachable) {
  map_t map = with_keys("7", "15", "23");
  EXPECT_FALSE(extracted(map, text("7")).key.empty());
  EXPECT_FALSE(extracted(map, text("15")).key.empty());
  EXPECT_TRUE(extracted(map, text("15")).key.empty()) << "it is gone";
  EXPECT_EQ(at(map, "23"), text("23"));
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 2}));
}

TEST_F(MapExtract, InPlaceHandsOverTheEntryFreesRemains) {
  map_t map = with_keys("3", "11");
  data_t value;
  const bool found = map.extract(text("3"), [&](map_entry_t&& entry) {
    EXPECT_EQ(entry.hash, 3u);
    EXPECT_EQ(entry.key, text("3"));
    value = std::move(entry.value);
    standin_reset_calls();
  });
  EXPECT_TRUE(found);
  EXPECT_EQ(standin_calls(STANDIN_FREE_STRING), 1 + 1) << "the key in the slot and the one above";
  EXPECT_EQ(value, text("3"));
  EXPECT_TRUE(is_deleted(slot_at(map, 3)));
  EXPECT_TRUE(is_zeroed(slot_at(map, 3).key));
  EXPECT_TRUE(is_zeroed(slot_at(map, 3).value));
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 1}));
}

TEST_F(MapExtract, InPlaceAsksNothingForAnAbsentKey) {
  map_t map = with_keys("3", "11");
  EXPECT_FALSE(map.extract(text("19"), [](map_entry_t&&) { ADD_FAILURE(); }));
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 0}));
}

TEST_F(MapExtract, ExceptionInPlaceKeepsTheEntry) {
  map_t map = with_keys("3", "11");
  EXPECT_THROW(map.extract(text("3"), [](map_entry_t&&) { throw 1; }), int);
  EXPECT_EQ(at(map, "3"), text("3"));
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 0}));
}

TEST_F(MapExtract, KnownHashNeedsNoHost) {
  map_t map = with_keys("3", "11");
  const hashed_key_t present("11");
  const hashed_key_t absent("19");
  standin_reset_calls();
  const map_entry_t entry = extracted(map, present);
  EXPECT_TRUE(extracted(map, absent).key.empty());
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(entry.value, text("11"));
}

TEST_F(MapExtract, EntryCanBePutBack) {
  map_t map = with_keys("3", "11");
  map_entry_t entry = extracted(map, text("3"));
  map.insert(std::move(entry));
  EXPECT_EQ(slot_of(map, "3"), 3);
  EXPECT_EQ(map, with_keys("3", "11"));
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 1}));
}

} // namespace
} // namespace com::velanto::connectivity::test

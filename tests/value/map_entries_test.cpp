// Entries that bring their hash: how a map takes them in, and which it refuses. String keys hash to
// the number at their start.
#include "value/map_entry.hpp"

#include <gtest/gtest.h>

#include <utility>

#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

// ---- an absent key

struct way_t {
  const char* name;
  void (*put)(map_t& map, map_entry_t&& entry);
};

constexpr way_t INSERT{"insert",
                       [](map_t& map, map_entry_t&& entry) { map.insert(std::move(entry)); }};
constexpr way_t ASSIGN{"assign",
                       [](map_t& map, map_entry_t&& entry) { map.assign(std::move(entry)); }};
constexpr way_t ADD{"add", [](map_t& map, map_entry_t&& entry) {
                      map.add(entry.hash, std::move(entry.key), std::move(entry.value));
                    }};

class MapEntryAbsent : public PlacedKeys, public ::testing::WithParamInterface<way_t> {
 protected:
  static void put(map_t& map, map_entry_t&& entry) { GetParam().put(map, std::move(entry)); }
};

INSTANTIATE_TEST_SUITE_P(Ways, MapEntryAbsent, ::testing::Values(INSERT, ASSIGN, ADD),
                         [](const auto& named) { return named.param.name; });

TEST_P(MapEntryAbsent, IsMovedIntoItsSlot) {
  map_t map;
  map_entry_t entry = entry_of("3", listOf(text("v")));
  const std::uint64_t key_block = content_bits(entry.key);
  const std::uint64_t value_block = content_bits(entry.value);
  put(map, std::move(entry));
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
  EXPECT_EQ(slot_at(map, 3).hash, 3u);
  EXPECT_EQ(content_bits(slot_at(map, 3).key), key_block);
  EXPECT_EQ(content_bits(slot_at(map, 3).value), value_block);
  EXPECT_TRUE(is_zeroed(entry.key));
  EXPECT_TRUE(is_zeroed(entry.value));
}

TEST_P(MapEntryAbsent, TakesOnlyTheFirstTableFromTheHost) {
  map_t map;
  map_entry_t first = entry_of("3", text("v"));
  map_entry_t second = entry_of("11", text("w"));
  standin_reset_calls();
  put(map, std::move(first));
  put(map, std::move(second));
  EXPECT_EQ(standin_calls(STANDIN_ALLOCATE_MAP), 1);
  EXPECT_EQ(standin_calls_total(), 1);
}

TEST_P(MapEntryAbsent, HasThePlaceOfItsOwnHash) {
  map_t map;
  put(map, {5, text("3"), whole(1)});
  EXPECT_EQ(slot_of(map, "3"), 5);
  EXPECT_EQ(slot_at(map, 5).hash, 5u);
  EXPECT_FALSE(has(map, "3")) << "its key alone hashes to another slot";
}

TEST_P(MapEntryAbsent, CollidingKeysTakeTheNextSlotsAndWrap) {
  map_t map;
  for (const char* key : {"6", "14", "22"}) put(map, entry_of(key, text(key)));
  EXPECT_EQ(slot_of(map, "6"), 6);
  EXPECT_EQ(slot_of(map, "14"), 7);
  EXPECT_EQ(slot_of(map, "22"), 0);
}

TEST_P(MapEntryAbsent, ReusesTheFirstDeletedSlotKeepsTheCount) {
  map_t map = with_keys("3", "11", "19");
  map.erase(map.find(text("11")));
  map.erase(map.find(text("3")));
  put(map, entry_of("27", whole(27)));
  EXPECT_EQ(slot_of(map, "27"), 3);
  EXPECT_EQ(slot_at(map, 4).hash, 1u);
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 2}));
}

TEST_P(MapEntryAbsent, EighthGrowsTheTable) {
  map_t map = with_keys("8", "9", "10", "11", "12", "13", "14");
  put(map, entry_of("15", whole(15)));
  EXPECT_EQ(counts_of(map), (counts_t{8, 16, 0}));
  EXPECT_EQ(slot_of(map, "8"), 8);
  EXPECT_EQ(slot_of(map, "15"), 15);
}

TEST_P(MapEntryAbsent, MayHaveHashZeroOrOne) {
  map_t map;
  for (const char* key : {"0", "1", "0 again", "1 again"}) put(map, entry_of(key, text(key)));
  EXPECT_EQ(slot_of(map, "0 again"), 2);
  EXPECT_EQ(slot_of(map, "1 again"), 3);
  for (const char* key : {"0", "1", "0 again", "1 again"}) EXPECT_EQ(at(map, key), text(key));
}

// ---- a present key

using MapEntryPresent = PlacedKeys;

TEST_F(MapEntryPresent, IsNotInserted) {
  map_t map = with_keys("3", "11");
  const map_t before = map.copy();
  map_entry_t entry = entry_of("11", listOf(text("v")));
  const std::uint64_t key_block = content_bits(entry.key);
  const std::uint64_t value_block = content_bits(entry.value);
  standin_reset_calls();
  map.insert(std::move(entry));
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(map, before);
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 0}));
  EXPECT_EQ(entry.hash, 11u);
  EXPECT_EQ(content_bits(entry.key), key_block);
  EXPECT_EQ(content_bits(entry.value), value_block);
}

TEST_F(MapEntryPresent, AssignmentReplacesTheValueOnly) {
  map_t map = with_keys("3", "11");
  const std::uint64_t key_in_map = content_bits(slot_at(map, 4).key);
  map_entry_t entry = entry_of("11", listOf(text("v")));
  const std::uint64_t key_given = content_bits(entry.key);
  const std::uint64_t value_given = content_bits(entry.value);
  map.assign(std::move(entry));
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 0}));
  EXPECT_EQ(content_bits(slot_at(map, 4).key), key_in_map);
  EXPECT_EQ(content_bits(slot_at(map, 4).value), value_given);
  EXPECT_EQ(content_bits(entry.key), key_given);
  EXPECT_TRUE(is_zeroed(entry.value));
  EXPECT_EQ(at(map, "3"), text("3"));
}

TEST_F(MapEntryPresent, AssignmentFreesTheOldValue) {
  map_t map = mapOf("3", listOf(text("old"), text("older")));
  const std::int64_t before = standin_live_blocks_total();
  map.assign({3, text("3"), whole(1)});
  EXPECT_EQ(standin_live_blocks_total(), before - 3);
}

TEST_F(MapEntryPresent, NeverGrowsTheTable) {
  map_t map = with_keys("0", "1", "2", "3", "4", "5", "6");
  map_entry_t inserted = entry_of("6", whole(1));
  map_entry_t assigned = entry_of("5", whole(2));
  standin_reset_calls();
  map.insert(std::move(inserted));
  map.assign(std::move(assigned));
  EXPECT_EQ(standin_calls(STANDIN_REALLOCATE_MAP), 0);
  EXPECT_EQ(counts_of(map), (counts_t{7, 8, 0}));
  EXPECT_EQ(at(map, "6"), text("6"));
  EXPECT_EQ(at(map, "5"), whole(2));
}

TEST_F(MapEntryPresent, AfterADeletedSlotIsFound) {
  map_t map = with_keys("3", "11", "19");
  map.erase(map.find(text("3")));
  map.insert(entry_of("11", whole(1)));
  map.assign(entry_of("19", whole(2)));
  EXPECT_EQ(counts_of(map), (counts_t{2, 8, 1}));
  EXPECT_EQ(at(map, "11"), text("11"));
  EXPECT_EQ(at(map, "19"), whole(2));
  EXPECT_EQ(slot_at(map, 3).hash, 1u);
}

TEST_F(MapEntryPresent, KeysTellEqualHashesApart) {
  map_t map = with_keys("3");
  map.insert(entry_of("3 other", whole(1)));
  map.assign(entry_of("3 third", whole(2)));
  map.assign(entry_of(borrowed("3"), whole(3)));
  EXPECT_EQ(counts_of(map), (counts_t{4, 8, 0}));
  EXPECT_EQ(at(map, "3"), text("3"));
  EXPECT_EQ(at(map, "3 other"), whole(1));
  EXPECT_EQ(at(map, borrowed("3")), whole(3));
}

// ---- refused keys

class MapEntryRefused : public PlacedKeys {
 protected:
  // A map without a table and one with an entry refuse `key` with `error`; neither they nor the
  // entry change.
  static void expect_refused(const data_t& key, const char* error) {
    for (const way_t& way : {INSERT, ASSIGN}) {
      SCOPED_TRACE(way.name);
      map_t none;
      expect_refused_by(none, key, error, way);
      EXPECT_EQ(none.table(), nullptr);
      map_t map = with_keys("3");
      expect_refused_by(map, key, error, way);
      EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
      EXPECT_EQ(at(map, "3"), text("3"));
    }
  }

 private:
  static void expect_refused_by(map_t& map, const data_t& key, const char* error,
                                const way_t& way) {
    map_entry_t entry{3, key, text("v")};
    const std::uint64_t key_block = content_bits(entry.key);
    EXPECT_EQ(errorOf([&] { way.put(map, std::move(entry)); }), error);
    EXPECT_EQ(entry.hash, 3u);
    EXPECT_EQ(entry.key.type_tag(), key.type_tag());
    EXPECT_EQ(content_bits(entry.key), key_block);
    EXPECT_EQ(entry.value, text("v"));
  }
};

TEST_F(MapEntryRefused, EmptyKey) { expect_refused(data_t(), NULL_KEY); }

TEST_F(MapEntryRefused, CustomKey) { expect_refused(custom(1), CUSTOM_KEY); }

TEST_F(MapEntryRefused, KeyThatHoldsACustomValue) {
  expect_refused(listOf(custom(1)), CUSTOM_KEY);
  expect_refused(listOf(whole(1), listOf(custom(1))), CUSTOM_KEY);
  expect_refused(mapOf("k", custom(1)), CUSTOM_KEY);
  expect_refused(listOf(mapOf("k", custom(1))), CUSTOM_KEY);
}

TEST_F(MapEntryRefused, AnyOtherKeyIsTaken) {
  for (const way_t& way : {INSERT, ASSIGN, ADD}) {
    map_t map;
    std::int64_t taken = 0;
    for (const kind_t& kind : KINDS) {
      if (kind.tag == VLT_TAG_EMPTY || kind.tag == VLT_TAG_CUSTOM) continue;
      SCOPED_TRACE(std::string(way.name) + " " + kind.name);
      map_entry_t entry = entry_of(kind.make(), custom(1));
      EXPECT_EQ(errorOf([&] { way.put(map, std::move(entry)); }), "nothing thrown");
      EXPECT_EQ(counts_of(map).live, ++taken);
      EXPECT_TRUE(entry.key.empty());
    }
  }
}

} // namespace
} // namespace com::velanto::connectivity::test

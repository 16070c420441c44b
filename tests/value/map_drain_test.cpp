// Emptying a map: all entries handed out in turn, or freed in place. String keys hash to the number
// at their start.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/failing_allocations.hpp"
#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

void expect_free_slots(const map_t& map) {
  for (std::int64_t i = 0; i < map.capacity(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_TRUE(slot_at(map, i).is_free());
    EXPECT_TRUE(is_zeroed(slot_at(map, i).key));
    EXPECT_TRUE(is_zeroed(slot_at(map, i).value));
  }
}

// ---- drain

using MapDrain = PlacedKeys;

TEST_F(MapDrain, HandsOutAllEntriesInOrder) {
  map_t map = with_keys("6", "2", "14", "0", "22", "5");
  map.erase(map.find(text("0")));
  std::vector<std::string> expected;
  for (const auto& [key, value] : map) expected.emplace_back(key.get<const char*>());
  std::vector<std::string> drained;
  static_cast<void>(std::move(map).drain([&](map_entry_t&& entry) {
    EXPECT_EQ(entry.hash, hashes::key_hash(entry.key));
    EXPECT_EQ(entry.value, entry.key);
    drained.emplace_back(entry.key.get<const char*>());
  }));
  EXPECT_EQ(drained, (std::vector<std::string>{"22", "2", "5", "6", "14"}));
  EXPECT_EQ(drained, expected);
}

TEST_F(MapDrain, HandsOutStoredHashesAndTheBlocks) {
  map_t map = table_of(8);
  put(map, 3, 99, text("5"), listOf(text("v")));
  const std::uint64_t key_block = content_bits(slot_at(map, 3).key);
  const std::uint64_t value_block = content_bits(slot_at(map, 3).value);
  map_entry_t taken;
  standin_reset_calls();
  const map_t rest = std::move(map).drain([&](map_entry_t&& entry) { taken = std::move(entry); });
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(taken.hash, 99u);
  EXPECT_EQ(content_bits(taken.key), key_block);
  EXPECT_EQ(content_bits(taken.value), value_block);
}

TEST_F(MapDrain, ReturnsTheTableWithoutEntries) {
  map_t map = with_keys("3", "11", "19", "7");
  const void* const table = map.table();
  const map_t drained = std::move(map).drain([](map_entry_t&&) {});
  EXPECT_EQ(map.table(), nullptr);
  ASSERT_EQ(drained.table(), table);
  EXPECT_EQ(counts_of(drained), (counts_t{0, 8, 0}));
  expect_free_slots(drained);
  EXPECT_TRUE(drained.begin() == drained.end());
}

TEST_F(MapDrain, FreesDeletedSlots) {
  map_t map = with_keys("3", "11", "19");
  map.erase(map.find(text("11")));
  const map_t drained = std::move(map).drain([](map_entry_t&&) {});
  EXPECT_EQ(counts_of(drained), (counts_t{0, 8, 0}));
  expect_free_slots(drained);
}

TEST_F(MapDrain, EntriesBeyondTheCountOfTheHeadCome) {
  map_t map = with_keys("1", "3", "5");
  head_of(map).live = 1;
  int entries = 0;
  const map_t drained = std::move(map).drain([&](map_entry_t&&) { ++entries; });
  EXPECT_EQ(entries, 3);
  EXPECT_EQ(counts_of(drained), (counts_t{0, 8, 0}));
}

TEST_F(MapDrain, EntriesThatAreNotTakenAreFreed) {
  map_t map = with_keys("3", "11");
  const std::int64_t before = standin_live_blocks_total();
  const map_t drained = std::move(map).drain([](map_entry_t&&) {});
  EXPECT_EQ(standin_live_blocks_total(), before - 4);
}

TEST_F(MapDrain, NothingToDrain) {
  const auto never = [](map_entry_t&& entry) { ADD_FAILURE() << to_string(entry.key); };
  EXPECT_EQ(map_t().drain(never).table(), nullptr);
  const map_t drained = table_of(8).drain(never);
  EXPECT_EQ(counts_of(drained), (counts_t{0, 8, 0}));
}

TEST_F(MapDrain, ExceptionEndsItAndFreesTheRest) {
  const std::int64_t before = standin_live_blocks_total();
  map_t map = mapOf("1", text("1"), "3", listOf(text("v")), "5", text("5"), "7", bytes("7"));
  std::vector<std::uint64_t> seen;
  const auto throwing = [&](map_entry_t&& entry) {
    seen.push_back(entry.hash);
    if (seen.size() == 2) throw std::runtime_error("enough");
  };
  EXPECT_EQ(errorOf([&] { static_cast<void>(std::move(map).drain(throwing)); }), "enough");
  EXPECT_EQ(seen, (std::vector<std::uint64_t>{1, 3}));
  EXPECT_EQ(map.table(), nullptr);
  EXPECT_EQ(standin_live_blocks_total(), before);
}

TEST_F(MapDrain, FailureToGrowFreesTheRest) {
  const map_t original = with_keys("0", "1", "2", "3", "4", "5", "6", "7", "8");
  const std::int64_t before = standin_live_blocks_total();
  map_t target;
  const auto attempt = [&] {
    map_t source = original.copy();
    static_cast<void>(
        std::move(source).drain([&](map_entry_t&& entry) { target.assign(std::move(entry)); }));
    EXPECT_EQ(target, original);
  };
  const auto verify = [&] {
    target = map_t();
    EXPECT_EQ(standin_live_blocks_total(), before);
  };
  EXPECT_EQ(failEachAllocation(attempt, verify), 21u) << "19 copied, 2 tables of the target";
}

// ---- clear

using MapClear = PlacedKeys;

TEST_F(MapClear, WithoutATableDoesNothing) {
  map_t map;
  standin_reset_calls();
  map.clear();
  EXPECT_EQ(map.table(), nullptr);
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(MapClear, KeepsTheTableAndFreesItsSlots) {
  map_t map = with_keys("0", "1", "3", "11", "19", "7", "15", "23", "5", "6");
  map.erase(map.find(text("11")));
  ASSERT_EQ(counts_of(map), (counts_t{9, 16, 1}));
  const void* const table = map.table();
  const std::int64_t before = standin_live_blocks_total();
  standin_reset_calls();
  map.clear();
  EXPECT_EQ(standin_calls(STANDIN_FREE_STRING), 18);
  EXPECT_EQ(standin_calls_total(), 18);
  EXPECT_EQ(standin_live_blocks_total(), before - 18);
  EXPECT_EQ(map.table(), table);
  EXPECT_EQ(counts_of(map), (counts_t{0, 16, 0}));
  expect_free_slots(map);
}

TEST_F(MapClear, FreesEveryKindOfValue) {
  const std::int64_t before = standin_live_blocks_total();
  map_t map;
  std::int64_t number = 0;
  for (const kind_t& kind : KINDS) map.insert(whole(++number), kind.make());
  map.clear();
  EXPECT_EQ(standin_live_blocks_total(), before + 1) << "only the table is left";
  expect_free_slots(map);
}

TEST_F(MapClear, RemovesDeletedSlotsThatAreAlone) {
  map_t map = with_keys("3", "11");
  EXPECT_FALSE(extracted(map, text("3")).key.empty());
  EXPECT_FALSE(extracted(map, text("11")).key.empty());
  map.clear();
  EXPECT_EQ(counts_of(map), (counts_t{0, 8, 0}));
  expect_free_slots(map);
}

TEST_F(MapClear, FreesTheEntryOfAnEmptyKey) {
  map_t map;
  const data_t key;
  const data_t value = text("v");
  map.maybe_insert(map_t::const_pair(key, value));
  map.clear();
  EXPECT_EQ(counts_of(map), (counts_t{0, 8, 0}));
  expect_free_slots(map);
}

TEST_F(MapClear, ValueWithoutAnEntryIsNobodys) {
  map_t map = with_keys("3", "11");
  map.erase(map.find(text("3")));
  const data_t elsewhere = text("v");
  slot_at(map, 3).value = data_t::adopt(*elsewhere.underlying()); // as a host may have left it
  map.clear();
  EXPECT_EQ(counts_of(map), (counts_t{0, 8, 0}));
  for (std::int64_t i = 0; i < 8; ++i) EXPECT_TRUE(slot_at(map, i).is_free()) << i;
  EXPECT_STREQ(elsewhere.get<const char*>(), "v");
}

TEST_F(MapClear, FreesEntriesBeyondTheCountOfTheHead) {
  const std::int64_t before = standin_live_blocks_total();
  {
    map_t map = with_keys("1", "3", "5");
    head_of(map).live = 1;
    map.clear();
    EXPECT_EQ(standin_live_blocks_total(), before + 1) << "the table";
    EXPECT_EQ(counts_of(map), (counts_t{0, 8, 0}));
  }
  EXPECT_EQ(standin_live_blocks_total(), before);
}

TEST_F(MapClear, TableIsThenUsedAsAFreshOne) {
  map_t map = with_keys("3", "11", "19", "4");
  map.erase(map.find(text("11")));
  map.clear();
  EXPECT_FALSE(has(map, "3"));
  standin_reset_calls();
  for (const char* key : {"19", "3", "1", "2", "5", "6", "7"}) map.insert(text(key), text(key));
  EXPECT_EQ(standin_calls(STANDIN_REALLOCATE_MAP), 0);
  EXPECT_EQ(counts_of(map), (counts_t{7, 8, 0}));
  EXPECT_EQ(slot_of(map, "19"), 3);
  EXPECT_EQ(slot_of(map, "3"), 4);
}

} // namespace
} // namespace com::velanto::connectivity::test

// Maps when memory runs out: each operation with its first allocation refused, then its second, and
// so on. A failure leaves the map as it was and leaks nothing.
#include <gtest/gtest.h>

#include "tests/support/failing_allocations.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

// Runs `change` on a map with `keys` entries and no room for another without a new table, until it
// succeeds. Returns how many allocations it took.
class MapMemory : public HostFixture {
 protected:
  template <class Change>
  static std::uint64_t failing(std::int64_t keys, const Change& change) {
    map_t map;
    for (std::int64_t i = 0; i < keys; ++i) map.insert(whole(i), data_t(std::to_string(i).c_str()));
    const void* const table = map.table();
    const map_t before = map.copy();
    const auto verify = [&] {
      if (standin_failed_allocations() == 0) return;
      EXPECT_EQ(map.table(), table);
      EXPECT_TRUE(map == before);
      if (table != nullptr) {
        EXPECT_EQ(counts_of(map), counts_of(before));
      }
    };
    const std::uint64_t failed = failEachAllocation([&] { change(map); }, verify);
    EXPECT_EQ(map.size(), static_cast<std::size_t>(keys) + 1);
    return failed;
  }

  const data_t key_ = text("new key");
  const data_t value_ = listOf(text("new"), borrowed("value"));
};

TEST_F(MapMemory, InsertIntoNoTable) {
  data_t key = key_;
  data_t value = value_;
  EXPECT_EQ(failing(0, [&](map_t& map) { map.insert(std::move(key), std::move(value)); }), 1u);
}

TEST_F(MapMemory, InsertThatGrows) {
  data_t key = key_;
  data_t value = value_;
  EXPECT_EQ(failing(7, [&](map_t& map) { map.insert(std::move(key), std::move(value)); }), 1u);
}

TEST_F(MapMemory, InsertWithRoomAllocatesNothing) {
  data_t key = key_;
  data_t value = value_;
  EXPECT_EQ(failing(6, [&](map_t& map) { map.insert(std::move(key), std::move(value)); }), 0u);
}

TEST_F(MapMemory, InsertOfAPair) {
  std::pair<data_t, data_t> entry(key_, value_);
  EXPECT_EQ(failing(7, [&](map_t& map) { map.insert(std::move(entry)); }), 1u);
}

TEST_F(MapMemory, Subscript) {
  const auto subscript = [](map_t& map) { map[text("new key")]; };
  EXPECT_EQ(failing(0, subscript), 2u) << "the key's text and the table";
  EXPECT_EQ(failing(7, subscript), 2u);
}

TEST_F(MapMemory, CopyingInsertIntoNoTable) {
  const map_t::const_pair entry(key_, value_);
  EXPECT_EQ(failing(0, [&](map_t& map) { map.maybe_insert(entry); }), 5u);
}

TEST_F(MapMemory, CopyingInsertThatGrows) {
  const map_t::const_pair entry(key_, value_);
  EXPECT_EQ(failing(7, [&](map_t& map) { map.maybe_insert(entry); }), 5u);
}

TEST_F(MapMemory, CopyingInsertWithRoom) {
  const map_t::const_pair entry(key_, value_);
  EXPECT_EQ(failing(3, [&](map_t& map) { map.maybe_insert(entry); }), 4u);
}

TEST_F(MapMemory, InsertIntoATableWithoutSlots) {
  map_t map = table_of(0);
  data_t key = key_;
  data_t value = value_;
  const auto insert = [&] { map.insert(std::move(key), std::move(value)); };
  EXPECT_EQ(failEachAllocation(insert, [] {}), 1u);
  EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
}

TEST_F(MapMemory, AddOfKeyAndValue) {
  data_t key = key_;
  data_t value = value_;
  const std::uint64_t hash = hashes::key_hash(key);
  EXPECT_EQ(failing(7, [&](map_t& map) { map.add(hash, std::move(key), std::move(value)); }), 1u);
  key = key_;
  EXPECT_EQ(failing(6, [&](map_t& map) { map.add(hash, std::move(key), std::move(value)); }), 0u);
}

TEST_F(MapMemory, Copy) {
  map_t map = mapOf("a", text("1"), "b", listOf(bytes("2")), borrowed("c"), mapOf("d", custom(4)));
  map.erase(map.find(text("a")));
  const std::int64_t before = standin_live_blocks_total();
  const auto copy = [&] {
    const map_t copied = map.copy();
    EXPECT_EQ(counts_of(copied), counts_of(map));
  };
  const auto verify = [&] { EXPECT_EQ(standin_live_blocks_total(), before); };
  EXPECT_EQ(failEachAllocation(copy, verify), 8u) << "table, 3 for b, 4 for c";
}

TEST_F(MapMemory, LookupEraseAndComparisonAllocateNothing) {
  map_t map = mapOf("a", text("1"), "b", listOf(bytes("2")));
  const map_t copy = map.copy();
  const data_t key = text("a");
  standin_fail_allocations_from(1);
  EXPECT_TRUE(map == copy);
  map.erase(map.find(key));
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(standin_failed_allocations(), 0u);
}

} // namespace
} // namespace com::velanto::connectivity::test

// A table filled with entries that bring their hashes is the same, slot for slot, as one filled
// under keys that the map hashes itself: through growth, past deleted slots, and without memory.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/failing_allocations.hpp"
#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

// Every entry is on the way of a probe for its hash, which ends at the first free slot.
void expect_reachable_entries(const map_t& map) {
  const auto slot_count = static_cast<std::uint64_t>(map.capacity());
  for (std::uint64_t i = 0; i < slot_count; ++i) {
    const map_slot_t& slot = slot_at(map, static_cast<std::int64_t>(i));
    if (!slot.is_live()) continue;
    for (std::uint64_t at = slot.hash % slot_count; at != i; at = (at + 1) % slot_count) {
      ASSERT_FALSE(slot_at(map, static_cast<std::int64_t>(at)).is_free()) << "slot " << i;
    }
  }
}

std::string nth_key(std::int64_t n) { return std::to_string(n * n * 7919 % 100003) + " key"; }

using Put = void(map_t& map, map_entry_t&& entry);

// Strings hash as the host hashes them, not to their numbers.
class MapEntryTwins : public HostFixture {
 protected:
  static constexpr std::int64_t KEYS = 120;

  static void expect_twins(Put* put) {
    map_t twin;
    map_t reference;
    std::vector<std::int64_t> capacities;
    for (std::int64_t n = 0; n < KEYS; ++n) {
      SCOPED_TRACE(n);
      const std::string key = nth_key(n);
      put(twin, entry_of(key.c_str(), whole(n)));
      reference[text(key.c_str())] = whole(n);
      expect_same_slots(twin, reference);
      expect_reachable_entries(twin);
      if (HasFatalFailure()) return;
      if (capacities.empty() || capacities.back() != twin.capacity())
        capacities.push_back(twin.capacity());
    }
    EXPECT_EQ(capacities, (std::vector<std::int64_t>{8, 16, 28, 46, 72, 112, 172}));
  }

  // Every third step takes an earlier entry out; a later one puts it in again.
  static void expect_twins_with_deleted_slots(Put* put) {
    map_t twin;
    map_t reference;
    bool had_deleted_slots = false;
    for (std::int64_t n = 0; n < 3 * KEYS; ++n) {
      SCOPED_TRACE(n);
      const std::string key = nth_key(n % 3 == 2 ? n / 2 : n % KEYS);
      if (n % 3 == 2) {
        static_cast<void>(extracted(twin, text(key.c_str())));
        reference.erase(reference.find(text(key.c_str())));
      } else if (!has(reference, key.c_str())) {
        put(twin, entry_of(key.c_str(), whole(n)));
        reference[text(key.c_str())] = whole(n);
      }
      expect_same_slots(twin, reference);
      expect_reachable_entries(twin);
      if (HasFatalFailure()) return;
      had_deleted_slots = had_deleted_slots || counts_of(twin).deleted > 2;
    }
    EXPECT_TRUE(had_deleted_slots);
  }
};

void insert_entry(map_t& map, map_entry_t&& entry) { map.insert(std::move(entry)); }
void assign_entry(map_t& map, map_entry_t&& entry) { map.assign(std::move(entry)); }
void add_entry(map_t& map, map_entry_t&& entry) {
  map.add(entry.hash, std::move(entry.key), std::move(entry.value));
}

TEST_F(MapEntryTwins, Insert) { expect_twins(insert_entry); }
TEST_F(MapEntryTwins, Assign) { expect_twins(assign_entry); }
TEST_F(MapEntryTwins, Add) { expect_twins(add_entry); }

TEST_F(MapEntryTwins, InsertWithDeletedSlots) { expect_twins_with_deleted_slots(insert_entry); }
TEST_F(MapEntryTwins, AssignWithDeletedSlots) { expect_twins_with_deleted_slots(assign_entry); }
TEST_F(MapEntryTwins, AddWithDeletedSlots) { expect_twins_with_deleted_slots(add_entry); }

TEST_F(MapEntryTwins, AssignOfPresentKeys) {
  map_t twin;
  map_t reference;
  for (std::int64_t n = 0; n < 3 * KEYS; ++n) {
    const std::string key = nth_key(n % KEYS);
    twin.assign(entry_of(key.c_str(), whole(n)));
    reference[text(key.c_str())] = whole(n);
  }
  expect_same_slots(twin, reference);
}

// ---- exhausted memory

class MapEntryMemory : public HostFixture {
 protected:
  // Puts an entry into a map of `keys` others with its first allocation refused, then its second,
  // until it succeeds. Each failure must leave map and entry as they were. Returns the number of
  // allocations.
  static std::uint64_t failing(std::int64_t keys, Put* put) {
    map_t map;
    for (std::int64_t i = 0; i < keys; ++i) map.insert(whole(i), text("v"));
    const void* const table = map.table();
    const map_t before = map.copy();
    map_entry_t entry = entry_of("new key", listOf(text("new"), borrowed("value")));
    const std::uint64_t hash = entry.hash;
    const std::uint64_t key_block = content_bits(entry.key);
    const std::uint64_t value_block = content_bits(entry.value);
    const auto verify = [&] {
      if (standin_failed_allocations() == 0) return;
      EXPECT_EQ(map.table(), table);
      if (table != nullptr) expect_same_slots(map, before);
      EXPECT_EQ(entry.hash, hash);
      EXPECT_EQ(entry.key.type_tag(), std::uint32_t{VLT_TAG_STRING});
      EXPECT_EQ(content_bits(entry.key), key_block);
      EXPECT_EQ(entry.value.type_tag(), std::uint32_t{VLT_TAG_LIST});
      EXPECT_EQ(content_bits(entry.value), value_block);
    };
    const std::uint64_t failed = failEachAllocation([&] { put(map, std::move(entry)); }, verify);
    EXPECT_EQ(map.size(), static_cast<std::size_t>(keys) + 1);
    EXPECT_EQ(content_bits(at(map, "new key")), value_block);
    return failed;
  }
};

TEST_F(MapEntryMemory, FirstTable) {
  for (Put* put : {insert_entry, assign_entry, add_entry}) EXPECT_EQ(failing(0, put), 1u);
}

TEST_F(MapEntryMemory, LargerTable) {
  for (Put* put : {insert_entry, assign_entry, add_entry}) EXPECT_EQ(failing(7, put), 1u);
}

TEST_F(MapEntryMemory, WithRoomNothingIsAllocated) {
  for (Put* put : {insert_entry, assign_entry, add_entry}) EXPECT_EQ(failing(6, put), 0u);
}

TEST_F(MapEntryMemory, TableWithoutSlotsIsReplaced) {
  for (Put* put : {insert_entry, assign_entry}) {
    map_t map = table_of(0);
    map_entry_t entry = entry_of("new key", text("value"));
    EXPECT_EQ(failEachAllocation([&] { put(map, std::move(entry)); }, [] {}), 1u);
    EXPECT_EQ(counts_of(map), (counts_t{1, 8, 0}));
    EXPECT_EQ(at(map, "new key"), text("value"));
  }
}

TEST_F(MapEntryMemory, NothingElseAllocates) {
  map_t map = mapOf("a", text("1"), "b", text("2"), "c", listOf(text("3")));
  map_entry_t present = entry_of("a", text("new"));
  map_entry_t assigned = entry_of("b", text("new"));
  const data_t key = text("c");
  standin_fail_allocations_from(1);
  map.insert(std::move(present));
  map.assign(std::move(assigned));
  const map_entry_t entry = extracted(map, key);
  const map_t rest = std::move(map).drain([](map_entry_t&&) {});
  EXPECT_EQ(standin_failed_allocations(), 0u);
  EXPECT_FALSE(entry.key.empty());
  EXPECT_EQ(counts_of(rest), (counts_t{0, 8, 0}));
}

} // namespace
} // namespace com::velanto::connectivity::test

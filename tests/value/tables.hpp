// Map tables seen from outside: reading slots and counts, and writing tables down slot by slot, as
// a host may hand them over.
#ifndef VLT_TESTS_VALUE_TABLES_HPP
#define VLT_TESTS_VALUE_TABLES_HPP

#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <utility>

#include "standin/standin.h"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"
#include "value/hashes.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::test {

// How a map refuses keys.
inline constexpr const char* NULL_KEY = "Cannot have a null key";
inline constexpr const char* CUSTOM_KEY = "Cannot use custom values as a key";

struct counts_t {
  std::int64_t live;
  std::int64_t capacity;
  std::int64_t deleted;
  bool operator==(const counts_t&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const counts_t& counts) {
  return out << counts.live << " live, " << counts.capacity << " slots, " << counts.deleted
             << " deleted";
}

inline vlt_underlying_map_table_t& head_of(const map_t& map) {
  return const_cast<vlt_underlying_map_table_t&>(*map.table());
}
// The map must have a table.
inline counts_t counts_of(const map_t& map) {
  const vlt_underlying_map_table_t& head = head_of(map);
  return {head.live, head.capacity, head.deleted};
}
inline map_slot_t& slot_at(const map_t& map, std::int64_t index) {
  return reinterpret_cast<map_slot_t*>(&head_of(map) + 1)[index];
}
// The slot of the entry under `key`, found without the map's own lookup; -1 when there is none.
inline std::int64_t slot_of(const map_t& map, const char* key) {
  const data_t wanted(key);
  for (std::int64_t i = 0; i < head_of(map).capacity; ++i) {
    if (slot_at(map, i).key == wanted) return i;
  }
  return -1;
}

inline map_t table_of(std::int64_t capacity) {
  map_t map(vlt_allocate_map(capacity));
  return map;
}
inline void put(const map_t& map, std::int64_t index, std::uint64_t hash, data_t&& key,
                data_t&& value) {
  map_slot_t& slot = slot_at(map, index);
  slot.hash = hash;
  slot.key = std::move(key);
  slot.value = std::move(value);
  ++head_of(map).live;
}
inline bool is_deleted(const map_slot_t& slot) {
  return slot.hash == map_slot_t::DELETED && slot.key.empty();
}
inline void put_deleted_slot(const map_t& map, std::int64_t index) {
  slot_at(map, index).hash = map_slot_t::DELETED;
  ++head_of(map).deleted;
}

// Slot by slot, with the counts; whether neither has a table if one has none.
inline void expect_same_slots(const map_t& actual, const map_t& expected) {
  ASSERT_EQ(actual.table() == nullptr, expected.table() == nullptr);
  if (expected.table() == nullptr) return;
  ASSERT_EQ(counts_of(actual), counts_of(expected));
  for (std::int64_t i = 0; i < expected.capacity(); ++i) {
    SCOPED_TRACE(i);
    ASSERT_EQ(slot_at(actual, i).hash, slot_at(expected, i).hash);
    ASSERT_EQ(slot_at(actual, i).key, slot_at(expected, i).key);
    ASSERT_EQ(slot_at(actual, i).value, slot_at(expected, i).value);
  }
}

// An entry as a table would store it.
inline map_entry_t entry_of(data_t&& key, data_t&& value) {
  const std::uint64_t hash = hashes::key_hash(key);
  return {hash, std::move(key), std::move(value)};
}
inline map_entry_t entry_of(const char* key, data_t&& value) {
  return entry_of(text(key), std::move(value));
}

// String keys hash to the number at their start, so that a test says the place of an entry: in a
// table of 8 slots "3", "11" and "19" all start at slot 3.
class PlacedKeys : public HostFixture {
 public:
  ~PlacedKeys() override { standin_set_string_hash(nullptr); }

 protected:
  PlacedKeys() {
    standin_set_string_hash([](const char* text, std::uint64_t) -> std::uint64_t {
      return std::strtoull(text, nullptr, 10);
    });
  }

  // A map with these keys, each with itself as value, inserted in this order.
  template <class... Keys>
  static map_t with_keys(Keys... keys) {
    map_t map;
    (map.insert(text(keys), text(keys)), ...);
    return map;
  }
};

} // namespace com::velanto::connectivity::test

#endif

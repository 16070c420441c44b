// Values that no sender means, and the places for them in a message.
#ifndef VLT_TESTS_MISUSE_ODD_VALUES_HPP
#define VLT_TESTS_MISUSE_ODD_VALUES_HPP

#include <array>
#include <cstddef>
#include <vector>

#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {

struct odd_value_t {
  const char* name;
  data_t (*make)();
};

inline const std::vector<odd_value_t> ODD_VALUES = [] {
  std::vector<odd_value_t> values;
  values.reserve(std::size(KINDS));
  for (const kind_t& kind : KINDS) values.push_back({kind.name, kind.make});
  const odd_value_t others[] = {
      {"null text", [] { return nullText(); }},
      {"null borrowed text", [] { return tagged(VLT_TAG_BORROWED_STRING); }},
      {"null list", [] { return tagged(VLT_TAG_LIST); }},
      {"null map", [] { return tagged(VLT_TAG_MAP); }},
      {"null buffer", [] { return tagged(VLT_TAG_BUFFER); }},
      {"null custom object", [] { return tagged(VLT_TAG_CUSTOM); }},
      {"empty text", [] { return text(""); }},
      {"map without slots", []() -> data_t { return table_of(0); }},
      {"NaN", [] { return tagged(VLT_TAG_DOUBLE, 0x7ff8000000000000); }},
      {"boolean of other bits", [] { return tagged(VLT_TAG_BOOLEAN, 0xff02); }},
      {"list of all kinds", [] {
         list_t list(standin_make_list(KINDS.size(), KINDS.size()));
         for (std::size_t i = 0; i < KINDS.size(); ++i) list[i] = KINDS[i].make();
         return data_t(std::move(list));
       }}};
  values.insert(values.end(), std::begin(others), std::end(others));
  return values;
}();

// Every value in `value`, itself first.
inline void collect(data_t& value, std::vector<data_t*>& places) {
  places.push_back(&value);
  if (value.type_tag() == VLT_TAG_LIST) {
    for (data_t& element : value.get<list_t>()) collect(element, places);
  } else if (value.type_tag() == VLT_TAG_MAP) {
    for (auto entry : value.get<map_t>()) collect(entry.second, places);
  }
}

// The value at a place of the payload, then of the metadata; null: no such place.
inline data_t* valueAt(Message& message, std::size_t place) {
  std::vector<data_t*> places;
  collect(message.getPayload(), places);
  for (auto entry : message.getMetadataMap()) collect(entry.second, places);
  return place < places.size() ? places[place] : nullptr;
}

// The same for maps, the metadata first.
inline map_t* mapAt(Message& message, std::size_t place) {
  std::vector<map_t*> maps = {&message.getMetadataMap()};
  std::vector<data_t*> places;
  collect(message.getPayload(), places);
  for (data_t* const value : places) {
    if (value->type_tag() == VLT_TAG_MAP) maps.push_back(&value->get<map_t>());
  }
  return place < maps.size() ? maps[place] : nullptr;
}

// Puts an entry where a lookup finds it; the table must have a free slot.
inline void place(const map_t& map, map_entry_t&& entry) {
  const auto capacity = static_cast<std::uint64_t>(map.capacity());
  std::uint64_t slot = entry.hash % capacity;
  while (slot_at(map, static_cast<std::int64_t>(slot)).is_live()) slot = (slot + 1) % capacity;
  put(map, static_cast<std::int64_t>(slot), entry.hash, std::move(entry.key),
      std::move(entry.value));
}

// The entries of `map` in a table of this capacity.
inline map_t rebuilt(map_t&& map, std::int64_t capacity) {
  map_t result = table_of(capacity);
  static_cast<void>(
      std::move(map).drain([&](map_entry_t&& entry) { place(result, std::move(entry)); }));
  return result;
}

// With one more under `key`, which, unlike here, a map may refuse.
inline map_t rebuiltWith(map_t&& map, data_t&& key) {
  constexpr std::uint64_t HASH_OF_CUSTOM = 77; // any: they have none
  map_t result = rebuilt(std::move(map), 2 * static_cast<std::int64_t>(map.size()) + 3);
  const std::uint64_t hash = [&] {
    try {
      return hashes::key_hash(key);
    } catch (const std::runtime_error&) {
      return HASH_OF_CUSTOM;
    }
  }();
  place(result, {hash, std::move(key), text("one more")});
  return result;
}

} // namespace com::velanto::connectivity::test

#endif

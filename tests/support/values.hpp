// The words in which tests write values down: one expression a value, any kind, any nesting.
//
//   mapOf("id", text("1"), "source", mapOf("id", text("7")), "tags", listOf(text("a"), whole(2)))
#ifndef VLT_TESTS_SUPPORT_VALUES_HPP
#define VLT_TESTS_SUPPORT_VALUES_HPP

#include <bit>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "standin/standin.h"
#include "value/get_visitor.hpp"
#include "value/map_slot.hpp"
#include "value/message.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity {

// How a failed comparison shows values.
inline void PrintTo(const data_t& value, std::ostream* out) { *out << to_string(value); }
inline void PrintTo(const map_t& map, std::ostream* out) { *out << to_string(map); }

} // namespace com::velanto::connectivity

namespace com::velanto::connectivity::test {

inline data_t text(const char* content) { return data_t(content); }
inline data_t whole(std::int64_t content) { return data_t(content); }
inline data_t real(double content) { return data_t(content); }
inline data_t truth(bool content) { return data_t(content); }
inline data_t decimal(std::uint64_t bits) { return data_t(vlt_underlying_decimal_t{bits}); }

// A value of any tag with these content bits, and owner of the block that they point to.
inline data_t tagged(std::uint32_t tag, std::uint64_t bits = 0) {
  vlt_underlying_data_t raw{};
  std::memcpy(&raw.value, &bits, sizeof bits);
  raw.tag = tag;
  return data_t::adopt(raw);
}
// A string that does not own its bytes, which must outlive it.
inline data_t borrowed(const char* content) {
  return tagged(VLT_TAG_BORROWED_STRING, reinterpret_cast<std::uintptr_t>(content));
}
inline data_t nullText() { return tagged(VLT_TAG_STRING); }
inline data_t custom(std::uint64_t label = 1) {
  vlt_underlying_data_t raw{};
  raw.value.custom = standin_make_custom(label);
  raw.tag = VLT_TAG_CUSTOM;
  return data_t::adopt(raw);
}
inline data_t bytes(const std::string& content) {
  vlt_underlying_buffer_t* const block =
      standin_make_buffer(static_cast<std::uint32_t>(content.size()));
  std::memcpy(block + 1, content.data(), content.size());
  return buffer_t(block);
}

template <class... Elements>
data_t listOf(Elements&&... elements) {
  const auto count = static_cast<std::int64_t>(sizeof...(elements));
  list_t list(standin_make_list(count, count));
  [[maybe_unused]] std::size_t at = 0;
  ((list[at++] = std::forward<Elements>(elements)), ...);
  return list;
}

inline data_t keyOf(const char* key) { return data_t(key); }
inline data_t keyOf(data_t&& key) { return std::move(key); }

inline void fill(map_t&) {}
template <class Key, class... Rest>
void fill(map_t& map, Key&& key, data_t&& value, Rest&&... rest) {
  map[keyOf(std::forward<Key>(key))] = std::move(value);
  fill(map, std::forward<Rest>(rest)...);
}
// Keys are strings or values, inserted in the order of the arguments.
template <class... KeysAndValues>
map_t mapOf(KeysAndValues&&... entries) {
  map_t map;
  fill(map, std::forward<KeysAndValues>(entries)...);
  return map;
}

inline Message notification(const char* path, data_t&& payload) {
  return Message(std::move(payload), mapOf("pulsarPath", text(path)));
}

// The value under a key; a test failure by exception when there is none.
inline data_t& at(map_t& map, const data_t& key) {
  const map_t::iterator entry = map.find(key);
  if (entry == map.end()) throw std::out_of_range("no entry " + to_string(key));
  return (*entry).second;
}
inline data_t& at(map_t& map, const char* key) { return at(map, data_t(key)); }
inline bool has(const map_t& map, const char* key) { return map.find(data_t(key)) != map.end(); }

// The entry under a key, out of the map; no entry when there is none.
inline map_entry_t extracted(map_t& map, key_ref_t key) {
  map_entry_t taken;
  map.extract(key, [&](map_entry_t&& entry) noexcept { taken = std::move(entry); });
  return taken;
}

// A pointer that nobody can read through: for handles that are only passed on.
inline void* unreadable(std::uintptr_t address) { return std::bit_cast<void*>(address); }

// The what() of an exception of `action`, or "nothing thrown".
template <class Action>
std::string errorOf(const Action& action) {
  try {
    action();
  } catch (const std::exception& e) {
    return e.what();
  }
  return "nothing thrown";
}

} // namespace com::velanto::connectivity::test

#endif

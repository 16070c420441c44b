// A second, plain description of map tables to compare the real ones with: slots in vectors, values
// as records, each rule once and none of them clever. It shares only the host's layouts with the
// value layer; tests turn values into blocks and compare them byte by byte.
//
//   value_t    a value                   table_t    the content of a map, slot by slot
//   hash_of    the hash of any kind      equal      the equality of any kind
//   insert, erase, copied               the effects of operations on a table
#ifndef VLT_TESTS_VALUE_MAP_MODEL_HPP
#define VLT_TESTS_VALUE_MAP_MODEL_HPP

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "host/storage.h"

namespace com::velanto::connectivity::test::model {

struct slot_t;

struct table_t {
  bool exists = false; // false: the map's pointer is null
  std::int64_t live = 0;
  std::int64_t deleted = 0;
  std::vector<slot_t> slots;
};

struct value_t {
  std::uint32_t tag = VLT_TAG_EMPTY;
  std::uint64_t bits = 0; // the content of scalars and unknown kinds, a custom object's label
  bool null = false;      // strings, lists, buffers, custom: there is no block
  std::string text;       // strings, and the bytes of buffers
  std::vector<value_t> elements; // lists
  table_t table;                 // maps
};

struct slot_t {
  std::uint64_t hash = 0;
  value_t key;
  value_t value;
};

inline bool is_free(const slot_t& slot) { return slot.hash == 0 && slot.key.tag == VLT_TAG_EMPTY; }
inline bool is_deleted(const slot_t& slot) {
  return slot.hash == 1 && slot.key.tag == VLT_TAG_EMPTY;
}
inline bool is_live(const slot_t& slot) { return !is_free(slot) && !is_deleted(slot); }

// ---- hashing; nothing: a custom object, which has no hash

inline constexpr std::uint64_t FIXED_SEED = 0x243FCAF1;

inline std::uint64_t murmur(const std::string& bytes, std::uint64_t seed) {
  constexpr std::uint64_t M = 0xc6a4a7935bd1e995;
  std::uint64_t h = seed ^ (bytes.size() * M);
  for (std::size_t at = 0; at < bytes.size(); at += 8) {
    const std::size_t count = bytes.size() - at < 8 ? bytes.size() - at : 8;
    std::uint64_t k = 0;
    for (std::size_t i = count; i > 0; --i) {
      k = (k << 8) | static_cast<unsigned char>(bytes[at + i - 1]);
    }
    if (count == 8) {
      k *= M;
      k ^= k >> 47;
      k *= M;
    }
    h ^= k;
    h *= M;
  }
  h ^= h >> 47;
  h *= M;
  h ^= h >> 47;
  return h;
}

inline std::string little_endian(std::uint64_t bits) {
  std::string bytes;
  for (int i = 0; i < 8; ++i) bytes += static_cast<char>((bits >> (8 * i)) & 0xff);
  return bytes;
}

inline double double_of(const value_t& value) {
  double content = 0;
  std::memcpy(&content, &value.bits, sizeof content);
  return content;
}

using hash_t = std::optional<std::uint64_t>;

inline hash_t hash_of(const value_t& value, std::uint64_t seed);

inline hash_t hash_of(const table_t& table) {
  std::uint64_t sum = FIXED_SEED;
  for (const slot_t& slot : table.slots) {
    if (!is_live(slot)) continue;
    const hash_t key = hash_of(slot.key, FIXED_SEED);
    const hash_t value = hash_of(slot.value, FIXED_SEED);
    if (!key || !value) return {};
    sum += *key + *value;
  }
  return sum;
}

inline hash_t hash_of_list(const std::vector<value_t>& elements) {
  hash_t hash = FIXED_SEED;
  for (const value_t& element : elements) {
    hash = hash_of(element, *hash);
    if (!hash) return {};
  }
  return hash;
}

inline hash_t hash_of(const value_t& value, std::uint64_t seed) {
  switch (value.tag) {
    case VLT_TAG_BOOLEAN:
      return value.bits != 0 ? seed : ~seed;
    case VLT_TAG_DOUBLE:
      return murmur(little_endian(double_of(value) == 0 ? 0 : value.bits), seed);
    case VLT_TAG_INTEGER:
    case VLT_TAG_DECIMAL:
      return murmur(little_endian(value.bits), seed);
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return vlt_hash_string(value.text.c_str(), seed);
    case VLT_TAG_LIST:
      return hash_of_list(value.elements);
    case VLT_TAG_MAP:
      return hash_of(value.table);
    case VLT_TAG_BUFFER:
      return murmur(value.text, FIXED_SEED);
    case VLT_TAG_CUSTOM:
      return {};
    default:
      return seed;
  }
}

// ---- equality and lookup

// Where a lookup ends: the key's slot, or where the key would go.
struct place_t {
  std::optional<std::size_t> found;
  std::optional<std::size_t> vacant;
};

inline bool equal(const value_t& left, const value_t& right);

inline place_t look_up(const table_t& table, const value_t& key, std::uint64_t hash) {
  place_t place;
  const std::size_t capacity = table.slots.size();
  for (std::size_t step = 0; step < capacity; ++step) {
    const std::size_t i = (hash % capacity + step) % capacity;
    const slot_t& slot = table.slots[i];
    if (is_live(slot)) {
      if (slot.hash == hash && equal(slot.key, key)) return {i, {}};
      continue;
    }
    if (!place.vacant) place.vacant = i;
    if (is_free(slot)) return place;
  }
  return place;
}

inline bool equal(const table_t& left, const table_t& right) {
  if (left.live != right.live) return false;
  for (const slot_t& slot : left.slots) {
    if (!is_live(slot)) continue;
    const place_t place = look_up(right, slot.key, slot.hash);
    if (!place.found || !equal(slot.value, right.slots[*place.found].value)) return false;
  }
  return true;
}

inline bool equal(const std::vector<value_t>& left, const std::vector<value_t>& right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (!equal(left[i], right[i])) return false;
  }
  return true;
}

inline bool equal(const value_t& left, const value_t& right) {
  if (left.tag != right.tag) return false;
  switch (left.tag) {
    case VLT_TAG_EMPTY:
      return true;
    case VLT_TAG_DOUBLE:
      return double_of(left) == double_of(right);
    case VLT_TAG_BOOLEAN:
    case VLT_TAG_INTEGER:
    case VLT_TAG_DECIMAL:
      return left.bits == right.bits;
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
    case VLT_TAG_BUFFER:
      return left.text == right.text;
    case VLT_TAG_LIST:
      return equal(left.elements, right.elements);
    case VLT_TAG_MAP:
      return equal(left.table, right.table);
    default:
      return false; // custom and unknown
  }
}

// ---- operations

// As the host moves live entries into another number of slots.
inline void rebuild(table_t& table, std::size_t capacity) {
  std::vector<slot_t> slots(capacity);
  for (slot_t& slot : table.slots) {
    if (!is_live(slot)) continue;
    std::size_t i = slot.hash % capacity;
    while (is_live(slots[i])) i = (i + 1) % capacity;
    slots[i] = std::move(slot);
  }
  table.slots = std::move(slots);
  table.deleted = 0;
}

inline void make_room(table_t& table) {
  if (!table.exists) {
    table.exists = true;
    table.slots.resize(8);
    return;
  }
  const bool is_crowded = static_cast<double>(table.slots.size()) * 0.75 <
                          static_cast<double>(table.live + table.deleted);
  if (!is_crowded && !table.slots.empty()) return;
  const auto wanted = static_cast<std::size_t>(2 * table.live + 2);
  rebuild(table, wanted < 8 ? 8 : wanted);
}

struct insertion_t {
  std::size_t slot;
  bool inserted;
};

// The key must have this hash.
inline insertion_t insert(table_t& table, std::uint64_t hash, const value_t& key,
                          const value_t& value) {
  if (const place_t place = look_up(table, key, hash); place.found) return {*place.found, false};
  make_room(table);
  const std::size_t slot = look_up(table, key, hash).vacant.value();
  table.slots[slot] = {hash, key, value};
  ++table.live;
  return {slot, true};
}

// The slot must be live.
inline void erase(table_t& table, std::size_t slot) {
  table.slots[slot] = {1, {}, {}};
  --table.live;
  ++table.deleted;
}

inline value_t copied(value_t value);

inline table_t copied(table_t table) {
  for (slot_t& slot : table.slots) {
    slot.key = copied(std::move(slot.key));
    slot.value = copied(std::move(slot.value));
  }
  return table;
}

// A copy owns all its strings.
inline value_t copied(value_t value) {
  if (value.tag == VLT_TAG_BORROWED_STRING) value.tag = VLT_TAG_STRING;
  for (value_t& element : value.elements) element = copied(std::move(element));
  value.table = copied(std::move(value.table));
  return value;
}

} // namespace com::velanto::connectivity::test::model

#endif

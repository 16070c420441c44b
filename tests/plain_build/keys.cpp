#include "tests/plain_build/keys.hpp"

#include <cstring>
#include <span>
#include <stdexcept>

#include "host/storage.h"
#include "tests/plain_build/table.hpp"

namespace plain_build {
namespace {

std::span<const RawValue> elementsOf(const vlt_underlying_vector_t* list) {
  if (list == nullptr) return {};
  return {reinterpret_cast<const RawValue*>(list + 1), static_cast<size_t>(list->count)};
}

std::span<const unsigned char> bytesOf(const vlt_underlying_buffer_t* buffer) {
  if (buffer == nullptr) return {};
  return {reinterpret_cast<const unsigned char*>(buffer + 1), buffer->length};
}

// MurmurHash64A: whole blocks of eight bytes, the rest of one to seven, then the avalanche.
uint64_t hashOfBytes(std::span<const unsigned char> bytes, uint64_t seed) {
  constexpr uint64_t FACTOR = 0xc6a4a7935bd1e995;
  constexpr int SHIFT = 47;
  uint64_t hash = seed ^ (bytes.size() * FACTOR);
  for (; bytes.size() >= 8; bytes = bytes.subspan(8)) {
    uint64_t block = 0;
    std::memcpy(&block, bytes.data(), 8);
    block *= FACTOR;
    block ^= block >> SHIFT;
    hash = (hash ^ (block * FACTOR)) * FACTOR;
  }
  if (!bytes.empty()) {
    uint64_t rest = 0;
    std::memcpy(&rest, bytes.data(), bytes.size());
    hash = (hash ^ rest) * FACTOR;
  }
  hash ^= hash >> SHIFT;
  hash *= FACTOR;
  return hash ^ (hash >> SHIFT);
}

template <class Number>
uint64_t hashOfNumber(Number number, uint64_t seed) {
  static_assert(sizeof number == 8, "numbers hash as one block");
  return hashOfBytes({reinterpret_cast<const unsigned char*>(&number), sizeof number}, seed);
}

uint64_t hashOfList(const vlt_underlying_vector_t* list) {
  uint64_t hash = KEY_SEED;
  for (const RawValue& element : elementsOf(list)) hash = hashOf(element, hash);
  return hash;
}

uint64_t hashOfTable(RawTable* table) {
  uint64_t hash = KEY_SEED;
  for (const Slot& slot : slotsOf(table)) {
    if (isLive(slot)) hash += hashOf(slot.key) + hashOf(slot.value);
  }
  return hash;
}

bool areEqualLists(const vlt_underlying_vector_t* left, const vlt_underlying_vector_t* right) {
  const std::span<const RawValue> a = elementsOf(left);
  const std::span<const RawValue> b = elementsOf(right);
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (!areEqual(a[i], b[i])) return false;
  }
  return true;
}

bool areEqualTables(RawTable* left, RawTable* right) {
  if ((left == nullptr ? 0 : left->live) != (right == nullptr ? 0 : right->live)) return false;
  for (const Slot& slot : slotsOf(left)) {
    if (!isLive(slot)) continue;
    const Slot* const other = findSlot(right, slot.key);
    if (other == nullptr || !areEqual(slot.value, other->value)) return false;
  }
  return true;
}

bool areEqualBuffers(const vlt_underlying_buffer_t* left, const vlt_underlying_buffer_t* right) {
  const std::span<const unsigned char> a = bytesOf(left);
  const std::span<const unsigned char> b = bytesOf(right);
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size()) == 0);
}

} // namespace

uint64_t hashOf(const RawValue& value, uint64_t seed) {
  switch (value.tag) {
    case VLT_TAG_BOOLEAN:
      return byteOf(value) != 0 ? seed : ~seed;
    case VLT_TAG_DOUBLE:
      return hashOfNumber(value.value.real == 0 ? 0.0 : value.value.real, seed);
    case VLT_TAG_INTEGER:
      return hashOfNumber(value.value.integer, seed);
    case VLT_TAG_DECIMAL:
      return hashOfNumber(value.value.decimal.bits, seed);
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return vlt_hash_string(textOf(value), seed);
    case VLT_TAG_LIST:
      return hashOfList(value.value.list);
    case VLT_TAG_MAP:
      return hashOfTable(value.value.map);
    case VLT_TAG_BUFFER:
      return hashOfBytes(bytesOf(value.value.buffer), KEY_SEED);
    case VLT_TAG_CUSTOM:
      throw std::runtime_error("Cannot use custom values as a key");
    default:
      return seed;
  }
}

bool areEqual(const RawValue& left, const RawValue& right) {
  if (left.tag != right.tag) return false;
  switch (left.tag) {
    case VLT_TAG_EMPTY:
      return true;
    case VLT_TAG_BOOLEAN:
      return byteOf(left) == byteOf(right);
    case VLT_TAG_DOUBLE:
      return left.value.real == right.value.real;
    case VLT_TAG_INTEGER:
      return left.value.integer == right.value.integer;
    case VLT_TAG_DECIMAL:
      return left.value.decimal.bits == right.value.decimal.bits;
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return std::strcmp(textOf(left), textOf(right)) == 0;
    case VLT_TAG_LIST:
      return areEqualLists(left.value.list, right.value.list);
    case VLT_TAG_MAP:
      return areEqualTables(left.value.map, right.value.map);
    case VLT_TAG_BUFFER:
      return areEqualBuffers(left.value.buffer, right.value.buffer);
    default:
      return false;
  }
}

} // namespace plain_build

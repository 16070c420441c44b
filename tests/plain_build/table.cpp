#include "tests/plain_build/table.hpp"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "host/storage.h"
#include "tests/plain_build/keys.hpp"

namespace plain_build {
namespace {

constexpr int64_t FIRST_CAPACITY = 8;
constexpr uint64_t DELETED_HASH = 1;

struct Probe {
  Slot* found = nullptr;
  Slot* vacant = nullptr; // for an insertion: the first deleted slot met, or the free one
};

Probe probe(RawTable* table, const RawValue& key, uint64_t hash) {
  const std::span<Slot> slots = slotsOf(table);
  Probe result;
  for (size_t step = 0; step < slots.size(); ++step) {
    Slot& slot = slots[(hash % slots.size() + step) % slots.size()];
    if (isLive(slot)) {
      if (slot.hash == hash && areEqual(slot.key, key)) {
        result.found = &slot;
        return result;
      }
      continue;
    }
    if (result.vacant == nullptr) result.vacant = &slot;
    if (slot.hash != DELETED_HASH) return result;
  }
  return result;
}

} // namespace

std::span<Slot> slotsOf(RawTable* table) noexcept {
  if (table == nullptr) return {};
  return {reinterpret_cast<Slot*>(table + 1), static_cast<size_t>(table->capacity)};
}

bool isLive(const Slot& slot) noexcept { return slot.hash > 1; } // 0 is free, 1 is deleted

Slot* findSlot(RawTable* table, const RawValue& key) {
  return probe(table, key, hashOf(key)).found;
}

Slot* findSlot(RawTable* table, const char* key) {
  return findSlot(table, RawValue{{.string = key}, VLT_TAG_STRING});
}

Table::~Table() { vlt_free_map(table_); }

RawTable* Table::release() noexcept { return std::exchange(table_, nullptr); }

Value Table::toValue() noexcept { return Value({{.map = release()}, VLT_TAG_MAP}); }

void Table::set(Value key, Value value) {
  Slot* const slot = placeOf(std::move(key)).slot;
  const Value old(std::exchange(slot->value, value.release()));
}

void Table::add(Value key, Value value) {
  const Place place = placeOf(std::move(key));
  if (place.is_new) place.slot->value = value.release();
}

std::optional<Value> Table::take(const char* key) {
  Slot* const slot = findSlot(table_, key);
  if (slot == nullptr) return std::nullopt;
  return takeSlot(*slot).value;
}

std::vector<Entry> Table::takeAll() {
  std::vector<Entry> entries;
  for (Slot& slot : slotsOf(table_)) {
    if (isLive(slot)) entries.push_back(takeSlot(slot));
  }
  return entries;
}

// The slot of `key`; a new one has an empty value.
Table::Place Table::placeOf(Value key) {
  if (key.raw().tag == VLT_TAG_EMPTY) throw std::runtime_error("Cannot have a null key");
  const uint64_t hash = hashOf(key.raw());
  if (Slot* const found = probe(table_, key.raw(), hash).found) return {found, false};
  makeRoom();
  Slot* const slot = probe(table_, key.raw(), hash).vacant;
  slot->hash = hash;
  slot->key = key.release();
  slot->value = EMPTY;
  ++table_->live;
  return {slot, true};
}

// The new capacity follows the live entries alone. The count of deleted slots is not reduced when an
// insertion reuses one; only a new table has none.
void Table::makeRoom() {
  RawTable* grown = table_;
  if (table_ == nullptr) {
    grown = vlt_allocate_map(FIRST_CAPACITY);
  } else if (table_->capacity == 0 || static_cast<double>(table_->capacity) * 0.75 <
                                          static_cast<double>(table_->live + table_->deleted)) {
    grown = vlt_reallocate_map(table_, std::max(FIRST_CAPACITY, 2 * table_->live + 2));
  }
  if (grown == nullptr) throw std::bad_alloc();
  table_ = grown;
}

Entry Table::takeSlot(Slot& slot) noexcept {
  Entry entry{Value(std::exchange(slot.key, EMPTY)), Value(std::exchange(slot.value, EMPTY))};
  slot.hash = DELETED_HASH;
  --table_->live;
  ++table_->deleted;
  return entry;
}

} // namespace plain_build

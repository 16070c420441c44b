#include "value/map_t.hpp"

#include <new>
#include <stdexcept>

#include "value/hashes.hpp"
#include "value/iterator_checks.hpp"
#include "value/map_slot.hpp"
#include "value/nested_equality.hpp"
#include "value/table_rules.hpp"

namespace com::velanto::connectivity {

namespace {

void require_key(const data_t& key) {
  if (key.empty()) throw std::runtime_error("Cannot have a null key");
}

// Refuses keys that an insertion would refuse if it had to hash them: a custom value, or a
// container with one.
void require_key_of(const map_entry_t& entry) {
  if (entry.key.type_tag() == VLT_TAG_STRING) return;
  require_key(entry.key);
  switch (entry.key.type_tag()) {
    case VLT_TAG_LIST:
    case VLT_TAG_MAP:
    case VLT_TAG_CUSTOM:
      static_cast<void>(hashes::key_hash(entry.key));
      break;
    default:
      break;
  }
}

} // namespace

key_ref_t::key_ref_t(const data_t& any) : key(any), hash(hashes::key_hash(any)) {}
key_ref_t::key_ref_t(const map_entry_t& entry) noexcept : key(entry.key), hash(entry.hash) {}

map_t map_t::copy() const {
  if (block_ == nullptr) return {};
  map_t result(vlt_allocate_map(block_->capacity));
  if (result.block_ == nullptr) throw std::bad_alloc();
  for (std::int64_t i = 0; i < block_->capacity; ++i) {
    const map_slot_t& from = slots()[i];
    map_slot_t& to = result.slots()[i];
    to.hash = from.hash;
    if (!from.is_live()) continue; // the bytes of its value mean nothing
    // The key first: a slot with a key counts as live and is freed with the table.
    to.key = from.key;
    to.value = from.value;
  }
  result.block_->live = block_->live;
  result.block_->deleted = block_->deleted;
  return result;
}

// ---- lookup

// Apart from find_for_insert, which also has to remember a place for a new entry: lookups are most
// of a conversion's work.
map_slot_t* map_t::find_slot(key_ref_t key) const {
  const std::int64_t slot_count = capacity();
  if (slot_count == 0) return nullptr;
  map_slot_t* const slot = slots();
  const std::int64_t start = table_rules::home_slot(key.hash, slot_count);
  std::int64_t i = start;
  do {
    // No vacant slot: its hash is not the one of an empty key.
    if (slot[i].hash == key.hash && slot[i].key == key.key) return &slot[i];
    if (slot[i].is_free()) return nullptr;
    if (++i == slot_count) i = 0;
  } while (i != start);
  return nullptr;
}

map_t::probe_t map_t::find_for_insert(key_ref_t key) const {
  const std::int64_t slot_count = capacity();
  if (slot_count == 0) return {nullptr, nullptr};
  map_slot_t* const first = slots();
  map_slot_t* const end = first + slot_count;
  map_slot_t* const start = first + table_rules::home_slot(key.hash, slot_count);
  map_slot_t* vacant = nullptr;
  map_slot_t* slot = start;
  do {
    if (slot->is_vacant()) {
      if (vacant == nullptr) vacant = slot;
      if (slot->hash == map_slot_t::FREE) break;
    } else if (slot->hash == key.hash) [[unlikely]] {
      return find_among_equal_hashes(key, {slot, vacant});
    }
    if (++slot == end) slot = first;
  } while (slot != start);
  return {nullptr, vacant};
}

// The same from a slot on that holds an entry of the hash. Apart, since comparing keys takes calls,
// and most insertions pass no other entry of their hash.
map_t::probe_t map_t::find_among_equal_hashes(key_ref_t key, probe_t at) const {
  map_slot_t* const first = slots();
  map_slot_t* const end = first + capacity();
  map_slot_t* const start = first + table_rules::home_slot(key.hash, capacity());
  map_slot_t* slot = at.found;
  do {
    if (slot->is_vacant()) {
      if (at.vacant == nullptr) at.vacant = slot;
      if (slot->hash == map_slot_t::FREE) break;
    } else if (slot->hash == key.hash && slot->key == key.key) {
      return {slot, nullptr};
    }
    if (++slot == end) slot = first;
  } while (slot != start);
  return {nullptr, at.vacant};
}

// The first slot on the way of `hash` that holds no entry; there must be one.
map_slot_t* map_t::find_vacant(std::uint64_t hash) const noexcept {
  const std::int64_t slot_count = capacity();
  map_slot_t* const slot = slots();
  std::int64_t i = table_rules::home_slot(hash, slot_count);
  while (!slot[i].is_vacant()) {
    if (++i == slot_count) i = 0;
  }
  return &slot[i];
}

std::int64_t map_t::index_of(key_ref_t key) const {
  const map_slot_t* const found = find_slot(key);
  return found == nullptr ? capacity() : found - slots();
}

map_t::iterator map_t::find(key_ref_t key) { return {this, index_of(key)}; }
map_t::const_iterator map_t::find(key_ref_t key) const { return {this, index_of(key)}; }

const data_t* map_t::find_value(key_ref_t key) const {
  const map_slot_t* const found = find_slot(key);
  return found == nullptr ? nullptr : &found->value;
}

// ---- insertion

data_t& map_t::operator[](data_t&& key) {
  data_t consumed = std::move(key);
  data_t nothing;
  const iterator entry = maybe_insert(pair(consumed, nothing)).first;
  return (*entry).second;
}

std::pair<map_t::iterator, bool> map_t::insert(data_t&& key, data_t&& value) {
  return maybe_insert(pair(key, value));
}

std::pair<map_t::iterator, bool> map_t::insert(std::pair<data_t, data_t>&& entry) {
  return maybe_insert(pair(entry.first, entry.second));
}

void map_t::insert(map_entry_t&& entry) {
  require_key_of(entry);
  const probe_t probe = find_for_insert(entry);
  if (probe.found == nullptr) place(entry.hash, probe.vacant, entry.key, entry.value);
}

void map_t::assign(map_entry_t&& entry) {
  require_key_of(entry);
  const probe_t probe = find_for_insert(entry);
  if (probe.found == nullptr) {
    place(entry.hash, probe.vacant, entry.key, entry.value);
  } else {
    probe.found->value = std::move(entry.value);
  }
}

void map_t::add(std::uint64_t hash, data_t&& key, data_t&& value) {
  if (must_grow()) grow();
  put(*find_vacant(hash), hash, key, value);
}

std::pair<map_t::iterator, bool> map_t::maybe_insert(const const_pair& entry) {
  const key_ref_t key = entry.first;
  const probe_t probe = find_for_insert(key);
  if (probe.found != nullptr) return {iterator(this, probe.found - slots()), false};
  // Both copies before any change of the table: a copy that fails leaves it as it was.
  data_t copied_key = entry.first;
  data_t copied_value = entry.second;
  return {iterator(this, place(key.hash, probe.vacant, copied_key, copied_value)), true};
}

std::pair<map_t::iterator, bool> map_t::maybe_insert(pair&& entry) {
  require_key(entry.first);
  const key_ref_t key = entry.first;
  const probe_t probe = find_for_insert(key);
  if (probe.found != nullptr) return {iterator(this, probe.found - slots()), false};
  return {iterator(this, place(key.hash, probe.vacant, entry.first, entry.second)), true};
}

// Moves an absent key and its value into the slot of the lookup, or, after growing, into the first
// vacant one on its way. No second lookup: the copy of a borrowed string is an owned one, which may
// equal another key. Returns the slot's index.
std::int64_t map_t::place(std::uint64_t hash, map_slot_t* vacant, data_t& key, data_t& value) {
  if (must_grow() || vacant == nullptr) {
    grow();
    vacant = find_vacant(hash);
  }
  put(*vacant, hash, key, value);
  return vacant - slots();
}

bool map_t::must_grow() const noexcept {
  return block_ == nullptr ||
         table_rules::is_due_to_grow(block_->capacity, block_->live + block_->deleted);
}

void map_t::grow() {
  vlt_underlying_map_table_t* const grown =
      block_ == nullptr ? vlt_allocate_map(table_rules::FIRST_CAPACITY)
                        : vlt_reallocate_map(block_, table_rules::grown_capacity(block_->live));
  if (grown == nullptr) throw std::bad_alloc();
  block_ = grown;
}

// ---- erasing

void map_t::erase(const iterator& position) {
  if (position.map_ != this) iterator_checks::fail(iterator_checks::DIFFERENT_MAPS);
  if (position.at_end()) return;
  position.check();
  if (block_ == nullptr) return;
  vacate(position.slots_[position.index_]);
}

void map_t::clear() noexcept {
  *this = std::move(*this).drain([](map_entry_t&&) noexcept {});
}

// ---- iteration and equality

map_t::iterator map_t::begin() {
  iterator first(this, 0);
  first.skip_to_live();
  return first;
}

map_t::const_iterator map_t::begin() const {
  const_iterator first(this, 0);
  first.skip_to_live();
  return first;
}

map_t::iterator map_t::end() { return {this, capacity()}; }
map_t::const_iterator map_t::end() const { return {this, capacity()}; }

bool map_t::operator==(const map_t& other) const { return are_equal(*this, other); }

template <bool IS_CONST>
map_t::_iterator<IS_CONST>::_iterator(map_pointer map, std::int64_t index) noexcept
    : map_(map),
      slots_(map->slots()),
      capacity_(map->capacity()),
      index_(index),
      live_(static_cast<std::int64_t>(map->size())) {}

template <bool IS_CONST>
void map_t::_iterator<IS_CONST>::check() const {
  const bool valid = map_ != nullptr && map_->slots() == slots_ && map_->capacity() == capacity_ &&
                     static_cast<std::int64_t>(map_->size()) == live_;
  if (!valid) iterator_checks::fail(iterator_checks::MAP_MODIFIED);
}

template <bool IS_CONST>
void map_t::_iterator<IS_CONST>::skip_to_live() noexcept {
  while (index_ < capacity_ && !slots_[index_].is_live()) ++index_;
}

template <bool IS_CONST>
auto map_t::_iterator<IS_CONST>::operator*() const -> reference {
  check();
  return {slots_[index_].key, slots_[index_].value};
}

template <bool IS_CONST>
auto map_t::_iterator<IS_CONST>::operator++() -> _iterator& {
  check();
  ++index_;
  skip_to_live();
  return *this;
}

template <bool IS_CONST>
bool map_t::_iterator<IS_CONST>::operator==(const _iterator& other) const {
  if (map_ != other.map_) iterator_checks::fail(iterator_checks::DIFFERENT_MAPS);
  return index_ == other.index_;
}

template class map_t::_iterator<false>;
template class map_t::_iterator<true>;

} // namespace com::velanto::connectivity

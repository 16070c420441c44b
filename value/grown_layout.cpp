#include "value/grown_layout.hpp"

#include <algorithm>
#include <cstring>

#include "value/table_rules.hpp"

namespace com::velanto::connectivity {

namespace {

// How many entries a table takes before the next one makes it grow.
constexpr std::size_t room(std::size_t capacity) noexcept {
  std::int64_t count = 0;
  while (!table_rules::is_due_to_grow(static_cast<std::int64_t>(capacity), count)) ++count;
  return static_cast<std::size_t>(count);
}
// The size that it then grows to.
constexpr std::size_t grown(std::size_t capacity) noexcept {
  const auto live = static_cast<std::int64_t>(room(capacity));
  return static_cast<std::size_t>(table_rules::grown_capacity(live));
}

constexpr std::size_t LARGEST = 72;
static_assert(room(LARGEST) == GrownLayout::MOST);

} // namespace

bool GrownLayout::knows(std::int64_t capacity) noexcept {
  static_assert(grown(8) == 16 && grown(16) == 28 && grown(28) == 46 && grown(46) == LARGEST);
  return capacity == 8 || capacity == 16 || capacity == 28 || capacity == 46 || capacity == LARGEST;
}

// NOLINTNEXTLINE(*-member-init): entries are what is counted
GrownLayout::GrownLayout(std::int64_t capacity) noexcept
    : capacity_(static_cast<std::size_t>(capacity)) {
  std::fill_n(slots_[0].begin(), capacity_, FREE);
}

bool GrownLayout::insert_all(std::uint64_t next) noexcept {
  const auto due = static_cast<std::int64_t>(lying_) - 1;
  if (table_rules::is_due_to_grow(capacity(), due)) return false; // one before would have grown it
  switch (capacity_) {
    case 8:
      return insert_from<8>(lying_, slots_[0], slots_[1], next);
    case 16:
      return insert_from<16>(lying_, slots_[0], slots_[1], next);
    case 28:
      return insert_from<28>(lying_, slots_[0], slots_[1], next);
    case 46:
      return insert_from<46>(lying_, slots_[0], slots_[1], next);
    default:
      return insert_from<LARGEST>(lying_, slots_[0], slots_[1], next);
  }
}

// Inserts the entries from `entry` on into a table of this size, and then, if it is full, into the
// next one.
template <std::size_t CAPACITY>
bool GrownLayout::insert_from(std::size_t entry, slots_t& slots, slots_t& spare,
                              std::uint64_t next) noexcept {
  constexpr std::size_t ROOM = room(CAPACITY);
  bool met = false;
  for (; entry < count_ && entry < ROOM; ++entry) {
    slots[slot_for<CAPACITY>(entries_[entry].hash, slots, met)] = static_cast<number_t>(entry);
  }
  const bool full = entry == ROOM;
  if (full && entry == count_) static_cast<void>(slot_for<CAPACITY>(next, slots, met));
  if (met) return false;
  if (!full) {
    capacity_ = CAPACITY;
    last_ = &slots == slots_.data() ? 0 : 1;
    return true;
  }
  if constexpr (CAPACITY == LARGEST) {
    return false;
  } else {
    constexpr std::size_t GROWN = grown(CAPACITY);
    std::fill_n(spare.begin(), GROWN, FREE);
    for (std::size_t slot = 0; slot < CAPACITY; ++slot) {
      if (slots[slot] == FREE) continue;
      bool other = false; // of the same hash: both were in the table before
      spare[slot_for<GROWN>(entries_[slots[slot]].hash, spare, other)] = slots[slot];
    }
    return insert_from<GROWN>(entry, spare, slots, next);
  }
}

// The slot that an entry of this hash is placed in, and whether it meets another of its hash there.
template <std::size_t CAPACITY>
std::size_t GrownLayout::slot_for(std::uint64_t hash, const slots_t& slots,
                                  bool& met) const noexcept {
  std::size_t slot = hash % CAPACITY;
  for (; slots[slot] != FREE; slot = slot + 1 == CAPACITY ? 0 : slot + 1) {
    met |= entries_[slots[slot]].hash == hash;
  }
  return slot;
}

void GrownLayout::fill(map_slot_t* slots) const noexcept {
  const number_t* entry = slots_[last_].data();
  for (const map_slot_t* const end = slots + capacity_; slots != end; ++slots, ++entry) {
    if (*entry == FREE) continue;
    std::memcpy(static_cast<void*>(slots), &entries_[*entry], sizeof entries_[*entry]);
  }
}

} // namespace com::velanto::connectivity

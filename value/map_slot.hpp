// One slot of a map table with its three states, as drawn at the head of value/map_t.hpp. A live
// slot is an entry, so that callers can hand entries on in place.
#ifndef VLT_VALUE_MAP_SLOT_HPP
#define VLT_VALUE_MAP_SLOT_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "value/map_entry.hpp"

namespace com::velanto::connectivity {

struct map_slot_t : map_entry_t {
  static constexpr std::uint64_t FREE = 0;
  static constexpr std::uint64_t DELETED = 1;

  [[nodiscard]] bool is_free() const noexcept { return hash == FREE && key.empty(); }
  [[nodiscard]] bool is_live() const noexcept { return !is_vacant(); }

  // Whether an entry could go here.
  [[nodiscard]] bool is_vacant() const noexcept { return hash <= DELETED && key.empty(); }

  // Free the content of the slot.
  void make_free() noexcept { make_vacant(FREE); }
  void make_deleted() noexcept { make_vacant(DELETED); }

 private:
  void make_vacant(std::uint64_t state) noexcept {
    hash = state;
    if (!key.empty()) key = data_t();
    if (!value.empty()) value = data_t();
  }
};

static_assert(sizeof(map_slot_t) == sizeof(vlt_underlying_map_table_entry_t),
              "slots are shared with the host in place");

// The slots of a table; none for a null one.
[[nodiscard]] inline std::span<const map_slot_t> slots_of(
    const vlt_underlying_map_table_t* table) noexcept {
  if (table == nullptr) return {};
  return {reinterpret_cast<const map_slot_t*>(table + 1),
          static_cast<std::size_t>(table->capacity)};
}

inline map_slot_t* map_t::slots() const noexcept {
  return const_cast<map_slot_t*>(slots_of(block_).data());
}

// Moves an entry into a vacant slot, which holds nothing to free.
inline void map_t::put(map_slot_t& vacant, std::uint64_t hash, data_t& key,
                       data_t& value) noexcept {
  vacant.hash = hash;
  new (&vacant.key) data_t(std::move(key));
  new (&vacant.value) data_t(std::move(value));
  ++block_->live;
}

// Frees the content of the slot, which is deleted then.
inline void map_t::vacate(map_slot_t& slot) noexcept {
  --block_->live;
  ++block_->deleted;
  slot.make_deleted();
}

template <class Use>
bool map_t::extract(key_ref_t key, const Use& use) {
  map_slot_t* const slot = find_slot(key);
  if (slot == nullptr) return false;
  use(static_cast<map_entry_t&&>(*slot));
  vacate(*slot);
  return true;
}

template <class Use>
map_t map_t::drain(const Use& use) && {
  const auto make_free = [](map_slot_t* slot) noexcept { slot->make_free(); };
  map_t drained = std::move(*this);
  map_slot_t* const end = drained.slots() + drained.capacity();
  for (map_slot_t* slot = drained.slots(); slot != end; ++slot) {
    if (!slot->is_live()) {
      slot->hash = map_slot_t::FREE;
      continue;
    }
    --drained.block_->live;
    const std::unique_ptr<map_slot_t, decltype(make_free)> emptied(slot, make_free);
    use(std::move(static_cast<map_entry_t&>(*slot)));
  }
  if (drained.block_ != nullptr) drained.block_->live = drained.block_->deleted = 0;
  return drained;
}

} // namespace com::velanto::connectivity

#endif

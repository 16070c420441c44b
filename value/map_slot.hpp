// One slot of a map table with its three states, as drawn at the head of value/map_t.hpp. A slot that
// is live is an entry, so that entries can be handed on from where they lie.
#ifndef VLT_VALUE_MAP_SLOT_HPP
#define VLT_VALUE_MAP_SLOT_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "value/map_entry.hpp"

namespace com::velanto::connectivity {

struct map_slot_t : map_entry_t {
  static constexpr std::uint64_t FREE = 0;
  static constexpr std::uint64_t DELETED = 1;

  [[nodiscard]] bool is_free() const noexcept { return hash == FREE && key.empty(); }
  [[nodiscard]] bool is_deleted() const noexcept { return hash == DELETED && key.empty(); }
  [[nodiscard]] bool is_live() const noexcept { return !is_vacant(); }

  // Whether an entry could go here.
  [[nodiscard]] bool is_vacant() const noexcept { return hash <= DELETED && key.empty(); }

  // Free what the slot holds.
  void make_free() noexcept { make_vacant(FREE); }
  void make_deleted() noexcept { make_vacant(DELETED); }

 private:
  void make_vacant(std::uint64_t state) noexcept {
    hash = state;
    key = data_t();
    value = data_t();
  }
};

static_assert(sizeof(map_slot_t) == sizeof(vlt_underlying_map_table_entry_t),
              "slots are shared with the host in place");

template <class Use>
bool map_t::extract(key_ref key, const Use& use) {
  map_slot_t* const found = find_slot(key);
  if (found == nullptr) return false;
  use(std::move(static_cast<map_entry_t&>(*found)));
  vacate(*found);
  return true;
}

template <class Use>
map_t map_t::drain(const Use& use) && {
  const auto make_free = [](map_slot_t* slot) noexcept { slot->make_free(); };
  map_t drained = std::move(*this);
  map_slot_t* const end = drained.slots() + drained.capacity();
  for (map_slot_t* slot = drained.slots(); slot != end; ++slot) {
    if (!slot->is_live()) continue;
    --drained.table_->live;
    const std::unique_ptr<map_slot_t, decltype(make_free)> emptied(slot, make_free);
    use(std::move(static_cast<map_entry_t&>(*slot)));
  }
  return drained;
}

} // namespace com::velanto::connectivity

#endif

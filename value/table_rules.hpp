// The rules of a table that do not depend on its entries: the first slot of a probing, the moment
// of growth, and the new size. value/map_t.hpp explains them.
#ifndef VLT_VALUE_TABLE_RULES_HPP
#define VLT_VALUE_TABLE_RULES_HPP

#include <algorithm>
#include <cstdint>

namespace com::velanto::connectivity::table_rules {

// The capacity of the table that a first insertion makes.
inline constexpr std::int64_t FIRST_CAPACITY = 8;

// Where the probing for a key begins; the capacity is not 0. The capacities that tables grow through
// are constants here: dividing by a constant compiles to multiplications, which are faster.
inline std::int64_t home_slot(std::uint64_t hash, std::int64_t capacity) noexcept {
  const auto divisor = static_cast<std::uint64_t>(capacity);
  if ((divisor & (divisor - 1)) == 0) return static_cast<std::int64_t>(hash & (divisor - 1));
  switch (divisor) {
    case 28:
      return static_cast<std::int64_t>(hash % 28);
    case 46:
      return static_cast<std::int64_t>(hash % 46);
    case 72:
      return static_cast<std::int64_t>(hash % 72);
    case 112:
      return static_cast<std::int64_t>(hash % 112);
    default:
      return static_cast<std::int64_t>(hash % divisor);
  }
}

// Whether the next insertion makes the table grow: capacity × 0.75 < count, in whole numbers.
// `count` includes deleted slots.
constexpr bool is_due_to_grow(std::int64_t capacity, std::int64_t count) noexcept {
  return capacity == 0 || 3 * capacity < 4 * count;
}

// The size to which a table with `live` entries grows.
constexpr std::int64_t grown_capacity(std::int64_t live) noexcept {
  return std::max(2 * live + 2, FIRST_CAPACITY);
}

} // namespace com::velanto::connectivity::table_rules

#endif

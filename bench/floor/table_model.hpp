// The rules by which a table grows and places its entries, run on an array of numbers. It tells the
// slot of each entry without a host call.
//
//   first insertion   8 slots.
//   before any other  when capacity × 0.75 < live: 2 × live + 2 slots, at least 8. The entries move
//                     in slot order, each to the first free slot from hash mod capacity on.
#ifndef VLT_BENCH_FLOOR_TABLE_MODEL_HPP
#define VLT_BENCH_FLOOR_TABLE_MODEL_HPP

#include <cstdint>
#include <vector>

#include "bench/floor/plan.hpp"

namespace com::velanto::connectivity::bench::floor {

inline constexpr std::int64_t FIRST_CAPACITY = 8;

class TableModel {
 public:
  // Inserts an entry under a key that is not there yet. Returns the slot that it gets, which a
  // later growth may change.
  std::uint32_t insert(std::uint64_t hash);

  [[nodiscard]] std::int64_t capacity() const noexcept {
    return static_cast<std::int64_t>(slots_.size());
  }
  // After the last insertion: the slot of each entry, in the order of insertion.
  [[nodiscard]] std::vector<std::uint32_t> finalSlots() const;
  [[nodiscard]] const std::vector<growth_t>& growths() const noexcept { return growths_; }

 private:
  static constexpr std::uint32_t FREE = UINT32_MAX;

  std::uint32_t place(std::uint32_t entry);
  void grow();

  std::vector<std::uint64_t> hashes_; // by entry
  std::vector<std::uint32_t> slots_;  // the entry in each, or FREE
  std::vector<growth_t> growths_;
};

} // namespace com::velanto::connectivity::bench::floor

#endif

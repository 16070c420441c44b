#include "bench/floor/table_model.hpp"

#include <algorithm>

namespace com::velanto::connectivity::bench::floor {

std::uint32_t TableModel::insert(std::uint64_t hash) {
  const auto entry = static_cast<std::uint32_t>(hashes_.size());
  if (slots_.empty()) {
    slots_.assign(FIRST_CAPACITY, FREE);
  } else if (static_cast<double>(capacity()) * 0.75 < static_cast<double>(entry)) {
    grow();
  }
  hashes_.push_back(hash);
  return place(entry);
}

std::uint32_t TableModel::place(std::uint32_t entry) {
  std::size_t slot = hashes_[entry] % slots_.size();
  while (slots_[slot] != FREE) slot = slot + 1 == slots_.size() ? 0 : slot + 1;
  slots_[slot] = entry;
  return static_cast<std::uint32_t>(slot);
}

void TableModel::grow() {
  const auto live = static_cast<std::int64_t>(hashes_.size());
  growths_.push_back({static_cast<std::uint32_t>(live), std::max(2 * live + 2, FIRST_CAPACITY)});
  const std::vector<std::uint32_t> before = std::move(slots_);
  slots_.assign(static_cast<std::size_t>(growths_.back().capacity), FREE);
  for (const std::uint32_t entry : before) {
    if (entry != FREE) place(entry);
  }
}

std::vector<std::uint32_t> TableModel::finalSlots() const {
  std::vector<std::uint32_t> result(hashes_.size());
  for (std::size_t slot = 0; slot < slots_.size(); ++slot) {
    if (slots_[slot] != FREE) result[slots_[slot]] = static_cast<std::uint32_t>(slot);
  }
  return result;
}

} // namespace com::velanto::connectivity::bench::floor

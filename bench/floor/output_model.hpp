// A table of the event while its plan is made: the value of each key, and the source of both.
#ifndef VLT_BENCH_FLOOR_OUTPUT_MODEL_HPP
#define VLT_BENCH_FLOOR_OUTPUT_MODEL_HPP

#include <string>
#include <unordered_map>
#include <vector>

#include "bench/floor/table_model.hpp"

namespace com::velanto::connectivity::bench::floor {

class OutputModel {
 public:
  // The entry under `key`, or null.
  [[nodiscard]] entry_t* find(const std::string& key) {
    const auto found = numbers_.find(key);
    return found == numbers_.end() ? nullptr : &entries_[found->second];
  }
  // Inserts under a key that is not there yet.
  void add(const std::string& key, std::uint64_t hash, origin_t key_origin, origin_t value) {
    numbers_.emplace(key, entries_.size());
    entries_.push_back({hash, table_.insert(hash), key_origin, value});
  }
  [[nodiscard]] const TableModel& table() const noexcept { return table_; }
  // In the order of insertion.
  [[nodiscard]] const std::vector<entry_t>& entries() const noexcept { return entries_; }

 private:
  TableModel table_;
  std::vector<entry_t> entries_;
  std::unordered_map<std::string, std::size_t> numbers_;
};

} // namespace com::velanto::connectivity::bench::floor

#endif

// The constant strings that conversions copy into events, each once, in the host's storage.
#ifndef VLT_BENCH_FLOOR_TEXTS_HPP
#define VLT_BENCH_FLOOR_TEXTS_HPP

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/storage.h"
#include "value/hashes.hpp"

namespace com::velanto::connectivity::bench::floor {

class Texts {
 public:
  // The number of the string, which is added when it is new.
  std::uint32_t of(std::string_view text) {
    const auto number = static_cast<std::uint32_t>(values_.size());
    const auto [entry, is_new] = numbers_.try_emplace(std::string(text), number);
    if (is_new) values_.emplace_back(entry->first.c_str());
    return entry->second;
  }
  [[nodiscard]] const vlt_underlying_data_t& value(std::uint32_t number) const {
    return *values_[number].underlying();
  }
  [[nodiscard]] const char* text(std::uint32_t number) const { return value(number).value.string; }
  // As a key of a table.
  [[nodiscard]] std::uint64_t hash(std::uint32_t number) const {
    return hashes::key_hash(values_[number]);
  }

 private:
  std::unordered_map<std::string, std::uint32_t> numbers_;
  std::deque<data_t> values_;
};

} // namespace com::velanto::connectivity::bench::floor

#endif

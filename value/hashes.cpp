#include "value/hashes.hpp"

#include <bit>
#include <stdexcept>

#include "value/murmur_hash.hpp"

namespace com::velanto::connectivity::hashes {

std::uint64_t calculate_hash::of(const data_t& value) const {
  return value.apply_visitor(*this, [this] { return seed_; });
}

std::uint64_t calculate_hash::operator()(const bool& content) const noexcept {
  return is_true(content) ? seed_ : ~seed_;
}

std::uint64_t calculate_hash::operator()(const double& content) const noexcept {
  const double unsigned_zero = content == 0.0 ? 0.0 : content;
  return murmur_hash(std::bit_cast<std::uint64_t>(unsigned_zero), seed_);
}

std::uint64_t calculate_hash::operator()(const std::int64_t& content) const noexcept {
  return murmur_hash(std::bit_cast<std::uint64_t>(content), seed_);
}

std::uint64_t calculate_hash::operator()(const vlt_underlying_decimal_t& content) const noexcept {
  return murmur_hash(content.bits, seed_);
}

std::uint64_t calculate_hash::operator()(const char* const& content) const noexcept {
  return vlt_hash_string(text_or_empty(content), seed_);
}

std::uint64_t calculate_hash::operator()(const list_t& content) const {
  std::uint64_t result = BASE;
  for (const data_t& element : content) result = calculate_hash(result).of(element);
  return result;
}

std::uint64_t calculate_hash::operator()(const map_t& content) const { return hash(content); }

std::uint64_t calculate_hash::operator()(const buffer_t& content) const noexcept {
  return murmur_hash(content.data(), content.size(), BASE);
}

std::uint64_t calculate_hash::operator()(const vlt_underlying_custom_t&) const {
  throw std::runtime_error("Cannot use custom values as a key");
}

std::uint64_t hash(const map_t& map) {
  std::uint64_t result = BASE;
  for (const auto& [key, value] : map) result += key_hash(key) + key_hash(value);
  return result;
}

} // namespace com::velanto::connectivity::hashes

// A key known beforehand, hashed once when it is made. So neither a lookup under it nor an entry
// made of it costs any hashing.
#ifndef VLT_VALUE_HASHED_KEY_HPP
#define VLT_VALUE_HASHED_KEY_HPP

#include <cstdint>
#include <utility>

#include "value/hashes.hpp"
#include "value/map_entry.hpp"

namespace com::velanto::connectivity {

class hashed_key_t : public data_t {
 public:
  // Copies the string. Throws std::runtime_error for null, std::bad_alloc.
  explicit hashed_key_t(const char* text) : data_t(text), hash_(hashes::key_hash(*this)) {}

  // Takes over `key`, which must be neither custom nor hold a custom value.
  explicit hashed_key_t(data_t&& key) : data_t(std::move(key)), hash_(hashes::key_hash(*this)) {}

  [[nodiscard]] std::uint64_t hash() const noexcept { return hash_; }

  // A value of its own. Throws std::bad_alloc.
  [[nodiscard]] data_t copy() const {
    const data_t& key = *this;
    return key;
  }
  // The entry of `value` under such a copy.
  [[nodiscard]] map_entry_t with(data_t&& value) const { return {hash_, copy(), std::move(value)}; }

 private:
  std::uint64_t hash_;
};

inline key_ref_t::key_ref_t(const hashed_key_t& constant) noexcept
    : key(constant), hash(constant.hash()) {}

} // namespace com::velanto::connectivity

#endif

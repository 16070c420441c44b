// The hash of every kind of value, bit for bit the host's: the host looks entries up in tables that
// this plug-in fills.
//
//   empty, unknown     the seed
//   boolean            true: the seed;  false: its complement
//   double             the 8 bytes, a zero of either sign taken as +0.0
//   integer, decimal   the 8 bytes
//   string             the host's function, with the seed
//   list               fold from BASE: each element hashed with the hash so far as its seed
//   map                BASE + Σ hash(key) + hash(value), independent of slot order
//   buffer             the bytes, from BASE
//   custom             refused
//
// Lists, maps and buffers start over from BASE with any seed, so the seed varies only inside a
// list; the interface defines this asymmetry.
//
// However deep a value is, its hash takes the same stack. Containers in containers take memory
// instead: throws std::bad_alloc.
#ifndef VLT_VALUE_HASHES_HPP
#define VLT_VALUE_HASHES_HPP

#include <cstdint>

#include "value/data_t.hpp"

namespace com::velanto::connectivity::hashes {

inline constexpr std::uint64_t BASE = 0x243FCAF1;

// Visitor: the hash of one value. Throws std::runtime_error "Cannot use custom values as a key".
class calculate_hash {
 public:
  explicit calculate_hash(std::uint64_t seed) noexcept : seed_(seed) {}

  [[nodiscard]] std::uint64_t of(const data_t& value) const;

  std::uint64_t operator()(const bool& content) const noexcept;
  std::uint64_t operator()(const double& content) const noexcept;
  std::uint64_t operator()(const std::int64_t& content) const noexcept;
  std::uint64_t operator()(const vlt_underlying_decimal_t& content) const noexcept;
  std::uint64_t operator()(const char* const& content) const noexcept;
  std::uint64_t operator()(const list_t& content) const;
  std::uint64_t operator()(const map_t& content) const;
  std::uint64_t operator()(const buffer_t& content) const noexcept;
  [[noreturn]] std::uint64_t operator()(const vlt_underlying_custom_t& content) const;

 private:
  std::uint64_t seed_;
};

// The hash of a map: equal maps hash equally, in any order. Throws for custom entries.
[[nodiscard]] std::uint64_t hash(const map_t& map);

// The hash that a table stores for a key.
[[nodiscard]] inline std::uint64_t key_hash(const data_t& key) {
  return calculate_hash(BASE).of(key);
}

} // namespace com::velanto::connectivity::hashes

#endif

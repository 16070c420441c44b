// MurmurHash64A, the mixing function of the host's tables. Reads the blocks little-endian, as the
// host does on all its machines.
//
//   h = seed ^ (length × m)
//   per 8 bytes:  k ×= m;  k ^= k >> 47;  k ×= m;  h ^= k;  h ×= m
//   1 to 7 bytes left:  h ^= them, first byte lowest;  h ×= m
//   h ^= h >> 47;  h ×= m;  h ^= h >> 47
#ifndef VLT_VALUE_MURMUR_HASH_HPP
#define VLT_VALUE_MURMUR_HASH_HPP

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace com::velanto::connectivity::hashes {

static_assert(std::endian::native == std::endian::little, "a block is read as it is in memory");

inline constexpr std::uint64_t MULTIPLIER = 0xc6a4a7935bd1e995;
inline constexpr unsigned SHIFT = 47;

constexpr std::uint64_t mix_block(std::uint64_t hash, std::uint64_t block) noexcept {
  block *= MULTIPLIER;
  block ^= block >> SHIFT;
  block *= MULTIPLIER;
  return (hash ^ block) * MULTIPLIER;
}

constexpr std::uint64_t avalanche(std::uint64_t hash) noexcept {
  hash ^= hash >> SHIFT;
  hash *= MULTIPLIER;
  return hash ^ (hash >> SHIFT);
}

// The hash of the 8 bytes of `word`.
constexpr std::uint64_t murmur_hash(std::uint64_t word, std::uint64_t seed) noexcept {
  return avalanche(mix_block(seed ^ (sizeof word * MULTIPLIER), word));
}

// The hash of `length` bytes; `bytes` may be null when there are none.
inline std::uint64_t murmur_hash(const unsigned char* bytes, std::size_t length,
                                 std::uint64_t seed) noexcept {
  std::uint64_t hash = seed ^ (length * MULTIPLIER);
  std::size_t at = 0;
  for (; length - at >= sizeof(std::uint64_t); at += sizeof(std::uint64_t)) {
    std::uint64_t block = 0;
    std::memcpy(&block, bytes + at, sizeof block);
    hash = mix_block(hash, block);
  }
  if (at < length) {
    std::uint64_t tail = 0;
    std::memcpy(&tail, bytes + at, length - at);
    hash = (hash ^ tail) * MULTIPLIER;
  }
  return avalanche(hash);
}

} // namespace com::velanto::connectivity::hashes

#endif

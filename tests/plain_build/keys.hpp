// Equality and hashes of values as keys of a table. Host and plug-in must agree on both, bit by bit.
#ifndef VLT_PLAIN_BUILD_KEYS_HPP
#define VLT_PLAIN_BUILD_KEYS_HPP

#include <cstdint>

#include "tests/plain_build/value.hpp"

namespace plain_build {

constexpr uint64_t KEY_SEED = 0x243FCAF1;

// The hash of `value` as a key, or as an element of a list with `seed` as the hash so far. Throws
// std::runtime_error for a custom object.
uint64_t hashOf(const RawValue& value, uint64_t seed = KEY_SEED);

// Values of different kinds are unequal, owned and borrowed strings among them. A custom object
// equals nothing, nor does a kind that is not known here.
bool areEqual(const RawValue& left, const RawValue& right);

} // namespace plain_build

#endif

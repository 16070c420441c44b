// One value of every kind, the kinds that only a newer host knows included, for tests that hold for
// all of them.
#ifndef VLT_TESTS_VALUE_KINDS_HPP
#define VLT_TESTS_VALUE_KINDS_HPP

#include <array>
#include <cstdint>
#include <cstring>

#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

struct kind_t {
  const char* name;
  std::uint32_t tag;
  data_t (*make)();
};

// In the order of the tags: KINDS[tag] for tags 0 to 10, then two unknown ones.
inline constexpr std::array KINDS = {
    kind_t{"empty", 0, [] { return data_t(); }},
    kind_t{"boolean", 1, [] { return truth(true); }},
    kind_t{"double", 2, [] { return real(1.5); }},
    kind_t{"integer", 3, [] { return whole(-3); }},
    kind_t{"decimal", 4, [] { return decimal(0x0123456789abcdef); }},
    kind_t{"string", 5, [] { return text("one"); }},
    kind_t{"list", 6, [] { return listOf(text("two"), whole(2)); }},
    kind_t{"map", 7, []() -> data_t { return mapOf("three", listOf(text("3"))); }},
    kind_t{"buffer", 8, [] { return bytes("four"); }},
    kind_t{"custom", 9, [] { return custom(5); }},
    kind_t{"borrowed string", 10, [] { return borrowed("six"); }},
    kind_t{"unknown 11", 11, [] { return tagged(11, 0xfedcba9876543210); }},
    kind_t{"unknown 4294967295", 4294967295, [] { return tagged(4294967295, 1); }},
};

// The 8 bytes of the content, of any meaning.
inline std::uint64_t content_bits(const data_t& value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, value.underlying(), sizeof bits);
  return bits;
}

inline bool is_zeroed(const data_t& value) {
  return value.type_tag() == VLT_TAG_EMPTY && content_bits(value) == 0;
}

} // namespace com::velanto::connectivity::test

#endif

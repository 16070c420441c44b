// Tells where a value differs from the one that a case expects. Stricter than the equality of
// values: kinds, ownership of texts, signs of zero and labels of custom objects count, and every
// text key must be where the host's lookup finds it.
#ifndef VLT_TESTS_CONFORMANCE_COMPARISON_HPP
#define VLT_TESTS_CONFORMANCE_COMPARISON_HPP

#include <string>

#include "value/message.hpp"

namespace com::velanto::connectivity::test {

// The empty text when there is no difference; otherwise the place of the first one, which starts
// with `where`, what was expected there and what is there. A map that is expected without a table
// must have none; one that is expected empty may.
[[nodiscard]] std::string difference(const data_t& expected, const data_t& actual,
                                     const std::string& where);
[[nodiscard]] std::string difference(const map_t& expected, const map_t& actual,
                                     const std::string& where);
[[nodiscard]] std::string difference(const Message& expected, const Message& actual,
                                     const std::string& where);

} // namespace com::velanto::connectivity::test

#endif

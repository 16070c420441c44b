// Tells where a value differs from the one that is expected. Stricter than the equality of values:
// kinds, ownership of texts, bits of numbers and labels of custom objects count, and every text key
// must be where the host's lookup finds it.
#ifndef VLT_TOOLS_CHECK_COMPARISON_HPP
#define VLT_TOOLS_CHECK_COMPARISON_HPP

#include <optional>
#include <string>

#include "tools/check/verdict.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools::check {

// The first difference, at a place that begins with `where`. A map that is expected without a table
// must have none; a map that is expected empty may have one.
[[nodiscard]] std::optional<difference_t> difference(const data_t& expected, const data_t& came,
                                                     const std::string& where);
[[nodiscard]] std::optional<difference_t> difference(const map_t& expected, const map_t& came,
                                                     const std::string& where);
[[nodiscard]] std::optional<difference_t> difference(const Message& expected, const Message& came,
                                                     const std::string& where);

} // namespace com::velanto::connectivity::tools::check

#endif

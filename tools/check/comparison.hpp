// Finds the first mismatch between a value and the expected one. Stricter than the equality of
// values: kinds, ownership of strings, bits of numbers and labels of custom objects count, and the
// host's lookup must find every string key.
#ifndef VLT_TOOLS_CHECK_COMPARISON_HPP
#define VLT_TOOLS_CHECK_COMPARISON_HPP

#include <optional>
#include <string>

#include "tools/check/verdict.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools::check {

// The first mismatch, at a place that begins with `where`. A map expected without a table must
// have none; a map expected empty may have one.
[[nodiscard]] std::optional<mismatch_t> findMismatch(const data_t& expected, const data_t& actual,
                                                     const std::string& where);
[[nodiscard]] std::optional<mismatch_t> findMismatch(const map_t& expected, const map_t& actual,
                                                     const std::string& where);
[[nodiscard]] std::optional<mismatch_t> findMismatch(const Message& expected, const Message& actual,
                                                     const std::string& where);

} // namespace com::velanto::connectivity::tools::check

#endif

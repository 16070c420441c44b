// The words of checks for values: JSON where it suffices, makers for the rest; and the comparison
// of two values, as trees.
#ifndef VLT_TOOLS_CHECK_VALUES_HPP
#define VLT_TOOLS_CHECK_VALUES_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/check/trial.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools::check {

// The value that `json` is, with the markers of conformance/value_decoder.hpp but for borrowed texts.
// Throws MalformedJson, BadCase, std::bad_alloc.
[[nodiscard]] data_t value(std::string_view json);

// A message with this path and no other metadata.
[[nodiscard]] Message notification(const char* path, data_t&& payload);
[[nodiscard]] Message notification(const char* path, std::string_view payload);

// A string that does not own its bytes, which must outlive it.
[[nodiscard]] data_t borrowed(const char* text);
// A value of any tag without a block.
[[nodiscard]] data_t bare(std::uint32_t tag);
// An integer's 8 bytes as a decimal.
[[nodiscard]] data_t decimal(std::uint64_t bits);
[[nodiscard]] data_t buffer(std::string_view bytes);
[[nodiscard]] data_t custom(std::uint64_t label);

// Sets an entry; replaces the value under the key.
void set(data_t& map, const char* key, data_t&& content);
// The value under the key, or null; null for a value that is no map as well.
[[nodiscard]] const data_t* find(const data_t& map, const char* key);
// Its string; empty when there is none.
[[nodiscard]] std::string textAt(const data_t& map, const char* key);
[[nodiscard]] std::string textAt(const map_t& map, const char* key);

// As JSON.
[[nodiscard]] std::string shown(const data_t& value);
[[nodiscard]] std::string shown(const Message& message);

// Whether `actual` equals the expected value, by comparison.hpp. Reports the first mismatch.
bool same(Trial& trial, const std::string& where, const data_t& expected, const data_t& actual);

// The bytes of a value, its tag and content, with the bytes of all its tables and lists: for values
// that nobody may change.
[[nodiscard]] std::string bytesOf(const data_t& value);
[[nodiscard]] std::string bytesOf(const Message& message);

} // namespace com::velanto::connectivity::tools::check

#endif

// Faults that the parser underneath reports, as MalformedJson in our own words: the library's change
// from version to version and tell how it works inside.
#ifndef VLT_NDJSON_PARSER_FAULTS_HPP
#define VLT_NDJSON_PARSER_FAULTS_HPP

#include <simdjson.h>

#include <cstddef>
#include <string_view>
#include <utility>

namespace com::velanto::connectivity {

[[nodiscard]] const char* reasonOf(simdjson::error_code error) noexcept;

// Throws MalformedJson without a column, std::bad_alloc.
[[noreturn]] void refuse(simdjson::error_code error);

inline void check(simdjson::error_code error) {
  if (error != simdjson::SUCCESS) refuse(error);
}

template <class T>
T require(simdjson::simdjson_result<T> result) {
  T value{};
  check(std::move(result).get(value));
  return value;
}

// Throws MalformedJson for a fault that the parser reports for `json` as a whole: finds its column.
[[noreturn]] void refuseWhole(simdjson::error_code error, std::string_view json);

// The place of a bracket that closes another one or none, of content after the last one, or the end
// where one is open; 0 without any. Only for JSON without faults of strings. May throw
// std::bad_alloc.
[[nodiscard]] std::size_t findBracketFault(std::string_view json);

} // namespace com::velanto::connectivity

#endif

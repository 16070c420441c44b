// Reads and checks one field's value; the errors name the field's key.
#ifndef VLT_CODEC_FIELD_CHECKS_HPP
#define VLT_CODEC_FIELD_CHECKS_HPP

#include <cstddef>
#include <exception>
#include <stdexcept>
#include <type_traits>

#include "codec/fault.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// `error` with "Problem with key 'KEY': " in front of its text.
[[nodiscard]] std::runtime_error problemWithKey(char const* key, const std::exception& error);

// The typed get of `value`, with "Problem with key 'KEY': " in front of its error text. T is
// char const* (which may be null), map_t& (a reference into the value) or long long.
template <class T, class Value>
[[nodiscard]] T getFromDataTReportingKey(Value& value, char const* key) {
  using content =
      std::conditional_t<std::is_same_v<T, long long>, std::int64_t, std::remove_reference_t<T>>;
  if (auto* const found = value.template get_if<content>()) return *found;
  throw problemWithKey(key, value.template get_error<content>());
}

// The same, but notes the error, and returns null for a text and 0 for a number then, as it does
// when there is a fault already. Not for map_t&.
template <class T>
[[nodiscard]] T getFromDataTNotingFault(data_t const& value, char const* key, Fault& fault) {
  using content = std::conditional_t<std::is_same_v<T, long long>, std::int64_t, T>;
  if (fault) return T();
  if (auto* const found = value.get_if<content>()) return *found;
  fault.note(problemWithKey(key, value.get_error<content>()));
  return T();
}

// Throws "Value for key 'KEY' is not a string." unless the value is of one of the two string kinds.
void ensureValueDataTIsString(char const* key, data_t const& value);

struct named_value_t {
  char const* key;
  data_t const& value;
};

// Notes that error, unless there is a fault already.
void noteNotAString(char const* key, Fault& fault);

// The same for several values, but notes the first that is of another kind: for conversions to look
// before they make a builder, whose own check throws.
template <std::size_t COUNT>
void noteUnlessStrings(const named_value_t (&values)[COUNT], Fault& fault) {
  for (const auto& [key, value] : values) {
    if (!value.is_string()) return noteNotAString(key, fault);
  }
}

// Whether the value is a number, or a text that strtod can begin to read and that has no 'x' in it:
// 12abc is numeric, 0x10 is refused on purpose.
[[nodiscard]] bool dataTConvertableToFloat(data_t const& value);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif

// Reads and checks one field's value; a fault names the field's key.
#ifndef VLT_CODEC_FIELD_CHECKS_HPP
#define VLT_CODEC_FIELD_CHECKS_HPP

#include <stdexcept>
#include <type_traits>

#include "codec/fault.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::plugins::pulsar {

// The fault "Problem with key 'KEY': " followed by the text of `error`.
[[nodiscard]] std::runtime_error problemWithKey(char const* key, const std::runtime_error& error);

// The content of `value` as T: char const* (which may be null), long long, or map_t* (which points
// into the value). A value of another kind is a fault, "Problem with key 'KEY': " followed by the
// typed get's error. With a fault the result is null or 0 and means nothing.
template <class T, class Value>
[[nodiscard]] T getFromDataTReportingKey(Value& value, char const* key, Fault& fault) {
  using content =
      std::conditional_t<std::is_same_v<T, map_t*>, map_t,
                         std::conditional_t<std::is_same_v<T, long long>, std::int64_t, T>>;
  if (fault) return T();
  auto* const found = value.template get_if<content>();
  if (found == nullptr) {
    fault.note(problemWithKey(key, value.template report_mismatch<content>()));
    return T();
  }
  if constexpr (std::is_same_v<T, map_t*>) {
    return found;
  } else {
    return *found;
  }
}

// A value of no string kind is a fault: "Value for key 'KEY' is not a string."
void noteNotAString(char const* key, Fault& fault);
inline void ensureValueDataTIsString(char const* key, data_t const& value, Fault& fault) {
  if (!value.is_string()) noteNotAString(key, fault);
}

// Whether the value is a number, or a text that strtod can begin to read and that has no 'x' in it:
// 12abc is numeric, 0x10 is refused on purpose.
[[nodiscard]] bool dataTConvertableToFloat(data_t const& value);

} // namespace com::velanto::connectivity::plugins::pulsar

#endif

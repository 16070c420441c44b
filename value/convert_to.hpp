// Reads a value as another type, for settings that people write in more than one way: a number or a
// boolean in the place of a string.
#ifndef VLT_VALUE_CONVERT_TO_HPP
#define VLT_VALUE_CONVERT_TO_HPP

#include <string>

#include "value/data_t.hpp"

namespace com::velanto::connectivity {

namespace convert_to_details {

template <class T>
class _get_or_convert;

// Visitor: the content as a string, or an error that names the value's kind.
//   boolean "true" "false"   double %g   integer %lld   string as it is   all others refused
// It refuses a decimal on purpose: its bits are the host's.
template <>
class _get_or_convert<std::string> {
 public:
  explicit _get_or_convert(const char* kind) noexcept : kind_(kind) {}

  std::string operator()(const bool& content) const;
  std::string operator()(const double& content) const;
  std::string operator()(const std::int64_t& content) const;
  std::string operator()(const char* const& content) const;
  template <class Other>
  std::string operator()(const Other&) const {
    refuse();
  }
  [[noreturn]] void refuse() const;

 private:
  const char* kind_;
};

} // namespace convert_to_details

// Throws std::runtime_error "Trying to parse from empty" or "Trying to parse from incorrect type
// (actually KIND)". Defined for std::string.
template <class T>
[[nodiscard]] T convert_to(const data_t& value);

template <>
[[nodiscard]] std::string convert_to<std::string>(const data_t& value);

} // namespace com::velanto::connectivity

#endif

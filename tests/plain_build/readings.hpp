// Texts that stand for numbers and times.
#ifndef VLT_PLAIN_BUILD_READINGS_HPP
#define VLT_PLAIN_BUILD_READINGS_HPP

#include <optional>
#include <string>

#include "tests/plain_build/value.hpp"

namespace plain_build {

// Whether `value` is a number, or a string that begins with one in the locale of the process. A
// string with an x or X in it is none.
bool isNumeric(const RawValue& value);

// The seconds since 1970-01-01 00:00 UTC of a date and time with a zone; nothing when `text` is none.
// Never throws anything but std::bad_alloc.
std::optional<double> secondsOf(const std::string& text);

} // namespace plain_build

#endif

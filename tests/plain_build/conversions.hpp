// The five kinds of notifications, each turned into an event.
#ifndef VLT_PLAIN_BUILD_CONVERSIONS_HPP
#define VLT_PLAIN_BUILD_CONVERSIONS_HPP

#include <string>

#include "tests/plain_build/table.hpp"

namespace plain_build {

// An event under construction. `measurements` becomes a field at the very end.
struct Event {
  const char* type = nullptr;
  Table fields;
  Table measurements;
};

// Converts the payload of a notification of the kind that the segment of its path begins with;
// consumes the payload. Throws std::runtime_error for the first fault, and std::bad_alloc.
Event convert(const std::string& segment, Table& payload);

} // namespace plain_build

#endif

// The kind of a notification, told by its path alone, by the rule in docs/fields.md: the segment
// after the second slash begins with the kind's word. This is the tool's own reading, for grouping
// the input; the outcome shows the plug-in's.
#ifndef VLT_TOOLS_RECORD_KIND_HPP
#define VLT_TOOLS_RECORD_KIND_HPP

#include <cstddef>
#include <string_view>

#include "value/hashed_key.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools {

// other: a path that names none of the five. none: no path, or one that is no string.
enum class Kind { ALARMS, EVENTS, MANAGEDOBJECTS, MEASUREMENTS, OPERATIONS, OTHER, NONE };

inline constexpr std::size_t KINDS = 7;

// As figures and files show it.
[[nodiscard]] const char* nameOf(Kind kind) noexcept;

[[nodiscard]] Kind kindOfPath(std::string_view path) noexcept;

// Looks into messages; keeps the keys, which are blocks of the host, for as long as it lives.
class MetadataReader {
 public:
  MetadataReader();

  [[nodiscard]] Kind kindOf(const Message& message) const noexcept;
  // Whether there is an event type, which the plug-in gives to the events that it makes.
  [[nodiscard]] bool isTyped(const Message& message) const noexcept;
  // The channel, or an empty string when there is none. Valid as long as the message.
  [[nodiscard]] std::string_view channelOf(const Message& message) const noexcept;

 private:
  hashed_key_t path_;
  hashed_key_t type_;
  hashed_key_t channel_;
};

} // namespace com::velanto::connectivity::tools

#endif

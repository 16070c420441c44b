// Display texts for log lines. The host decides their form; nothing parses them.
#ifndef VLT_VALUE_TO_STRING_HPP
#define VLT_VALUE_TO_STRING_HPP

#include <string>

#include "value/message.hpp"

namespace com::velanto::connectivity {

// Throw std::logic_error when the host yields no text, as without memory.
[[nodiscard]] std::string to_string(const data_t& value);
[[nodiscard]] std::string to_string(const map_t& map);

// "Message<metadata=…, payload=…>". With `truncate`, cuts the payload's text to 200 bytes (196 and
// " ..."). Then escapes its line breaks, so that a log line stays one line; that can take it beyond
// 200 again. The metadata is as the host renders it.
[[nodiscard]] std::string to_string(const Message& message, bool truncate);

} // namespace com::velanto::connectivity

#endif

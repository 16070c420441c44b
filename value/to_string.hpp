// Display texts for log lines. How a value looks is the host's; nothing parses these texts.
#ifndef VLT_VALUE_TO_STRING_HPP
#define VLT_VALUE_TO_STRING_HPP

#include <string>

#include "value/message.hpp"

namespace com::velanto::connectivity {

// Throw std::logic_error when the host yields no text, as it does when memory is exhausted.
[[nodiscard]] std::string to_string(const data_t& value);
[[nodiscard]] std::string to_string(const map_t& map);

// "Message<metadata=…, payload=…>". The payload's text is cut to 200 bytes when `truncate` is set
// (196 and " ..."), then its line breaks are escaped, so that a log line stays one line; escaping
// can take it beyond 200 again. The metadata stands as the host renders it.
[[nodiscard]] std::string to_string(const Message& message, bool truncate);

} // namespace com::velanto::connectivity

#endif

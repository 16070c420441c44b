// The tool's own strings in JSON that it writes.
#ifndef VLT_NDJSON_JSON_TEXT_HPP
#define VLT_NDJSON_JSON_TEXT_HPP

#include <string>
#include <string_view>

namespace com::velanto::connectivity {

// Appends `text` in quotes, escaped. A byte that is not part of UTF-8 becomes U+FFFD, so that any
// reader accepts the result.
void appendJsonText(std::string& out, std::string_view text);

} // namespace com::velanto::connectivity

#endif

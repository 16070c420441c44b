// The tools' own strings in JSON that they write.
#ifndef VLT_NDJSON_JSON_TEXT_HPP
#define VLT_NDJSON_JSON_TEXT_HPP

#include <string>
#include <string_view>

namespace com::velanto::connectivity {

// `text` with U+FFFD in place of each byte that is not part of UTF-8.
[[nodiscard]] std::string asUtf8(std::string_view text);

// Appends asUtf8(text) in quotes, escaped, so that any reader accepts the result.
void appendJsonText(std::string& out, std::string_view text);

} // namespace com::velanto::connectivity

#endif

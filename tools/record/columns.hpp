// Strings in columns of a terminal. A column is a character of UTF-8; an ellipsis marks a cut. Control
// characters are made visible.
#ifndef VLT_TOOLS_RECORD_COLUMNS_HPP
#define VLT_TOOLS_RECORD_COLUMNS_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace com::velanto::connectivity::tools {

[[nodiscard]] std::size_t widthOf(std::string_view text) noexcept;

// The number of bytes of the first `width` columns of `text`, or of all of it if it is narrower.
[[nodiscard]] std::size_t bytesOf(std::string_view text, std::size_t width) noexcept;

// `text` with blanks after or before it, as wide as `width` if it is not wider itself.
[[nodiscard]] std::string padded(std::string_view text, std::size_t width);
[[nodiscard]] std::string leftPadded(std::string_view text, std::size_t width);

// At most `width` columns of the beginning or the end of `text`.
[[nodiscard]] std::string cutBehind(std::string_view text, std::size_t width);
[[nodiscard]] std::string cutBefore(std::string_view text, std::size_t width);

} // namespace com::velanto::connectivity::tools

#endif

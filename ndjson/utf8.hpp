// The bounds of characters in UTF-8.
#ifndef VLT_NDJSON_UTF8_HPP
#define VLT_NDJSON_UTF8_HPP

#include <cstddef>
#include <string_view>

namespace com::velanto::connectivity {

// Bytes of the character at the begin of `text`, which is not empty; 0 when it begins with none.
// The second byte has bounds of its own where a shorter form, a surrogate or more than U+10FFFF
// would begin.
[[nodiscard]] inline std::size_t lengthOfCharacter(std::string_view text) noexcept {
  const auto byte_at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte_at(0);
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4) return 0;
  const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (text.size() < length) return 0;
  const unsigned char second = byte_at(1);
  const unsigned low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const unsigned high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  if (second < low || second > high) return 0;
  for (std::size_t k = 2; k < length; ++k) {
    if ((byte_at(k) & 0xC0) != 0x80) return 0;
  }
  return length;
}

// The place of the first byte that is not part of UTF-8; npos when there is none.
[[nodiscard]] inline std::size_t findInvalidUtf8(std::string_view text) noexcept {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = lengthOfCharacter(text.substr(i));
    if (length == 0) return i;
    i += length;
  }
  return std::string_view::npos;
}

} // namespace com::velanto::connectivity

#endif

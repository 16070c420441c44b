#include "ndjson/json_text.hpp"

#include <array>
#include <cstddef>

namespace com::velanto::connectivity {

namespace {

unsigned char byteAt(std::string_view text, std::size_t i) noexcept {
  return static_cast<unsigned char>(text[i]);
}

// Bytes of the character that begins at `i`, 0 when none does. The second byte has bounds of its
// own where a shorter form, a surrogate or more than U+10FFFF would begin.
std::size_t lengthOfCharacter(std::string_view text, std::size_t i) noexcept {
  const unsigned char first = byteAt(text, i);
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4) return 0;
  const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (text.size() - i < length) return 0;
  const unsigned char second = byteAt(text, i + 1);
  const unsigned low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const unsigned high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  if (second < low || second > high) return 0;
  for (std::size_t k = 2; k < length; ++k) {
    if ((byteAt(text, i + k) & 0xC0) != 0x80) return 0;
  }
  return length;
}

void appendEscaped(std::string& out, char c) {
  constexpr std::array<char, 17> DIGITS = {"0123456789abcdef"};
  const auto code = static_cast<unsigned char>(c);
  if (c == '"' || c == '\\') {
    out += '\\';
    out += c;
  } else if (c == '\n') {
    out += "\\n";
  } else if (code < 0x20) {
    out += "\\u00";
    out += DIGITS[code >> 4U];
    out += DIGITS[code & 15U];
  } else {
    out += c;
  }
}

} // namespace

std::size_t findInvalidUtf8(std::string_view text) noexcept {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = lengthOfCharacter(text, i);
    if (length == 0) return i;
    i += length;
  }
  return std::string_view::npos;
}

void appendJsonText(std::string& out, std::string_view text) {
  out += '"';
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = lengthOfCharacter(text, i);
    if (length == 0) {
      out += "\xEF\xBF\xBD";
      ++i;
    } else if (length == 1) {
      appendEscaped(out, text[i++]);
    } else {
      out += text.substr(i, length);
      i += length;
    }
  }
  out += '"';
}

} // namespace com::velanto::connectivity

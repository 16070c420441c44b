#include "ndjson/json_text.hpp"

#include <array>
#include <cstddef>

#include "ndjson/utf8.hpp"

namespace com::velanto::connectivity {

namespace {

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

void appendJsonText(std::string& out, std::string_view text) {
  out += '"';
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = lengthOfCharacter(text.substr(i));
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

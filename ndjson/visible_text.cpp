#include "ndjson/visible_text.hpp"

#include <algorithm>
#include <array>

#include "ndjson/utf8.hpp"

namespace com::velanto::connectivity {

namespace {

struct range_t {
  char32_t first;
  char32_t last;
};

constexpr std::array HIDDEN = {range_t{0x00, 0x1F},     range_t{0x7F, 0x9F},
                               range_t{0x061C, 0x061C}, range_t{0x200B, 0x200F},
                               range_t{0x2028, 0x202E}, range_t{0x2060, 0x2069},
                               range_t{0xFEFF, 0xFEFF}};

// The number of a whole character.
char32_t numberOf(std::string_view character) noexcept {
  const auto first = static_cast<unsigned char>(character.front());
  char32_t number = character.size() == 1 ? first : first & (0x7FU >> character.size());
  for (const char c : character.substr(1)) {
    number = number << 6U | (static_cast<unsigned char>(c) & 0x3FU);
  }
  return number;
}

bool isHidden(char32_t number) noexcept {
  return std::any_of(HIDDEN.begin(), HIDDEN.end(), [number](const range_t& range) {
    return number >= range.first && number <= range.last;
  });
}

void appendEscape(std::string& out, char letter, std::size_t digits, char32_t number) {
  out.append({'\\', letter});
  while (digits > 0) out += "0123456789abcdef"[number >> (4 * --digits) & 0xFU];
}

std::string shown(std::string_view text, bool keeps_line_ends) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = lengthOfCharacter(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
    text.remove_prefix(character.size());
    if (length == 0) {
      appendEscape(out, 'x', 2, static_cast<unsigned char>(character.front()));
    } else if (isHidden(numberOf(character)) && !(keeps_line_ends && character == "\n")) {
      appendEscape(out, 'u', 4, numberOf(character));
    } else {
      out += character;
    }
  }
  return out;
}

} // namespace

std::string visible(std::string_view text) { return shown(text, false); }
std::string visibleLines(std::string_view text) { return shown(text, true); }

VisibleLines::int_type VisibleLines::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char byte = traits_type::to_char_type(c);
  return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
}

std::streamsize VisibleLines::xsputn(const char* text, std::streamsize count) {
  line_.append(text, static_cast<std::size_t>(count));
  const std::size_t end = line_.rfind('\n');
  return end == std::string::npos || handOn(end + 1) ? count : 0;
}

int VisibleLines::sync() { return handOn(line_.size()) && out_.pubsync() == 0 ? 0 : -1; }

bool VisibleLines::handOn(std::size_t size) {
  const std::string lines = visibleLines(std::string_view(line_).substr(0, size));
  line_.erase(0, size);
  const auto count = static_cast<std::streamsize>(lines.size());
  return lines.empty() || out_.sputn(lines.data(), count) == count;
}

} // namespace com::velanto::connectivity

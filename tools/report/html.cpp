#include "tools/report/html.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

#include "tools/report/shape.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;

struct character_t {
  char32_t code;
  std::size_t size; // bytes
};

// The first character of a text that is not empty; a byte that is no UTF-8 is one of its own.
character_t firstOf(std::string_view text) noexcept {
  const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return {first, 1};
  const std::size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < size) return {REPLACEMENT, 1};
  char32_t code = first & (0xFF >> (size + 1));
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {REPLACEMENT, 1};
    code = (code << 6) | (byte(i) & 0x3F);
  }
  constexpr std::array<char32_t, 5> SMALLEST = {0, 0, 0x80, 0x800, 0x10000};
  const bool is_surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < SMALLEST[size] || code > 0x10FFFF || is_surrogate) return {REPLACEMENT, 1};
  return {code, size};
}

struct range_t {
  char32_t first;
  char32_t last;
};

// Controls, marks and overrides of direction, separators, and characters without a shape. The
// joiners U+200C and U+200D stay: some scripts are wrong without them.
constexpr std::array INVISIBLE = {
    range_t{0x00, 0x1F},       range_t{0x7F, 0x9F},     range_t{0xAD, 0xAD},
    range_t{0x61C, 0x61C},     range_t{0x180E, 0x180E}, range_t{0x200B, 0x200B},
    range_t{0x200E, 0x200F},   range_t{0x2028, 0x202E}, range_t{0x2060, 0x206F},
    range_t{0xFEFF, 0xFEFF},   range_t{0xFFF0, 0xFFFB}, range_t{0xFFFE, 0xFFFF},
    range_t{0xE0000, 0xE0FFF},
};

bool isInvisible(char32_t code) noexcept {
  return std::any_of(INVISIBLE.begin(), INVISIBLE.end(), [code](const range_t& range) {
    return code >= range.first && code <= range.last;
  });
}

std::string jsonEscapeOf(char32_t code) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned>(code));
  return text.data();
}

std::string pieceFor(const character_t& character, std::string_view bytes) {
  switch (character.code) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    case REPLACEMENT:
      return "\uFFFD";
    default:
      break;
  }
  if (!isInvisible(character.code)) return std::string(bytes);
  if (character.code <= 0xFFFF) return jsonEscapeOf(character.code);
  const char32_t above = character.code - 0x10000;
  return jsonEscapeOf(0xD800 + (above >> 10)) + jsonEscapeOf(0xDC00 + (above & 0x3FF));
}

} // namespace

std::string escaped(std::string_view text, std::size_t most, std::size_t& left_out) {
  std::string out;
  while (!text.empty()) {
    const character_t character = firstOf(text);
    const std::string piece = pieceFor(character, text.substr(0, character.size));
    if (out.size() + piece.size() > most) break;
    out += piece;
    text.remove_prefix(character.size);
  }
  left_out = text.size();
  return out;
}

std::string grouped(std::uint64_t number) {
  std::string digits = std::to_string(number);
  if (number < 10'000) return digits;
  for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, "\u202F");
  return digits;
}

std::string counted(std::uint64_t number, std::string_view one) {
  return grouped(number).append(" ").append(one).append(number == 1 ? "" : "s");
}

std::string anchorOf(std::string_view text) {
  constexpr std::size_t LONGEST = 40;
  constexpr std::string_view DIGITS = "0123456789abcdef";
  if (text.size() > LONGEST) return "long-" + anchorOf(hashOf(text));
  std::string anchor;
  for (const char c : text) {
    const bool plain =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
    const auto byte = static_cast<unsigned char>(c);
    anchor += plain ? c : '_';
    if (!plain) (anchor += DIGITS[byte >> 4]) += DIGITS[byte & 15];
  }
  return anchor;
}

std::string anchorOf(std::uint64_t number) {
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(number));
  return digits.data();
}

Html& Html::operator<<(const shown_t& text) {
  std::size_t left_out = 0;
  out_ += escaped(text.text, text.most, left_out);
  noteCut(left_out);
  return *this;
}

void Html::noteCut(std::size_t left_out) {
  if (left_out == 0) return;
  ++cut_texts_;
  out_ += "… (" + counted(left_out, "byte") + " more)";
}

void Html::lines(std::string_view text, std::size_t most) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::size_t left_out = 0;
    const std::string line = escaped(text.substr(0, end), most, left_out);
    out_ += line;
    if (left_out > 0) return noteCut(text.size() - end + left_out);
    most -= line.size();
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!text.empty()) out_ += '\n';
  }
}

void Html::leaveOut(const std::string& sentence) {
  *this << "<p class=\"note\">" << shown(sentence) << "</p>\n";
  omissions_.push_back(sentence);
}

} // namespace com::velanto::connectivity::tools::report

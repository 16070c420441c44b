#include "tools/report/html.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

#include "ndjson/utf8.hpp"
#include "ndjson/visible_text.hpp"
#include "tools/report/shape.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

// The first character of a text that is not empty, or a byte that is no part of UTF-8.
std::string_view firstOf(std::string_view text) noexcept {
  return text.substr(0, std::max<std::size_t>(1, lengthOfCharacter(text)));
}

std::string pieceFor(std::string_view character) {
  switch (character.front()) {
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
    default:
      return visible(character);
  }
}

} // namespace

std::string escaped(std::string_view text, std::size_t most, std::size_t& left_out) {
  std::string out;
  while (!text.empty()) {
    const std::string_view character = firstOf(text);
    const std::string piece = pieceFor(character);
    if (out.size() + piece.size() > most) break;
    out += piece;
    text.remove_prefix(character.size());
  }
  left_out = text.size();
  return out;
}

std::string grouped(std::uint64_t number) {
  std::string digits = std::to_string(number);
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
  *this << R"(<p class="note">)" << shown(sentence) << "</p>\n";
  omissions_.push_back(sentence);
}

} // namespace com::velanto::connectivity::tools::report

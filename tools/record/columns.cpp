#include "tools/record/columns.hpp"

#include <algorithm>

namespace com::velanto::connectivity::tools {

namespace {

constexpr const char* ELLIPSIS = "…";

bool beginsCharacter(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

} // namespace

std::size_t widthOf(std::string_view text) noexcept {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

std::size_t bytesOf(std::string_view text, std::size_t width) noexcept {
  std::size_t end = 0;
  for (std::size_t columns = 0; end < text.size(); ++end) {
    if (beginsCharacter(text[end]) && columns++ == width) break;
  }
  return end;
}

std::string padded(std::string_view text, std::size_t width) {
  const std::size_t own = widthOf(text);
  return std::string(text) + std::string(width - std::min(own, width), ' ');
}

std::string leftPadded(std::string_view text, std::size_t width) {
  const std::size_t own = widthOf(text);
  return std::string(width - std::min(own, width), ' ').append(text);
}

std::string cutBehind(std::string_view text, std::size_t width) {
  if (widthOf(text) <= width) return std::string(text);
  return std::string(text.substr(0, bytesOf(text, width - 1))) + ELLIPSIS;
}

std::string cutBefore(std::string_view text, std::size_t width) {
  if (widthOf(text) <= width) return std::string(text);
  std::size_t begin = text.size();
  for (std::size_t characters = 0; characters < width - 1;) {
    if (beginsCharacter(text[--begin])) ++characters;
  }
  return std::string(ELLIPSIS).append(text.substr(begin));
}

} // namespace com::velanto::connectivity::tools

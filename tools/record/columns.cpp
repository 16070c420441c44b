#include "tools/record/columns.hpp"

#include <algorithm>

#include "ndjson/visible_text.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr const char* ELLIPSIS = "…";

bool beginsCharacter(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

// The last `width` columns of `text`, or all of it.
std::string_view lastOf(std::string_view text, std::size_t width) noexcept {
  std::size_t begin = text.size();
  for (std::size_t columns = 0; begin > 0 && columns < width;) {
    if (beginsCharacter(text[--begin])) ++columns;
  }
  return text.substr(begin);
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
  std::string shown = visible(text);
  return shown.append(width - std::min(widthOf(shown), width), ' ');
}

std::string leftPadded(std::string_view text, std::size_t width) {
  const std::string shown = visible(text);
  return std::string(width - std::min(widthOf(shown), width), ' ').append(shown);
}

std::string cutBehind(std::string_view text, std::size_t width) {
  // No character becomes narrower, so the others cannot fit.
  std::string shown = visible(text.substr(0, bytesOf(text, width + 1)));
  if (widthOf(shown) <= width) return shown;
  return shown.substr(0, bytesOf(shown, width - 1)) + ELLIPSIS;
}

std::string cutBefore(std::string_view text, std::size_t width) {
  std::string shown = visible(lastOf(text, width + 1));
  if (widthOf(shown) <= width) return shown;
  return std::string(ELLIPSIS).append(lastOf(shown, width - 1));
}

} // namespace com::velanto::connectivity::tools

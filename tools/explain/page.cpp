#include "tools/explain/page.hpp"

#include <algorithm>

#include "ndjson/visible_text.hpp"
#include "tools/record/columns.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t LABEL = 11;     // columns, with the blanks after it
constexpr std::size_t CONTINUED = 15; // columns before a line that goes on
constexpr const char* MARGIN = "  ";

} // namespace

std::string Page::coloured(std::string_view text, Colour colour) const {
  if (!colour_ || colour == Colour::NONE) return std::string(text);
  std::string result = "\x1B[";
  result += std::to_string(static_cast<int>(colour));
  return result.append("m").append(text).append("\x1B[0m");
}

void Page::heading(std::string_view text) {
  out_ += coloured(visible(text), Colour::BOLD) + "\n";
  label_.clear();
}

void Page::entry(std::string_view label, Colour colour, const std::vector<std::string>& parts) {
  const std::string shown = label == label_ ? "" : coloured(label, colour);
  out_ += MARGIN + shown + std::string(LABEL - (label == label_ ? 0 : widthOf(label)), ' ');
  label_ = label;
  std::size_t columns_left = WIDTH;
  bool first = true;
  for (const std::string& each : parts) {
    const std::string part = visible(each);
    const std::size_t width = widthOf(part);
    if (!first && width + 1 > columns_left) {
      out_ += "\n" + std::string(CONTINUED, ' ');
      columns_left = WIDTH;
      first = true;
    }
    if (!first) out_ += ' ';
    columns_left -= std::min(columns_left, width + (first ? 0 : 1));
    out_ += part;
    first = false;
  }
  out_ += '\n';
}

void Page::text(std::string_view label, Colour colour, std::string_view content) {
  const std::string shown = visible(content);
  std::string_view text = shown;
  std::vector<std::string> words;
  while (!text.empty()) {
    const std::size_t blank = text.find(' ');
    std::string_view word = text.substr(0, blank);
    text.remove_prefix(blank == std::string_view::npos ? text.size() : blank + 1);
    while (widthOf(word) > WIDTH) {
      const std::size_t bytes = bytesOf(word, WIDTH);
      words.emplace_back(word.substr(0, bytes));
      word.remove_prefix(bytes);
    }
    words.emplace_back(word);
  }
  entry(label, colour, words);
}

} // namespace com::velanto::connectivity::tools

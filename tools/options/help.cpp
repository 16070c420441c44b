#include "tools/options/help.hpp"

#include <cstddef>
#include <string_view>

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t COLUMNS = 79;

// Appends `head` and after it, from column `indent` on, the words of `text`.
void appendEntry(std::string& out, std::string_view head, std::string_view text,
                 std::size_t indent) {
  std::string line(head);
  if (line.size() + 2 > indent) {
    out += line + "\n";
    line.clear();
  }
  line.resize(indent, ' ');
  bool first = true;
  while (!text.empty()) {
    const std::size_t blank = text.find(' ');
    const std::string_view word = text.substr(0, blank);
    text.remove_prefix(blank == std::string_view::npos ? text.size() : blank + 1);
    if (!first && line.size() + 1 + word.size() > COLUMNS) {
      out += line + "\n";
      line.assign(indent, ' ');
      first = true;
    }
    if (!first) line += ' ';
    line += word;
    first = false;
  }
  out += line + "\n";
}

std::string headOf(const option_row_t& row) {
  std::string head = "  ";
  head += row.name;
  if (*row.argument != '\0' && *row.argument != '[') head += ' ';
  head += row.argument;
  return head;
}

} // namespace

std::string helpText(const tool_t& tool) {
  constexpr std::size_t OPTION_INDENT = 30;
  std::string text = "Examples:\n";
  for (const example_row_t& row : tool.examples) {
    text += std::string("  # ") + row.purpose + "\n  " + row.command + "\n";
  }
  text += tool.introduction;
  for (const option_group_t& group : tool.groups) {
    text += std::string("\n") + group.title + ":\n";
    for (const option_row_t& row : group.rows) {
      appendEntry(text, headOf(row), row.help, OPTION_INDENT);
    }
  }
  text += std::string("\n") + tool.title_of_statuses + ":\n";
  for (const status_row_t& row : tool.statuses) {
    std::string number = std::to_string(row.status);
    number.insert(0, 5 - number.size(), ' ');
    appendEntry(text, number, row.meaning, 7);
  }
  return text;
}

} // namespace com::velanto::connectivity::tools

#include "tools/options/man_page.hpp"

#include <cstddef>
#include <map>
#include <stdexcept>

namespace com::velanto::connectivity::tools {

namespace {

std::string bold(const std::string& text) { return "\\fB" + roff(text) + "\\fP"; }
std::string italic(const std::string& text) { return "\\fI" + roff(text) + "\\fP"; }

// "a|b", words to type as they are.
std::string choicesText(const std::string& choices) {
  std::string text;
  std::size_t start = 0;
  for (std::size_t bar = 0; bar != std::string::npos; start = bar + 1) {
    bar = choices.find('|', start);
    if (start > 0) text += '|';
    text += bold(choices.substr(start, bar - start));
  }
  return text;
}

// Placeholders, such as "FILE", in italics.
std::string tagOf(const option_row_t& option) {
  std::string name = bold(option.name);
  const std::string argument = option.argument;
  if (argument.empty()) return name;
  if (argument.starts_with("[=")) {
    return name + "[=" + choicesText(argument.substr(2, argument.size() - 3)) + "]";
  }
  const bool is_choice = argument.find('|') != std::string::npos;
  return name + " " + (is_choice ? choicesText(argument) : italic(argument));
}

std::string tableOfExamples(const tool_t& tool) {
  std::string text;
  for (const example_row_t& example : tool.examples) {
    text += ".PP\n" + roff(example.purpose) + "\n.EX\n" + bold(example.command) + "\n.EE\n";
  }
  return text;
}

std::string tableOfOptions(const tool_t& tool) {
  std::string text;
  for (const option_group_t& group : tool.groups) {
    text += ".SS " + roff(group.title) + "\n";
    for (const option_row_t& option : group.rows) {
      text += ".TP\n" + tagOf(option) + "\n" + roff(option.help) + "\n";
    }
  }
  return text;
}

std::string tableOfStatuses(const tool_t& tool) {
  std::string text;
  for (const status_row_t& row : tool.statuses) {
    text += ".TP\n" + bold(std::to_string(row.status)) + "\n" + roff(row.meaning) + "\n";
  }
  return text;
}

void replaceAll(std::string& text, const std::string& name, const std::string& by) {
  for (std::size_t at = text.find(name); at != std::string::npos;
       at = text.find(name, at + by.size())) {
    text.replace(at, name.size(), by);
  }
}

// The first "@NAME@" in `text`, or the empty string.
std::string placeholderIn(const std::string& text) {
  for (std::size_t at = text.find('@'); at != std::string::npos; at = text.find('@', at + 1)) {
    const std::size_t end = text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_", at + 1);
    if (end != std::string::npos && end > at + 1 && text[end] == '@') {
      return text.substr(at, end + 1 - at);
    }
  }
  return "";
}

} // namespace

std::string roff(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '-') {
      result += "\\-";
    } else if (c == '\\') {
      result += "\\e";
    } else if (c == '\'') {
      result += "\\(aq"; // a quote for shells; the plain one may become a curly one
    } else {
      result += c;
    }
  }
  return result.starts_with('.') ? "\\&" + result : result;
}

std::string manPage(const tool_t& tool, const std::string& prose) {
  const std::map<std::string, std::string> tables = {
      {"@EXAMPLES@\n", tableOfExamples(tool)},
      {"@OPTIONS@\n", tableOfOptions(tool)},
      {"@EXIT_STATUS@\n", tableOfStatuses(tool)},
  };
  std::string page = prose;
  for (const auto& [name, table] : tables) {
    if (page.find("\n" + name) == std::string::npos) {
      throw std::invalid_argument(std::string("the prose of ") + tool.name + " has no line " +
                                  name);
    }
    replaceAll(page, name, table);
  }
  replaceAll(page, "@VERSION@", VLT_VERSION);
  replaceAll(page, "@LIB@", roff(VLT_LIBRARY_FOLDER));
  const std::string unknown = placeholderIn(page);
  if (!unknown.empty()) {
    throw std::invalid_argument(std::string("the prose of ") + tool.name + " names an unknown " +
                                unknown);
  }
  return page;
}

} // namespace com::velanto::connectivity::tools

#include "tools/replay/writing/printed_lines.hpp"

#include <algorithm>

#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t LONGEST = 4096; // bytes of a line that are kept
constexpr const char* WROTE = ": the plug-in wrote";

std::string times(std::uint64_t count) {
  return count == 1 ? "" : std::string(1, ' ') + std::to_string(count) + " times";
}

} // namespace

void PrintedLines::add(std::string_view text, const std::string& place) {
  while (!text.empty()) {
    const std::size_t size = std::min(text.find('\n'), text.size());
    addLine(std::string(text.substr(0, std::min(size, LONGEST))), place, 1);
    text.remove_prefix(std::min(size + 1, text.size()));
  }
}

void PrintedLines::addLine(const std::string& line, const std::string& place, std::uint64_t times) {
  const auto found = numbers_.find(line);
  if (found != numbers_.end()) {
    lines_[found->second].count += times;
  } else if (lines_.size() == MOST) {
    others_ += times;
  } else {
    numbers_.emplace(line, lines_.size());
    lines_.push_back({line, place, times, 0});
  }
}

std::string PrintedLines::textOf(printed_line_t& line) {
  line.shown = line.count;
  return (line.first.empty() ? REPLAY_NAME : line.first) + WROTE + times(line.count) +
         " to standard error: " + line.text + "\n";
}

std::string PrintedLines::text() {
  std::string text;
  for (printed_line_t& line : lines_) {
    if (line.shown < line.count) text += textOf(line);
  }
  if (others_ == 0) return text;
  return text.append(REPLAY_NAME).append(WROTE) + " other lines" + times(others_) + "\n";
}

std::string PrintedLines::firstText() {
  std::string text;
  for (printed_line_t& line : lines_) {
    if (line.shown == 0) text += textOf(line);
  }
  return text;
}

} // namespace com::velanto::connectivity::tools

#include "tools/replay/writing/printed_lines.hpp"

#include <algorithm>

#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::size_t LONGEST = 4096; // bytes of a line that are kept

std::string times(std::uint64_t count) {
  return count == 1 ? "" : std::string(1, ' ') + std::to_string(count) + " times";
}

} // namespace

void PrintedLines::add(std::string_view text, const std::string& place) {
  while (!text.empty()) {
    const std::size_t size = std::min(text.find('\n'), text.size());
    const std::string line(text.substr(0, std::min(size, LONGEST)));
    text.remove_prefix(std::min(size + 1, text.size()));
    const auto found = numbers_.find(line);
    if (found != numbers_.end()) {
      ++lines_[found->second].count;
    } else if (lines_.size() == MOST) {
      ++others_;
    } else {
      numbers_.emplace(line, lines_.size());
      lines_.push_back({line, place, 1});
    }
  }
}

std::string PrintedLines::text() const {
  const std::string wrote = ": the plug-in wrote";
  std::string text;
  for (const printed_line_t& line : lines_) {
    text.append(line.first.empty() ? REPLAY_NAME : line.first).append(wrote);
    text.append(times(line.count)).append(" to standard error: ").append(line.text).append("\n");
  }
  if (others_ > 0) {
    text.append(REPLAY_NAME).append(wrote).append(" other lines").append(times(others_));
    text.append("\n");
  }
  return text;
}

} // namespace com::velanto::connectivity::tools

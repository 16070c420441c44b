// The lines that the plug-in writes to standard error past its log: each distinct one once, with its
// number and the message that the plug-in had when it wrote it first. A run that follows its input
// shows each at once, and again at the end if it came more often.
#ifndef VLT_TOOLS_REPLAY_WRITING_PRINTED_LINES_HPP
#define VLT_TOOLS_REPLAY_WRITING_PRINTED_LINES_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/record/record.hpp"

namespace com::velanto::connectivity::tools {

struct printed_line_t {
  std::string text;
  std::string first; // FILE:LINE; empty: no message, or one of several
  std::uint64_t count = 0;
  std::uint64_t shown = 0; // the count when it was shown last
};

class PrintedLines final : public Consumer {
 public:
  static constexpr std::size_t MOST = 100; // distinct lines

  void take(const record_t& record) override {
    if (!record.printed.empty()) add(record.printed, record.place());
  }
  // Whole lines; the end of `text` ends one, too.
  void add(std::string_view text, const std::string& place);
  // One line, without its end, so many times.
  void addLine(const std::string& line, const std::string& place, std::uint64_t times);
  // Lines beyond MOST distinct ones.
  void addOthers(std::uint64_t lines) noexcept { others_ += lines; }

  // In the order of their first appearance.
  [[nodiscard]] const std::vector<printed_line_t>& lines() const noexcept { return lines_; }
  // Lines beyond MOST distinct ones.
  [[nodiscard]] std::uint64_t others() const noexcept { return others_; }
  // One line for each that has come since it was shown, with its end; empty without lines.
  [[nodiscard]] std::string text();
  // The same for the lines that have not been shown at all.
  [[nodiscard]] std::string firstText();

 private:
  static std::string textOf(printed_line_t& line);

  std::vector<printed_line_t> lines_;
  std::unordered_map<std::string, std::size_t> numbers_;
  std::uint64_t others_ = 0;
};

} // namespace com::velanto::connectivity::tools

#endif

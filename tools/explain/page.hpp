// Lays out the explanation of a message in 79 columns, a label and its parts, with all control
// characters of the parts made visible:
//
//     unchanged  id, self, text
//     converted  time "2024-05-14T06:14:40.250+02:00"
//                  → firstOccurrenceTime 1715660078.0
#ifndef VLT_TOOLS_EXPLAIN_PAGE_HPP
#define VLT_TOOLS_EXPLAIN_PAGE_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace com::velanto::connectivity::tools {

// As terminals number them; none: as everything else.
enum class Colour {
  NONE = 0,
  BOLD = 1,
  DIM = 2,
  RED = 31,
  GREEN = 32,
  YELLOW = 33,
  BLUE = 34,
  CYAN = 36
};

class Page {
 public:
  static constexpr std::size_t WIDTH = 64; // columns of each line of an entry

  explicit Page(bool colour) noexcept : colour_(colour) {}

  void heading(std::string_view text);
  // An entry; of several with the same label in a row only the first shows it. A line takes as many
  // parts as fit, with blanks between them; each part must fit a line.
  void entry(std::string_view label, Colour colour, const std::vector<std::string>& parts);
  // An entry of one string, broken between words and, where there is none, within one.
  void text(std::string_view label, Colour colour, std::string_view content);

  [[nodiscard]] std::string take() && { return std::move(out_); }

 private:
  [[nodiscard]] std::string coloured(std::string_view text, Colour colour) const;

  bool colour_;
  std::string label_; // of the last entry
  std::string out_;
};

} // namespace com::velanto::connectivity::tools

#endif

// A page of HTML under construction. Markup comes from literals of the source alone, which the
// compiler checks. Every other text goes through escaped(), so no text can become markup:
//
//   & < > " '                                          an entity
//   characters and bytes that ndjson/visible_text.hpp  its visible form, such as \u202e
//   names
//
// The result is right within an element and within an attribute in quotes.
#ifndef VLT_TOOLS_REPORT_HTML_HPP
#define VLT_TOOLS_REPORT_HTML_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace com::velanto::connectivity::tools::report {

struct markup_t {
  // NOLINTNEXTLINE(google-explicit-constructor): a literal is markup wherever it is written
  consteval markup_t(const char* literal) : text(literal) {}
  std::string_view text;
};

inline constexpr std::size_t USUAL_LENGTH = 400; // bytes of an escaped text in a cell

// A text that is no markup, cut to so many bytes when it is escaped.
struct shown_t {
  std::string_view text;
  std::size_t most;
};

[[nodiscard]] constexpr shown_t shown(std::string_view text, std::size_t most = USUAL_LENGTH) {
  return {text, most};
}

// `left_out` is the number of bytes of `text` that did not fit into `most` bytes.
[[nodiscard]] std::string escaped(std::string_view text, std::size_t most, std::size_t& left_out);

// 12 345, with narrow spaces that do not break.
[[nodiscard]] std::string grouped(std::uint64_t number);
// "1 message", "12 messages": `one` with an s unless there is one.
[[nodiscard]] std::string counted(std::uint64_t number, std::string_view one);
// An anchor of its own for each text: letters, digits and - stay, any other byte becomes _ and two
// hexadecimal digits; of a text of more than 40 bytes, a hash stays.
[[nodiscard]] std::string anchorOf(std::string_view text);
// 16 hexadecimal digits.
[[nodiscard]] std::string anchorOf(std::uint64_t number);

class Html {
 public:
  Html& operator<<(markup_t markup) {
    out_ += markup.text;
    return *this;
  }
  // A cut text ends in an ellipsis and the number of bytes left out.
  Html& operator<<(const shown_t& text);
  // Digits alone, as attributes and drawings need them.
  Html& operator<<(std::uint64_t number) {
    out_ += std::to_string(number);
    return *this;
  }

  // Lines of text, each escaped, with all of them cut to `most` bytes.
  void lines(std::string_view text, std::size_t most);
  // Says here, and once more at the end of the page, what the page leaves out.
  void leaveOut(const std::string& sentence);

  [[nodiscard]] const std::vector<std::string>& omissions() const noexcept { return omissions_; }
  [[nodiscard]] std::uint64_t cutTexts() const noexcept { return cut_texts_; }
  [[nodiscard]] std::string take() && { return std::move(out_); }

 private:
  void noteCut(std::size_t left_out);

  std::string out_;
  std::vector<std::string> omissions_;
  std::uint64_t cut_texts_ = 0;
};

} // namespace com::velanto::connectivity::tools::report

#endif

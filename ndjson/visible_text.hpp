// Text of unknown origin for a terminal, which would obey its control characters:
//
//   U+0000 to U+001F, U+007F to U+009F   controls                       \u001b
//   U+061C, U+200B to U+200F,            marks of the direction, and
//   U+2028 to U+202E, U+2060 to U+2069,  characters that show nothing,
//   U+FEFF                               or end a line                  \u202e
//   a byte that is not part of UTF-8                                    \xff
//
// The form with \u is JSON's own: in a line of JSON it means the same character.
#ifndef VLT_NDJSON_VISIBLE_TEXT_HPP
#define VLT_NDJSON_VISIBLE_TEXT_HPP

#include <streambuf>
#include <string>
#include <string_view>

namespace com::velanto::connectivity {

// `text` on one line. Made visible once more, it stays the same.
[[nodiscard]] std::string visible(std::string_view text);
// The same for lines, whose ends stay.
[[nodiscard]] std::string visibleLines(std::string_view text);

// Hands on whole lines, made visible, so that they never mix with the output of others.
class VisibleLines final : public std::streambuf {
 public:
  // `out` must outlive this.
  explicit VisibleLines(std::streambuf& out) noexcept : out_(out) {}
  VisibleLines(const VisibleLines&) = delete;
  VisibleLines& operator=(const VisibleLines&) = delete;
  ~VisibleLines() override { handOn(line_.size()); }

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int sync() override;

 private:
  bool handOn(std::size_t size);

  std::streambuf& out_;
  std::string line_; // that has no end yet
};

} // namespace com::velanto::connectivity

#endif

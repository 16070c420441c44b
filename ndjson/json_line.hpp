// One line of JSON that a tool puts together, with the commas where they belong.
#ifndef VLT_NDJSON_JSON_LINE_HPP
#define VLT_NDJSON_JSON_LINE_HPP

#include <array>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "ndjson/json_text.hpp"

namespace com::velanto::connectivity {

// Members and elements with commas between them.
class JsonLine {
 public:
  // The name of a member, or, for null, nothing; the value comes next.
  JsonLine& item(const char* name) {
    if (comma_) out_ += ',';
    comma_ = true;
    if (name != nullptr) {
      appendJsonText(out_, name);
      out_ += ':';
    }
    return *this;
  }
  void open(char bracket) {
    out_ += bracket;
    comma_ = false;
  }
  void close(char bracket) {
    out_ += bracket;
    comma_ = true;
  }
  void text(std::string_view value) { appendJsonText(out_, value); }
  void number(std::uint64_t value) { out_ += std::to_string(value); }
  void real(double value) {
    std::array<char, 400> digits{}; // room for any double
    const std::to_chars_result end = std::to_chars(digits.begin(), digits.end(), value);
    out_.append(digits.begin(), end.ptr);
  }
  void raw(std::string_view value) { out_ += value; }

  [[nodiscard]] std::string take() && { return std::move(out_) + "\n"; }

 private:
  std::string out_;
  bool comma_ = false;
};

} // namespace com::velanto::connectivity

#endif

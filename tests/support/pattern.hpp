// Regular expressions for tests, in the grammar of std::regex. A source that uses std::regex itself
// takes seconds to compile, several with sanitizers: here that is paid for once, in pattern.cpp.
#ifndef VLT_TESTS_SUPPORT_PATTERN_HPP
#define VLT_TESTS_SUPPORT_PATTERN_HPP

#include <memory>
#include <string>
#include <vector>

namespace com::velanto::connectivity::test {

class Pattern {
 public:
  // The match, then the match of each group; empty for a group without a part in it.
  using match_t = std::vector<std::string>;

  // Throws std::regex_error when `expression` is none.
  explicit Pattern(const std::string& expression);

  [[nodiscard]] bool isIn(const std::string& text) const;
  [[nodiscard]] bool isAllOf(const std::string& text) const;
  // From left to right, none overlapping another.
  [[nodiscard]] std::vector<match_t> allIn(const std::string& text) const;
  // `text` with `by` for each match; $1 in `by` is the first group.
  [[nodiscard]] std::string replacedIn(const std::string& text, const std::string& by) const;

 private:
  struct Expression;
  std::shared_ptr<const Expression> expression_;
};

} // namespace com::velanto::connectivity::test

#endif

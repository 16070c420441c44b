#include "tests/support/pattern.hpp"

#include <regex>

namespace com::velanto::connectivity::test {

struct Pattern::Expression {
  std::regex regex;
};

Pattern::Pattern(const std::string& expression)
    : expression_(std::make_shared<const Expression>(Expression{std::regex(expression)})) {}

bool Pattern::isIn(const std::string& text) const {
  return std::regex_search(text, expression_->regex);
}

bool Pattern::isAllOf(const std::string& text) const {
  return std::regex_match(text, expression_->regex);
}

std::vector<Pattern::match_t> Pattern::allIn(const std::string& text) const {
  std::vector<match_t> matches;
  for (std::sregex_iterator found(text.begin(), text.end(), expression_->regex), end; found != end;
       ++found) {
    match_t& match = matches.emplace_back();
    for (const auto& part : *found) match.push_back(part.str());
  }
  return matches;
}

std::string Pattern::replacedIn(const std::string& text, const std::string& by) const {
  return std::regex_replace(text, expression_->regex, by);
}

} // namespace com::velanto::connectivity::test

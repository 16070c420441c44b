#include "tools/check/selection.hpp"

#include <fnmatch.h>

#include <algorithm>
#include <stdexcept>

#include "tools/check/suites/suites.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

bool matches(const check_t& check, const std::string& pattern) {
  return fnmatch(pattern.c_str(), check.name, 0) == 0;
}

bool matchesOne(const check_t& check, const std::vector<std::string>& patterns) {
  return std::any_of(patterns.begin(), patterns.end(),
                     [&](const std::string& pattern) { return matches(check, pattern); });
}

// A misspelt pattern must not pass for a library without faults.
void requireMatches(std::span<const check_t> checks, const std::vector<std::string>& patterns) {
  for (const std::string& pattern : patterns) {
    const bool used = std::any_of(checks.begin(), checks.end(),
                                  [&](const check_t& check) { return matches(check, pattern); });
    if (!used) throw std::runtime_error("no check is named '" + pattern + "'; see --list");
  }
}

} // namespace

const std::vector<check_t>& allChecks() {
  static const std::vector<check_t> CHECKS = [] {
    std::vector<check_t> all;
    for (const suite_t suite : suites()) all.insert(all.end(), suite.begin(), suite.end());
    return all;
  }();
  return CHECKS;
}

std::vector<check_t> checksOf(Plugin plugin) {
  const Use others = plugin == Plugin::CODEC ? Use::LOAD_RECORDER : Use::LOAD_CODEC;
  std::vector<check_t> checks = allChecks();
  std::erase_if(checks, [others](const check_t& check) { return check.use == others; });
  return checks;
}

std::vector<check_t> select(std::span<const check_t> checks, const std::vector<std::string>& only,
                            const std::vector<std::string>& skip) {
  requireMatches(checks, only);
  requireMatches(checks, skip);
  std::vector<check_t> selected;
  for (const check_t& check : checks) {
    const bool wanted = only.empty() || matchesOne(check, only);
    if (wanted && !matchesOne(check, skip)) selected.push_back(check);
  }
  if (selected.empty()) throw std::runtime_error("no check is left to run");
  return selected;
}

} // namespace com::velanto::connectivity::tools::check

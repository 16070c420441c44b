#include "tools/explain/echo.hpp"

#include <algorithm>
#include <cstddef>

namespace com::velanto::connectivity::tools {

namespace {

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// For values that differ in one character: whether the strings differ in that character alone.
bool isEchoOfPart(const std::string& before, const std::string& now, const std::string& old_value,
                  const std::string& new_value) {
  if (before.size() != now.size() || old_value.size() != new_value.size()) return false;
  const auto differing = std::mismatch(old_value.begin(), old_value.end(), new_value.begin());
  if (differing.first == old_value.end()) return false;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] == now[i]) continue;
    if (before[i] != *differing.first || now[i] != *differing.second) return false;
  }
  return true;
}

} // namespace

bool isEcho(const std::string& before, const std::string& now, const std::string& old_value,
            const std::string& new_value) {
  if (before == now || old_value.empty()) return false;
  return replaced(before, old_value, new_value) == now ||
         isEchoOfPart(before, now, old_value, new_value);
}

bool isWithoutMention(const std::string& before, const std::string& now, const std::string& value) {
  if (now.size() >= before.size()) return false;
  const auto differing = std::mismatch(now.begin(), now.end(), before.begin());
  const auto begin = static_cast<std::size_t>(differing.first - now.begin());
  const std::size_t size = before.size() - now.size();
  return before.compare(begin + size, std::string::npos, now, begin) == 0 &&
         before.substr(begin, size).find(value) != std::string::npos;
}

} // namespace com::velanto::connectivity::tools

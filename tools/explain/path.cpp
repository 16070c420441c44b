#include "tools/explain/path.hpp"

#include <algorithm>
#include <cctype>

#include "ndjson/json_text.hpp"

namespace com::velanto::connectivity::tools {

namespace {

std::string inQuotes(std::string_view text) {
  std::string result;
  appendJsonText(result, text);
  return result;
}

} // namespace

std::string nameOf(std::string_view key) {
  const bool plain = !key.empty() && std::all_of(key.begin(), key.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-';
  });
  return plain ? std::string(key) : inQuotes(key);
}

std::string textOf(const path_t& path) {
  const bool in_payload = path.front().key == PAYLOAD;
  const bool named = in_payload && path.size() > 1 && !path[1].in_list;
  std::string text = named ? "" : path.front().key;
  for (std::size_t i = 1; i < path.size(); ++i) {
    const step_t& step = path[i];
    if (step.in_list) {
      text += '[';
      text += std::to_string(step.index);
      text += ']';
      continue;
    }
    if (!text.empty()) text += '.';
    const bool ambiguous = named && i == 1 && (step.key == METADATA || step.key == PAYLOAD);
    text += ambiguous ? inQuotes(step.key) : nameOf(step.key);
  }
  return text;
}

void appendJson(std::string& out, const path_t& path) {
  out += '[';
  for (const step_t& step : path) {
    if (&step != path.data()) out += ',';
    if (step.in_list) {
      out += std::to_string(step.index);
    } else {
      appendJsonText(out, step.key);
    }
  }
  out += ']';
}

path_t parentOf(const path_t& path) { return {path.begin(), path.end() - 1}; }

bool isWithin(const path_t& path, const path_t& ancestor) noexcept {
  return path.size() >= ancestor.size() &&
         std::equal(ancestor.begin(), ancestor.end(), path.begin());
}

} // namespace com::velanto::connectivity::tools

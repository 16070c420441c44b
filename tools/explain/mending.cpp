#include "tools/explain/mending.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <set>
#include <utility>

#include "ndjson/json_writer.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

std::string inLetters(std::string text, int (*letter)(int)) {
  for (char& c : text) c = static_cast<char>(letter(static_cast<unsigned char>(c)));
  return text;
}

template <class Number>
void addNumber(std::vector<data_t>& values, const std::string& text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, number);
  if (result.ec == std::errc() && result.ptr == end) values.emplace_back(number);
}

void addMendedTexts(std::vector<data_t>& values, const std::string& text) {
  addNumber<std::int64_t>(values, text);
  addNumber<double>(values, text);
  const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
  const std::string trimmed = text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
  std::set<std::string> seen = {text};
  for (const std::string& mended :
       {trimmed, inLetters(trimmed, &std::toupper), inLetters(trimmed, &std::tolower)}) {
    if (seen.insert(mended).second) values.emplace_back(mended.c_str());
  }
}

} // namespace

std::vector<data_t> mendedValues(const data_t& value) {
  std::vector<data_t> values;
  switch (value.type_tag()) {
    case VLT_TAG_STRING:
      addMendedTexts(values, text_or_empty(value.get<const char*>()));
      values.emplace_back(map_t());
      break;
    case VLT_TAG_DOUBLE: {
      constexpr double EXACT = 9007199254740992; // integers beyond are not all doubles
      const double number = value.get<double>();
      if (std::abs(number) <= EXACT) values.emplace_back(static_cast<std::int64_t>(number));
      values.emplace_back(toJson(value).c_str());
      break;
    }
    case VLT_TAG_INTEGER:
    case VLT_TAG_BOOLEAN:
      values.emplace_back(toJson(value).c_str());
      [[fallthrough]];
    default:
      for (data_t& any : anyValues()) values.push_back(std::move(any));
  }
  return values;
}

std::vector<data_t> anyValues() {
  std::vector<data_t> values;
  values.emplace_back("x");
  values.emplace_back(std::int64_t{1});
  values.emplace_back(map_t());
  return values;
}

std::vector<std::string> quotedNames(std::string_view text) {
  std::vector<std::string> names;
  for (std::size_t begin = text.find('\''); begin != std::string_view::npos;) {
    const std::size_t end = text.find('\'', begin + 1);
    if (end == std::string_view::npos) break;
    std::string name(text.substr(begin + 1, end - begin - 1));
    const bool plain = !name.empty() && std::all_of(name.begin(), name.end(),
                                                    [](char c) { return c > ' ' && c < '\x7F'; });
    if (plain && std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(std::move(name));
    }
    begin = end; // a closing quote may as well be the next one's opening
  }
  return names;
}

std::vector<std::size_t> differentLeaves(const Trace& trace) {
  constexpr std::size_t MOST = 24;
  std::vector<std::size_t> leaves;
  std::set<std::string> seen;
  for (std::size_t i = 0; i < trace.nodes().size() && leaves.size() < MOST; ++i) {
    if (trace[i].isLeaf() && seen.insert(trace[i].json).second) leaves.push_back(i);
  }
  return leaves;
}

} // namespace com::velanto::connectivity::tools

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

constexpr const char* TIMESTAMP = "2000-01-01T00:00:00Z";

template <class Number>
void addNumber(std::vector<mended_t>& values, const std::string& text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, number);
  if (result.ec == std::errc() && result.ptr == end) values.push_back({data_t(number), ""});
}

// "2024-05-14 06:55" becomes "2024-05-14T06:55:00Z", and the defect says which parts are missing.
void addTimestamp(std::vector<mended_t>& values, const std::string& text) {
  constexpr std::string_view DATE = "dddd-dd-dd";
  constexpr std::size_t SECONDS = 16; // where they begin, with their colon
  constexpr std::size_t ZONE = 19;    // the first place for one
  const auto fits = [](char c, char form) {
    return form == 'd' ? std::isdigit(static_cast<unsigned char>(c)) != 0 : c == form;
  };
  if (text.size() < DATE.size() || !std::equal(DATE.begin(), DATE.end(), text.begin(),
                                               [&](char form, char c) { return fits(c, form); })) {
    return;
  }
  std::string mended = text;
  std::string defect;
  const auto note = [&defect](const char* part) {
    defect.append(defect.empty() ? "has " : " and ").append(part);
  };
  if (mended.size() == DATE.size()) {
    mended += "T00:00:00";
    note("no time of day");
  }
  if (mended[DATE.size()] == ' ') {
    mended[DATE.size()] = 'T';
    note("a blank for 'T'");
  }
  if (mended.size() == SECONDS || (mended.size() > SECONDS && mended[SECONDS] != ':')) {
    mended.insert(SECONDS, ":00");
    note("no seconds");
  }
  const std::size_t zone = mended.find_first_of("Zz+-", ZONE);
  if (zone == std::string::npos) {
    mended += 'Z';
    note("no zone");
  } else if (mended.size() == zone + 3) {
    mended += ":00";
    note("a zone without minutes");
  }
  if (!defect.empty()) values.push_back({data_t(mended.c_str()), defect});
}

void addMendedTexts(std::vector<mended_t>& values, const std::string& text) {
  addNumber<std::int64_t>(values, text);
  addNumber<double>(values, text);
  const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
  const std::string trimmed = text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
  std::set<std::string> seen = {text};
  const std::pair<std::string, const char*> candidates[] = {
      {trimmed, "has blanks around it"},
      {inLetters(trimmed, &std::toupper), "is not in capitals"},
      {inLetters(trimmed, &std::tolower), "is not in small letters"}};
  addTimestamp(values, trimmed);
  for (const auto& [mended, defect] : candidates) {
    if (seen.insert(mended).second) values.push_back({data_t(mended.c_str()), defect});
  }
}

} // namespace

std::vector<mended_t> mendedValues(const data_t& value) {
  std::vector<mended_t> values;
  const auto add = [&values](data_t&& mended) { values.push_back({std::move(mended), ""}); };
  switch (value.type_tag()) {
    case VLT_TAG_STRING:
      addMendedTexts(values, text_or_empty(value.get<const char*>()));
      add(map_t());
      add(data_t(TIMESTAMP));
      break;
    case VLT_TAG_DOUBLE: {
      constexpr double EXACT = 9007199254740992; // integers beyond are not all doubles
      const double number = value.get<double>();
      if (std::abs(number) <= EXACT) add(data_t(static_cast<std::int64_t>(number)));
      add(data_t(toJson(value).c_str()));
      break;
    }
    case VLT_TAG_INTEGER:
    case VLT_TAG_BOOLEAN:
      add(data_t(toJson(value).c_str()));
      [[fallthrough]];
    default:
      for (data_t& any : anyValues()) add(std::move(any));
  }
  return values;
}

std::vector<data_t> anyValues() {
  std::vector<data_t> values;
  values.emplace_back("x");
  values.emplace_back(std::int64_t{1});
  values.emplace_back(map_t());
  values.emplace_back(TIMESTAMP);
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

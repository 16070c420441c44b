#include "tools/replay/redacting/line_redactor.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "ndjson/json_text.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr std::string_view BETWEEN = " \t\r\n,:"; // the values and names
constexpr std::string_view END = " \t\r\n,:]}";   // of a number or a word

std::string inQuotes(std::string_view text) {
  std::string result;
  appendJsonText(result, text);
  return result;
}

} // namespace

const std::string& LineRedactor::redacted(std::string_view line) {
  line_ = line;
  at_ = 0;
  copied_ = 0;
  is_recorded_ = false;
  names_fields_ = false;
  out_.clear();
  open_.clear();
  skipBlank();
  value({spot_t::LINE});
  while (!open_.empty()) step();
  out_ += line_.substr(copied_);
  return out_;
}

// Goes on by a bracket that closes, or by an entry or element up to the bracket that it opens.
void LineRedactor::step() {
  skipBlank();
  if (next() == '}' || next() == ']') return close();
  const frame_t top = open_.back();
  switch (top.kind) {
    case frame_t::OBJECT:
      return member(top.spot);
    case frame_t::LIST:
      return value(top.spot);
    case frame_t::PAIRS:
      open_.push_back({frame_t::PAIR, top.spot});
      ++at_;
      return;
    case frame_t::PAIR:
      return pair(top.spot);
  }
}

void LineRedactor::close() {
  if (open_.back().spot.role == spot_t::HEAD && !names_fields_) {
    replace(line_.substr(at_, 0), namesAfter(",\"redacted\":["));
  }
  ++at_;
  open_.pop_back();
}

void LineRedactor::member(const spot_t& of) {
  const std::string name = textOf(string());
  skipBlank();
  switch (of.role) {
    case spot_t::LINE:
      is_recorded_ = is_recorded_ || name == "recorded";
      if (name == "metadata") return value({spot_t::METADATA_MAP, fields_.places.metadata()});
      if (name == "payload") return value({spot_t::MESSAGE, fields_.places.payload()});
      return value({spot_t::OWN});
    case spot_t::OWN:
    case spot_t::HEAD:
      return ownMember(of, name);
    default:
      if (is_recorded_ && name == "$") return notation(of);
      return value(below(of, name));
  }
}

// Of what a recording says of itself, or of a message.
void LineRedactor::ownMember(const spot_t& of, std::string_view name) {
  if (name == "head") return value({spot_t::HEAD});
  if (name == "foot") return value({spot_t::OWN});
  const std::string_view json = anyValue();
  if (of.role == spot_t::HEAD && name == "redacted") {
    names_fields_ = true;
    replace(json, namesAfter(std::string(json.substr(0, json.size() - 1))));
  }
  if (!fields_.all_times || (name != "time" && name != "started" && name != "ended")) return;
  std::int64_t time = 0;
  const char* const end = json.data() + json.size();
  if (std::from_chars(json.data(), end, time).ptr != end) return;
  replace(json, std::to_string(pseudonyms_.ofTime(time)));
}

void LineRedactor::notation(const spot_t& of) {
  open_.push_back({frame_t::LIST, of});
  ++at_;
  skipBlank();
  const std::string kind = textOf(string());
  skipBlank();
  if (kind == "map") {
    open_.push_back({frame_t::PAIRS, of});
    ++at_;
  } else if (kind == "bytes" || kind == "borrowed-bytes" || kind == "buffer") {
    const std::string_view json = string();
    if (hides(of)) replace(json, inQuotes(pseudonyms_.ofBytes(textOf(json), kind == "buffer")));
  } else if (kind == "decimal" || kind == "tag") {
    if (kind == "tag") token();
    skipBlank();
    const std::string_view json = string();
    if (isNamed(of)) replace(json, inQuotes(pseudonyms_.ofBits(textOf(json))));
  } else if (kind == "double") {
    string();
  }
}

// Its closing bracket is still to come.
void LineRedactor::pair(const spot_t& of) {
  constexpr std::string_view BORROWED = R"({"$":["borrowed",)";
  std::string_view key = anyValue();
  skipBlank();
  if (key.starts_with(BORROWED))
    key = key.substr(BORROWED.size(), key.rfind('"') + 1 - BORROWED.size());
  if (key.starts_with('"')) return value(below(of, textOf(key)));
  value({spot_t::MESSAGE, isNamed(of) ? of.place : nullptr});
}

void LineRedactor::value(const spot_t& of) {
  if (isNamed(of)) met_.insert(of.place);
  switch (next()) {
    case '{':
      open_.push_back({frame_t::OBJECT, of});
      ++at_;
      return;
    case '[':
      open_.push_back({frame_t::LIST, of});
      ++at_;
      return;
    case '"':
      return text(of);
    default:
      const std::string_view json = token();
      const bool is_number = json.front() == '-' || (json.front() >= '0' && json.front() <= '9');
      if (is_number && isNamed(of)) replace(json, pseudonyms_.ofNumber(json));
  }
}

void LineRedactor::text(const spot_t& of) {
  const std::string_view json = string();
  const std::string text = textOf(json);
  const std::string by = standInFor(of, text);
  if (by != text) replace(json, inQuotes(by));
}

std::string LineRedactor::standInFor(const spot_t& of, const std::string& text) const {
  if (of.role == spot_t::OWN) return text;
  if (const std::optional<std::string> time = pseudonyms_.ofTimestamp(text)) {
    return isNamed(of) || fields_.all_times ? *time : text;
  }
  if (!hides(of)) return text;
  return of.role == spot_t::PATH ? pseudonyms_.ofPath(text) : pseudonyms_.ofText(text);
}

LineRedactor::spot_t LineRedactor::below(const spot_t& of, std::string_view name) {
  const bool is_path = of.role == spot_t::METADATA_MAP && name == "pulsarPath";
  return {is_path ? spot_t::PATH : spot_t::MESSAGE, FieldSet::below(of.place, name)};
}

// The end of a list that begins with `list`.
std::string LineRedactor::namesAfter(std::string list) const {
  for (const std::string& name : fields_.names) {
    if (!list.empty() && list.back() != '[') list += ',';
    appendJsonText(list, name);
  }
  return list.append("]");
}

std::string_view LineRedactor::token() {
  const std::size_t begin = at_;
  at_ = std::min(line_.find_first_of(END, begin), line_.size());
  if (at_ == begin) throw std::logic_error("a line ends within a value");
  return line_.substr(begin, at_ - begin);
}

std::string_view LineRedactor::string() {
  const std::size_t begin = at_;
  if (next() != '"') throw std::logic_error("a line has no string where one must be");
  for (++at_; next() != '"'; ++at_) {
    if (next() == '\\') ++at_;
    if (at_ >= line_.size()) throw std::logic_error("a line ends within a string");
  }
  ++at_;
  return line_.substr(begin, at_ - begin);
}

// Any value, whole.
std::string_view LineRedactor::anyValue() {
  const std::size_t begin = at_;
  std::size_t depth = 0;
  do {
    skipBlank();
    const char c = next();
    if (c == '{' || c == '[' || c == '}' || c == ']') {
      ++at_;
      c == '{' || c == '[' ? ++depth : --depth;
    } else {
      c == '"' ? string() : token();
    }
  } while (depth > 0);
  return line_.substr(begin, at_ - begin);
}

std::string LineRedactor::textOf(std::string_view string) {
  if (string.find('\\') == std::string_view::npos) {
    return std::string(string.substr(1, string.size() - 2));
  }
  return reader_.parseValue(string).get<const char*>();
}

void LineRedactor::skipBlank() {
  at_ = std::min(line_.find_first_not_of(BETWEEN, at_), line_.size());
}

void LineRedactor::replace(std::string_view token, std::string_view by) {
  const auto begin = static_cast<std::size_t>(token.data() - line_.data());
  out_ += line_.substr(copied_, begin - copied_);
  out_ += by;
  copied_ = begin + token.size();
}

} // namespace com::velanto::connectivity::tools

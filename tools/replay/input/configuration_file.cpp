#include "tools/replay/input/configuration_file.hpp"

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>

#include "ndjson/json_text.hpp"
#include "ndjson/make_blocks.hpp"
#include "ndjson/visible_text.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::tools {

namespace {

// Aliases can make a small file endless.
constexpr int MAX_DEPTH = 32;
constexpr int MAX_VALUES = 10000;

template <class Number>
std::optional<Number> numberIn(std::string_view text, int base) {
  Number number{};
  const char* const end = text.data() + text.size();
  std::from_chars_result result{};
  if constexpr (std::is_same_v<Number, double>) {
    result = std::from_chars(text.data(), end, number);
  } else {
    result = std::from_chars(text.data(), end, number, base);
  }
  if (result.ec != std::errc() || result.ptr != end) return {};
  return number;
}

std::string placeOf(const YAML::Mark& mark) {
  return std::to_string(mark.line + 1) + ":" + std::to_string(mark.column + 1);
}

class Converter {
 public:
  explicit Converter(const std::string& path) : path_(path) {}

  data_t convert(const YAML::Node& node, int depth);
  [[noreturn]] void refuse(const YAML::Mark& mark, const std::string& reason) const {
    throw ReplayError(EXIT_PLUGIN, path_ + ":" + placeOf(mark) + ": " + reason);
  }
  [[noreturn]] void refuseRepeated(const YAML::Node& key) const {
    refuse(key.Mark(), "repeated key '" + visible(key.Scalar()) + "'");
  }
  data_t textOf(const YAML::Node& node) const {
    if (node.Scalar().find('\0') != std::string::npos) {
      refuse(node.Mark(), "string with an embedded NUL");
    }
    // The library makes a lone byte of the escapes \N and \_.
    if (asUtf8(node.Scalar()) != node.Scalar()) refuse(node.Mark(), "string that is not UTF-8");
    return data_t(node.Scalar().c_str());
  }

 private:
  [[nodiscard]] data_t scalar(const YAML::Node& node) const;

  const std::string& path_;
  int values_ = 0;
};

data_t Converter::convert(const YAML::Node& node, int depth) {
  if (depth > MAX_DEPTH || ++values_ > MAX_VALUES) refuse(node.Mark(), "too much, or too deep");
  if (node.IsScalar()) return scalar(node);
  if (node.IsSequence()) {
    std::vector<data_t> elements;
    for (const YAML::Node& element : node) elements.push_back(convert(element, depth + 1));
    return makeList(std::move(elements));
  }
  if (!node.IsMap()) return {};
  map_t map;
  for (const auto& entry : node) {
    if (!entry.first.IsScalar()) refuse(entry.first.Mark(), "a key that is no string");
    data_t key = textOf(entry.first);
    if (map.find_value(key) != nullptr) refuseRepeated(entry.first);
    map[std::move(key)] = convert(entry.second, depth + 1);
  }
  return map;
}

data_t Converter::scalar(const YAML::Node& node) const {
  const std::string& text = node.Scalar();
  const bool is_plain = node.Tag() == "?" || node.Tag().empty();
  if (!is_plain) return textOf(node);
  if (text == "true" || text == "True" || text == "TRUE") return data_t(true);
  if (text == "false" || text == "False" || text == "FALSE") return data_t(false);
  std::string_view digits = text;
  const bool is_signed = digits.starts_with('+') || digits.starts_with('-');
  // After a sign, "inf" and "nan" are words, too.
  if (digits.substr(is_signed ? 1 : 0).find_first_of(".0123456789") != 0) return textOf(node);
  if (digits.starts_with('+')) digits.remove_prefix(1);
  const auto decimal = numberIn<std::int64_t>(digits, 10);
  if (decimal) return data_t(*decimal);
  if (digits.starts_with("0x") && !digits.starts_with("0x-")) {
    if (const auto hex = numberIn<std::int64_t>(digits.substr(2), 16)) return data_t(*hex);
  }
  const bool is_integer = digits.find_first_not_of("-0123456789") == std::string_view::npos;
  const auto real = numberIn<double>(digits, 10);
  if (real && is_integer) refuse(node.Mark(), "integer beyond 64 bits");
  return real ? data_t(*real) : textOf(node);
}

std::string contentOf(const std::string& path) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  if (file.peek() != std::ifstream::traits_type::eof()) content << file.rdbuf();
  if (!file.is_open() || file.bad()) {
    throw ReplayError(EXIT_IO, path + ": " + std::generic_category().message(errno));
  }
  return content.str();
}

// The library takes other bytes as they are, NUL as an escape, and may read UTF-16.
void requireUtf8(const std::string& content, const Converter& converter) {
  const std::string utf8 = asUtf8(content);
  const auto [other, replaced] =
      std::mismatch(content.begin(), content.end(), utf8.begin(), utf8.end());
  const auto end = std::find(content.begin(), other, '\0');
  if (end == content.end()) return;
  YAML::Mark mark;
  mark.line = static_cast<int>(std::count(content.begin(), end, '\n'));
  const auto line_end = std::find(std::make_reverse_iterator(end), content.rend(), '\n');
  mark.column = static_cast<int>(end - line_end.base());
  converter.refuse(mark, "not UTF-8 text");
}

// At a comma outside of a list, the library reads empty documents without an end. So this handler
// refuses the second document at one place.
class DocumentStarts final : public YAML::EventHandler {
 public:
  void OnDocumentStart(const YAML::Mark& mark) override {
    if (begin_ == mark.pos) throw YAML::Exception(mark, "");
    begin_ = mark.pos;
  }
  void OnDocumentEnd() override {}
  void OnNull(const YAML::Mark&, YAML::anchor_t) override {}
  void OnAlias(const YAML::Mark&, YAML::anchor_t) override {}
  void OnScalar(const YAML::Mark&, const std::string&, YAML::anchor_t,
                const std::string&) override {}
  void OnSequenceStart(const YAML::Mark&, const std::string&, YAML::anchor_t,
                       YAML::EmitterStyle::value) override {}
  void OnSequenceEnd() override {}
  void OnMapStart(const YAML::Mark&, const std::string&, YAML::anchor_t,
                  YAML::EmitterStyle::value) override {}
  void OnMapEnd() override {}

 private:
  std::optional<int> begin_; // of the last document
};

// The mapping of the first document; a null node without one.
YAML::Node rootOf(const std::string& path, const Converter& converter) {
  const std::string content = contentOf(path);
  requireUtf8(content, converter);
  std::istringstream stream(content);
  YAML::Parser parser(stream);
  DocumentStarts starts;
  while (parser.HandleNextDocument(starts)) continue;
  const std::vector<YAML::Node> documents = YAML::LoadAll(content);
  for (std::size_t i = 1; i < documents.size(); ++i) {
    if (!documents[i].IsNull()) converter.refuse(documents[i].Mark(), "a second document");
  }
  return documents.empty() ? YAML::Node() : documents.front();
}

} // namespace

std::vector<configuration_entry_t> readConfiguration(const std::string& path) {
  Converter converter(path);
  std::vector<configuration_entry_t> entries;
  try {
    const YAML::Node root = rootOf(path, converter);
    if (root.IsNull()) return entries;
    if (!root.IsMap()) converter.refuse(root.Mark(), "not a mapping of keys to values");
    for (const auto& entry : root) {
      if (!entry.first.IsScalar()) converter.refuse(entry.first.Mark(), "a key that is no string");
      const std::string key = entry.first.Scalar();
      const bool repeated = std::any_of(entries.begin(), entries.end(),
                                        [&key](const auto& known) { return known.key == key; });
      if (repeated) converter.refuseRepeated(entry.first);
      converter.textOf(entry.first);
      // Nothing has no place of its own.
      const YAML::Node& placed = entry.second.IsNull() ? entry.first : entry.second;
      entries.push_back({key, placeOf(entry.first.Mark()), placeOf(placed.Mark()),
                         converter.convert(entry.second, 0)});
    }
  } catch (const YAML::Exception& e) {
    converter.refuse(e.mark,
                     "not well-formed YAML, here or just before; look at indentation, "
                     "colons and quotes");
  }
  return entries;
}

} // namespace com::velanto::connectivity::tools

#include "ndjson/json_reader.hpp"

#include <simdjson.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "ndjson/json_text.hpp"
#include "ndjson/make_blocks.hpp"
#include "ndjson/notation.hpp"
#include "ndjson/parser_faults.hpp"
#include "ndjson/recorded.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity {

namespace ondemand = simdjson::ondemand;

// Descends from value to value; one document at a time.
class JsonReader::Parser {
 public:
  Parser() { check(parser_.allocate(FIRST_CAPACITY, LIBRARY_DEPTH)); }

  Message message(std::string_view line);
  data_t value(std::string_view json);
  [[nodiscard]] text_part_t remark() const noexcept { return remark_; }

 private:
  // The reader's own count of levels decides; the library has to bear the levels around it, too,
  // and {"$":["map",[[key,value]]]}, which is four for one.
  static constexpr std::size_t LIBRARY_DEPTH = 4 * MAX_DEPTH + 16;
  static constexpr std::size_t FIRST_CAPACITY = 4096; // bytes; grows with the strings

  ondemand::document open(std::string_view before, std::string_view json, std::string_view after);
  static void requireEnd(ondemand::document& document);
  static void refuseOnlyBracket(std::string_view line);

  Message readMessage(ondemand::document& document);
  data_t readOnly(ondemand::document& document);
  [[nodiscard]] std::size_t columnOf(const char* place) const noexcept;
  template <class Body>
  auto locating(ondemand::document& document, const Body& body) const;
  [[noreturn]] void refuseMember(std::string_view name, const char* place) const;
  [[noreturn]] void refuseRepeated(std::string_view name, const char* place) const;
  [[nodiscard]] text_part_t memberAt(const char* begin, const char* end) const;
  data_t read(ondemand::value value, int depth);
  [[nodiscard]] bool isNotation(ondemand::value value) const;
  data_t readNotation(ondemand::value value, int depth);
  void readPairs(ondemand::array array, int depth, std::vector<data_t>& parts);
  list_t readList(ondemand::array array, int depth);
  map_t readMap(ondemand::object object, int depth);
  data_t readMetadata(ondemand::value value);
  static data_t readNull(ondemand::value value);
  static data_t readTruth(ondemand::value value);
  [[nodiscard]] data_t readNumber(ondemand::value value) const;
  data_t readText(ondemand::raw_json_string text);
  // In text_, with a NUL at its end, until the next call.
  std::string_view unescaped(ondemand::raw_json_string text);
  static int below(int depth);

  ondemand::parser parser_;
  std::size_t before_ = 0;    // bytes in front of the line
  std::string padded_;        // the current line, with the bytes after it that the parser may read
  text_part_t remark_;        // of the message read last
  bool is_recorded_ = false;  // the current line is, so that it has the notation
  bool may_have_nul_ = false; // a string of the current line may
  std::string text_; // as long as the longest line so far, and so room for any string of it
};

ondemand::document JsonReader::Parser::open(std::string_view before, std::string_view json,
                                            std::string_view after) {
  padded_.assign(before).append(json).append(after);
  // Blanks take the place of a byte order mark, so that all columns stay.
  if (json.starts_with("\xEF\xBB\xBF")) padded_.replace(before.size(), 3, 3, ' ');
  const std::size_t length = padded_.size();
  padded_.append(simdjson::SIMDJSON_PADDING, ' ');
  if (text_.size() < padded_.size()) text_.resize(padded_.size());
  may_have_nul_ = json.find("\\u0000") != std::string_view::npos; // no other escape is one
  before_ = before.size();
  ondemand::document document;
  const simdjson::error_code error =
      parser_.iterate(simdjson::padded_string_view(padded_.data(), length, padded_.size()))
          .get(document);
  if (error != simdjson::SUCCESS) {
    refuseWhole(error, std::string_view(padded_).substr(before.size(), json.size()));
  }
  return document;
}

// The column of a place in the current line.
std::size_t JsonReader::Parser::columnOf(const char* place) const noexcept {
  const auto offset = static_cast<std::size_t>(place - padded_.data());
  return std::min(offset, padded_.size()) - std::min(offset, before_) + 1;
}

// Calls `body`, and adds the current place to its exception if that has none.
template <class Body>
auto JsonReader::Parser::locating(ondemand::document& document, const Body& body) const {
  try {
    return body();
  } catch (const MalformedJson& e) {
    const char* place = nullptr;
    if (e.column() != 0 || document.current_location().get(place) != simdjson::SUCCESS) throw;
    const std::size_t column = columnOf(place);
    if (column > 1 || before_ > 0) throw MalformedJson(e.what(), column);
    // The library looks at the last bracket first.
    const std::string_view line(padded_);
    throw MalformedJson(e.what(),
                        findBracketFault(line.substr(0, line.find_last_not_of(' ') + 1)) + 1);
  }
}

void JsonReader::Parser::requireEnd(ondemand::document& document) {
  // There is a current place before the end.
  if (document.current_location().error() != simdjson::OUT_OF_BOUNDS) {
    check(simdjson::TRAILING_CONTENT);
  }
}

Message JsonReader::Parser::message(std::string_view line) {
  is_recorded_ = false;
  refuseOnlyBracket(line);
  ondemand::document document = open("", line, "");
  return locating(document, [&] { return readMessage(document); });
}

Message JsonReader::Parser::readMessage(ondemand::document& document) {
  ondemand::object object;
  if (require(document.type()) != ondemand::json_type::object) {
    throw MalformedJson("not a JSON object");
  }
  check(document.get_object().get(object));
  data_t payload;
  data_t metadata = map_t();
  remark_ = {};
  bool has_payload = false;
  bool has_metadata = false;
  bool has_remark = false;
  bool is_first = true;
  for (auto member : object) {
    ondemand::field field = require(std::move(member));
    const char* const place = field.key().raw() - 1;
    const std::string_view name = unescaped(field.key());
    const auto is_new = [&](bool& is_present) {
      if (std::exchange(is_present, true)) refuseRepeated(name, place);
      return true;
    };
    if (name == "payload" && is_new(has_payload)) {
      payload = read(field.value(), 0);
    } else if (name == "metadata" && is_new(has_metadata)) {
      metadata = readMetadata(field.value());
    } else if (name == "recorded" && is_first) {
      // The look at the text checks it, so that the library may skip it.
      if (!recordedIn(padded_))
        throw MalformedJson(R"(malformed member "recorded")", columnOf(place));
      is_recorded_ = true;
    } else if (name == "dropped" && is_new(has_remark)) {
      static_cast<void>(read(field.value(), 0));
      remark_ = memberAt(place, require(document.current_location()));
    } else {
      refuseMember(name, place);
    }
    is_first = false;
  }
  requireEnd(document);
  return Message(std::move(payload), std::move(metadata.get<map_t>()));
}

// `place` is that of the name.
void JsonReader::Parser::refuseMember(std::string_view name, const char* place) const {
  if (name == "recorded")
    throw MalformedJson(R"("recorded" is not the first member)", columnOf(place));
  if (name == "recording")
    throw MalformedJson("a recorder's own line, no message", columnOf(place));
  std::string quoted; // with line breaks and the like escaped
  appendJsonText(quoted, name);
  throw MalformedJson("unknown member " + quoted + R"(, expected "metadata" and "payload")",
                      columnOf(place));
}

void JsonReader::Parser::refuseRepeated(std::string_view name, const char* place) const {
  std::string quoted;
  appendJsonText(quoted, name);
  throw MalformedJson("repeated key " + quoted, columnOf(place));
}

// The member from `begin` up to `end`, its next comma or brace, with the comma before it, or, for
// the first member, the one after it.
text_part_t JsonReader::Parser::memberAt(const char* begin, const char* end) const {
  const std::string_view line(padded_);
  const auto first = static_cast<std::size_t>(begin - padded_.data());
  const auto next = static_cast<std::size_t>(end - padded_.data());
  const std::size_t before = line.find_last_not_of(" \t\r", first - 1);
  if (line[before] == ',') return {before, line.find_last_not_of(" \t\r", next - 1) + 1 - before};
  return {first, next + (line[next] == ',' ? 1 : 0) - first};
}

// The first line of JSON that is laid out over several.
void JsonReader::Parser::refuseOnlyBracket(std::string_view line) {
  const std::size_t at = line.find_first_of("{[");
  if (at == std::string_view::npos ||
      line.find_first_not_of(" \t\r", at + 1) != std::string_view::npos) {
    return;
  }
  if (line.find_first_not_of(" \t\r\xEF\xBB\xBF") != at) return;
  throw MalformedJson("JSON over several lines, expected each message on a line", at + 1);
}

// A value on its own is read as the only element of an array: the library treats a mere number or
// string as a special case, with checks of its own.
data_t JsonReader::Parser::value(std::string_view json) {
  is_recorded_ = false;
  ondemand::document document = open("[", json, "]");
  return locating(document, [&] { return readOnly(document); });
}

data_t JsonReader::Parser::readOnly(ondemand::document& document) {
  ondemand::array array;
  check(document.get_array().get(array));
  data_t result;
  int count = 0;
  for (auto element : array) {
    const ondemand::value found = require(element);
    if (++count > 1) check(simdjson::TRAILING_CONTENT);
    result = read(found, 0);
  }
  requireEnd(document);
  if (count == 0) check(simdjson::EMPTY);
  return result;
}

data_t JsonReader::Parser::read(ondemand::value value, int depth) {
  switch (require(value.type())) {
    case ondemand::json_type::null:
      return readNull(value);
    case ondemand::json_type::boolean:
      return readTruth(value);
    case ondemand::json_type::number:
      return readNumber(value);
    case ondemand::json_type::string:
      return readText(require(value.get_raw_json_string()));
    case ondemand::json_type::array:
      return readList(require(value.get_array()), below(depth));
    case ondemand::json_type::object:
      if (is_recorded_ && isNotation(value)) return readNotation(value, depth);
      return readMap(require(value.get_object()), below(depth));
  }
  throw MalformedJson(reasonOf(simdjson::TAPE_ERROR));
}

int JsonReader::Parser::below(int depth) {
  if (depth == MAX_DEPTH) {
    throw MalformedJson("nested deeper than " + std::to_string(MAX_DEPTH) + " levels");
  }
  return depth + 1;
}

// The kinds told so far by their first letter only: the rest may be anything.
data_t JsonReader::Parser::readNull(ondemand::value value) {
  bool is_null = false;
  const simdjson::error_code error = value.is_null().get(is_null);
  if (error != simdjson::SUCCESS || !is_null) check(simdjson::N_ATOM_ERROR);
  return {};
}

data_t JsonReader::Parser::readTruth(ondemand::value value) {
  bool truth = false;
  if (value.get_bool().get(truth) != simdjson::SUCCESS) check(simdjson::T_ATOM_ERROR);
  return data_t(truth);
}

data_t JsonReader::Parser::readNumber(ondemand::value value) const {
  std::int64_t integer = 0;
  if (value.get_int64().get(integer) == simdjson::SUCCESS) return data_t(integer);
  // A fraction, an exponent, more than 64 bits, or no number at all: the next attempt tells.
  const std::string_view token = value.raw_json_token();
  double real = 0;
  if (value.get_double().get(real) != simdjson::SUCCESS) {
    throw MalformedJson(reasonOf(simdjson::NUMBER_ERROR), columnOf(token.data()));
  }
  const std::size_t end = token.find_first_not_of("-0123456789");
  const bool is_integer = end == std::string_view::npos ||
                          std::string_view(".eE").find(token[end]) == std::string_view::npos;
  if (is_integer) throw MalformedJson("integer beyond 64 bits", columnOf(token.data()));
  return data_t(real);
}

std::string_view JsonReader::Parser::unescaped(ondemand::raw_json_string text) {
  auto* const begin = reinterpret_cast<std::uint8_t*>(text_.data());
  std::uint8_t* end = begin;
  const simdjson::error_code error = parser_.unescape(text, end).error();
  if (error != simdjson::SUCCESS) throw MalformedJson(reasonOf(error), columnOf(text.raw() - 1));
  *end = '\0';
  return std::string_view(text_).substr(0, static_cast<std::size_t>(end - begin));
}

data_t JsonReader::Parser::readText(ondemand::raw_json_string text) {
  const std::string_view bytes = unescaped(text);
  if (may_have_nul_ && bytes.find('\0') != std::string_view::npos) {
    throw MalformedJson("string with an embedded NUL", columnOf(text.raw() - 1));
  }
  return data_t(text_.c_str());
}

list_t JsonReader::Parser::readList(ondemand::array array, int depth) {
  std::vector<data_t> elements;
  for (auto element : array) elements.push_back(read(require(element), depth));
  return makeList(std::move(elements));
}

map_t JsonReader::Parser::readMap(ondemand::object object, int depth) {
  map_t map;
  for (auto member : object) {
    ondemand::field field = require(std::move(member));
    data_t key = readText(field.key());
    data_t content = read(field.value(), depth);
    if (!map.insert(std::move(key), std::move(content)).second) {
      // A refused insertion leaves its arguments alone.
      // NOLINTNEXTLINE(bugprone-use-after-move)
      refuseRepeated(text_or_empty(key.get<const char*>()), field.key().raw() - 1);
    }
  }
  return map;
}

data_t JsonReader::Parser::readMetadata(ondemand::value value) {
  const bool is_object = require(value.type()) == ondemand::json_type::object;
  data_t metadata = is_object ? read(value, 0) : data_t();
  if (metadata.type_tag() != VLT_TAG_MAP) throw MalformedJson(R"("metadata" is not an object)");
  return metadata;
}

// Whether the first member of an object is "$".
bool JsonReader::Parser::isNotation(ondemand::value value) const {
  const std::string_view line(padded_);
  const auto begin = static_cast<std::size_t>(value.raw_json_token().data() - padded_.data());
  const std::size_t member = line.find_first_not_of(" \t\r\n", begin + 1);
  return member != std::string_view::npos && line.substr(member).starts_with(R"("$")");
}

data_t JsonReader::Parser::readNotation(ondemand::value value, int depth) {
  const std::size_t column = columnOf(value.raw_json_token().data());
  std::vector<data_t> parts;
  int count = 0;
  for (auto member : require(value.get_object())) {
    ondemand::field field = require(std::move(member));
    if (++count > 1) throw MalformedJson(R"(member next to "$")", columnOf(field.key().raw() - 1));
    ondemand::value content = field.value();
    if (require(content.type()) != ondemand::json_type::array) break;
    for (auto element : require(content.get_array())) {
      ondemand::value part = require(element);
      if (require(part.type()) == ondemand::json_type::array) {
        readPairs(require(part.get_array()), below(depth), parts);
      } else {
        parts.push_back(read(part, depth));
      }
    }
  }
  try {
    return valueOfNotation(std::move(parts));
  } catch (const MalformedJson& e) {
    throw MalformedJson(e.what(), column);
  }
}

// Appends an empty list and all keys and values in turn; an empty value for a list of anything else.
// Without values for the lists, which take stack.
void JsonReader::Parser::readPairs(ondemand::array array, int depth, std::vector<data_t>& parts) {
  const std::size_t begin = parts.size();
  parts.emplace_back(list_t());
  for (auto element : array) {
    ondemand::value pair = require(element);
    const std::size_t before = parts.size();
    if (require(pair.type()) == ondemand::json_type::array) {
      for (auto part : require(pair.get_array())) parts.push_back(read(require(part), depth));
    }
    if (parts.size() - before != 2) parts[begin] = data_t();
  }
}

JsonReader::JsonReader() : parser_(std::make_unique<Parser>()) {}
JsonReader::~JsonReader() = default;

Message JsonReader::parseMessage(std::string_view line) { return parser_->message(line); }
text_part_t JsonReader::remark() const noexcept { return parser_->remark(); }
data_t JsonReader::parseValue(std::string_view json) { return parser_->value(json); }

} // namespace com::velanto::connectivity

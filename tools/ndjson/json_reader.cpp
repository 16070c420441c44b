#include "tools/ndjson/json_reader.hpp"

#include <simdjson.h>

#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "tools/host_library.hpp"
#include "tools/ndjson/json_text.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

namespace ondemand = simdjson::ondemand;

// Our own words: the library's change from version to version and tell how it works inside.
const char* reasonOf(simdjson::error_code error) noexcept {
  switch (error) {
    case simdjson::EMPTY:
      return "no JSON value";
    case simdjson::UTF8_ERROR:
      return "text that is not UTF-8";
    case simdjson::UNESCAPED_CHARS:
      return "control character in a text, not escaped";
    case simdjson::UNCLOSED_STRING:
      return "text without a closing quote";
    case simdjson::STRING_ERROR:
      return "bad escape in a text";
    case simdjson::NUMBER_ERROR:
    case simdjson::NUMBER_OUT_OF_RANGE:
      return "bad number, or one beyond the range of doubles";
    case simdjson::T_ATOM_ERROR:
    case simdjson::F_ATOM_ERROR:
    case simdjson::N_ATOM_ERROR:
      return "bad literal, expected true, false or null";
    case simdjson::TRAILING_CONTENT:
      return "content after the end of the JSON value";
    case simdjson::CAPACITY:
      return "longer than 4 GiB";
    default:
      return "not well-formed JSON";
  }
}

void check(simdjson::error_code error) {
  if (error == simdjson::SUCCESS) return;
  if (error == simdjson::MEMALLOC) throw std::bad_alloc();
  throw MalformedJson(reasonOf(error));
}

template <class T>
T require(simdjson::simdjson_result<T> result) {
  T value{};
  check(std::move(result).get(value));
  return value;
}

} // namespace

// Descends from value to value; one document at a time.
class JsonReader::Parser {
 public:
  Parser() { check(parser_.allocate(FIRST_CAPACITY, LIBRARY_DEPTH)); }

  Message message(std::string_view line);
  data_t value(std::string_view json);
  [[nodiscard]] text_part_t remark() const noexcept { return remark_; }

 private:
  // The reader's own count of levels decides; the library has to bear the levels around it, too.
  static constexpr std::size_t LIBRARY_DEPTH = MAX_DEPTH + 16;
  static constexpr std::size_t FIRST_CAPACITY = 4096; // bytes; grows with the texts

  ondemand::document open(std::string_view before, std::string_view json, std::string_view after);
  static void requireEnd(ondemand::document& document);

  [[noreturn]] static void refuseMember(std::string_view name);
  [[nodiscard]] text_part_t memberAt(const char* begin, const char* end) const;
  data_t read(ondemand::value value, int depth);
  list_t readList(ondemand::array array, int depth);
  map_t readMap(ondemand::object object, int depth);
  map_t readMetadata(ondemand::value value);
  static data_t readNull(ondemand::value value);
  static data_t readTruth(ondemand::value value);
  static data_t readNumber(ondemand::value value);
  data_t readText(std::string_view text);
  static int below(int depth);

  ondemand::parser parser_;
  std::string padded_; // the text under way, with the bytes behind it that the parser may read
  text_part_t remark_; // of the message read last
  std::string text_;   // a text on its way to the host, with its NUL
};

ondemand::document JsonReader::Parser::open(std::string_view before, std::string_view json,
                                            std::string_view after) {
  // Invisible in most editors, so that "not well-formed" would puzzle whoever reads it.
  if (json.starts_with("\xEF\xBB\xBF")) throw MalformedJson("byte order mark before the JSON");
  padded_.assign(before).append(json).append(after);
  const std::size_t length = padded_.size();
  padded_.append(simdjson::SIMDJSON_PADDING, ' ');
  return require(
      parser_.iterate(simdjson::padded_string_view(padded_.data(), length, padded_.size())));
}

void JsonReader::Parser::requireEnd(ondemand::document& document) {
  // There is a current place unless the end is reached.
  if (document.current_location().error() != simdjson::OUT_OF_BOUNDS) {
    check(simdjson::TRAILING_CONTENT);
  }
}

Message JsonReader::Parser::message(std::string_view line) {
  ondemand::document document = open("", line, "");
  ondemand::object object;
  if (require(document.type()) != ondemand::json_type::object) {
    throw MalformedJson("not a JSON object");
  }
  check(document.get_object().get(object));
  data_t payload;
  map_t metadata;
  remark_ = {};
  for (auto member : object) {
    ondemand::field field = require(std::move(member));
    const char* const behind_quote = field.key().raw();
    const std::string_view name = require(field.unescaped_key());
    if (name == "payload") {
      payload = read(field.value(), 0);
    } else if (name == "metadata") {
      metadata = readMetadata(field.value());
    } else if (name == "dropped") {
      static_cast<void>(read(field.value(), 0));
      remark_ = memberAt(behind_quote - 1, require(document.current_location()));
    } else {
      refuseMember(name);
    }
  }
  requireEnd(document);
  return Message(std::move(payload), std::move(metadata));
}

void JsonReader::Parser::refuseMember(std::string_view name) {
  std::string quoted; // with line breaks and the like escaped
  appendJsonText(quoted, name);
  throw MalformedJson("unknown member " + quoted + R"(, expected "metadata" and "payload")");
}

// The member that begins at `begin` and before whose next comma or brace is `end`, with the comma
// before it, or, for the first member, the one behind it.
text_part_t JsonReader::Parser::memberAt(const char* begin, const char* end) const {
  const std::string_view line(padded_);
  const auto first = static_cast<std::size_t>(begin - padded_.data());
  const auto next = static_cast<std::size_t>(end - padded_.data());
  const std::size_t before = line.find_last_not_of(" \t\r", first - 1);
  if (line[before] == ',') return {before, line.find_last_not_of(" \t\r", next - 1) + 1 - before};
  return {first, next + (line[next] == ',' ? 1 : 0) - first};
}

// A value on its own is read as the only element of an array: the library treats documents that are
// a mere number or text as a case of its own, with checks of its own.
data_t JsonReader::Parser::value(std::string_view json) {
  ondemand::document document = open("[", json, "]");
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
      return readText(require(value.get_string()));
    case ondemand::json_type::array:
      return readList(require(value.get_array()), below(depth));
    case ondemand::json_type::object:
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

data_t JsonReader::Parser::readNumber(ondemand::value value) {
  std::int64_t integer = 0;
  if (value.get_int64().get(integer) == simdjson::SUCCESS) return data_t(integer);
  // A fraction, an exponent, more than 64 bits, or no number at all: the next attempt tells.
  double real = 0;
  if (value.get_double().get(real) != simdjson::SUCCESS) check(simdjson::NUMBER_ERROR);
  return data_t(real);
}

data_t JsonReader::Parser::readText(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    throw MalformedJson("text with an embedded NUL");
  }
  text_.assign(text);
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
    data_t key = readText(require(field.unescaped_key()));
    data_t content = read(field.value(), depth);
    map[std::move(key)] = std::move(content);
  }
  return map;
}

map_t JsonReader::Parser::readMetadata(ondemand::value value) {
  if (require(value.type()) != ondemand::json_type::object) {
    throw MalformedJson(R"("metadata" is not an object)");
  }
  return readMap(require(value.get_object()), below(0));
}

JsonReader::JsonReader() : parser_(std::make_unique<Parser>()) {}
JsonReader::~JsonReader() = default;

Message JsonReader::parseMessage(std::string_view line) { return parser_->message(line); }
text_part_t JsonReader::remark() const noexcept { return parser_->remark(); }
data_t JsonReader::parseValue(std::string_view json) { return parser_->value(json); }

} // namespace com::velanto::connectivity::tools

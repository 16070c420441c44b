#include "ndjson/json_reader.hpp"

#include <string>
#include <utility>

#include "ndjson/json_text.hpp"
#include "ndjson/parser_faults.hpp"
#include "ndjson/recorded.hpp"
#include "ndjson/value_reader.hpp"
#include "value/get_visitor.hpp"
#include "value/hashed_key.hpp"

namespace com::velanto::connectivity {

// The members of a line; one document at a time.
class JsonReader::Parser {
 public:
  Message message(std::string_view line);
  data_t value(std::string_view json);
  [[nodiscard]] text_part_t remark() const noexcept { return remark_; }

 private:
  static void requireEnd(ondemand::document& document);
  static void refuseOnlyBracket(std::string_view line);

  Message readMessage(ondemand::document& document);
  void beginRecorded(const char* place);
  static bool isNotification(const map_t& metadata);
  data_t readOnly(ondemand::document& document);
  template <class Body>
  auto locating(ondemand::document& document, const Body& body) const;
  [[noreturn]] void refuseMember(std::string_view name, const char* place) const;
  [[nodiscard]] text_part_t memberAt(const char* begin, const char* end) const;
  data_t readMetadata(ondemand::value value);

  ValueReader values_;
  text_part_t remark_; // of the message read last
};

// Calls `body`, and adds the current place to its exception if that has none.
template <class Body>
auto JsonReader::Parser::locating(ondemand::document& document, const Body& body) const {
  try {
    return body();
  } catch (const MalformedJson& e) {
    const char* place = nullptr;
    if (e.column() != 0 || document.current_location().get(place) != simdjson::SUCCESS) throw;
    const std::size_t column = values_.columnOf(place);
    if (column > 1 || values_.isEnclosed()) throw MalformedJson(e.what(), column);
    // The library looks at the last bracket first.
    const std::string_view line = values_.text();
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
  refuseOnlyBracket(line);
  ondemand::document document = values_.open("", line, "");
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
  const char* deep_place = nullptr; // where the payload is too deep for a notification
  remark_ = {};
  bool has_payload = false;
  bool has_metadata = false;
  bool has_remark = false;
  bool is_first = true;
  for (auto member : object) {
    ondemand::field field = require(std::move(member));
    const char* const place = field.key().raw() - 1;
    const std::string_view name = values_.unescaped(field.key());
    const auto is_new = [&](bool& is_present) {
      if (std::exchange(is_present, true)) values_.refuseRepeated(name, place);
      return true;
    };
    if (name == "payload" && is_new(has_payload)) {
      payload = values_.read(field.value(), MAX_EVENT_DEPTH);
      deep_place = values_.deepPlace();
    } else if (name == "metadata" && is_new(has_metadata)) {
      metadata = readMetadata(field.value());
    } else if (name == "recorded" && is_first) {
      beginRecorded(place);
    } else if (name == "dropped" && is_new(has_remark)) {
      static_cast<void>(values_.read(field.value(), MAX_DEPTH));
      remark_ = memberAt(place, require(document.current_location()));
    } else {
      refuseMember(name, place);
    }
    is_first = false;
  }
  requireEnd(document);
  auto& entries = metadata.get<map_t>();
  if (deep_place != nullptr && isNotification(entries)) values_.refuseDepth(MAX_DEPTH, deep_place);
  return Message(std::move(payload), std::move(entries));
}

// The look at the text checks the member, so that the library may skip it. `place` is that of the
// name.
void JsonReader::Parser::beginRecorded(const char* place) {
  if (!recordedIn(values_.text()))
    throw MalformedJson(R"(malformed member "recorded")", values_.columnOf(place));
  values_.expectNotation();
}

bool JsonReader::Parser::isNotification(const map_t& metadata) {
  return metadata.find_value(hashed_key_t("pulsarPath")) != nullptr;
}

// `place` is that of the name.
void JsonReader::Parser::refuseMember(std::string_view name, const char* place) const {
  if (name == "recorded")
    throw MalformedJson(R"("recorded" is not the first member)", values_.columnOf(place));
  if (name == "recording")
    throw MalformedJson("a recorder's own line, no message", values_.columnOf(place));
  std::string quoted; // with line breaks and the like escaped
  appendJsonText(quoted, name);
  throw MalformedJson("unknown member " + quoted + R"(, expected "metadata" and "payload")",
                      values_.columnOf(place));
}

// The member from `begin` up to `end`, its next comma or brace, with the comma before it, or, for
// the first member, the one after it.
text_part_t JsonReader::Parser::memberAt(const char* begin, const char* end) const {
  const std::string_view line = values_.text();
  const auto first = static_cast<std::size_t>(begin - line.data());
  const auto next = static_cast<std::size_t>(end - line.data());
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
  ondemand::document document = values_.open("[", json, "]");
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
    result = values_.read(found, MAX_VALUE_DEPTH);
  }
  requireEnd(document);
  if (count == 0) check(simdjson::EMPTY);
  return result;
}

data_t JsonReader::Parser::readMetadata(ondemand::value value) {
  const bool is_object = require(value.type()) == ondemand::json_type::object;
  data_t metadata = is_object ? values_.read(value, MAX_DEPTH) : data_t();
  if (metadata.type_tag() != VLT_TAG_MAP) throw MalformedJson(R"("metadata" is not an object)");
  return metadata;
}

JsonReader::JsonReader() : parser_(std::make_unique<Parser>()) {}
JsonReader::~JsonReader() = default;

Message JsonReader::parseMessage(std::string_view line) { return parser_->message(line); }
text_part_t JsonReader::remark() const noexcept { return parser_->remark(); }
data_t JsonReader::parseValue(std::string_view json) { return parser_->value(json); }

} // namespace com::velanto::connectivity

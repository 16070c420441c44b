#include "ndjson/json_writer.hpp"

#include <rapidjson/writer.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>
#include <vector>

#include "value/get_visitor.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity {

namespace {

// The target of the library's writer, with the names that it asks for.
class Output {
 public:
  using Ch = char;
  explicit Output(std::string& out) noexcept : out_(out) {}
  void Put(char c) { out_.push_back(c); }
  void Flush() noexcept {}

 private:
  std::string& out_;
};

// An open list or map, and its next part.
struct open_list_t {
  const list_t* list;
  std::size_t next;
};
struct open_map_t {
  const map_t* map;
  map_t::const_iterator next;
};

// Goes through a value without recursion: open containers wait on a stack.
class ValueWriter {
 public:
  explicit ValueWriter(std::string& out) : output_(out), writer_(output_) {}

  void write(const data_t& value) {
    begin(value);
    finish();
  }
  void write(const Message& message);

 private:
  void begin(const data_t& value);
  void begin(const map_t& map) {
    writer_.StartObject();
    open_.emplace_back(open_map_t{&map, map.begin()});
  }
  void finish() {
    while (!open_.empty()) std::visit([this](auto& top) { proceed(top); }, open_.back());
  }
  void proceed(open_list_t& top);
  void proceed(open_map_t& top);
  void writeName(const data_t& key);
  void writeDouble(double content);
  void writeText(std::string_view text) {
    writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  }

  Output output_;
  rapidjson::Writer<Output> writer_;
  std::vector<std::variant<open_list_t, open_map_t>> open_;
};

void ValueWriter::write(const Message& message) {
  writer_.StartObject();
  writer_.Key("metadata");
  begin(message.getMetadataMap());
  finish();
  if (!message.getPayload().empty()) {
    writer_.Key("payload");
    write(message.getPayload());
  }
  writer_.EndObject();
}

// Writes a scalar, opens a container.
void ValueWriter::begin(const data_t& value) {
  switch (value.type_tag()) {
    case VLT_TAG_EMPTY:
      writer_.Null();
      break;
    case VLT_TAG_BOOLEAN:
      writer_.Bool(value.get<bool>());
      break;
    case VLT_TAG_DOUBLE:
      writeDouble(value.get<double>());
      break;
    case VLT_TAG_INTEGER:
      writer_.Int64(value.get<std::int64_t>());
      break;
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      writeText(text_or_empty(value.get<const char*>()));
      break;
    case VLT_TAG_LIST:
      writer_.StartArray();
      open_.emplace_back(open_list_t{&value.get<list_t>(), 0});
      break;
    case VLT_TAG_MAP:
      begin(value.get<map_t>());
      break;
    default:
      writeText(to_string(value));
  }
}

// Writes the next element or closes the list. Move the place on first: opening the element may move
// the stack.
void ValueWriter::proceed(open_list_t& top) {
  if (top.next == top.list->size()) {
    writer_.EndArray();
    open_.pop_back();
    return;
  }
  begin((*top.list)[top.next++]);
}

// The same for the next entry of a map.
void ValueWriter::proceed(open_map_t& top) {
  if (top.next == top.map->end()) {
    writer_.EndObject();
    open_.pop_back();
    return;
  }
  const map_t::const_pair entry = *top.next;
  ++top.next;
  writeName(entry.first);
  begin(entry.second);
}

void ValueWriter::writeName(const data_t& key) {
  writeText(key.is_string() ? text_or_empty(key.get<const char*>()) : to_string(key));
}

void ValueWriter::writeDouble(double content) {
  std::array<char, 32> buffer{}; // the longest shortest form has 24 characters
  const std::to_chars_result end = std::to_chars(buffer.begin(), buffer.end(), content);
  std::string text(buffer.begin(), end.ptr);
  if (!std::isfinite(content)) return writeText(text);
  if (text.find_first_of(".e") == std::string::npos) text += ".0";
  writer_.RawValue(text.data(), text.size(), rapidjson::kNumberType);
}

} // namespace

void writeJson(std::string& out, const data_t& value) { ValueWriter(out).write(value); }
void writeJson(std::string& out, const Message& message) { ValueWriter(out).write(message); }

std::string toJson(const data_t& value) {
  std::string json;
  writeJson(json, value);
  return json;
}
std::string toJson(const Message& message) {
  std::string json;
  writeJson(json, message);
  return json;
}

} // namespace com::velanto::connectivity

#include "ndjson/json_writer.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ndjson/json_memory.hpp"
#include "ndjson/json_text.hpp"
#include "value/get_visitor.hpp"
#include "value/map_slot.hpp"
#include "value/to_string.hpp"

namespace com::velanto::connectivity {

namespace {

// An open list or map: its next part, and the number of elements or slots from there on.
struct open_t {
  bool is_map;
  union {
    const data_t* element;
    const map_slot_t* slot;
  };
  std::size_t left;
};

// Goes through a value without recursion: open containers wait on a stack. The string is longer
// than the JSON in the meantime.
class ValueWriter {
 public:
  explicit ValueWriter(std::string& out) : string_(out), begin_(out.size()) {
    open_.reserve(16);
    grow(begin_);
  }
  ValueWriter(const ValueWriter&) = delete;
  ValueWriter& operator=(const ValueWriter&) = delete;
  ~ValueWriter() { string_.resize(size()); }

  void write(const data_t& value) {
    put([&] { begin(value); });
    finish();
  }
  void write(const Message& message);

 private:
  [[nodiscard]] std::size_t size() const {
    return static_cast<std::size_t>(out_.position() - string_.data());
  }
  // Doubles the memory for the JSON and keeps the first `size` bytes.
  void grow(std::size_t size) {
    string_.resize(size + std::max<std::size_t>(512, 2 * (string_.size() - begin_)));
    out_ = JsonMemory(&string_[size], string_.data() + string_.size());
  }
  // Calls `write` until all that it writes to out_ fits. It may open a container.
  template <class Write>
  void put(const Write& write) {
    const std::size_t before = size();
    const auto open = static_cast<std::ptrdiff_t>(open_.size());
    for (write(); out_.isFull(); write()) {
      grow(before);
      open_.erase(open_.begin() + open, open_.end());
    }
  }

  void begin(const data_t& value);
  void begin(const map_t& map);
  void finish();
  void writeKey(const data_t& key);
  void writeText(std::string_view text);
  void writeDouble(double content);

  std::string& string_;
  std::size_t begin_;
  JsonMemory out_;
  std::vector<open_t> open_;
};

void ValueWriter::write(const Message& message) {
  put([&] {
    out_.raw("{\"metadata\":");
    begin(message.getMetadataMap());
  });
  finish();
  if (!message.getPayload().empty()) {
    put([&] { out_.raw(",\"payload\":"); });
    write(message.getPayload());
  }
  put([&] { out_.put('}'); });
}

// Writes a scalar, opens a container.
void ValueWriter::begin(const data_t& value) {
  const vlt_underlying_content_t& content = value.underlying()->value;
  switch (value.type_tag()) {
    case VLT_TAG_EMPTY:
      return out_.raw("null");
    case VLT_TAG_BOOLEAN:
      return is_true(content.boolean) ? out_.raw("true") : out_.raw("false");
    case VLT_TAG_DOUBLE:
      return writeDouble(content.real);
    case VLT_TAG_INTEGER:
      return out_.integer(content.integer);
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return writeText(text_or_empty(content.string));
    case VLT_TAG_LIST: {
      const std::span<const data_t> elements = elements_of(content.list);
      out_.put('[');
      open_.push_back({.is_map = false, .element = elements.data(), .left = elements.size()});
      return;
    }
    case VLT_TAG_MAP:
      return begin(value.get<map_t>());
    default:
      writeText(to_string(value));
  }
}

void ValueWriter::begin(const map_t& map) {
  const std::span<const map_slot_t> slots = slots_of(map.table());
  out_.put('{');
  open_.push_back({.is_map = true, .slot = slots.data(), .left = slots.size()});
}

// Moves the place on first: opening the next value may move the stack.
void ValueWriter::finish() {
  while (!open_.empty()) {
    open_t& top = open_.back();
    while (top.is_map && top.left > 0 && top.slot->is_vacant()) {
      ++top.slot;
      --top.left;
    }
    const bool is_first = out_.last() == (top.is_map ? '{' : '[');
    if (top.left == 0) {
      put([&] { out_.put(top.is_map ? '}' : ']'); });
      open_.pop_back();
      continue;
    }
    --top.left;
    const map_slot_t* const slot = top.is_map ? top.slot++ : nullptr;
    const data_t& value = slot != nullptr ? slot->value : *top.element++;
    put([&] {
      if (!is_first) out_.put(',');
      if (slot != nullptr) writeKey(slot->key);
      begin(value);
    });
  }
}

void ValueWriter::writeKey(const data_t& key) {
  if (key.is_string()) {
    writeText(text_or_empty(key.underlying()->value.string));
  } else {
    writeText(to_string(key));
  }
  out_.put(':');
}

void ValueWriter::writeText(std::string_view text) {
  if (!out_.text(text)) static_cast<void>(out_.text(asUtf8(text)));
}

void ValueWriter::writeDouble(double content) {
  if (out_.shortReal(content)) return;
  std::array<char, 32> digits{}; // the longest shortest form has 24 characters
  const std::to_chars_result end = std::to_chars(digits.begin(), digits.end(), content);
  const std::string_view text(digits.begin(), static_cast<std::size_t>(end.ptr - digits.begin()));
  if (!std::isfinite(content)) return writeText(text);
  out_.raw(text);
  if (text.find_first_of(".e") == std::string_view::npos) out_.raw(".0");
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

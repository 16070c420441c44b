#include "ndjson/recorded_writer.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "ndjson/utf8.hpp"

namespace com::velanto::connectivity {

namespace {

// Whether the map's keys can be the names of an object that is not taken for the notation.
bool hasPlainKeys(std::span<const map_slot_t> slots) noexcept {
  return std::all_of(slots.begin(), slots.end(), [](const map_slot_t& slot) {
    if (slot.is_vacant()) return true;
    const vlt_underlying_data_t& key = *slot.key.underlying();
    if (key.tag != VLT_TAG_STRING || key.value.string == nullptr) return false;
    const std::string_view name = key.value.string;
    return name != "$" && findInvalidUtf8(name) == std::string_view::npos;
  });
}

void skipVacant(const map_slot_t*& slot, const map_slot_t* end) noexcept {
  while (slot != end && slot->is_vacant()) ++slot;
}

std::uint64_t bitsOf(const vlt_underlying_data_t& value) noexcept {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value.value, sizeof bits);
  return bits;
}

void writeBuffer(JsonMemory& out, const vlt_underlying_buffer_t* block) noexcept {
  if (block == nullptr) return out.base64(nullptr, 0);
  out.base64(reinterpret_cast<const unsigned char*>(block + 1), block->length);
}

} // namespace

RecordedWriter::RecordedWriter(FieldSet omitted, std::size_t max_depth)
    : omitted_(std::move(omitted)), open_(max_depth) {}

char* RecordedWriter::write(const Message& message, char* begin, const char* end) noexcept {
  out_ = JsonMemory(begin, end);
  depth_ = 0;
  is_too_deep_ = false;
  out_.raw("\"metadata\":");
  write(slots_of(message.getMetadataMap().table()), omitted_.metadata());
  finish();
  out_.raw(",\"payload\":");
  write(message.getPayload(), omitted_.payload());
  finish();
  return out_.isFull() || is_too_deep_ ? nullptr : out_.position();
}

void RecordedWriter::finish() noexcept {
  while (depth_ > 0 && !out_.isFull() && !is_too_deep_) proceed(open_[depth_ - 1]);
}

void RecordedWriter::proceed(open_t& top) noexcept {
  switch (top.next) {
    case open_t::ELEMENT:
      return writeElement(top);
    case open_t::MEMBER:
      return writeMember(top);
    case open_t::KEY:
      return writeKey(top);
    case open_t::VALUE:
      return writeValue(top);
  }
}

void RecordedWriter::writeElement(open_t& top) noexcept {
  if (top.element == top.element_end) {
    out_.put(']');
    --depth_;
    return;
  }
  if (out_.last() != '[') out_.put(',');
  write(*top.element++, top.place);
}

void RecordedWriter::writeMember(open_t& top) noexcept {
  skipVacant(top.slot, top.slot_end);
  if (top.slot == top.slot_end) {
    out_.put('}');
    --depth_;
    return;
  }
  if (out_.last() != '{') out_.put(',');
  const map_slot_t& slot = *top.slot++;
  const std::string_view name = slot.key.underlying()->value.string;
  static_cast<void>(out_.text(name)); // hasPlainKeys has seen that it is UTF-8
  out_.put(':');
  write(slot.value, FieldSet::below(top.place, name));
}

void RecordedWriter::writeKey(open_t& top) noexcept {
  if (out_.last() != '[') out_.put(']'); // of the previous pair
  skipVacant(top.slot, top.slot_end);
  if (top.slot == top.slot_end) {
    out_.raw("]]}");
    --depth_;
    return;
  }
  if (out_.last() != '[') out_.put(',');
  out_.put('[');
  top.next = open_t::VALUE;
  write(top.slot->key, nullptr);
}

void RecordedWriter::writeValue(open_t& top) noexcept {
  const map_slot_t& slot = *top.slot++;
  const bool is_named = slot.key.is_string();
  const char* const name = is_named ? text_or_empty(slot.key.underlying()->value.string) : "";
  const bool everywhere = FieldSet::covers(top.place);
  out_.put(',');
  top.next = open_t::KEY;
  write(slot.value, is_named || everywhere ? FieldSet::below(top.place, name) : nullptr);
}

// Opens containers.
void RecordedWriter::write(const data_t& value, place_t place) noexcept {
  const vlt_underlying_data_t& content = *value.underlying();
  switch (content.tag) {
    case VLT_TAG_EMPTY:
      return out_.raw("null");
    case VLT_TAG_BOOLEAN:
      return writeBoolean(static_cast<unsigned char>(bitsOf(content)));
    case VLT_TAG_DOUBLE:
      return writeDouble(content.value.real);
    case VLT_TAG_INTEGER:
      return out_.integer(content.value.integer);
    case VLT_TAG_DECIMAL:
      out_.raw(R"({"$":["decimal",)");
      out_.bits(content.value.decimal.bits);
      break;
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return writeText(content, place);
    case VLT_TAG_LIST:
      return write(elements_of(content.value.list), place);
    case VLT_TAG_MAP:
      return write(slots_of(content.value.map), place);
    case VLT_TAG_BUFFER:
      out_.raw(R"({"$":["buffer",)");
      writeBuffer(out_, content.value.buffer);
      break;
    case VLT_TAG_CUSTOM:
      out_.raw(R"({"$":["custom")");
      break;
    default:
      out_.raw(R"({"$":["tag",)");
      out_.integer(content.tag);
      out_.put(',');
      out_.bits(bitsOf(content));
  }
  out_.raw("]}");
}

// A table may have keys that differ in nothing but the bits of their truth.
void RecordedWriter::writeBoolean(unsigned char content) noexcept {
  if (content <= 1) return content == 1 ? out_.raw("true") : out_.raw("false");
  out_.raw(R"({"$":["boolean",)");
  out_.integer(content);
  out_.raw("]}");
}

void RecordedWriter::writeDouble(double content) noexcept {
  if (std::isfinite(content)) return out_.real(content);
  out_.raw(R"({"$":["double",)");
  out_.bits(std::bit_cast<std::uint64_t>(content));
  out_.raw("]}");
}

void RecordedWriter::writeText(const vlt_underlying_data_t& value, place_t place) noexcept {
  const bool is_owned = value.tag == VLT_TAG_STRING;
  const char* text = value.value.string;
  if (text == nullptr) {
    return is_owned ? out_.raw(R"({"$":["string",null]})") : out_.raw(R"({"$":["borrowed",null]})");
  }
  if (FieldSet::covers(place)) text = PLACEHOLDER;
  const std::string_view content = text;
  if (is_owned && out_.text(content)) return;
  if (!is_owned && findInvalidUtf8(content) == std::string_view::npos) {
    out_.raw(R"({"$":["borrowed",)");
    static_cast<void>(out_.text(content));
  } else {
    is_owned ? out_.raw(R"({"$":["bytes",)") : out_.raw(R"({"$":["borrowed-bytes",)");
    out_.base64(reinterpret_cast<const unsigned char*>(content.data()), content.size());
  }
  out_.raw("]}");
}

RecordedWriter::open_t* RecordedWriter::open() noexcept {
  is_too_deep_ = is_too_deep_ || depth_ == open_.size();
  return is_too_deep_ ? nullptr : &open_[depth_++];
}

void RecordedWriter::write(std::span<const data_t> elements, place_t place) noexcept {
  open_t* const top = open();
  if (top == nullptr) return;
  top->next = open_t::ELEMENT;
  top->place = place;
  top->element = elements.data();
  top->element_end = elements.data() + elements.size();
  out_.put('[');
}

void RecordedWriter::write(std::span<const map_slot_t> slots, place_t place) noexcept {
  open_t* const top = open();
  if (top == nullptr) return;
  const bool is_plain = hasPlainKeys(slots);
  top->next = is_plain ? open_t::MEMBER : open_t::KEY;
  top->place = place;
  top->slot = slots.data();
  top->slot_end = slots.data() + slots.size();
  is_plain ? out_.put('{') : out_.raw(R"({"$":["map",[)");
}

} // namespace com::velanto::connectivity

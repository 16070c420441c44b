// Rendering:
//
// (1) Append a value without further values at once.
// (2) Open a list or map and put it on a stack of open containers.
// (3) Render the next element, key or value of the topmost container, or close it.
//
// That stack is on the heap. Rendering must not write to values, so the stack cannot be threaded
// through them. The thread's own stack is too small for the deepest messages.
#include "standin/render.hpp"

#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "standin/accounting.hpp"
#include "standin/failures.hpp"
#include "standin/interface.hpp"
#include "standin/layout.hpp"
#include "standin/text_builder.hpp"

namespace standin {

namespace {

using std::string_view;

struct open_container_t {
  const vlt_underlying_vector_t* list; // null: a map
  const vlt_underlying_map_table_t* map;
  int64_t next;      // element or slot
  bool first;        // nothing rendered yet
  bool key_rendered; // the slot's value is what follows
};

// Remembers exhaustion as TextBuilder does.
class OpenContainers {
 public:
  OpenContainers() = default;
  OpenContainers(const OpenContainers&) = delete;
  OpenContainers& operator=(const OpenContainers&) = delete;
  ~OpenContainers() { std::free(items_); }

  bool empty() const noexcept { return count_ == 0; }
  bool failed() const noexcept { return failed_; }
  open_container_t& top() noexcept { return items_[count_ - 1]; } // until the next push
  void pop() noexcept { --count_; }

  void push(const open_container_t& item) noexcept {
    if (count_ == capacity_ && !grow()) return;
    items_[count_++] = item;
  }

 private:
  bool grow() noexcept {
    const std::size_t capacity = capacity_ == 0 ? 16 : 2 * capacity_;
    void* grown =
        allocationRefused() ? nullptr : std::realloc(items_, capacity * sizeof(open_container_t));
    failed_ = grown == nullptr;
    if (failed_) return false;
    items_ = static_cast<open_container_t*>(grown);
    capacity_ = capacity;
    return true;
  }

  open_container_t* items_ = nullptr;
  std::size_t count_ = 0;
  std::size_t capacity_ = 0;
  bool failed_ = false;
};

class Renderer {
 public:
  char* render(const vlt_underlying_data_t& value) noexcept {
    append(value);
    while (!open_.empty() && !text_.failed() && !open_.failed()) appendNext();
    return open_.failed() ? nullptr : text_.take();
  }

 private:
  void append(const vlt_underlying_data_t& value) noexcept {
    switch (value.tag) {
      case VLT_TAG_EMPTY:
        return text_.append("null");
      case VLT_TAG_BOOLEAN:
        return appendBoolean(value);
      case VLT_TAG_DOUBLE:
        return appendDouble(value.value.real);
      case VLT_TAG_INTEGER:
        return appendNumber(value.value.integer);
      case VLT_TAG_DECIMAL:
        return appendDecimal(value.value.decimal.bits);
      case VLT_TAG_STRING:
      case VLT_TAG_BORROWED_STRING:
        return appendQuoted(value.value.string == nullptr ? "" : value.value.string);
      case VLT_TAG_LIST:
        return openList(value.value.list);
      case VLT_TAG_MAP:
        return openMap(value.value.map);
      case VLT_TAG_BUFFER:
        return appendBuffer(value.value.buffer);
      case VLT_TAG_CUSTOM:
        return text_.append("custom");
      default:
        return appendUnknown(value.tag);
    }
  }

  // Read as a byte: reading a bool that holds anything but 0 or 1 is undefined.
  void appendBoolean(const vlt_underlying_data_t& value) noexcept {
    unsigned char byte = 0;
    std::memcpy(&byte, &value.value, sizeof byte);
    text_.append(byte != 0 ? "true" : "false");
  }

  void appendDouble(double number) noexcept {
    std::array<char, 32> digits;
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const string_view shortest(digits.data(), static_cast<std::size_t>(end - digits.data()));
    text_.append(shortest);
    if (shortest.find_first_not_of("-0123456789") == string_view::npos) text_.append(".0");
  }

  template <typename Integer>
  void appendNumber(Integer number, int base = 10) noexcept {
    std::array<char, 24> digits;
    const char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, base).ptr;
    text_.append({digits.data(), static_cast<std::size_t>(end - digits.data())});
  }

  void appendDecimal(uint64_t bits) noexcept {
    text_.append("decimal(0x");
    for (int shift = 60; shift >= 0; shift -= 4) appendNumber((bits >> shift) & 0xf, 16);
    text_.append(")");
  }

  void appendBuffer(const vlt_underlying_buffer_t* buffer) noexcept {
    text_.append("buffer(");
    appendNumber(buffer == nullptr ? 0 : buffer->length);
    text_.append(" bytes)");
  }

  void appendUnknown(uint32_t tag) noexcept {
    text_.append("unknown(");
    appendNumber(tag);
    text_.append(")");
  }

  void appendQuoted(string_view text) noexcept {
    text_.append("\"");
    std::size_t plain = 0; // start of the run that needs no escape
    for (std::size_t i = 0; i < text.size(); ++i) {
      const auto byte = static_cast<unsigned char>(text[i]);
      if (byte >= 0x20 && byte != 0x7f && byte != '"' && byte != '\\') continue;
      text_.append(text.substr(plain, i - plain));
      appendEscaped(byte);
      plain = i + 1;
    }
    text_.append(text.substr(plain));
    text_.append("\"");
  }

  void appendEscaped(unsigned char byte) noexcept {
    switch (byte) {
      case '"':
        return text_.append("\\\"");
      case '\\':
        return text_.append("\\\\");
      case '\n':
        return text_.append("\\n");
      case '\r':
        return text_.append("\\r");
      case '\t':
        return text_.append("\\t");
      default:
        text_.append("\\u00");
        appendNumber(byte >> 4, 16);
        appendNumber(byte & 0xf, 16);
    }
  }

  void openList(const vlt_underlying_vector_t* list) noexcept {
    if (list == nullptr) return text_.append("[]");
    text_.append("[");
    open_.push({list, nullptr, 0, true, false});
  }

  void openMap(const vlt_underlying_map_table_t* map) noexcept {
    if (map == nullptr) return text_.append("{}");
    text_.append("{");
    open_.push({nullptr, map, 0, true, false});
  }

  void appendNext() noexcept { open_.top().list != nullptr ? appendElement() : appendSlot(); }

  // Move the position on before rendering the element: that may push, and move the stack.
  void appendElement() noexcept {
    open_container_t& top = open_.top();
    if (top.next >= top.list->count) return close("]");
    separate(top);
    append(elementsOf(top.list)[top.next++]);
  }

  void appendSlot() noexcept {
    open_container_t& top = open_.top();
    const slot_t* slots = slotsOf(top.map);
    if (top.key_rendered) {
      text_.append(": ");
      top.key_rendered = false;
      return append(slots[top.next++].value);
    }
    while (top.next < top.map->capacity && !isLive(slots[top.next])) ++top.next;
    if (top.next >= top.map->capacity) return close("}");
    separate(top);
    top.key_rendered = true;
    append(slots[top.next].key);
  }

  void separate(open_container_t& container) noexcept {
    if (!container.first) text_.append(", ");
    container.first = false;
  }

  void close(string_view bracket) noexcept {
    text_.append(bracket);
    open_.pop();
  }

  TextBuilder text_;
  OpenContainers open_;
};

} // namespace

char* renderValue(const vlt_underlying_data_t& value) noexcept { return Renderer().render(value); }

} // namespace standin

vlt_underlying_data_t vlt_data_to_string(const vlt_underlying_data_t* value) {
  standin::countCall(STANDIN_DATA_TO_STRING);
  vlt_underlying_data_t result{};
  result.tag = VLT_TAG_STRING;
  result.value.string = standin::renderValue(value == nullptr ? vlt_underlying_data_t{} : *value);
  return result;
}

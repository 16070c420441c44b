#include "value/data_t.hpp"

#include <array>
#include <new>
#include <stdexcept>

namespace com::velanto::connectivity {

namespace {

bool same_bytes(const void* left, const void* right, std::size_t length) noexcept {
  return std::memcmp(left, right, length) == 0;
}

bool same_buffer(const buffer_t& left, const buffer_t& right) noexcept {
  if (left.size() != right.size()) return false;
  return left.size() == 0 || same_bytes(left.data(), right.data(), left.size());
}

bool same_text(const char* left, const char* right) noexcept {
  return std::strcmp(text_or_empty(left), text_or_empty(right)) == 0;
}

} // namespace

const char* kind_name(std::uint32_t tag) noexcept {
  static constexpr std::array NAMES = {"empty", "boolean", "double", "integer", "decimal", "string",
                                       "list",  "map",     "buffer", "custom",  "string"};
  return tag < NAMES.size() ? NAMES[tag] : "Unknown";
}

std::runtime_error null_text_error() {
  return std::runtime_error(
      "Cannot use a null char* as a data_t value (consider using an empty data_t() instead)");
}

data_t::data_t(const char* text) : data_t() {
  if (text == nullptr) throw null_text_error();
  copy_text(text);
}

// `text` may not be null.
void data_t::copy_text(const char* text) {
  content_.string = vlt_copy_string(text);
  if (content_.string == nullptr) throw std::bad_alloc();
  tag_ = VLT_TAG_STRING;
}

data_t::data_t(const data_t& other) : tag_(VLT_TAG_EMPTY) {
  // Nearly every copy is one of a string, so that comes first.
  if (other.is_string() && other.content_.string != nullptr) {
    copy_text(other.content_.string);
    return;
  }
  const bool has_block = other.owns_block() && other.content_.string != nullptr;
  if (!has_block) { // No block, or no pointer at all: the bits are the value.
    std::memcpy(static_cast<void*>(this), static_cast<const void*>(&other), sizeof *this);
    if (is_string()) tag_ = VLT_TAG_STRING;
    return;
  }
  const vlt_underlying_data_t copied = vlt_copy_data(other.underlying());
  if (copied.tag == VLT_TAG_EMPTY) throw std::bad_alloc();
  std::memcpy(static_cast<void*>(this), &copied, sizeof *this);
}

data_t& data_t::operator=(const data_t& other) {
  if (this != &other) *this = data_t(other);
  return *this;
}

void data_t::free_block() noexcept {
  switch (tag_) {
    case VLT_TAG_STRING:
      if (content_.string != nullptr) vlt_free_string(const_cast<char*>(content_.string));
      break;
    case VLT_TAG_LIST:
      content_.list.~list_t();
      break;
    case VLT_TAG_MAP:
      content_.map.~map_t();
      break;
    case VLT_TAG_BUFFER:
      content_.buffer.~buffer_t();
      break;
    default: { // VLT_TAG_CUSTOM; clears the pointer first, as the containers do.
      const vlt_underlying_custom_t custom =
          std::exchange(content_.custom, vlt_underlying_custom_t{nullptr});
      if (custom.object != nullptr) vlt_free_custom(custom);
    }
  }
}

// Both have the same tag.
bool data_t::same_content(const data_t& other) const {
  switch (tag_) {
    case VLT_TAG_EMPTY:
      return true;
    case VLT_TAG_BOOLEAN:
      return same_bytes(&content_, &other.content_, sizeof(bool));
    case VLT_TAG_DOUBLE:
      return content_.real == other.content_.real;
    case VLT_TAG_INTEGER:
    case VLT_TAG_DECIMAL:
      return same_bytes(&content_, &other.content_, sizeof content_);
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return same_text(content_.string, other.content_.string);
    case VLT_TAG_LIST:
      return content_.list == other.content_.list;
    case VLT_TAG_MAP:
      return content_.map == other.content_.map;
    case VLT_TAG_BUFFER:
      return same_buffer(content_.buffer, other.content_.buffer);
    default:
      return false; // Custom objects have no defined equality; nor have unknown kinds.
  }
}

} // namespace com::velanto::connectivity

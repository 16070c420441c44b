// The tagged value that every piece of data crossing the plug-in boundary is:
//
//   0 content (8, read by tag)   8 tag (4)   12 padding, never read
//
//   tag  0 empty   1 boolean   2 double   3 integer   4 decimal   5 string   6 list   7 map
//        8 buffer  9 custom   10 borrowed string (reads as a string; the text is not owned)
//
// A value owns the block of tags 5 to 9 and frees it through the host. The containers are members
// of the union, so a typed get is a reference into the value itself, never a copy. A tag above 10
// comes from a newer host: it is not empty, owns nothing and equals nothing, and moves along
// unread.
//
// A null string (tags 5 and 10) reads as the empty string, in comparisons and hashes too.
#ifndef VLT_VALUE_DATA_T_HPP
#define VLT_VALUE_DATA_T_HPP

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "host/storage.h"
#include "value/buffer_t.hpp"
#include "value/list_t.hpp"
#include "value/map_t.hpp"

namespace com::velanto::connectivity {

// The kind's name as messages use it; "Unknown" for a tag above 10.
[[nodiscard]] const char* kind_name(std::uint32_t tag) noexcept;

// The string itself, or the empty string for null.
[[nodiscard]] inline const char* text_or_empty(const char* text) noexcept {
  return text == nullptr ? "" : text;
}

// A boolean's content, which a host may have written with other bits than 0 and 1.
[[nodiscard]] inline bool is_true(const bool& content) noexcept {
  return reinterpret_cast<const unsigned char&>(content) != 0;
}

// The error of a null that should be a string: "Cannot use a null char* as a data_t value (consider
// using an empty data_t() instead)".
[[nodiscard]] std::runtime_error null_text_error();

class data_t {
 public:
  data_t() noexcept : tag_(VLT_TAG_EMPTY) {}
  explicit data_t(bool content) noexcept : tag_(VLT_TAG_BOOLEAN) { content_.boolean = content; }
  explicit data_t(double content) noexcept : tag_(VLT_TAG_DOUBLE) { content_.real = content; }
  template <class Integer>
  requires(std::is_same_v<Integer, std::int64_t> ||
           std::is_same_v<Integer, long long>) explicit data_t(Integer content) noexcept
      : tag_(VLT_TAG_INTEGER) {
    content_.integer = content;
  }
  explicit data_t(vlt_underlying_decimal_t content) noexcept : tag_(VLT_TAG_DECIMAL) {
    content_.decimal = content;
  }
  // Copies the string. Throws std::runtime_error for null, std::bad_alloc.
  explicit data_t(const char* text);
  // Take over the container's block; the source is left holding null. Implicit, since a container
  // is a value already, only without its tag.
  data_t(list_t&& content) noexcept : tag_(VLT_TAG_LIST) {
    new (&content_.list) list_t(std::move(content));
  }
  data_t(map_t&& content) noexcept : tag_(VLT_TAG_MAP) {
    new (&content_.map) map_t(std::move(content));
  }
  data_t(buffer_t&& content) noexcept : tag_(VLT_TAG_BUFFER) {
    new (&content_.buffer) buffer_t(std::move(content));
  }
  // A pointer of any other type would otherwise become a boolean.
  explicit data_t(const void*) = delete;

  // Deep copies; the copy of a borrowed string is an owned one. Throw std::bad_alloc; the target of
  // an assignment then keeps its content.
  data_t(const data_t& other);
  data_t& operator=(const data_t& other);

  // Take over the 16 bytes and leave the source empty. Call the host only to free the previous
  // content of an assignment's target.
  data_t(data_t&& other) noexcept : content_(NOT_SET) { take(other); }
  data_t& operator=(data_t&& other) noexcept {
    data_t taken = std::move(other);
    const data_t old = std::move(*this);
    take(taken);
    return *this;
  }

  ~data_t() {
    if (owns_block()) free_block();
  }

  // The value that `content` is; takes over its block.
  [[nodiscard]] static data_t adopt(const vlt_underlying_data_t& content) noexcept {
    data_t result;
    std::memcpy(static_cast<void*>(&result), &content, sizeof content);
    return result;
  }
  // `content`, which keeps its block, seen as a value.
  [[nodiscard]] static const data_t& view(const vlt_underlying_data_t& content) noexcept {
    return reinterpret_cast<const data_t&>(content);
  }
  // The value as the host's functions take it; still owned here.
  [[nodiscard]] const vlt_underlying_data_t* underlying() const noexcept {
    return reinterpret_cast<const vlt_underlying_data_t*>(this);
  }

  [[nodiscard]] bool empty() const noexcept { return tag_ == VLT_TAG_EMPTY; }
  [[nodiscard]] std::uint32_t type_tag() const noexcept { return tag_; }
  // Either string kind.
  [[nodiscard]] bool is_string() const noexcept {
    return tag_ == VLT_TAG_STRING || tag_ == VLT_TAG_BORROWED_STRING;
  }

  // Same kind and same content; no conversion between kinds, so a borrowed string never equals an
  // owned one. A NaN and a custom value differ from everything, themselves included. Comparing
  // containers in containers takes memory: throws std::bad_alloc.
  bool operator==(const data_t& other) const {
    if (tag_ != other.tag_) return false;
    // Nearly every comparison is one of keys.
    if (tag_ == VLT_TAG_STRING && content_.string != nullptr && other.content_.string != nullptr) {
      return std::strcmp(content_.string, other.content_.string) == 0;
    }
    return same_content(other);
  }

  // The content in place, as T: bool, double, int64_t, vlt_underlying_decimal_t, const char* (which
  // may be null), list_t, map_t, buffer_t or vlt_underlying_custom_t. Valid until the value ends,
  // moves or changes. Throws std::runtime_error "Get from empty" (also for a tag above 10), or
  // "Incorrect type in get (you asked for … but it's actually …)" after a line on standard error.
  // Defined in value/get_visitor.hpp.
  template <class T>
  [[nodiscard]] T& get();
  template <class T>
  [[nodiscard]] const T& get() const;
  // The content in place, or null for content of another kind.
  template <class T>
  [[nodiscard]] T* get_if() noexcept;
  template <class T>
  [[nodiscard]] const T* get_if() const noexcept;
  // Returns the exception that get would throw, after its line on standard error.
  template <class T>
  [[nodiscard]] std::runtime_error report_mismatch() const;

  // Calls `visitor` with a reference to the content, whose type tells the kind. Calls `on_nothing`
  // with no argument for an empty value or a tag above 10.
  template <class Visitor, class OnNothing>
  decltype(auto) apply_visitor(const Visitor& visitor, const OnNothing& on_nothing) {
    return visit(*this, visitor, on_nothing);
  }
  template <class Visitor, class OnNothing>
  decltype(auto) apply_visitor(const Visitor& visitor, const OnNothing& on_nothing) const {
    return visit(*this, visitor, on_nothing);
  }

 private:
  // The containers' own destructors are never run through the union: free_block() decides by tag.
  static constexpr struct not_set_t {
  } NOT_SET{};
  union content_t {
    content_t() noexcept : integer(0) {}
    explicit content_t(not_set_t) noexcept {} // for callers that set it at once
    content_t(const content_t&) = delete;
    content_t& operator=(const content_t&) = delete;
    ~content_t() {} // NOLINT(modernize-use-equals-default): a defaulted one would be deleted
    bool boolean;
    double real;
    std::int64_t integer;
    vlt_underlying_decimal_t decimal;
    const char* string;
    list_t list;
    map_t map;
    buffer_t buffer;
    vlt_underlying_custom_t custom;
  };

  [[nodiscard]] bool owns_block() const noexcept {
    return tag_ >= VLT_TAG_STRING && tag_ <= VLT_TAG_CUSTOM;
  }
  // Moves content and tag of `other` here, over the present ones, and leaves `other` empty. In two
  // pieces, as they were written: one load of 16 bytes would have to wait for both writes.
  void take(data_t& other) noexcept {
    std::memcpy(static_cast<void*>(&content_), static_cast<const void*>(&other.content_),
                sizeof content_);
    tag_ = other.tag_;
    other.content_.integer = 0;
    other.tag_ = VLT_TAG_EMPTY;
  }
  void free_block() noexcept;
  [[nodiscard]] bool same_content(const data_t& other) const;
  void copy_text(const char* text);

  template <class Self, class Visitor, class OnNothing>
  static decltype(auto) visit(Self& self, const Visitor& visitor, const OnNothing& on_nothing) {
    switch (self.tag_) {
      case VLT_TAG_BOOLEAN:
        return visitor(self.content_.boolean);
      case VLT_TAG_DOUBLE:
        return visitor(self.content_.real);
      case VLT_TAG_INTEGER:
        return visitor(self.content_.integer);
      case VLT_TAG_DECIMAL:
        return visitor(self.content_.decimal);
      case VLT_TAG_STRING:
      case VLT_TAG_BORROWED_STRING:
        return visitor(self.content_.string);
      case VLT_TAG_LIST:
        return visitor(self.content_.list);
      case VLT_TAG_MAP:
        return visitor(self.content_.map);
      case VLT_TAG_BUFFER:
        return visitor(self.content_.buffer);
      case VLT_TAG_CUSTOM:
        return visitor(self.content_.custom);
      default:
        return on_nothing();
    }
  }

  content_t content_;
  std::uint32_t tag_;
};

static_assert(sizeof(data_t) == sizeof(vlt_underlying_data_t), "a value wraps the host's bytes");
static_assert(alignof(data_t) == alignof(vlt_underlying_data_t), "arrays are shared in place");
static_assert(!std::is_polymorphic_v<data_t>, "a virtual table would change the layout");

} // namespace com::velanto::connectivity

#endif

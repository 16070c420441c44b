// One value of the host: its owner, its kind and its typed reads.
#ifndef VLT_PLAIN_BUILD_VALUE_HPP
#define VLT_PLAIN_BUILD_VALUE_HPP

#include <cstdint>

#include "host/types.h"

namespace plain_build {

using RawValue = vlt_underlying_data_t;
using RawTable = vlt_underlying_map_table_t;

constexpr RawValue EMPTY = {{.integer = 0}, VLT_TAG_EMPTY};

// Owns a value and frees its block. A value that was moved from is empty.
class Value {
 public:
  Value() noexcept = default;
  // Takes over `raw` with its block.
  explicit Value(const RawValue& raw) noexcept : raw_(raw) {}
  Value(Value&& other) noexcept : raw_(other.release()) {}
  Value& operator=(Value&& other) noexcept;
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;
  ~Value();

  // A copy of `text`. Throws std::bad_alloc.
  static Value ofText(const char* text);
  static Value ofReal(double number) noexcept;
  static Value ofInteger(int64_t number) noexcept;

  const RawValue& raw() const noexcept { return raw_; }
  // Hands the block to the caller and leaves this empty.
  RawValue release() noexcept;

 private:
  RawValue raw_ = EMPTY;
};

// Text of an error for a null string where one must have a text.
constexpr const char* NULL_TEXT =
    "Cannot use a null char* as a data_t value (consider using an empty data_t() instead)";

// The byte of a boolean, which a host may have set to any number. To read it as a bool would then be
// undefined.
unsigned char byteOf(const RawValue& boolean) noexcept;

// Whether `value` is a string, owned or borrowed.
bool isString(const RawValue& value) noexcept;

// The text of a string value, valid as long as the value. A null string reads as the empty text.
const char* textOf(const RawValue& value) noexcept;

// Returns when `value` is of the kind `tag`; a borrowed string is of the kind VLT_TAG_STRING.
// Otherwise throws std::runtime_error, after a line to standard error when it has another kind.
void requireKind(const RawValue& value, uint32_t tag);

} // namespace plain_build

#endif

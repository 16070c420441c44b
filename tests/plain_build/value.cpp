#include "tests/plain_build/value.hpp"

#include <array>
#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>

#include "host/storage.h"

namespace plain_build {
namespace {

struct Kind {
  const char* name;
  const char* type;
};

// By tag. A borrowed string has the names of a string.
constexpr std::array<Kind, 11> KINDS = {{{"empty", "empty"},
                                         {"boolean", "bool"},
                                         {"double", "double"},
                                         {"integer", "int64_t"},
                                         {"decimal", "decimal_t"},
                                         {"string", "char const*"},
                                         {"list", "list_t"},
                                         {"map", "map_t"},
                                         {"buffer", "buffer_t"},
                                         {"custom", "custom_t"},
                                         {"string", "char const*"}}};

void freeBlock(const RawValue& value) noexcept {
  switch (value.tag) {
    case VLT_TAG_STRING:
      return vlt_free_string(const_cast<char*>(value.value.string));
    case VLT_TAG_LIST:
      return vlt_free_vector(value.value.list);
    case VLT_TAG_MAP:
      return vlt_free_map(value.value.map);
    case VLT_TAG_BUFFER:
      return vlt_free_buffer(value.value.buffer);
    case VLT_TAG_CUSTOM:
      return vlt_free_custom(value.value.custom);
    default:
      return;
  }
}

} // namespace

Value& Value::operator=(Value&& other) noexcept {
  if (this != &other) {
    const RawValue old = release();
    raw_ = other.release();
    freeBlock(old);
  }
  return *this;
}

Value::~Value() { freeBlock(raw_); }

Value Value::ofText(const char* text) {
  char* const copy = vlt_copy_string(text);
  if (copy == nullptr) throw std::bad_alloc();
  return Value({{.string = copy}, VLT_TAG_STRING});
}

Value Value::ofReal(double number) noexcept { return Value({{.real = number}, VLT_TAG_DOUBLE}); }

Value Value::ofInteger(int64_t number) noexcept {
  return Value({{.integer = number}, VLT_TAG_INTEGER});
}

RawValue Value::release() noexcept {
  const RawValue raw = raw_;
  raw_ = EMPTY;
  return raw;
}

unsigned char byteOf(const RawValue& boolean) noexcept {
  return *reinterpret_cast<const unsigned char*>(&boolean.value);
}

bool isString(const RawValue& value) noexcept {
  return value.tag == VLT_TAG_STRING || value.tag == VLT_TAG_BORROWED_STRING;
}

const char* textOf(const RawValue& value) noexcept {
  return value.value.string == nullptr ? "" : value.value.string;
}

void requireKind(const RawValue& value, uint32_t tag) {
  if (value.tag == VLT_TAG_EMPTY || value.tag >= KINDS.size()) {
    throw std::runtime_error("Get from empty");
  }
  if (value.tag == tag || (tag == VLT_TAG_STRING && isString(value))) return;
  const Kind& asked = KINDS.at(tag);
  const Kind& actual = KINDS.at(value.tag);
  std::fprintf(stderr, "GetVisitor<%s>.operator()(%s)\n", asked.type, actual.type);
  throw std::runtime_error(std::string("Incorrect type in get (you asked for ") + asked.name +
                           " but it's actually " + actual.name + ")");
}

} // namespace plain_build

// The vocabulary of these tests: values written down in one expression, freed by their holder, and
// a fixture that finds every block again.
#ifndef VLT_TESTS_STANDIN_VALUES_HPP
#define VLT_TESTS_STANDIN_VALUES_HPP

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

#include "host/storage.h"
#include "standin/layout.hpp"
#include "standin/standin.h"

namespace standin::test {

using data_t = vlt_underlying_data_t;
using table_t = vlt_underlying_map_table_t;

inline data_t tagged(uint32_t tag, uint64_t bits = 0) {
  data_t value{};
  std::memcpy(&value.value, &bits, sizeof bits);
  value.tag = tag;
  return value;
}

inline data_t empty() { return tagged(VLT_TAG_EMPTY); }
inline data_t boolean(bool content) { return tagged(VLT_TAG_BOOLEAN, content ? 1 : 0); }
inline data_t decimal(uint64_t bits) { return tagged(VLT_TAG_DECIMAL, bits); }

inline data_t integer(int64_t content) {
  return tagged(VLT_TAG_INTEGER, static_cast<uint64_t>(content));
}

inline data_t real(double content) {
  data_t value = tagged(VLT_TAG_DOUBLE);
  value.value.real = content;
  return value;
}

inline data_t borrowed(const char* text) {
  data_t value = tagged(VLT_TAG_BORROWED_STRING);
  value.value.string = text;
  return value;
}

inline data_t string(const char* text) {
  data_t value = tagged(VLT_TAG_STRING);
  value.value.string = vlt_copy_string(text);
  return value;
}

inline data_t list(std::initializer_list<data_t> elements) {
  const auto count = static_cast<int64_t>(elements.size());
  data_t value = tagged(VLT_TAG_LIST);
  value.value.list = standin_make_list(count, count);
  int64_t i = 0;
  for (const data_t& element : elements) elementsOf(value.value.list)[i++] = element;
  return value;
}

inline data_t buffer(std::string_view bytes) {
  data_t value = tagged(VLT_TAG_BUFFER);
  value.value.buffer = standin_make_buffer(static_cast<uint32_t>(bytes.size()));
  std::memcpy(bytesOf(value.value.buffer), bytes.data(), bytes.size());
  return value;
}

inline data_t custom(uint64_t label) {
  data_t value = tagged(VLT_TAG_CUSTOM);
  value.value.custom = standin_make_custom(label);
  return value;
}

// A table with each entry in the slot that it names.
struct placed_t {
  int64_t slot;
  uint64_t hash;
  data_t key;
  data_t value;
};

inline table_t* tableOf(int64_t capacity, std::initializer_list<placed_t> entries) {
  table_t* made = vlt_allocate_map(capacity);
  for (const placed_t& entry : entries) {
    slotsOf(made)[entry.slot] = {entry.hash, entry.key, entry.value};
    ++made->live;
  }
  return made;
}

// A deleted slot, as erasing leaves it.
inline void markDeleted(table_t* changed, int64_t slot) {
  slotsOf(changed)[slot] = {DELETED_HASH, empty(), empty()};
  ++changed->deleted;
}

inline data_t map(table_t* content) {
  data_t value = tagged(VLT_TAG_MAP);
  value.value.map = content;
  return value;
}

inline void freeData(const data_t& value) {
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

// Frees its value at the end of the scope.
struct Held {
  explicit Held(const data_t& held) : value(held) {}
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() { freeData(value); }

  data_t value;
};

inline std::string rendered(const data_t& value) {
  const Held text(vlt_data_to_string(&value));
  return text.value.value.string == nullptr ? "(null text)" : text.value.value.string;
}

inline std::string renderedAndFreed(const data_t& value) {
  const Held held(value);
  return rendered(value);
}

// A test must free all its blocks before it ends.
class Blocks : public testing::Test {
 protected:
  void TearDown() override {
    standin_fail_allocation(0);
    EXPECT_EQ(standin_live_blocks_total(), before_) << "blocks made by this test are still live";
  }

 private:
  const int64_t before_ = standin_live_blocks_total();
};

// Runs `body` with the 1st allocation refused, then the 2nd, until none is. Returns how many runs
// saw a refusal, which is the number of allocations that a full run makes.
template <typename Body>
int failEach(Body body) {
  for (uint64_t n = 1;; ++n) {
    standin_fail_allocation(n);
    body();
    standin_fail_allocation(0);
    if (standin_failed_allocations() == 0) return static_cast<int>(n - 1);
  }
}

} // namespace standin::test

#endif

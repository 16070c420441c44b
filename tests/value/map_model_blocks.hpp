// The model's values as the host's blocks: made from scratch, and compared with the value layer's
// results, byte for byte, without a call into that layer.
#ifndef VLT_TESTS_VALUE_MAP_MODEL_BLOCKS_HPP
#define VLT_TESTS_VALUE_MAP_MODEL_BLOCKS_HPP

#include <set>
#include <string>

#include "standin/standin.h"
#include "tests/value/map_model.hpp"

namespace com::velanto::connectivity::test::model {

// The strings that borrowed values borrow. A program that makes many of them clears the set when no
// value is left that borrows one.
inline std::set<std::string>& lasting_texts() {
  static std::set<std::string> texts;
  return texts;
}

// A string that outlives every value that borrows it.
inline const char* lasting(const std::string& text) {
  return lasting_texts().insert(text).first->c_str();
}

// ---- making blocks; the caller owns the result

inline vlt_underlying_data_t block_of(const value_t& value);

inline vlt_underlying_map_table_t* block_of(const table_t& table) {
  if (!table.exists) return nullptr;
  auto* const block = vlt_allocate_map(static_cast<std::int64_t>(table.slots.size()));
  block->live = table.live;
  block->deleted = table.deleted;
  auto* slot = reinterpret_cast<vlt_underlying_map_table_entry_t*>(block + 1);
  for (const slot_t& from : table.slots) {
    *slot++ = {from.hash, block_of(from.key), block_of(from.value)};
  }
  return block;
}

inline vlt_underlying_vector_t* block_of(const std::vector<value_t>& elements) {
  const auto count = static_cast<std::int64_t>(elements.size());
  vlt_underlying_vector_t* const block = standin_make_list(count, count);
  auto* element = reinterpret_cast<vlt_underlying_data_t*>(block + 1);
  for (const value_t& from : elements) *element++ = block_of(from);
  return block;
}

inline vlt_underlying_buffer_t* buffer_block_of(const std::string& bytes) {
  auto* const block = standin_make_buffer(static_cast<std::uint32_t>(bytes.size()));
  std::memcpy(block + 1, bytes.data(), bytes.size());
  return block;
}

inline vlt_underlying_data_t block_of(const value_t& value) {
  vlt_underlying_data_t result{};
  result.tag = value.tag;
  if (value.null) return result;
  switch (value.tag) {
    case VLT_TAG_STRING:
      result.value.string = vlt_copy_string(value.text.c_str());
      break;
    case VLT_TAG_BORROWED_STRING:
      result.value.string = lasting(value.text);
      break;
    case VLT_TAG_LIST:
      result.value.list = block_of(value.elements);
      break;
    case VLT_TAG_MAP:
      result.value.map = block_of(value.table);
      break;
    case VLT_TAG_BUFFER:
      result.value.buffer = buffer_block_of(value.text);
      break;
    case VLT_TAG_CUSTOM:
      result.value.custom = standin_make_custom(value.bits);
      break;
    default:
      std::memcpy(&result.value, &value.bits, sizeof value.bits);
  }
  return result;
}

// ---- comparing; the result says where the block differs from the model, or is empty

using difference_t = std::string;

template <class Number>
difference_t differing(const char* what, Number actual, Number expected) {
  if (actual == expected) return {};
  return std::string(what) + " is " + std::to_string(actual) + " instead of " +
         std::to_string(expected);
}

inline difference_t at_place(const std::string& place, const difference_t& difference) {
  return difference.empty() ? difference : place + ": " + difference;
}

inline difference_t difference(const vlt_underlying_data_t& actual, const value_t& expected);

inline difference_t difference(const vlt_underlying_map_table_entry_t& actual,
                               const slot_t& expected) {
  if (auto d = differing("the hash", actual.hash, expected.hash); !d.empty()) return d;
  const difference_t d = at_place("key", difference(actual.key, expected.key));
  return d.empty() ? at_place("value", difference(actual.value, expected.value)) : d;
}

inline difference_t difference(const vlt_underlying_map_table_t* actual, const table_t& expected) {
  if (actual == nullptr || !expected.exists) {
    return differing("whether there is a table", actual != nullptr, expected.exists);
  }
  const auto capacity = static_cast<std::int64_t>(expected.slots.size());
  if (auto d = differing("the capacity", actual->capacity, capacity); !d.empty()) return d;
  if (auto d = differing("the live count", actual->live, expected.live); !d.empty()) return d;
  if (auto d = differing("the deleted count", actual->deleted, expected.deleted); !d.empty()) {
    return d;
  }
  const auto* slots = reinterpret_cast<const vlt_underlying_map_table_entry_t*>(actual + 1);
  for (std::size_t i = 0; i < expected.slots.size(); ++i) {
    const difference_t d = difference(slots[i], expected.slots[i]);
    if (!d.empty()) return "slot " + std::to_string(i) + ": " + d;
  }
  return {};
}

inline difference_t difference(const vlt_underlying_vector_t* actual,
                               const std::vector<value_t>& expected) {
  const auto count = static_cast<std::int64_t>(expected.size());
  if (auto d = differing("the count", actual->count, count); !d.empty()) return d;
  const auto* elements = reinterpret_cast<const vlt_underlying_data_t*>(actual + 1);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const difference_t d = difference(elements[i], expected[i]);
    if (!d.empty()) return "element " + std::to_string(i) + ": " + d;
  }
  return {};
}

inline difference_t difference_of_texts(const std::string& actual, const std::string& expected) {
  if (actual == expected) return {};
  return "the text is \"" + actual + "\" instead of \"" + expected + '"';
}

inline difference_t difference(const vlt_underlying_data_t& actual, const value_t& expected) {
  if (auto d = differing("the tag", actual.tag, expected.tag); !d.empty()) return d;
  std::uint64_t bits = 0;
  std::memcpy(&bits, &actual.value, sizeof bits);
  const bool has_pointer = actual.tag >= VLT_TAG_STRING && actual.tag <= VLT_TAG_BORROWED_STRING;
  if (has_pointer && actual.tag != VLT_TAG_MAP && (bits == 0 || expected.null)) {
    return differing("whether the block is null", bits == 0, expected.null);
  }
  switch (actual.tag) {
    case VLT_TAG_STRING:
      return difference_of_texts(actual.value.string, expected.text);
    case VLT_TAG_BORROWED_STRING:
      return differing("whether the text is the lender's",
                       actual.value.string == lasting(expected.text), true);
    case VLT_TAG_LIST:
      return difference(actual.value.list, expected.elements);
    case VLT_TAG_MAP:
      return difference(actual.value.map, expected.table);
    case VLT_TAG_BUFFER:
      return difference_of_texts(std::string(reinterpret_cast<const char*>(actual.value.buffer + 1),
                                             actual.value.buffer->length),
                                 expected.text);
    case VLT_TAG_CUSTOM:
      return differing("the label", standin_custom_label(actual.value.custom), expected.bits);
    default:
      return differing("the content", bits, expected.bits);
  }
}

} // namespace com::velanto::connectivity::test::model

#endif

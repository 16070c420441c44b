// Bytes read as numbers, keys and values: any sequence of bytes is a valid input, with zeros after
// its end. Values are the model's, so their reader knows the real ones.
//
//   key     byte: mostly a string or an integer out of a chosen number of different ones, so that
//           keys come up again; otherwise any value
//   value   byte: kind, and whether its block is null; then the content; containers hold few values
#ifndef VLT_TESTS_VALUE_MAP_PROGRAM_HPP
#define VLT_TESTS_VALUE_MAP_PROGRAM_HPP

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "tests/value/map_model.hpp"

namespace com::velanto::connectivity::test::model {

class MapProgram {
 public:
  explicit MapProgram(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  [[nodiscard]] bool at_end() const { return bytes_.empty(); }

  std::uint8_t byte() {
    if (bytes_.empty()) return 0;
    const std::uint8_t first = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return first;
  }

  // Few keys make tables of deleted slots and re-insertions, many make them grow.
  void choose_keys() {
    static constexpr std::array<unsigned, 4> COUNTS = {6, 20, 90, 600};
    key_count_ = COUNTS[byte() % COUNTS.size()];
  }

  value_t key() {
    const unsigned kind = byte();
    if (kind < 130) return text(VLT_TAG_STRING, "key " + std::to_string(one_of_the_keys()));
    if (kind < 230) return scalar(VLT_TAG_INTEGER, one_of_the_keys());
    if (kind < 240)
      return text(VLT_TAG_BORROWED_STRING, "key " + std::to_string(one_of_the_keys()));
    return value();
  }

  value_t value(int depth = 0) {
    const unsigned choice = byte();
    const unsigned tag = choice % 12;
    const bool is_null = choice >= 12 * 20; // 16 of 256
    value_t result = of(tag == 11 ? 11 + byte() : tag, depth, is_null);
    result.null = is_null && tag >= VLT_TAG_STRING && tag <= VLT_TAG_BORROWED_STRING;
    return result;
  }

 private:
  static value_t scalar(std::uint32_t tag, std::uint64_t bits) {
    value_t result;
    result.tag = tag;
    result.bits = bits;
    return result;
  }
  static value_t text(std::uint32_t tag, std::string content) {
    value_t result;
    result.tag = tag;
    result.text = std::move(content);
    return result;
  }

  unsigned one_of_the_keys() {
    const unsigned high = byte();
    return (high * 256 + byte()) % key_count_;
  }

  // One, another, a zero of each sign, a NaN and large ones: bits that differ in meaning by kind.
  std::uint64_t bits() {
    static constexpr std::array<std::uint64_t, 8> BITS = {
        0,          1,          0x8000000000000000, 0x3ff0000000000000, 0x7ff8000000000000,
        UINT64_MAX, 0xc0ffee11, 0x7fffffffffffffff};
    return BITS[byte() % BITS.size()];
  }

  // Up to 19 bytes: no block of the hash, blocks only, and tails.
  std::string content() {
    std::string result;
    for (unsigned left = byte() % 20; left > 0; --left) {
      result += static_cast<char>('a' + byte() % 3);
    }
    return result;
  }

  value_t of(unsigned tag, int depth, bool is_null) {
    switch (tag) {
      case VLT_TAG_EMPTY:
        return {};
      case VLT_TAG_BOOLEAN:
        return scalar(tag, byte() % 2);
      case VLT_TAG_STRING:
      case VLT_TAG_BORROWED_STRING:
      case VLT_TAG_BUFFER:
        return text(tag, is_null ? "" : content());
      case VLT_TAG_LIST:
        return list(is_null ? 0 : fewer(depth), depth);
      case VLT_TAG_MAP:
        return map(is_null ? 0 : fewer(depth), depth, is_null);
      case VLT_TAG_CUSTOM:
        return scalar(tag, is_null ? 0 : 1 + byte() % 4);
      default: // double, integer, decimal, unknown
        return scalar(tag, bits());
    }
  }

  // How many values a container holds: none from the second level on.
  unsigned fewer(int depth) { return depth < 2 ? byte() % (4U >> depth) : 0; }

  value_t list(unsigned count, int depth) {
    value_t result;
    result.tag = VLT_TAG_LIST;
    for (; count > 0; --count) result.elements.push_back(value(depth + 1));
    return result;
  }

  // A map with a table unless null; one of its entries may be erased again.
  value_t map(unsigned count, int depth, bool is_null) {
    value_t result;
    result.tag = VLT_TAG_MAP;
    if (is_null) return result;
    make_room(result.table);
    for (; count > 0; --count) {
      const value_t name =
          text(VLT_TAG_STRING, std::string(1, static_cast<char>('a' + byte() % 5)));
      const hash_t hash = hash_of(name, FIXED_SEED);
      const insertion_t made = insert(result.table, *hash, name, value(depth + 1));
      if (byte() % 4 == 0) erase(result.table, made.slot);
    }
    return result;
  }

  std::span<const std::uint8_t> bytes_;
  unsigned key_count_ = 1;
};

} // namespace com::velanto::connectivity::test::model

#endif

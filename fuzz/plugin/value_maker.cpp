#include "fuzz/plugin/value_maker.hpp"

#include <array>

#include "fuzz/plugin/samples.hpp"

namespace com::velanto::connectivity::fuzz {

namespace {

constexpr unsigned KINDS_OF_VALUE = 12; // eleven that have a number, and the tags of a newer host
constexpr unsigned NULL_FROM = 240;
constexpr int MAX_DEPTH = 3;

} // namespace

std::uint8_t ValueMaker::byte() {
  if (bytes_.empty()) return 0;
  const std::uint8_t first = bytes_.front();
  bytes_ = bytes_.subspan(1);
  return first;
}

std::size_t ValueMaker::below(std::size_t limit) {
  if (limit == 0) return 0;
  std::size_t number = byte();
  if (limit > 256) number = number * 256 + byte();
  return number % limit;
}

std::string ValueMaker::text() {
  const unsigned choice = byte();
  if (choice < 200) return samples().words[below(samples().words.size())];
  std::string result;
  for (unsigned left = choice % 32; left > 0; --left) {
    const std::uint8_t character = byte();
    if (character != 0) result += static_cast<char>(character);
  }
  return result;
}

model::value_t ValueMaker::key(int depth) {
  const unsigned choice = byte();
  if (choice >= 230) return value(depth + 1);
  model::value_t result = fuzz::text(text());
  if (choice >= 200) result.tag = VLT_TAG_BORROWED_STRING;
  return result;
}

model::value_t ValueMaker::value(int depth) {
  const unsigned choice = byte();
  model::value_t result = content(choice % KINDS_OF_VALUE, depth);
  if (choice < NULL_FROM) return result;
  // An empty block of the same kind; a number is a zero.
  model::value_t null = of(result.tag, 0);
  null.null = result.tag >= VLT_TAG_STRING && result.tag <= VLT_TAG_BORROWED_STRING &&
              result.tag != VLT_TAG_MAP;
  return null;
}

model::value_t ValueMaker::of(std::uint32_t tag, std::uint64_t bits) {
  model::value_t result;
  result.tag = tag;
  result.bits = bits;
  return result;
}

// One, a zero of each sign, a NaN, an infinity and large ones.
std::uint64_t ValueMaker::bits() {
  static constexpr std::array<std::uint64_t, 8> BITS = {1,
                                                        0,
                                                        0x8000000000000000,
                                                        0x3ff0000000000000,
                                                        0x7ff8000000000000,
                                                        UINT64_MAX,
                                                        0x7ff0000000000000,
                                                        0x7fffffffffffffff};
  return BITS[below(BITS.size())];
}

model::value_t ValueMaker::content(unsigned tag, int depth) {
  switch (tag) {
    case VLT_TAG_EMPTY:
      return {};
    case VLT_TAG_BOOLEAN:
      return of(tag, below(3)); // a host may write other bits than 0 and 1
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
    case VLT_TAG_BUFFER: {
      model::value_t result = fuzz::text(text());
      result.tag = tag;
      return result;
    }
    case VLT_TAG_LIST:
      return list(depth);
    case VLT_TAG_MAP:
      return map(depth);
    case VLT_TAG_CUSTOM:
      return of(tag, 1 + below(4));
    case KINDS_OF_VALUE - 1:
      return of(byte() % 2 == 0 ? 11 : UINT32_MAX, bits());
    default: // double, integer, decimal
      return of(tag, bits());
  }
}

model::value_t ValueMaker::list(int depth) {
  model::value_t result = of(VLT_TAG_LIST, 0);
  for (std::size_t left = depth < MAX_DEPTH ? below(4) : 0; left > 0; --left) {
    result.elements.push_back(value(depth + 1));
  }
  return result;
}

model::value_t ValueMaker::map(int depth) {
  model::value_t result = of(VLT_TAG_MAP, 0);
  result.table.exists = true;
  for (std::size_t left = depth < MAX_DEPTH ? below(4) : 0; left > 0; --left) {
    const model::value_t name = key(depth);
    put(result.table, name, value(depth + 1));
  }
  if (byte() % 2 == 0) chooseCapacity(result.table);
  return result;
}

void ValueMaker::chooseCapacity(model::table_t& table) {
  table.exists = true;
  const std::size_t capacity = static_cast<std::size_t>(table.live) + below(9);
  if (capacity != 0) {
    model::rebuild(table, capacity);
  } else {
    table.slots.clear();
    table.deleted = 0;
  }
}

} // namespace com::velanto::connectivity::fuzz

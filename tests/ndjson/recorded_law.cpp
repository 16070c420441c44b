#include "tests/ndjson/recorded_law.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <list>
#include <string_view>
#include <utility>

#include "ndjson/json_reader.hpp"
#include "ndjson/kept_texts.hpp"
#include "ndjson/recorded_writer.hpp"
#include "standin/standin.h"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::test {

namespace {

// Takes bytes apart into values.
class ByteReader {
 public:
  explicit ByteReader(std::span<const std::uint8_t> bytes) noexcept : bytes_(bytes) {}

  data_t value(int depth, bool may_be_custom = true);
  map_t map(int depth, bool may_be_custom = true);

 private:
  static constexpr int MAX_DEPTH = 5;

  std::uint8_t byte() {
    if (bytes_.empty()) return 0;
    const std::uint8_t first = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return first;
  }
  std::uint64_t bits();
  std::string text();
  data_t content(std::uint32_t tag, int depth, bool may_be_custom);
  list_t list(int depth, bool may_be_custom);

  std::span<const std::uint8_t> bytes_;
};

data_t adopt(std::uint32_t tag, std::uint64_t bits) {
  vlt_underlying_data_t raw{};
  std::memcpy(&raw.value, &bits, sizeof bits);
  raw.tag = tag;
  return data_t::adopt(raw);
}

std::uint64_t ByteReader::bits() {
  static constexpr std::array<std::uint64_t, 8> ODD = {
      0,           1,    1ULL << 63U, 0x3ff0000000000000, 0x7ff8000000000001, 0xfff0000000000000,
      ~0ULL >> 1U, ~0ULL};
  const std::uint8_t choice = byte();
  if (choice < 128) return ODD[choice % ODD.size()];
  std::uint64_t result = 0;
  for (int i = 0; i < 8; ++i) result = result << 8U | byte();
  return result;
}

std::string ByteReader::text() {
  static constexpr std::array<std::string_view, 16> PARTS = {"a",
                                                             "$",
                                                             "\"",
                                                             "\\",
                                                             "\n",
                                                             "\x01",
                                                             "/",
                                                             "é",
                                                             "€",
                                                             "😀",
                                                             "\xff",
                                                             "\x80",
                                                             "\xed\xa0\x80",
                                                             "\x7f",
                                                             "recorded",
                                                             "a text of more than sixteen bytes"};
  std::string result;
  for (int left = byte() % 8; left > 0; --left) {
    const std::uint8_t choice = byte();
    if (choice < 128) {
      result += PARTS[choice % PARTS.size()];
    } else {
      result += static_cast<char>(choice);
    }
  }
  return result;
}

data_t ByteReader::value(int depth, bool may_be_custom) {
  const std::uint8_t choice = byte();
  const std::uint32_t tag = choice % 13;
  const bool is_null = choice >= 240 && tag >= VLT_TAG_STRING;
  if (tag > VLT_TAG_BORROWED_STRING) return adopt(tag == 11 ? 11 : UINT32_MAX, bits());
  if (tag == VLT_TAG_CUSTOM && !may_be_custom) return {};
  return is_null ? adopt(tag, 0) : content(tag, depth, may_be_custom);
}

data_t ByteReader::content(std::uint32_t tag, int depth, bool may_be_custom) {
  switch (tag) {
    case VLT_TAG_EMPTY:
      return {};
    case VLT_TAG_BOOLEAN:
      return adopt(tag, byte() % 3); // a host may write other bits than 0 and 1
    case VLT_TAG_STRING:
      return data_t(text().c_str());
    case VLT_TAG_BORROWED_STRING:
      return adopt(tag, reinterpret_cast<std::uintptr_t>(keepText(text())));
    case VLT_TAG_LIST:
      return depth == MAX_DEPTH ? data_t(list_t()) : list(depth + 1, may_be_custom);
    case VLT_TAG_MAP:
      return depth == MAX_DEPTH ? data_t(map_t()) : map(depth + 1, may_be_custom);
    case VLT_TAG_BUFFER: {
      const std::string bytes = text() + '\0' + text();
      vlt_underlying_buffer_t* const block =
          standin_make_buffer(static_cast<std::uint32_t>(bytes.size()));
      std::memcpy(block + 1, bytes.data(), bytes.size());
      return buffer_t(block);
    }
    case VLT_TAG_CUSTOM:
      return adopt(tag, reinterpret_cast<std::uintptr_t>(standin_make_custom(1).object));
    default:
      return adopt(tag, bits());
  }
}

list_t ByteReader::list(int depth, bool may_be_custom) {
  const std::int64_t size = byte() % 4;
  list_t result(standin_make_list(size, size));
  for (data_t& element : result) element = value(depth, may_be_custom);
  return result;
}

// Mostly with strings as keys; a key's content has a hash, which a custom object lacks.
map_t ByteReader::map(int depth, bool may_be_custom) {
  map_t result;
  for (int left = byte() % 5; left > 0; --left) {
    data_t key = byte() < 200 ? data_t(text().c_str()) : value(depth, false);
    const std::uint8_t choice = byte();
    if (key.empty()) {
      result.maybe_insert(map_t::const_pair(key, data_t()));
    } else {
      const auto entry = result.insert(std::move(key), value(depth, may_be_custom)).first;
      if (choice < 20) result.erase(entry);
    }
  }
  return result;
}

bool isSameText(const char* recorded, const char* read) {
  if (recorded == nullptr || read == nullptr) return recorded == read;
  return std::strcmp(recorded, read) == 0;
}

} // namespace

Message messageFrom(std::span<const std::uint8_t> bytes) {
  ByteReader reader(bytes);
  map_t metadata = reader.map(0);
  return Message(reader.value(0), std::move(metadata));
}

std::string recordedLine(const Message& message) {
  static RecordedWriter writer;
  static std::string memory(1U << 20U, '\0');
  const char* const end = writer.write(message, memory.data(), memory.data() + memory.size());
  if (end == nullptr) return "";
  return REMARK + memory.substr(0, static_cast<std::size_t>(end - memory.data())) + "}";
}

bool isReadBack(const data_t& recorded, const data_t& read) {
  const std::uint32_t tag = recorded.type_tag();
  if (tag == VLT_TAG_CUSTOM) return read.empty();
  if (tag != read.type_tag()) return false;
  const vlt_underlying_content_t& before = recorded.underlying()->value;
  const vlt_underlying_content_t& after = read.underlying()->value;
  switch (tag) {
    case VLT_TAG_EMPTY:
      return true;
    case VLT_TAG_BOOLEAN:
      return reinterpret_cast<const unsigned char&>(before) ==
             reinterpret_cast<const unsigned char&>(after);
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      return isSameText(before.string, after.string);
    case VLT_TAG_LIST: {
      const auto elements = elements_of(before.list);
      return std::ranges::equal(elements, elements_of(after.list),
                                [](const auto& a, const auto& b) { return isReadBack(a, b); });
    }
    case VLT_TAG_MAP:
      return isReadBack(recorded.get<map_t>(), read.get<map_t>());
    case VLT_TAG_BUFFER:
      return recorded == read;
    default:
      return before.decimal.bits == after.decimal.bits;
  }
}

// Pairs each entry with one of its own: keys that equal nothing may come twice.
bool isReadBack(const map_t& recorded, const map_t& read) {
  std::list<map_t::const_pair> left(read.begin(), read.end());
  for (const auto& entry : recorded) {
    const auto pair = std::find_if(left.begin(), left.end(), [&](const auto& other) {
      return isReadBack(entry.first, other.first) && isReadBack(entry.second, other.second);
    });
    if (pair == left.end()) return false;
    left.erase(pair);
  }
  return left.empty();
}

bool isReadBack(const Message& message) {
  static JsonReader reader;
  const Message read = reader.parseMessage(recordedLine(message));
  return isReadBack(message.getPayload(), read.getPayload()) &&
         isReadBack(message.getMetadataMap(), read.getMetadataMap());
}

} // namespace com::velanto::connectivity::test

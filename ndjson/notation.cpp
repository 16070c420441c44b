#include "ndjson/notation.hpp"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "ndjson/json_reader.hpp"
#include "ndjson/json_writer.hpp"
#include "ndjson/kept_texts.hpp"
#include "ndjson/make_blocks.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity {

namespace {

using parts_t = std::vector<data_t>;

// ---- parts; nothing when they are something else

std::optional<std::string_view> textIn(const data_t& part) {
  if (part.type_tag() != VLT_TAG_STRING) return std::nullopt;
  const char* const text = part.get<const char*>();
  return text == nullptr ? std::nullopt : std::optional<std::string_view>(text);
}

std::optional<std::uint64_t> bitsIn(const data_t& part) {
  const auto digits = textIn(part);
  std::uint64_t bits = 0;
  if (!digits || digits->size() != 16) return std::nullopt;
  const std::from_chars_result end = std::from_chars(digits->begin(), digits->end(), bits, 16);
  return end.ptr == digits->end() ? std::optional(bits) : std::nullopt;
}

// The 6 bits of a digit of base64.
std::optional<std::uint32_t> sextetOf(char digit) {
  constexpr std::string_view DIGITS =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t value = DIGITS.find(digit);
  if (value == std::string_view::npos) return std::nullopt;
  return static_cast<std::uint32_t>(value);
}

// Of base64 with padding; nothing else may be in the text, not even white space.
std::optional<std::string> bytesIn(const data_t& part) {
  const auto text = textIn(part);
  if (!text || text->size() % 4 != 0) return std::nullopt;
  const std::size_t padding = text->ends_with("==") ? 2 : text->ends_with('=') ? 1 : 0;
  std::string bytes;
  std::uint32_t group = 0;
  for (std::size_t i = 0; i < text->size(); ++i) {
    const auto sextet = i < text->size() - padding ? sextetOf((*text)[i]) : 0;
    if (!sextet) return std::nullopt;
    group = group << 6U | *sextet;
    if (i % 4 != 3) continue;
    for (const unsigned shift : {16U, 8U, 0U}) bytes += static_cast<char>(group >> shift & 0xFFU);
  }
  bytes.resize(bytes.size() - padding);
  return bytes;
}

// ---- values

data_t valueOf(std::uint32_t tag, std::uint64_t bits) {
  vlt_underlying_data_t content{};
  std::memcpy(&content.value, &bits, sizeof bits);
  content.tag = tag;
  return data_t::adopt(content);
}

data_t borrowedText(const std::string& text) {
  return valueOf(VLT_TAG_BORROWED_STRING, reinterpret_cast<std::uintptr_t>(keepText(text)));
}

// Inserts; a host's table may also have an empty key, which only a copying insertion accepts.
void insertPair(map_t& map, data_t&& key, data_t&& value) {
  const auto [entry, is_new] = key.empty() ? map.maybe_insert(map_t::const_pair(key, data_t()))
                                           : map.insert(std::move(key), data_t());
  // A refused insertion leaves its arguments alone.
  // NOLINTNEXTLINE(bugprone-use-after-move)
  if (!is_new) throw MalformedJson("repeated key " + toJson(key));
  (*entry).second = std::move(value);
}

// ---- one function for each kind: the value, or nothing when the content is wrong

using value_t = std::optional<data_t>;

value_t readDecimal(parts_t& content) {
  const auto bits = bitsIn(content[0]);
  return bits ? value_t(vlt_underlying_decimal_t{*bits}) : std::nullopt;
}

value_t readBits(parts_t& content) {
  const auto bits = bitsIn(content[0]);
  return bits ? value_t(valueOf(VLT_TAG_DOUBLE, *bits)) : std::nullopt;
}

value_t readBuffer(parts_t& content) {
  const auto bytes = bytesIn(content[0]);
  return bytes ? value_t(makeBuffer(*bytes)) : std::nullopt;
}

value_t readNothing(parts_t&) { return data_t(); }

value_t readNullText(parts_t& content) {
  return content[0].empty() ? value_t(valueOf(VLT_TAG_STRING, 0)) : std::nullopt;
}

value_t readBorrowed(parts_t& content) {
  if (content[0].empty()) return valueOf(VLT_TAG_BORROWED_STRING, 0);
  const auto text = textIn(content[0]);
  return text ? value_t(borrowedText(std::string(*text))) : std::nullopt;
}

std::optional<std::string> textBytesIn(const data_t& part) {
  auto bytes = bytesIn(part);
  return bytes && bytes->find('\0') == std::string::npos ? bytes : std::nullopt;
}

value_t readBytes(parts_t& content) {
  const auto bytes = textBytesIn(content[0]);
  return bytes ? value_t(data_t(bytes->c_str())) : std::nullopt;
}

value_t readBorrowedBytes(parts_t& content) {
  const auto bytes = textBytesIn(content[0]);
  return bytes ? value_t(borrowedText(*bytes)) : std::nullopt;
}

value_t readBoolean(parts_t& content) {
  const std::int64_t* const byte = content[0].get_if<std::int64_t>();
  if (byte == nullptr || *byte < 0 || *byte > 255) return std::nullopt;
  return valueOf(VLT_TAG_BOOLEAN, static_cast<std::uint64_t>(*byte));
}

value_t readTag(parts_t& content) {
  const std::int64_t* const tag = content[0].get_if<std::int64_t>();
  const auto bits = bitsIn(content[1]);
  if (tag == nullptr || *tag <= VLT_TAG_BORROWED_STRING || *tag > UINT32_MAX || !bits) {
    return std::nullopt;
  }
  return valueOf(static_cast<std::uint32_t>(*tag), *bits);
}

value_t readPairs(parts_t& content) {
  if (content.size() % 2 == 0 || content[0].type_tag() != VLT_TAG_LIST) return std::nullopt;
  map_t map;
  for (std::size_t i = 1; i < content.size(); i += 2) {
    insertPair(map, std::move(content[i]), std::move(content[i + 1]));
  }
  return map;
}

constexpr std::size_t ANY = SIZE_MAX;

struct kind_t {
  std::string_view name;
  std::size_t size; // parts after the name, or ANY
  value_t (*read)(parts_t& content);
  const char* needs;
};

constexpr std::array KINDS = {
    kind_t{"boolean", 1, readBoolean, "an integer from 0 to 255"},
    kind_t{"decimal", 1, readDecimal, "16 hexadecimal digits"},
    kind_t{"buffer", 1, readBuffer, "base64"},
    kind_t{"custom", 0, readNothing, "no content"},
    kind_t{"borrowed", 1, readBorrowed, "a string or null"},
    kind_t{"string", 1, readNullText, "null"},
    kind_t{"bytes", 1, readBytes, "base64 without a NUL"},
    kind_t{"borrowed-bytes", 1, readBorrowedBytes, "base64 without a NUL"},
    kind_t{"double", 1, readBits, "16 hexadecimal digits"},
    kind_t{"tag", 2, readTag, "a tag above 10 and 16 hexadecimal digits"},
    kind_t{"map", ANY, readPairs, "a list of pairs [key, value]"}};

} // namespace

data_t valueOfNotation(parts_t&& parts) {
  const auto name = parts.empty() ? std::nullopt : textIn(parts[0]);
  if (!name) throw MalformedJson(R"({"$":[…]} needs the name of a kind)");
  for (const kind_t& kind : KINDS) {
    if (kind.name != *name) continue;
    const std::string begin = R"({"$":[")" + std::string(kind.name) + "\"";
    parts.erase(parts.begin());
    const bool fits = kind.size == ANY || parts.size() == kind.size;
    value_t value = fits ? kind.read(parts) : std::nullopt;
    if (value) return std::move(*value);
    throw MalformedJson(begin + "…]} needs " + kind.needs);
  }
  throw MalformedJson(R"({"$":[…]} has an unknown kind )" + toJson(parts[0]));
}

} // namespace com::velanto::connectivity

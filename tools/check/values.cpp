#include "tools/check/values.hpp"

#include <cstring>
#include <new>
#include <optional>
#include <span>

#include "ndjson/json_reader.hpp"
#include "ndjson/json_writer.hpp"
#include "standin/standin.h"
#include "tools/check/comparison.hpp"
#include "tools/check/conformance/value_decoder.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

data_t adopted(std::uint32_t tag, vlt_underlying_content_t content) {
  vlt_underlying_data_t raw{};
  raw.value = content;
  raw.tag = tag;
  return data_t::adopt(raw);
}

// The tables and lists of a value are few and flat: recursion will do.
void appendBytes(std::string& bytes, const vlt_underlying_data_t& value) {
  bytes.append(reinterpret_cast<const char*>(&value), 12); // content and tag, not the padding
  if (value.tag == VLT_TAG_MAP && value.value.map != nullptr) {
    const vlt_underlying_map_table_t* const table = value.value.map;
    bytes.append(reinterpret_cast<const char*>(table), sizeof *table);
    const auto* const slots = reinterpret_cast<const vlt_underlying_map_table_entry_t*>(table + 1);
    for (const auto& slot : std::span(slots, static_cast<std::size_t>(table->capacity))) {
      bytes.append(reinterpret_cast<const char*>(&slot.hash), sizeof slot.hash);
      appendBytes(bytes, slot.key);
      appendBytes(bytes, slot.value);
    }
  } else if (value.tag == VLT_TAG_LIST && value.value.list != nullptr) {
    const vlt_underlying_vector_t* const list = value.value.list;
    bytes.append(reinterpret_cast<const char*>(list), sizeof *list);
    const auto* const elements = reinterpret_cast<const vlt_underlying_data_t*>(list + 1);
    for (const auto& element : std::span(elements, static_cast<std::size_t>(list->count))) {
      appendBytes(bytes, element);
    }
  } else if (value.tag == VLT_TAG_STRING && value.value.string != nullptr) {
    bytes.append(value.value.string).append(1, '\0');
  }
}

} // namespace

data_t value(std::string_view json) {
  thread_local JsonReader reader;
  return ValueDecoder().decode(reader.parseValue(json));
}

Message notification(const char* path, data_t&& payload) {
  map_t metadata;
  metadata[data_t("pulsarPath")] = data_t(path);
  return Message(std::move(payload), std::move(metadata));
}

Message notification(const char* path, std::string_view payload) {
  return notification(path, value(payload));
}

data_t borrowed(const char* text) {
  vlt_underlying_content_t content{};
  content.string = text;
  return adopted(VLT_TAG_BORROWED_STRING, content);
}

data_t bare(std::uint32_t tag) {
  vlt_underlying_content_t content; // empty braces would set the one byte of the first member
  content.custom = {};
  return adopted(tag, content);
}

data_t decimal(std::uint64_t bits) { return data_t(vlt_underlying_decimal_t{bits}); }

data_t buffer(std::string_view bytes) {
  vlt_underlying_content_t content{};
  content.buffer = standin_make_buffer(static_cast<std::uint32_t>(bytes.size()));
  if (content.buffer == nullptr) throw std::bad_alloc();
  std::memcpy(content.buffer + 1, bytes.data(), bytes.size());
  return adopted(VLT_TAG_BUFFER, content);
}

data_t custom(std::uint64_t label) {
  vlt_underlying_content_t content{};
  content.custom = standin_make_custom(label);
  if (content.custom.object == nullptr) throw std::bad_alloc();
  return adopted(VLT_TAG_CUSTOM, content);
}

void set(data_t& map, const char* key, data_t&& content) {
  map.get<map_t>()[data_t(key)] = std::move(content);
}

const data_t* find(const data_t& map, const char* key) {
  if (map.type_tag() != VLT_TAG_MAP) return nullptr;
  return map.get<map_t>().find_value(data_t(key));
}

std::string textAt(const data_t& map, const char* key) {
  const data_t* const found = find(map, key);
  return found == nullptr || !found->is_string() ? "" : text_or_empty(found->get<const char*>());
}

std::string textAt(const map_t& map, const char* key) {
  const data_t* const found = map.find_value(data_t(key));
  return found == nullptr || !found->is_string() ? "" : text_or_empty(found->get<const char*>());
}

std::string shown(const data_t& value) {
  std::string json;
  writeJson(json, value);
  return json;
}

std::string shown(const Message& message) {
  std::string json;
  writeJson(json, message);
  return json;
}

bool same(Trial& trial, const std::string& where, const data_t& expected, const data_t& actual) {
  const auto found = findMismatch(expected, actual, where);
  return !found || trial.holds(false, found->where, found->expected, found->actual);
}

std::string bytesOf(const data_t& value) {
  std::string bytes;
  appendBytes(bytes, *value.underlying());
  return bytes;
}

std::string bytesOf(const Message& message) {
  std::string bytes = bytesOf(message.getPayload());
  vlt_underlying_data_t metadata{};
  metadata.tag = VLT_TAG_MAP;
  metadata.value.map = const_cast<vlt_underlying_map_table_t*>(message.getMetadataMap().table());
  appendBytes(bytes, metadata);
  return bytes;
}

} // namespace com::velanto::connectivity::tools::check

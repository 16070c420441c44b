#include "fuzz/plugin/message_model.hpp"

#include <cstring>
#include <utility>

namespace com::velanto::connectivity::fuzz {

namespace {

constexpr std::uint64_t SOME_HASH = 7;

model::table_t tableOf(const vlt_underlying_map_table_t* table) {
  model::table_t result;
  if (table == nullptr) return result;
  result.exists = true;
  result.live = table->live;
  result.deleted = table->deleted;
  const auto* const slots = reinterpret_cast<const vlt_underlying_map_table_entry_t*>(table + 1);
  for (std::int64_t i = 0; i < table->capacity; ++i) {
    result.slots.push_back({slots[i].hash, modelOf(slots[i].key), modelOf(slots[i].value)});
  }
  return result;
}

void readContent(const vlt_underlying_data_t& value, model::value_t& result) {
  switch (value.tag) {
    case VLT_TAG_STRING:
    case VLT_TAG_BORROWED_STRING:
      result.text = value.value.string;
      break;
    case VLT_TAG_LIST: {
      const auto* const block = value.value.list;
      const auto* const elements = reinterpret_cast<const vlt_underlying_data_t*>(block + 1);
      for (std::int64_t i = 0; i < block->count; ++i) {
        result.elements.push_back(modelOf(elements[i]));
      }
      break;
    }
    case VLT_TAG_BUFFER: {
      const auto* const block = value.value.buffer;
      result.text.assign(reinterpret_cast<const char*>(block + 1), block->length);
      break;
    }
    case VLT_TAG_CUSTOM:
      result.bits = standin_custom_label(value.value.custom);
      break;
    default:
      break;
  }
}

} // namespace

model::value_t modelOf(const vlt_underlying_data_t& value) {
  model::value_t result;
  result.tag = value.tag;
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value.value, sizeof bits);
  if (value.tag < VLT_TAG_STRING || value.tag > VLT_TAG_BORROWED_STRING) {
    result.bits = bits;
  } else if (value.tag == VLT_TAG_MAP) {
    result.table = tableOf(value.value.map);
  } else if (bits == 0) {
    result.null = true;
  } else {
    readContent(value, result);
  }
  return result;
}

message_t modelOf(const vlt_underlying_message_t& message) {
  return {modelOf(message.payload), tableOf(message.metadata)};
}

vlt_underlying_message_t blockOf(const message_t& message) {
  return {model::block_of(message.payload), model::block_of(message.metadata)};
}

std::string difference(const vlt_underlying_message_t& actual, const message_t& expected) {
  std::string d = model::at_place("payload", model::difference(actual.payload, expected.payload));
  if (!d.empty()) return d;
  const bool has_none = actual.metadata == nullptr && !expected.metadata.exists;
  if (has_none) return {};
  return model::at_place("metadata", model::difference(actual.metadata, expected.metadata));
}

model::value_t text(const std::string& content) {
  model::value_t result;
  result.tag = VLT_TAG_STRING;
  result.text = content;
  return result;
}

bool isText(const model::value_t& value) {
  return value.tag == VLT_TAG_STRING || value.tag == VLT_TAG_BORROWED_STRING;
}

const model::value_t* find(const model::table_t& table, const std::string& key) {
  const model::value_t owned = text(key);
  const auto found = model::look_up(table, owned, *model::hash_of(owned, model::FIXED_SEED)).found;
  return found ? &table.slots[*found].value : nullptr;
}

void put(model::table_t& table, const model::value_t& key, model::value_t value) {
  const std::uint64_t hash = model::hash_of(key, model::FIXED_SEED).value_or(SOME_HASH);
  table.slots[model::insert(table, hash, key, {}).slot].value = std::move(value);
}

} // namespace com::velanto::connectivity::fuzz

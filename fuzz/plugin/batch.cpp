#include "fuzz/plugin/batch.hpp"

#include <algorithm>
#include <memory>

namespace com::velanto::connectivity::fuzz {

namespace {

void collect(const vlt_underlying_map_table_t* table, blocks_t& blocks);

void collect(const vlt_underlying_vector_t& list, blocks_t& blocks);

void collect(const vlt_underlying_data_t& value, blocks_t& blocks) {
  // All kinds with a block have its address in the content.
  const void* const block = value.value.string;
  if (value.tag < VLT_TAG_STRING || value.tag > VLT_TAG_CUSTOM || block == nullptr) return;
  if (value.tag == VLT_TAG_MAP) return collect(value.value.map, blocks);
  blocks.all.push_back(block);
  if (value.tag != VLT_TAG_STRING) blocks.uncopied.push_back(block);
  if (value.tag == VLT_TAG_LIST) collect(*value.value.list, blocks);
}

void collect(const vlt_underlying_vector_t& list, blocks_t& blocks) {
  const auto* const elements = reinterpret_cast<const vlt_underlying_data_t*>(&list + 1);
  for (std::int64_t i = 0; i < list.count; ++i) collect(elements[i], blocks);
}

void collect(const vlt_underlying_map_table_t* table, blocks_t& blocks) {
  if (table == nullptr) return;
  blocks.all.push_back(table);
  const auto* const slots = reinterpret_cast<const vlt_underlying_map_table_entry_t*>(table + 1);
  for (std::int64_t i = 0; i < table->capacity; ++i) {
    // The content of a slot without an entry means nothing.
    if (slots[i].hash <= 1 && slots[i].key.tag == VLT_TAG_EMPTY) continue;
    collect(slots[i].key, blocks);
    collect(slots[i].value, blocks);
  }
}

} // namespace

Batch::Batch(std::span<const message_t> messages) {
  for (const message_t& message : messages) messages_.push_back(blockOf(message));
}

Batch::~Batch() { std::destroy(begin(), end()); }

blocks_t Batch::blocks() const {
  blocks_t result;
  for (const vlt_underlying_message_t& message : messages_) {
    collect(message.payload, result);
    collect(message.metadata, result);
  }
  std::sort(result.all.begin(), result.all.end());
  std::sort(result.uncopied.begin(), result.uncopied.end());
  result.are_shared = std::adjacent_find(result.all.begin(), result.all.end()) != result.all.end();
  return result;
}

} // namespace com::velanto::connectivity::fuzz

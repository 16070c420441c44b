// Freeing: (1) a value's own block is released at once when it holds no further values, (2) lists
// and maps wait in a stack threaded through them, (3) each is taken off, its values are treated as
// in (1) and (2), and then its block is released.
#include "standin/free.hpp"

#include "standin/accounting.hpp"
#include "standin/blocks.hpp"
#include "standin/interface.hpp"
#include "standin/layout.hpp"
#include "standin/pending_blocks.hpp"

namespace standin {

namespace {

// The note is the number of elements or slots to visit.
using Pending = PendingBlocks<int64_t>;

void pushList(vlt_underlying_vector_t* list, Pending& pending) noexcept {
  if (list != nullptr) pending.push(Container(list), list->count);
}

void pushMap(vlt_underlying_map_table_t* table, Pending& pending) noexcept {
  if (table != nullptr) pending.push(Container(table), table->capacity);
}

void releaseOrPush(const vlt_underlying_data_t& value, Pending& pending) noexcept {
  switch (value.tag) {
    case VLT_TAG_STRING:
      return releaseString(const_cast<char*>(value.value.string));
    case VLT_TAG_LIST:
      return pushList(value.value.list, pending);
    case VLT_TAG_MAP:
      return pushMap(value.value.map, pending);
    case VLT_TAG_BUFFER:
      return releaseBuffer(value.value.buffer);
    case VLT_TAG_CUSTOM:
      return releaseCustom(value.value.custom.object);
    default:
      return; // numbers, borrowed strings and unknown kinds own nothing
  }
}

void releaseAll(Pending& pending) noexcept {
  while (!pending.empty()) {
    const Pending::item_t item = pending.pop();
    void* block = item.container.block();
    if (item.container.isMap()) {
      const slot_t* slots = slotsOf(static_cast<const vlt_underlying_map_table_t*>(block));
      for (int64_t i = 0; i < item.note; ++i) {
        if (!isLive(slots[i])) continue;
        releaseOrPush(slots[i].key, pending);
        releaseOrPush(slots[i].value, pending);
      }
      releaseMap(block);
    } else {
      const auto* elements = elementsOf(static_cast<const vlt_underlying_vector_t*>(block));
      for (int64_t i = 0; i < item.note; ++i) releaseOrPush(elements[i], pending);
      releaseList(block);
    }
  }
}

} // namespace

void freeValue(const vlt_underlying_data_t& value) noexcept {
  Pending pending;
  releaseOrPush(value, pending);
  releaseAll(pending);
}

} // namespace standin

using namespace standin;

void vlt_free_map(vlt_underlying_map_table_t* table) {
  countCall(STANDIN_FREE_MAP);
  Pending pending;
  pushMap(table, pending);
  releaseAll(pending);
}

void vlt_free_vector(vlt_underlying_vector_t* list_block) {
  countCall(STANDIN_FREE_VECTOR);
  Pending pending;
  pushList(list_block, pending);
  releaseAll(pending);
}

void vlt_free_string(char* text) {
  countCall(STANDIN_FREE_STRING);
  releaseString(text);
}

void vlt_free_buffer(vlt_underlying_buffer_t* buffer_block) {
  countCall(STANDIN_FREE_BUFFER);
  releaseBuffer(buffer_block);
}

void vlt_free_custom(vlt_underlying_custom_t custom) {
  countCall(STANDIN_FREE_CUSTOM);
  releaseCustom(custom.object);
}

// Freeing:
//
// (1) Release a value's own block at once when it holds no further values.
// (2) Put lists and maps on a stack threaded through them.
// (3) Pop each container, treat its values as in (1) and (2), and then release its block.
#include "standin/free.hpp"

#include "standin/accounting.hpp"
#include "standin/blocks.hpp"
#include "standin/interface.hpp"
#include "standin/layout.hpp"
#include "standin/pending_blocks.hpp"

namespace standin {

namespace {

// One call of freeing.
class Freeing {
 public:
  // Most values are strings, then maps. Tested in this order, since processors rarely foresee a
  // jump by table.
  void value(const vlt_underlying_data_t& value) noexcept {
    if (value.tag == VLT_TAG_STRING) {
      release_.block(STANDIN_BLOCK_STRING, value.value.string);
    } else if (value.tag == VLT_TAG_MAP) {
      map(value.value.map);
    } else if (value.tag == VLT_TAG_LIST) {
      list(value.value.list);
    } else if (value.tag == VLT_TAG_BUFFER) {
      release_.block(STANDIN_BLOCK_BUFFER, value.value.buffer);
    } else if (value.tag == VLT_TAG_CUSTOM) {
      release_.block(STANDIN_BLOCK_CUSTOM, value.value.custom.object);
    } // numbers, borrowed strings and unknown kinds own nothing
  }

  void list(vlt_underlying_vector_t* list) noexcept {
    if (list != nullptr) pending_.push(Container(list), list->count);
  }

  void map(vlt_underlying_map_table_t* table) noexcept {
    if (table != nullptr) pending_.push(Container(table), table->capacity);
  }

  // To be called last.
  void finish() noexcept {
    while (!pending_.empty()) {
      const Pending::item_t item = pending_.pop();
      void* block = item.container.block();
      if (item.container.isMap()) {
        const slot_t* slots = slotsOf(static_cast<const vlt_underlying_map_table_t*>(block));
        for (int64_t i = 0; i < item.note; ++i) {
          if (!isLive(slots[i])) continue;
          value(slots[i].key);
          value(slots[i].value);
        }
        release_.block(STANDIN_BLOCK_MAP, block);
      } else {
        const auto* elements = elementsOf(static_cast<const vlt_underlying_vector_t*>(block));
        for (int64_t i = 0; i < item.note; ++i) value(elements[i]);
        release_.block(STANDIN_BLOCK_LIST, block);
      }
    }
  }

 private:
  // The note is the number of elements or slots to visit.
  using Pending = PendingBlocks<int64_t>;

  Pending pending_;
  Release release_;
};

} // namespace

void freeValue(const vlt_underlying_data_t& value) noexcept {
  Freeing freeing;
  freeing.value(value);
  freeing.finish();
}

} // namespace standin

using namespace standin;

void vlt_free_map(vlt_underlying_map_table_t* table) {
  countCall(STANDIN_FREE_MAP);
  Freeing freeing;
  freeing.map(table);
  freeing.finish();
}

void vlt_free_vector(vlt_underlying_vector_t* list_block) {
  countCall(STANDIN_FREE_VECTOR);
  Freeing freeing;
  freeing.list(list_block);
  freeing.finish();
}

void vlt_free_string(char* text) {
  countCall(STANDIN_FREE_STRING);
  release(STANDIN_BLOCK_STRING, text);
}

void vlt_free_buffer(vlt_underlying_buffer_t* buffer_block) {
  countCall(STANDIN_FREE_BUFFER);
  release(STANDIN_BLOCK_BUFFER, buffer_block);
}

void vlt_free_custom(vlt_underlying_custom_t custom) {
  countCall(STANDIN_FREE_CUSTOM);
  release(STANDIN_BLOCK_CUSTOM, custom.object);
}

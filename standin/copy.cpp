// Deep copies:
//
// (1) Make the block of a copy when the walk reaches its value.
// (2) Put the empty copy of a list or map on a stack threaded through the copies. Its note is its
//     source.
// (3) Pop each copy and fill it, which may push further copies.
//
// When memory runs out, the copies on the stack become empty containers, and freeing the partial copy
// works as for any value.
#include <algorithm>
#include <cstring>
#include <new>

#include "standin/accounting.hpp"
#include "standin/blocks.hpp"
#include "standin/free.hpp"
#include "standin/interface.hpp"
#include "standin/layout.hpp"
#include "standin/pending_blocks.hpp"
#include "standin/strings.hpp"

namespace standin {

namespace {

using list_head_t = vlt_underlying_vector_t;
using map_head_t = vlt_underlying_map_table_t;

class Copier {
 public:
  // Empty, without a leak, when memory runs out.
  vlt_underlying_data_t copy(const vlt_underlying_data_t& source) noexcept {
    const vlt_underlying_data_t result = begin(source);
    while (!exhausted_ && !pending_.empty()) fillNext();
    if (!exhausted_) return result;
    while (!pending_.empty()) makeEmpty(pending_.pop().container);
    freeValue(result);
    return {};
  }

 private:
  // The copy of `source`, but lists and maps are still empty. Null stays null in every kind.
  vlt_underlying_data_t begin(const vlt_underlying_data_t& source) noexcept {
    vlt_underlying_data_t result = source;
    switch (source.tag) {
      case VLT_TAG_STRING:
      case VLT_TAG_BORROWED_STRING:
        result.tag = VLT_TAG_STRING;
        if (source.value.string != nullptr) result.value.string = copyString(source.value.string);
        break;
      case VLT_TAG_LIST:
        if (source.value.list != nullptr) result.value.list = beginList(*source.value.list);
        break;
      case VLT_TAG_MAP:
        if (source.value.map != nullptr) result.value.map = beginMap(*source.value.map);
        break;
      case VLT_TAG_BUFFER:
        if (source.value.buffer != nullptr) result.value.buffer = copyBuffer(*source.value.buffer);
        break;
      case VLT_TAG_CUSTOM:
        if (source.value.custom.object != nullptr) {
          result.value.custom.object = copyCustom(source.value.custom.object);
        }
        break;
      default:
        break; // bit for bit, unknown kinds too
    }
    if (exhausted_) return {};
    return result;
  }

  // Notes exhaustion where it shows.
  template <typename Block>
  Block* checked(Block* made) noexcept {
    if (made == nullptr) exhausted_ = true;
    return made;
  }

  const char* copyString(const char* source) noexcept { return checked(copyText(source)); }

  vlt_underlying_buffer_t* copyBuffer(const vlt_underlying_buffer_t& source) noexcept {
    vlt_underlying_buffer_t* made = checked(makeBuffer(source.length));
    if (made != nullptr) std::memcpy(bytesOf(made), bytesOf(&source), source.length);
    return made;
  }

  void* copyCustom(const void* source) noexcept {
    return checked(makeCustom(static_cast<const custom_object_t*>(source)->label));
  }

  list_head_t* beginList(const list_head_t& source) noexcept {
    list_head_t* made = checked(makeList(std::max<int64_t>(source.count, 0)));
    if (made != nullptr) pending_.push(Container(made), &source);
    return made;
  }

  map_head_t* beginMap(const map_head_t& source) noexcept {
    map_head_t* made = checked(makeMap(std::max<int64_t>(source.capacity, 0)));
    if (made != nullptr) pending_.push(Container(made), &source);
    return made;
  }

  void fillNext() noexcept {
    const auto item = pending_.pop();
    void* block = item.container.block();
    if (item.container.isMap()) {
      fillMap(block, *static_cast<const map_head_t*>(item.note));
    } else {
      fillList(block, *static_cast<const list_head_t*>(item.note));
    }
  }

  // New blocks have empty elements and slots. So a copy can be freed when exhausted memory has left
  // some of its counted elements empty.
  void fillList(void* block, const list_head_t& source) noexcept {
    const int64_t count = std::max<int64_t>(source.count, 0);
    vlt_underlying_data_t* elements = elementsOf(new (block) list_head_t{count, count});
    for (int64_t i = 0; i < count && !exhausted_; ++i) elements[i] = begin(elementsOf(&source)[i]);
  }

  void fillMap(void* block, const map_head_t& source) noexcept {
    const int64_t capacity = std::max<int64_t>(source.capacity, 0);
    slot_t* slots = slotsOf(new (block) map_head_t{0, source.live, capacity, source.deleted});
    for (int64_t i = 0; i < capacity && !exhausted_; ++i) copySlot(slots[i], slotsOf(&source)[i]);
  }

  void copySlot(slot_t& slot, const slot_t& source) noexcept {
    slot.hash = source.hash; // of a deleted slot too: entries displaced past it stay findable
    if (!isLive(source)) return;
    slot.key = begin(source.key);
    if (!exhausted_) slot.value = begin(source.value);
  }

  static void makeEmpty(Container container) noexcept {
    if (container.isMap()) {
      new (container.block()) map_head_t{};
    } else {
      new (container.block()) list_head_t{};
    }
  }

  PendingBlocks<const void*> pending_;
  bool exhausted_ = false;
};

} // namespace

} // namespace standin

vlt_underlying_data_t vlt_copy_data(const vlt_underlying_data_t* source) {
  standin::countCall(STANDIN_COPY_DATA);
  if (source == nullptr) return {};
  return standin::Copier().copy(*source);
}

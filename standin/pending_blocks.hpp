// The work list of all walks through nested values: a stack threaded through the waiting blocks
// themselves. Such a walk may not recurse, since a sender nests a message to any depth, and may not
// ask for memory.
//
//   list, map    0 head (16 or 32 bytes)
//   waiting      0 next (8)   8 note (8)
//
// `next` is the address of the block below; its lowest bit is set for a map. A waiting block loses
// its first 16 bytes; the note carries the part that is still needed.
#ifndef VLT_STANDIN_PENDING_BLOCKS_HPP
#define VLT_STANDIN_PENDING_BLOCKS_HPP

#include <cstdint>
#include <new>

#include "host/types.h"

namespace standin {

// A list block or a map table.
class Container {
 public:
  Container() = default;
  explicit Container(vlt_underlying_vector_t* list) noexcept : block_(list) {}
  explicit Container(vlt_underlying_map_table_t* table) noexcept : block_(table), is_map_(true) {}

  bool null() const noexcept { return block_ == nullptr; }
  bool isMap() const noexcept { return is_map_; }
  void* block() const noexcept { return block_; }

 private:
  void* block_ = nullptr;
  bool is_map_ = false;
};

// Last in, first out. The blocks are not owned.
template <typename Note>
class PendingBlocks {
 public:
  struct item_t {
    Container container;
    Note note;
  };

  bool empty() const noexcept { return top_.null(); }

  // Overwrites the block's first 16 bytes until it is taken off again.
  void push(Container container, Note note) noexcept {
    new (container.block()) waiting_t{marked(top_), note};
    top_ = container;
  }

  // Not on an empty stack. The block's first 16 bytes are the caller's to fill.
  item_t pop() noexcept {
    const Container container = top_;
    const waiting_t waiting = *static_cast<const waiting_t*>(container.block());
    top_ = unmarked(waiting.next);
    return {container, waiting.note};
  }

 private:
  // A pointer into the block, not a number, so that leak checkers see the reference.
  struct waiting_t {
    char* next;
    Note note;
  };
  static_assert(sizeof(waiting_t) == sizeof(vlt_underlying_vector_t),
                "a list block of no elements has no room for more");

  static constexpr std::uintptr_t MAP_MARK = 1;
  static_assert(alignof(vlt_underlying_vector_t) > MAP_MARK &&
                    alignof(vlt_underlying_map_table_t) > MAP_MARK,
                "the mark needs a bit that is 0 in every address");

  static char* marked(Container container) noexcept {
    return static_cast<char*>(container.block()) + (container.isMap() ? MAP_MARK : 0);
  }

  static Container unmarked(char* address) noexcept {
    if ((reinterpret_cast<std::uintptr_t>(address) & MAP_MARK) == 0) {
      return Container(reinterpret_cast<vlt_underlying_vector_t*>(address));
    }
    return Container(reinterpret_cast<vlt_underlying_map_table_t*>(address - MAP_MARK));
  }

  Container top_;
};

} // namespace standin

#endif

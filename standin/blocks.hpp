// Makes and releases single blocks: the one place that provides, counts and refuses memory for
// values. Contents are no concern here: releasing a list leaves its elements alone.
#ifndef VLT_STANDIN_BLOCKS_HPP
#define VLT_STANDIN_BLOCKS_HPP

#include <array>
#include <cstddef>
#include <cstdlib>

#include "host/types.h"
#include "standin/accounting.hpp"

namespace standin {

// The object that a custom value of this library points to.
struct custom_object_t {
  uint64_t label;
};

// Null: exhausted, or an impossible size (negative, or beyond the address space).
// A map's slots are free and its counts 0. A list has count 0 and empty elements. A buffer's bytes
// are 0. A string has room for `length` undefined bytes and the NUL.
vlt_underlying_map_table_t* makeMap(int64_t capacity) noexcept;
vlt_underlying_vector_t* makeList(int64_t capacity) noexcept;
vlt_underlying_buffer_t* makeBuffer(uint32_t length) noexcept;
char* makeString(std::size_t length) noexcept;
custom_object_t* makeCustom(uint64_t label) noexcept;

// Releases blocks, and counts all of them at the end of its life. A message has some fifty blocks,
// so counting each would cost more.
class Release {
 public:
  Release() = default;
  Release(const Release&) = delete;
  Release& operator=(const Release&) = delete;
  ~Release() {
    for (std::size_t kind = 0; kind < STANDIN_BLOCK_KINDS; ++kind) {
      if (released_[kind] > 0) countFreed(static_cast<standin_block_t>(kind), released_[kind]);
    }
  }

  // Null does nothing.
  void block(standin_block_t kind, const void* block) noexcept {
    if (block == nullptr) return;
    ++released_[kind];
    std::free(const_cast<void*>(block));
  }

 private:
  std::array<int64_t, STANDIN_BLOCK_KINDS> released_{};
};

// The same for one. Null does nothing.
void release(standin_block_t kind, void* block) noexcept;

} // namespace standin

#endif

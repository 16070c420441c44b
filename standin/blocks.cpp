// Single blocks out of the C library's heap.
#include "standin/blocks.hpp"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "standin/failures.hpp"

namespace standin {

namespace {

// The largest size in the cache that the C library's heap has for each thread. Its calloc bypasses
// that cache, at least up to glibc 2.36.
constexpr std::size_t CACHED_SIZE = 1032;

// Out of line, or else the compiler turns malloc and memset into calloc again.
[[gnu::noinline]] void* zeroed(void* block, std::size_t size) noexcept {
  return block == nullptr ? nullptr : std::memset(block, 0, size);
}

// Zeroed memory for a head and `count` items of `item_size` bytes after it.
void* makeZeroed(standin_block_t kind, std::size_t head, int64_t count,
                 std::size_t item_size) noexcept {
  if (count < 0 || static_cast<uint64_t>(count) > (PTRDIFF_MAX - head) / item_size) return nullptr;
  if (allocationRefused()) return nullptr;
  const std::size_t size = head + static_cast<std::size_t>(count) * item_size;
  void* block = size <= CACHED_SIZE ? zeroed(std::malloc(size), size) : std::calloc(1, size);
  if (block != nullptr) countMade(kind);
  return block;
}

} // namespace

vlt_underlying_map_table_t* makeMap(int64_t capacity) noexcept {
  void* block = makeZeroed(STANDIN_BLOCK_MAP, sizeof(vlt_underlying_map_table_t), capacity,
                           sizeof(vlt_underlying_map_table_entry_t));
  if (block == nullptr) return nullptr;
  auto* table = static_cast<vlt_underlying_map_table_t*>(block);
  table->capacity = capacity;
  return table;
}

vlt_underlying_vector_t* makeList(int64_t capacity) noexcept {
  void* block = makeZeroed(STANDIN_BLOCK_LIST, sizeof(vlt_underlying_vector_t), capacity,
                           sizeof(vlt_underlying_data_t));
  if (block == nullptr) return nullptr;
  auto* list = static_cast<vlt_underlying_vector_t*>(block);
  list->capacity = capacity;
  return list;
}

vlt_underlying_buffer_t* makeBuffer(uint32_t length) noexcept {
  void* block = makeZeroed(STANDIN_BLOCK_BUFFER, sizeof(vlt_underlying_buffer_t), length, 1);
  if (block == nullptr) return nullptr;
  auto* buffer = static_cast<vlt_underlying_buffer_t*>(block);
  buffer->length = length;
  return buffer;
}

char* makeString(std::size_t length) noexcept {
  if (allocationRefused()) return nullptr;
  void* block = std::malloc(length + 1);
  if (block != nullptr) countMade(STANDIN_BLOCK_STRING);
  return static_cast<char*>(block);
}

custom_object_t* makeCustom(uint64_t label) noexcept {
  void* block = makeZeroed(STANDIN_BLOCK_CUSTOM, sizeof(custom_object_t), 0, 1);
  return block == nullptr ? nullptr : new (block) custom_object_t{label};
}

void release(standin_block_t kind, void* block) noexcept {
  if (block == nullptr) return;
  countFreed(kind, 1);
  std::free(block);
}

} // namespace standin

// Makes and releases single blocks: the one place where memory for values comes from, is counted
// and can be refused. Contents are no concern here: releasing a list leaves its elements alone.
#ifndef VLT_STANDIN_BLOCKS_HPP
#define VLT_STANDIN_BLOCKS_HPP

#include <cstddef>

#include "host/types.h"

namespace standin {

// What a custom value of this library points to.
struct custom_object_t {
  uint64_t label;
};

// Null: exhausted, or a size that cannot be had (negative, or beyond the address space).
// A map's slots are free and its counts 0; a list has count 0 and empty elements; a buffer's bytes
// are 0; a string's bytes are undefined and it has room for `length` of them and the NUL.
vlt_underlying_map_table_t* makeMap(int64_t capacity) noexcept;
vlt_underlying_vector_t* makeList(int64_t capacity) noexcept;
vlt_underlying_buffer_t* makeBuffer(uint32_t length) noexcept;
char* makeString(std::size_t length) noexcept;
custom_object_t* makeCustom(uint64_t label) noexcept;

// Null does nothing.
void releaseMap(void* table) noexcept;
void releaseList(void* list) noexcept;
void releaseBuffer(vlt_underlying_buffer_t* buffer) noexcept;
void releaseString(char* text) noexcept;
void releaseCustom(void* object) noexcept;

} // namespace standin

#endif

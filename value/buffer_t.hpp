// A byte buffer as the host lays it out: 0 length (4), 4 padding (4), 8 bytes. A null pointer is a
// valid empty buffer. The host makes buffers; this layer reads and moves them.
#ifndef VLT_VALUE_BUFFER_T_HPP
#define VLT_VALUE_BUFFER_T_HPP

#include <cstdint>

#include "host/storage.h"
#include "value/owned_block.hpp"

namespace com::velanto::connectivity {

class buffer_t : public owned_block_t<vlt_underlying_buffer_t, vlt_free_buffer> {
 public:
  using owned_block_t::owned_block_t;

  // Number of bytes; 0 for a null block.
  [[nodiscard]] std::uint32_t size() const noexcept {
    return block_ == nullptr ? 0 : block_->length;
  }
  // The first of size() bytes; null for a null block.
  [[nodiscard]] const unsigned char* data() const noexcept {
    return block_ == nullptr ? nullptr : reinterpret_cast<const unsigned char*>(block_ + 1);
  }
};

static_assert(sizeof(buffer_t) == sizeof(void*), "a value is viewed in place as its buffer");

} // namespace com::velanto::connectivity

#endif

// A byte buffer as the host lays it out: 0 length (4), 4 padding (4), 8 bytes. A null pointer is a
// valid empty buffer. The host makes buffers; this layer reads and moves them.
#ifndef VLT_VALUE_BUFFER_T_HPP
#define VLT_VALUE_BUFFER_T_HPP

#include <cstdint>
#include <utility>

#include "host/storage.h"

namespace com::velanto::connectivity {

class buffer_t {
 public:
  buffer_t() noexcept = default;
  // Takes over `block`, which the host allocated.
  explicit buffer_t(vlt_underlying_buffer_t* block) noexcept : block_(block) {}
  buffer_t(buffer_t&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  buffer_t& operator=(buffer_t&& other) noexcept {
    if (this != &other) reset(std::exchange(other.block_, nullptr));
    return *this;
  }
  buffer_t(const buffer_t&) = delete;
  buffer_t& operator=(const buffer_t&) = delete;
  ~buffer_t() { reset(nullptr); }

  // Number of bytes; 0 for a null block.
  [[nodiscard]] std::uint32_t size() const noexcept {
    return block_ == nullptr ? 0 : block_->length;
  }
  // The first of size() bytes; null for a null block.
  [[nodiscard]] const unsigned char* data() const noexcept {
    return block_ == nullptr ? nullptr : reinterpret_cast<const unsigned char*>(block_ + 1);
  }

 private:
  void reset(vlt_underlying_buffer_t* block) noexcept {
    vlt_underlying_buffer_t* const old = std::exchange(block_, block);
    if (old != nullptr) vlt_free_buffer(old);
  }

  vlt_underlying_buffer_t* block_ = nullptr;
};

static_assert(sizeof(buffer_t) == sizeof(void*), "a value is viewed in place as its buffer");

} // namespace com::velanto::connectivity

#endif

// One block of the host and nothing else: lists, maps and buffers are this pointer, which their owner
// frees. A null pointer is a valid empty container.
#ifndef VLT_VALUE_OWNED_BLOCK_HPP
#define VLT_VALUE_OWNED_BLOCK_HPP

#include <utility>

namespace com::velanto::connectivity {

template <class Block, auto FREE>
class owned_block_t {
 public:
  owned_block_t() noexcept = default;
  // Takes over `block`, which the host allocated.
  explicit owned_block_t(Block* block) noexcept : block_(block) {}
  owned_block_t(owned_block_t&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  owned_block_t& operator=(owned_block_t&& other) noexcept {
    if (this != &other) reset(std::exchange(other.block_, nullptr));
    return *this;
  }
  owned_block_t(const owned_block_t&) = delete;
  owned_block_t& operator=(const owned_block_t&) = delete;
  ~owned_block_t() { reset(nullptr); }

 protected:
  void reset(Block* block) noexcept {
    Block* const old = std::exchange(block_, block);
    if (old != nullptr) FREE(old);
  }

  Block* block_ = nullptr;
};

} // namespace com::velanto::connectivity

#endif

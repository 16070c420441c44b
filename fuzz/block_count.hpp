// The law of every target that makes values: an input leaves no block of the host behind.
#ifndef VLT_FUZZ_BLOCK_COUNT_HPP
#define VLT_FUZZ_BLOCK_COUNT_HPP

#include <cstdint>

#include "fuzz/finding.hpp"
#include "standin/standin.h"

namespace com::velanto::connectivity::fuzz {

// A finding where there are more blocks, or fewer, at the end of its life than at its begin.
class BlockCount {
 public:
  BlockCount() = default;
  BlockCount(const BlockCount&) = delete;
  BlockCount& operator=(const BlockCount&) = delete;
  ~BlockCount() { require(standin_live_blocks_total() == before_, "no block is left"); }

 private:
  std::int64_t before_ = standin_live_blocks_total();
};

} // namespace com::velanto::connectivity::fuzz

#endif

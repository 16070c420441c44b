// The host's blocks: live blocks of each kind, and the blocks of a message. A live
// block without an owner has leaked; one with two owners will be freed twice.
#ifndef VLT_TOOLS_CHECK_BLOCKS_HPP
#define VLT_TOOLS_CHECK_BLOCKS_HPP

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "standin/standin.h"
#include "tools/check/trial.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools::check {

// By kind, as standin_block_t numbers them.
struct block_counts_t {
  std::array<std::int64_t, STANDIN_BLOCK_KINDS> of{};
};

[[nodiscard]] block_counts_t liveBlocksByKind() noexcept;

// "maps 1, strings 2, lists 0, buffers 0, customs 0"
[[nodiscard]] std::string shown(const block_counts_t& counts);

// Expects as many live blocks of each kind as at `before`, and in addition the blocks of
// `messages`, each once.
void expectOwnership(Trial& trial, const std::string& where, const block_counts_t& before,
                     std::span<const Message> messages);

// Takes the counts at its creation; expectBack expects them again.
class BlockBalance {
 public:
  BlockBalance() noexcept : before_(liveBlocksByKind()) {}
  bool expectBack(Trial& trial, const std::string& where) const {
    return trial.equal(where + ", live blocks", before_, liveBlocksByKind());
  }
  [[nodiscard]] const block_counts_t& before() const noexcept { return before_; }

 private:
  block_counts_t before_;
};

} // namespace com::velanto::connectivity::tools::check

#endif

// Counts work without a clock: the basic blocks of the plug-in's code that the processor enters.
// These tests compile the layers of the plug-in once more, with a call at the head of each block.
// So loops and comparisons count everywhere, and equally on every machine.
#ifndef VLT_TESTS_COST_BLOCK_COUNT_HPP
#define VLT_TESTS_COST_BLOCK_COUNT_HPP

#include <cstdint>

namespace com::velanto::connectivity::test {

// Blocks entered since the program began, on the one thread that there is.
[[nodiscard]] std::uint64_t blocksEntered() noexcept;

template <class Action>
std::uint64_t blocksEnteredBy(const Action& action) {
  const std::uint64_t before = blocksEntered();
  action();
  return blocksEntered() - before;
}

} // namespace com::velanto::connectivity::test

#endif

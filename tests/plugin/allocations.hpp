// Counts what the test program takes from operator new, and makes it fail on demand: the plug-in's
// own memory, as opposed to the host's storage.
#ifndef VLT_TESTS_PLUGIN_ALLOCATIONS_HPP
#define VLT_TESTS_PLUGIN_ALLOCATIONS_HPP

#include <cstdint>

namespace com::velanto::connectivity::test {

// Calls of operator new so far, and those whose memory was not given back yet; on all threads.
[[nodiscard]] std::int64_t allocationsMade() noexcept;
[[nodiscard]] std::int64_t allocationsHeld() noexcept;

// While it lives, operator new throws std::bad_alloc on this thread.
class NoMemory {
 public:
  NoMemory() noexcept;
  NoMemory(const NoMemory&) = delete;
  NoMemory& operator=(const NoMemory&) = delete;
  ~NoMemory();
};

} // namespace com::velanto::connectivity::test

#endif

// Counts the test program's calls of operator new, and makes them fail on demand: the plug-in's own
// memory, as opposed to the host's storage. Libraries that the program loads call the same
// operator, since the loader finds the program's first.
#ifndef VLT_TESTS_SUPPORT_ALLOCATIONS_HPP
#define VLT_TESTS_SUPPORT_ALLOCATIONS_HPP

#include <cstdint>

namespace com::velanto::connectivity::test {

// Calls of operator new so far, and the number without a delete yet; on all threads.
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

// Operator new throws on this thread for the n-th allocation from now (1: the next one), and, if
// `all_after`, for all later ones. 0 switches refusing off.
void failAllocation(std::uint64_t n, bool all_after) noexcept;
// Allocations refused on this thread since the last request with an n above 0.
[[nodiscard]] std::uint64_t refusedAllocations() noexcept;

// The same for all other threads together.
void failAllocationElsewhere(std::uint64_t n, bool all_after) noexcept;
[[nodiscard]] std::uint64_t refusedElsewhere() noexcept;

// While it lives, neither of the two counts or refuses on this thread: for notes in the middle
// of a test.
class UncountedAllocations {
 public:
  UncountedAllocations() noexcept;
  UncountedAllocations(const UncountedAllocations&) = delete;
  UncountedAllocations& operator=(const UncountedAllocations&) = delete;
  ~UncountedAllocations();

 private:
  std::uint64_t left_;
  bool asks_;
};

} // namespace com::velanto::connectivity::test

#endif

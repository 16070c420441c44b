// The replaced operator new and delete, array forms included. The forms for a larger alignment are
// not replaced, since nothing here uses them.
#include "tests/support/allocations.hpp"

#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

namespace com::velanto::connectivity::test {

namespace {

std::atomic<std::int64_t> made{0};
std::atomic<std::int64_t> held{0};
thread_local bool refusing = false;

// Allocations up to and including the one to refuse; 0: no request.
thread_local std::uint64_t left = 0;
thread_local bool all_after_too = false;
thread_local std::uint64_t refused = 0;

bool countAndRefuse() noexcept {
  if (left == 0 || --left > 0) return false;
  if (all_after_too) left = 1;
  ++refused;
  return true;
}

// The same for all threads but the one that has asked.
thread_local bool asks_elsewhere = false;
std::atomic<std::uint64_t> left_elsewhere{0};
std::atomic<bool> all_after_elsewhere{false};
std::atomic<std::uint64_t> refused_elsewhere{0};

bool countAndRefuseElsewhere() noexcept {
  if (asks_elsewhere) return false;
  std::uint64_t before = left_elsewhere;
  while (before > 0) {
    const std::uint64_t after = before == 1 && all_after_elsewhere ? 1 : before - 1;
    if (left_elsewhere.compare_exchange_weak(before, after)) break;
  }
  if (before != 1) return false;
  ++refused_elsewhere;
  return true;
}

} // namespace

// Null when refused or exhausted. Not in the unnamed namespace: the operators are global.
static void* take(std::size_t size) noexcept {
  void* const memory = refusing || countAndRefuse() || countAndRefuseElsewhere()
                           ? nullptr
                           : std::malloc(size == 0 ? 1 : size);
  if (memory != nullptr) {
    ++made;
    ++held;
  }
  return memory;
}

static void giveBack(void* memory) noexcept {
  if (memory != nullptr) --held;
  std::free(memory);
}

std::int64_t allocationsMade() noexcept { return made; }
std::int64_t allocationsHeld() noexcept { return held; }

NoMemory::NoMemory() noexcept { refusing = true; }
NoMemory::~NoMemory() { refusing = false; }

void failAllocation(std::uint64_t n, bool all_after) noexcept {
  left = n;
  all_after_too = all_after;
  if (n > 0) refused = 0;
}
std::uint64_t refusedAllocations() noexcept { return refused; }

void failAllocationElsewhere(std::uint64_t n, bool all_after) noexcept {
  asks_elsewhere = n > 0;
  all_after_elsewhere = all_after;
  if (n > 0) refused_elsewhere = 0;
  left_elsewhere = n;
}
std::uint64_t refusedElsewhere() noexcept { return refused_elsewhere; }

UncountedAllocations::UncountedAllocations() noexcept
    : left_(std::exchange(left, 0)), asks_(std::exchange(asks_elsewhere, true)) {}
UncountedAllocations::~UncountedAllocations() {
  left = left_;
  asks_elsewhere = asks_;
}

} // namespace com::velanto::connectivity::test

using com::velanto::connectivity::test::giveBack;
using com::velanto::connectivity::test::take;

void* operator new(std::size_t size) {
  void* const memory = take(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return take(size); }
// AddressSanitizer's own array forms would not end in the forms above.
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return take(size); }
void operator delete[](void* memory) noexcept { giveBack(memory); }
void operator delete[](void* memory, std::size_t) noexcept { giveBack(memory); }
void operator delete(void* memory) noexcept { giveBack(memory); }
void operator delete(void* memory, std::size_t) noexcept { giveBack(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { giveBack(memory); }

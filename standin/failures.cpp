// The n-th allocation refused: counts down the allocations of all threads under one lock, which
// only a requested refusal makes them take.
#include "standin/failures.hpp"

#include <mutex>

#include "standin/interface.hpp"

namespace standin {

constinit std::atomic<bool> refusalRequested{false};

namespace {

std::mutex failures_lock;     // guards all that follows in this namespace
uint64_t allocationsLeft = 0; // up to and including the one to refuse; 0: no request
bool refusesAllAfter = false;
uint64_t refused = 0;

void request(uint64_t n, bool allAfter) noexcept {
  const std::lock_guard guard(failures_lock);
  allocationsLeft = n;
  refusesAllAfter = allAfter;
  if (n > 0) refused = 0;
  refusalRequested.store(n > 0, std::memory_order_relaxed);
}

} // namespace

bool countAndRefuse() noexcept {
  const std::lock_guard guard(failures_lock);
  if (allocationsLeft == 0) return false; // switched off since the caller looked
  if (allocationsLeft > 1) {
    --allocationsLeft;
    return false;
  }
  ++refused;
  if (!refusesAllAfter) {
    allocationsLeft = 0;
    refusalRequested.store(false, std::memory_order_relaxed);
  }
  return true;
}

} // namespace standin

void standin_fail_allocation(uint64_t n) { standin::request(n, false); }

void standin_fail_allocations_from(uint64_t n) { standin::request(n, true); }

uint64_t standin_failed_allocations(void) {
  const std::lock_guard guard(standin::failures_lock);
  return standin::refused;
}

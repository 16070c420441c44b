// The n-th allocation refused: counts down the allocations of all threads under one lock, which
// only a requested refusal makes them take.
#include "standin/failures.hpp"

#include <mutex>

#include "standin/interface.hpp"

namespace standin {

constinit std::atomic<bool> refusal_requested{false};

namespace {

std::mutex failures_lock;      // guards all that follows in this namespace
uint64_t allocations_left = 0; // up to and including the one to refuse; 0: no request
bool refuses_all_after = false;
uint64_t refused = 0;

void request(uint64_t n, bool all_after) noexcept {
  const std::lock_guard guard(failures_lock);
  allocations_left = n;
  refuses_all_after = all_after;
  if (n > 0) refused = 0;
  refusal_requested.store(n > 0, std::memory_order_relaxed);
}

} // namespace

bool countAndRefuse() noexcept {
  const std::lock_guard guard(failures_lock);
  if (allocations_left == 0) return false; // switched off since the caller looked
  if (allocations_left > 1) {
    --allocations_left;
    return false;
  }
  ++refused;
  if (!refuses_all_after) {
    allocations_left = 0;
    refusal_requested.store(false, std::memory_order_relaxed);
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

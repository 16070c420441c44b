// Decides for each allocation whether to refuse it on request. Without a request, which is nearly
// always, the price is one relaxed load.
#ifndef VLT_STANDIN_FAILURES_HPP
#define VLT_STANDIN_FAILURES_HPP

#include <atomic>

namespace standin {

extern constinit std::atomic<bool> refusal_requested;

bool countAndRefuse() noexcept;

// True: the coming allocation has to fail. Called once per allocation.
inline bool allocationRefused() noexcept {
  return refusal_requested.load(std::memory_order_relaxed) && countAndRefuse();
}

} // namespace standin

#endif

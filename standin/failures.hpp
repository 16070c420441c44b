// Decides for each allocation whether it is refused on request. While none is requested, which is
// nearly always, the price is one relaxed load.
#ifndef VLT_STANDIN_FAILURES_HPP
#define VLT_STANDIN_FAILURES_HPP

#include <atomic>

namespace standin {

extern constinit std::atomic<bool> refusalRequested;

bool countAndRefuse() noexcept;

// True: the allocation about to be made has to fail. Called once per allocation.
inline bool allocationRefused() noexcept {
  return refusalRequested.load(std::memory_order_relaxed) && countAndRefuse();
}

} // namespace standin

#endif

#include "plugin/probes.hpp"

#include <sys/syscall.h>
#include <unistd.h>

#include <ctime>

#include "value/data_t.hpp"

// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): the header's own
#define _SDT_HAS_SEMAPHORES
#include <sys/sdt.h>

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): const ones may be read-only
[[gnu::used, gnu::section(".probes")]] volatile unsigned short ostrovia_batch_semaphore = 0;
[[gnu::used, gnu::section(".probes")]] volatile unsigned short ostrovia_dropped_semaphore = 0;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

namespace com::velanto::connectivity::probes {

// The system call itself: C libraries before 2.17 have clock_gettime in a library of its own.
std::int64_t Batch::nanoseconds() noexcept {
  std::timespec now{};
  syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1'000'000'000 + now.tv_nsec;
}

// NOLINTNEXTLINE(readability-function-cognitive-complexity): the macro's
void Batch::fire(std::ptrdiff_t messages, std::ptrdiff_t kept) const noexcept {
  const std::int64_t elapsed = nanoseconds() - began_;
  STAP_PROBE4(ostrovia, batch, messages, kept, messages - kept, elapsed);
}

void dropped(const char* reason, const char* id) noexcept {
  if (ostrovia_dropped_semaphore == 0) return;
  STAP_PROBE2(ostrovia, dropped, text_or_empty(reason), text_or_empty(id));
}

} // namespace com::velanto::connectivity::probes

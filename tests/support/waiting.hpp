#ifndef VLT_TESTS_SUPPORT_WAITING_HPP
#define VLT_TESTS_SUPPORT_WAITING_HPP

#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

namespace com::velanto::connectivity::test {

// Waits until `condition` holds, as it must at some time.
inline void waitUntil(const std::function<bool()>& condition) {
  for (int i = 0; i < 3000; ++i) {
    if (condition()) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  throw std::runtime_error("waited for nothing");
}

} // namespace com::velanto::connectivity::test

#endif

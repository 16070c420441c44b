// Collects what is written to standard error while it lives, by whichever library.
#ifndef VLT_TESTS_SUPPORT_STDERR_CAPTURE_HPP
#define VLT_TESTS_SUPPORT_STDERR_CAPTURE_HPP

#include <gtest/gtest.h>

#include <string>

namespace com::velanto::connectivity::test {

// What `action` writes to standard error. Exceptions pass through after the capture has ended.
template <class Action>
std::string stderr_of(const Action& action) {
  ::testing::internal::CaptureStderr();
  try {
    action();
  } catch (...) {
    ::testing::internal::GetCapturedStderr();
    throw;
  }
  return ::testing::internal::GetCapturedStderr();
}

} // namespace com::velanto::connectivity::test

#endif

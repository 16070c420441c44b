// Collects the standard error of all libraries while it lives.
#ifndef VLT_TESTS_SUPPORT_STDERR_CAPTURE_HPP
#define VLT_TESTS_SUPPORT_STDERR_CAPTURE_HPP

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

namespace com::velanto::connectivity::test {

// The standard error of `action`. Exceptions pass through after the capture has ended.
template <class Action>
std::string stderrOf(const Action& action) {
  ::testing::internal::CaptureStderr();
  try {
    action();
  } catch (...) {
    ::testing::internal::GetCapturedStderr();
    throw;
  }
  return ::testing::internal::GetCapturedStderr();
}

// The line that a typed get of the wrong kind writes to standard error; T is the type asked for.
template <class T>
std::string wrongKindLine() {
  const std::string type = typeid(T).name();
  return std::string("GetVisitor<").append(type).append(">.operator()(").append(type) + ")\n";
}

} // namespace com::velanto::connectivity::test

#endif

// Shows that code needs little stack for values of any depth. It runs on a thread with a small stack,
// where recursion over the depth ends the process.
#ifndef VLT_TESTS_SUPPORT_SMALL_STACK_HPP
#define VLT_TESTS_SUPPORT_SMALL_STACK_HPP

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>

namespace com::velanto::connectivity::test {

// Bytes; a few hundred calls. Systems refuse less than this, and on aarch64 less than twice as much.
#ifdef __aarch64__
inline constexpr std::size_t SMALL_STACK = 131072;
#else
inline constexpr std::size_t SMALL_STACK = 65536;
#endif

// Runs `body`, which must not throw, to its end.
template <class Body>
void runOnSmallStack(Body body) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, SMALL_STACK), 0);
  pthread_t thread{};
  const auto run = [](void* argument) -> void* {
    (*static_cast<Body*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &body), 0);
  EXPECT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

} // namespace com::velanto::connectivity::test

#endif

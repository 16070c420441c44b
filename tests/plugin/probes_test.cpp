#include "plugin/probes.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace com::velanto::connectivity::probes {
namespace {

TEST(Probes, BatchesAreTimedByTheSteadyClock) {
  const auto now = [] { return std::chrono::steady_clock::now().time_since_epoch().count(); };
  const std::int64_t before = now();
  const std::int64_t nanoseconds = Batch::nanoseconds();
  EXPECT_LE(before, nanoseconds);
  EXPECT_LE(nanoseconds, now());
}

} // namespace
} // namespace com::velanto::connectivity::probes

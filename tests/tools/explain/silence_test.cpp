#include "tools/explain/silence.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

namespace com::velanto::connectivity::test {

TEST(SilenceTest, StandardErrorWorksAgainAfterwards) {
  ::testing::internal::CaptureStderr();
  std::fputs("a", stderr);
  {
    const tools::Silence silence;
    std::fputs("b", stderr);
    EXPECT_EQ(write(STDERR_FILENO, "c", 1), 1);
  }
  std::fputs("d", stderr);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "ad");
}

} // namespace com::velanto::connectivity::test

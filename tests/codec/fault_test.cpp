// A notification keeps the first fault.
#include "codec/fault.hpp"

#include <gtest/gtest.h>

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

TEST(Fault, IsNoneAtFirst) {
  const Fault fault;
  EXPECT_FALSE(fault);
}

TEST(Fault, FirstOneThatIsNotedStays) {
  Fault fault;
  fault.note(std::runtime_error("first"));
  fault.note(std::runtime_error("second"));
  ASSERT_TRUE(fault);
  EXPECT_STREQ(fault.what(), "first");
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar

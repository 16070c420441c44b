// The first fault of a notification is the one that counts.
#include "codec/fault.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/values.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

TEST(Fault, IsNoneAtFirst) {
  Fault fault;
  EXPECT_FALSE(fault);
  EXPECT_EQ(fault.orThrow(7), 7);
  EXPECT_EQ(*fault.orThrow(std::make_unique<int>(8)), 8);
}

TEST(Fault, FirstOneThatIsNotedStays) {
  Fault fault;
  fault.note(std::runtime_error("first"));
  fault.note(std::runtime_error("second"));
  ASSERT_TRUE(fault);
  EXPECT_STREQ(fault.what(), "first");
}

TEST(Fault, IsThrownOnceWithItsText) {
  Fault fault;
  fault.note(std::runtime_error("first"));
  EXPECT_EQ(error_of([&] { (void)fault.orThrow(7); }), "first");
  EXPECT_FALSE(fault) << "it is thrown once";
  EXPECT_EQ(fault.orThrow(7), 7);
}

TEST(Fault, CopyKeepsItsTextWithoutTheOriginal) {
  Fault copy;
  {
    Fault fault;
    fault.note(std::runtime_error("first"));
    copy = fault;
  }
  EXPECT_STREQ(copy.what(), "first");
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar

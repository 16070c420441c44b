// A fault of an iterator is thrown, unless the switch is set in the environment at that moment.
#include "value/iterator_checks.hpp"

#include <gtest/gtest.h>

#include "tests/support/values.hpp"
#include "tests/value/skipped_checks.hpp"

namespace com::velanto::connectivity::test {
namespace {

TEST(IteratorChecks, FaultIsThrownWithItsMessage) {
  EXPECT_THROW(iterator_checks::fail("text"), std::runtime_error);
  EXPECT_EQ(errorOf([] { iterator_checks::fail("text"); }), "text");
}

TEST(IteratorChecks, MessagesNameTheContainer) {
  EXPECT_STREQ(iterator_checks::MAP_MODIFIED, "Iterator invalidated by modifying map");
  EXPECT_STREQ(iterator_checks::LIST_MODIFIED, "Iterator invalidated by modifying list");
  EXPECT_STREQ(iterator_checks::DIFFERENT_MAPS,
               "Invalid comparison of iterators into different maps");
}

TEST(IteratorChecks, AnySettingSkipsTheFault) {
  for (const char* setting : {"1", "0", "false", ""}) {
    SCOPED_TRACE(setting);
    const SkippedChecks skipped(setting);
    EXPECT_EQ(errorOf([] { iterator_checks::fail("text"); }), "nothing thrown");
  }
}

TEST(IteratorChecks, SettingIsReadAtEveryFault) {
  { const SkippedChecks skipped; }
  EXPECT_EQ(errorOf([] { iterator_checks::fail("text"); }), "text");
  const SkippedChecks skipped;
  EXPECT_EQ(errorOf([] { iterator_checks::fail("text"); }), "nothing thrown");
}

} // namespace
} // namespace com::velanto::connectivity::test

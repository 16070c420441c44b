// A trace without memory: its log line and the remains of the message. tests/exhaustion/ proves
// that nothing else is lost, for any refused allocation.
#include <gtest/gtest.h>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ExhaustedMemoryTest = EndToEnd;

TEST_F(ExhaustedMemoryTest, FailingTraceLeavesTheMessageUntouched) {
  standin_set_log_level("connectivity.codec.chain", 6);
  LoadedCodec codec(library_, mapOf("tenantId", text("t1")));
  Message message = notification(EVENT_PATH, eventPayload("4711"));
  standin_fail_allocation(1);
  EXPECT_EQ(codec.sendTowardsHost(message), 0);
  EXPECT_EQ(standin_failed_allocations(), 1U);
  // A failed rendering of the host is a null pointer to the standard library.
  const char* volatile unrendered = nullptr;
  const std::string why = errorOf([&] { const std::string text(unrendered); });
  EXPECT_EQ(takeLog(), (lines_t{dropped(" ('id' = '4711'): " + why)}));
  EXPECT_EQ(message.getPayload(), data_t(eventPayload("4711")));
  EXPECT_EQ(message.getMetadataMap(), mapOf("pulsarPath", text(EVENT_PATH)));
}

} // namespace
} // namespace com::velanto::connectivity::test

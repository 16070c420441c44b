// Batches without memory: which texts are logged and what is left of the messages. That nothing
// else is lost, whichever allocation is refused, is tested in tests/exhaustion/.
#include <gtest/gtest.h>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class ExhaustedMemoryTest : public EndToEnd {
 protected:
  static std::vector<Message> batchOfTwo() {
    std::vector<Message> batch;
    batch.push_back(notification(EVENT_PATH, eventPayload("1")));
    batch.push_back(notification(MEASUREMENT_PATH, measurementPayload("2")));
    return batch;
  }
};

TEST_F(ExhaustedMemoryTest, WithoutAnyMemoryTheBatchIsDroppedAndTheCodecStaysUsable) {
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  std::vector<Message> batch = batchOfTwo();
  standin_fail_allocations_from(1);
  EXPECT_EQ(codec.sendTowardsHost(batch), 0);
  standin_fail_allocation(0);
  EXPECT_EQ(codec.host.calls, 1);
  EXPECT_TRUE(codec.host.messages.empty());
  EXPECT_EQ(takeLog(), (lines_t{dropped(" ('id' = '1'): std::bad_alloc"),
                                dropped(" ('id' = '2'): std::bad_alloc")}))
      << "the messages are untouched then, so their ids are still there";
  static_cast<void>(codec.converted(notification(EVENT_PATH, eventPayload())));
}

TEST_F(ExhaustedMemoryTest, FailingTraceLeavesTheMessageUntouched) {
  standin_set_log_level("connectivity.codec.chain", 6);
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  Message message = notification(EVENT_PATH, eventPayload("4711"));
  standin_fail_allocation(1);
  EXPECT_EQ(codec.sendTowardsHost(message), 0);
  EXPECT_EQ(standin_failed_allocations(), 1U);
  // A text that the host could not render is a null pointer to the standard library.
  const char* volatile unrendered = nullptr;
  const std::string why = error_of([&] { const std::string text(unrendered); });
  EXPECT_EQ(takeLog(), (lines_t{dropped(" ('id' = '4711'): " + why)}));
  EXPECT_EQ(message.getPayload(), data_t(eventPayload("4711")));
  EXPECT_EQ(message.getMetadataMap(), map_of("pulsarPath", text(EVENT_PATH)));
}

} // namespace
} // namespace com::velanto::connectivity::test

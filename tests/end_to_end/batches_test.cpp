// Batches: the range that the next link gets, and the host functions that a batch never calls.
#include <gtest/gtest.h>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class BatchesTest : public EndToEnd {
 protected:
  // The ids of the messages that arrived, in order.
  [[nodiscard]] std::vector<std::string> arrived() {
    std::vector<std::string> ids;
    for (Message& message : codec_.host.messages) {
      ids.emplace_back(at(message.getPayload().get<map_t>(), "id").get<const char*>());
    }
    return ids;
  }

  LoadedCodec codec_{library_, map_of("tenantId", text("t1"))};
};

using ids_t = std::vector<std::string>;

TEST_F(BatchesTest, LinkGetsTheFrontOfTheCallersArray) {
  struct range_t {
    void* start;
    void* end;
  } range{};
  library_.setNextTowardsHost(
      codec_.plugin(), &range,
      [](void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
        *static_cast<range_t*>(handle) = {start, end};
      });
  std::vector<Message> batch;
  batch.push_back(notification(UNKNOWN_PATH, eventPayload("1")));
  batch.push_back(notification(EVENT_PATH, eventPayload("2")));
  codec_.sendTowardsHost(batch);
  EXPECT_EQ(range.start, batch.data());
  EXPECT_EQ(range.end, batch.data() + 1);
}

TEST_F(BatchesTest, EmptyRangesArePassedOn) {
  std::vector<Message> none;
  EXPECT_EQ(codec_.sendTowardsHost(none), 0);
  EXPECT_EQ(codec_.sendTowardsTransport(none), 0);
  EXPECT_EQ(library_.sendBatchTowardsHost(codec_.plugin(), nullptr, nullptr), 0);
  EXPECT_EQ(library_.sendBatchTowardsTransport(codec_.plugin(), nullptr, nullptr), 0);
  EXPECT_EQ(codec_.host.calls, 2);
  EXPECT_EQ(codec_.transport.calls, 2);
}

TEST_F(BatchesTest, NeitherLevelsNorStatusAreTouched) {
  std::vector<Message> batch;
  batch.push_back(notification(EVENT_PATH, eventPayload()));
  batch.push_back(notification(UNKNOWN_PATH, eventPayload()));
  batch.push_back(notification(EVENT_PATH, whole(1)));
  standin_reset_calls();
  stderr_of([&] { codec_.sendTowardsHost(batch); });
  stderr_of([&] { codec_.sendTowardsTransport(batch); });
  EXPECT_GT(standin_calls_total(), 0);
  EXPECT_EQ(standin_calls(STANDIN_GET_LOG_LEVEL), 0);
  EXPECT_EQ(standin_calls(STANDIN_SET_USER_STATUS_MAP), 0);
}

TEST_F(BatchesTest, CodecKeepsNothingFromOneBatchToTheNext) {
  for (int i = 0; i < 3; ++i) {
    std::vector<Message> batch;
    batch.push_back(notification(EVENT_PATH, eventPayload("1")));
    batch.push_back(notification(UNKNOWN_PATH, eventPayload("2")));
    const std::int64_t before = standin_live_blocks_total();
    codec_.sendTowardsHost(batch);
    EXPECT_EQ(arrived(), ids_t{"1"});
    codec_.host.messages.clear();
    batch.clear();
    EXPECT_LT(standin_live_blocks_total(), before);
  }
  EXPECT_EQ(takeLog().size(), 3U);
}

TEST_F(BatchesTest, TraceRendersPayloadAndMetadataOnceEach) {
  standin_set_log_level("connectivity.codec.chain", 6);
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  for (const char* const path : {EVENT_PATH, UNKNOWN_PATH}) {
    Message message = notification(path, eventPayload());
    standin_reset_calls();
    codec.sendTowardsHost(message);
    EXPECT_EQ(standin_calls(STANDIN_DATA_TO_STRING), 2) << path;
  }
}

TEST_F(BatchesTest, LevelOfTheTraceIsTheOneOfCreation) {
  standin_set_log_level("connectivity.codec.chain", 6);
  Message message = notification(EVENT_PATH, eventPayload());
  codec_.sendTowardsHost(message);
  EXPECT_EQ(takeLog(), lines_t{});
}

} // namespace
} // namespace com::velanto::connectivity::test

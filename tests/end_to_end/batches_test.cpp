// Batches of many messages: order, what is forwarded, what stays, and which host functions a batch
// never calls.
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

TEST_F(BatchesTest, FailingMessagesAreDroppedOthersKeepTheirOrder) {
  std::vector<Message> batch;
  batch.push_back(notification(UNKNOWN_PATH, eventPayload("1")));
  batch.push_back(notification(EVENT_PATH, eventPayload("2")));
  batch.push_back(notification(EVENT_PATH, map_of("id", text("3"))));
  batch.push_back(notification(MEASUREMENT_PATH, measurementPayload("4")));
  batch.emplace_back(map_of("id", text("5")));
  EXPECT_EQ(codec_.sendTowardsHost(batch), 0);
  EXPECT_EQ(codec_.host.calls, 1);
  EXPECT_EQ(arrived(), (ids_t{"2", "4", "5"}));
  EXPECT_EQ(
      takeLog(),
      (lines_t{dropped(" ('id' = '1'): Unrecognised Pulsar message type: 'inventory'"),
               dropped(" ('id' = '3'): Required key 'source' missing from message payload")}));
}

TEST_F(BatchesTest, DroppedMessagesStandBehindTheKeptOnes) {
  std::vector<Message> batch;
  batch.push_back(notification(UNKNOWN_PATH, eventPayload("1")));
  batch.push_back(notification(EVENT_PATH, eventPayload("2")));
  batch.push_back(notification(UNKNOWN_PATH, eventPayload("3")));
  batch.push_back(notification(EVENT_PATH, eventPayload("4")));
  library_.setNextTowardsHost(codec_.plugin(), nullptr,
                              [](void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {});
  codec_.sendTowardsHost(batch);
  const auto id = [&](std::size_t i) { return at(batch[i].getPayload().get<map_t>(), "id"); };
  EXPECT_EQ(id(0), text("2"));
  EXPECT_EQ(id(1), text("4"));
  EXPECT_TRUE((id(2) == text("1") && id(3) == text("3")) ||
              (id(2) == text("3") && id(3) == text("1")));
  EXPECT_EQ(batch[2].getMetadataMap().table(), nullptr);
  EXPECT_EQ(batch[3].getMetadataMap().table(), nullptr);
}

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

TEST_F(BatchesTest, WithEveryMessageDroppedTheLinkGetsAnEmptyRange) {
  std::vector<Message> batch(3);
  for (Message& message : batch) message = notification(UNKNOWN_PATH, eventPayload());
  EXPECT_EQ(codec_.sendTowardsHost(batch), 0);
  EXPECT_EQ(codec_.host.calls, 1);
  EXPECT_EQ(arrived(), ids_t{});
  EXPECT_EQ(takeLog().size(), 3U);
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

TEST_F(BatchesTest, TowardsTheTransportAllArriveInOrder) {
  std::vector<Message> batch;
  batch.push_back(notification(UNKNOWN_PATH, eventPayload("1")));
  batch.push_back(notification(EVENT_PATH, whole(2)));
  batch.emplace_back(data_t(), map_of("n", whole(3)));
  EXPECT_EQ(codec_.sendTowardsTransport(batch), 0);
  EXPECT_EQ(codec_.transport.calls, 1);
  ASSERT_EQ(codec_.transport.messages.size(), 3U);
  EXPECT_EQ(codec_.transport.messages[0].getPayload(), data_t(eventPayload("1")));
  EXPECT_EQ(codec_.transport.messages[1].getPayload(), whole(2));
  EXPECT_EQ(codec_.transport.messages[1].getMetadataMap(), map_of("pulsarPath", text(EVENT_PATH)));
  EXPECT_EQ(codec_.transport.messages[2].getMetadataMap(), map_of("n", whole(3)));
  EXPECT_EQ(codec_.host.calls, 0);
  EXPECT_EQ(takeLog(), lines_t{});
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

} // namespace
} // namespace com::velanto::connectivity::test

// The level-6 line that shows each notification before it is converted, and its cost: none below.
#include <gtest/gtest.h>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class TraceTest : public EndToEnd {
 protected:
  // A codec whose level is `level`.
  std::unique_ptr<LoadedCodec> codecAt(vlt_log_level_t level) {
    standin_set_log_level("connectivity.codec.chain", level);
    return std::make_unique<LoadedCodec>(library_, map_of("tenantId", text("")));
  }
  static log_line_t trace(const std::string& payload) {
    return line(
        6, R"(Processing message: Message<metadata={"pulsarPath": "a/b/inventory"}, payload=)" +
               payload + ">");
  }
  static log_line_t failure(const std::string& id) {
    return dropped(" ('id' = '" + id + "'): Unrecognised Pulsar message type: 'inventory'");
  }
};

TEST_F(TraceTest, ShowsTheMessageBeforeAnythingIsTakenOutOfIt) {
  const auto codec = codecAt(6);
  Message message = notification("a/b/inventory", map_of("id", text("4711")));
  codec->sendTowardsHost(message);
  EXPECT_EQ(takeLog(), (lines_t{trace(R"({"id": "4711"})"), failure("4711")}));
}

TEST_F(TraceTest, AppearsAtMoreVerboseLevelsToo) {
  const auto codec = codecAt(7);
  Message message = notification(EVENT_PATH, eventPayload());
  codec->sendTowardsHost(message);
  const lines_t lines = takeLog();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, 6);
}

TEST_F(TraceTest, IsOneLinePerMessage) {
  const auto codec = codecAt(6);
  std::vector<Message> batch;
  for (const char* const id : {"1", "2", "3"}) {
    batch.push_back(notification("a/b/inventory", map_of("id", text(id))));
  }
  codec->sendTowardsHost(batch);
  EXPECT_EQ(takeLog(), (lines_t{trace(R"({"id": "1"})"), failure("1"), trace(R"({"id": "2"})"),
                                failure("2"), trace(R"({"id": "3"})"), failure("3")}));
}

// The text around the id in the rendered payload {"id": "…"}.
constexpr std::size_t AROUND_ID = 10;

TEST_F(TraceTest, PayloadOfTwoHundredBytesStandsWhole) {
  const auto codec = codecAt(6);
  const std::string id(200 - AROUND_ID, 'x');
  Message message = notification("a/b/inventory", map_of("id", text(id.c_str())));
  codec->sendTowardsHost(message);
  EXPECT_EQ(takeLog(), (lines_t{trace(R"({"id": ")" + id + R"("})"), failure(id)}));
}

TEST_F(TraceTest, LongerPayloadIsCutToTwoHundredBytes) {
  const auto codec = codecAt(6);
  const std::string id(201 - AROUND_ID, 'x');
  Message message = notification("a/b/inventory", map_of("id", text(id.c_str())));
  codec->sendTowardsHost(message);
  const std::string cut = (R"({"id": ")" + id).substr(0, 196) + " ...";
  EXPECT_EQ(takeLog(), (lines_t{trace(cut), failure(id)}));
}

TEST_F(TraceTest, MetadataStandsWholeAndRawTextStaysText) {
  const auto codec = codecAt(6);
  const std::string path = "a/b/inventory/" + std::string(300, '%');
  Message message = notification(path.c_str(), map_t());
  codec->sendTowardsHost(message);
  const lines_t lines = takeLog();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], line(6, R"(Processing message: Message<metadata={"pulsarPath": ")" + path +
                                  R"("}, payload={}>)"));
}

TEST_F(TraceTest, RendersPayloadAndMetadataOnceEach) {
  const auto codec = codecAt(6);
  Message good = notification(EVENT_PATH, eventPayload());
  Message bad = notification(UNKNOWN_PATH, eventPayload());
  for (Message* const message : {&good, &bad}) {
    standin_reset_calls();
    codec->sendTowardsHost(*message);
    EXPECT_EQ(standin_calls(STANDIN_DATA_TO_STRING), 2);
  }
}

TEST_F(TraceTest, NothingIsRenderedBelowLevelSix) {
  const auto codec = codecAt(5);
  std::vector<Message> batch;
  batch.push_back(notification(EVENT_PATH, eventPayload()));
  batch.push_back(notification(UNKNOWN_PATH, eventPayload("4711")));
  standin_reset_calls();
  codec->sendTowardsHost(batch);
  EXPECT_EQ(standin_calls(STANDIN_DATA_TO_STRING), 0);
  EXPECT_EQ(takeLog(), (lines_t{failure("4711")}));
}

TEST_F(TraceTest, LevelIsTheOneOfCreation) {
  const auto codec = codecAt(5);
  standin_set_log_level("connectivity.codec.chain", 6);
  Message message = notification(EVENT_PATH, eventPayload());
  standin_reset_calls();
  codec->sendTowardsHost(message);
  EXPECT_EQ(standin_calls(STANDIN_GET_LOG_LEVEL), 0);
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_F(TraceTest, ShowsAPayloadThatIsNoMap) {
  const auto codec = codecAt(6);
  Message message(whole(5), map_of("pulsarPath", text("a/b/inventory")));
  EXPECT_EQ(stderr_of([&] { codec->sendTowardsHost(message); }), wrong_kind_line<map_t>());
  EXPECT_EQ(takeLog(),
            (lines_t{trace("5"), dropped(": Incorrect type in get (you asked for map but it's "
                                         "actually integer)")}));
}

} // namespace
} // namespace com::velanto::connectivity::test

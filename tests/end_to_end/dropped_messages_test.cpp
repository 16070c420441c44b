// Messages that cannot be converted: the whole line that says so, and what the caller gets back.
#include <gtest/gtest.h>

#include <functional>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class DroppedMessagesTest : public EndToEnd {
 protected:
  // Sends the message, which has to be dropped; returns what is left of it.
  Message drop(Message&& message, const std::string& rest_of_line, const char* stderr_text = "") {
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(codec_.sendTowardsHost(message), 0); }), stderr_text);
    EXPECT_EQ(takeLog(), (lines_t{dropped(rest_of_line)}));
    EXPECT_EQ(codec_.host.calls, 1) << "the link is called with the empty range";
    EXPECT_TRUE(codec_.host.messages.empty());
    codec_.host.calls = 0;
    return std::move(message);
  }

  LoadedCodec codec_{library_, map_of("tenantId", text("t1"))};
  const std::string unknown_ = ": Unrecognised Pulsar message type: 'inventory'";
};

TEST_F(DroppedMessagesTest, StringIdIsReportedAndIsAllThatIsLeft) {
  const Message rest =
      drop(notification(UNKNOWN_PATH, eventPayload("4711")), " ('id' = '4711')" + unknown_);
  EXPECT_EQ(rest.getPayload(), data_t(map_of("id", text("4711"))));
  EXPECT_EQ(rest.getMetadataMap().table(), nullptr);
}

TEST_F(DroppedMessagesTest, BorrowedIdIsReportedAndLeftAsAnOwnedCopy) {
  std::string id = "4711";
  Message rest = drop(notification(UNKNOWN_PATH, map_of("id", borrowed(id.c_str()))),
                      " ('id' = '4711')" + unknown_);
  id = "----";
  EXPECT_EQ(rest.getPayload(), data_t(map_of("id", text("4711"))));
}

TEST_F(DroppedMessagesTest, NullTextIdIsReportedAsAnEmptyOne) {
  for (const std::uint32_t tag : {VLT_TAG_STRING, VLT_TAG_BORROWED_STRING}) {
    Message rest =
        drop(notification(UNKNOWN_PATH, map_of("id", tagged(tag))), " ('id' = '')" + unknown_);
    EXPECT_EQ(rest.getPayload(), data_t(map_of("id", null_text()))) << "tag " << tag;
  }
}

TEST_F(DroppedMessagesTest, OtherIdsAreNotReportedAndNothingIsLeft) {
  data_t ids[] = {data_t(),  truth(true), real(1),       whole(4711), decimal(1),
                  list_of(), map_t(),     bytes("4711"), custom(),    tagged(11)};
  for (data_t& id : ids) {
    const std::uint32_t tag = id.type_tag();
    const Message rest =
        drop(notification(UNKNOWN_PATH, map_of("id", std::move(id), "a", text("b"))), unknown_);
    EXPECT_TRUE(rest.getPayload().empty()) << "tag " << tag;
    EXPECT_EQ(rest.getMetadataMap().table(), nullptr) << "tag " << tag;
  }
}

TEST_F(DroppedMessagesTest, WithoutAnIdNothingIsLeft) {
  data_t payloads[] = {map_t(), map_of("Id", text("1")), map_of(borrowed("id"), text("1"))};
  for (data_t& payload : payloads) {
    const Message rest = drop(notification(UNKNOWN_PATH, std::move(payload)), unknown_);
    EXPECT_TRUE(rest.getPayload().empty());
    EXPECT_EQ(rest.getMetadataMap().table(), nullptr);
  }
}

TEST_F(DroppedMessagesTest, PayloadThatIsNoMapIsLeftUntouchedAfterOneStderrLine) {
  struct row_t {
    data_t payload;
    const char* kind;
  };
  row_t rows[] = {{truth(true), "boolean"}, {real(1), "double"},      {whole(1), "integer"},
                  {decimal(1), "decimal"},  {text("t"), "string"},    {list_of(whole(1)), "list"},
                  {bytes("b"), "buffer"},   {borrowed("b"), "string"}};
  for (row_t& row : rows) {
    const data_t copy(row.payload);
    const std::uint32_t tag = row.payload.type_tag();
    const Message rest = drop(notification(EVENT_PATH, std::move(row.payload)),
                              std::string(": Incorrect type in get (you asked for map but it's "
                                          "actually ") +
                                  row.kind + ")",
                              wrong_kind_line<map_t>().c_str());
    EXPECT_EQ(rest.getPayload().type_tag(), tag);
    if (tag != VLT_TAG_BORROWED_STRING) {
      EXPECT_EQ(rest.getPayload(), copy);
    }
    EXPECT_EQ(rest.getMetadataMap(), map_of("pulsarPath", text(EVENT_PATH)));
  }
}

TEST_F(DroppedMessagesTest, CustomPayloadIsLeftUntouchedToo) {
  data_t payload = custom(99);
  void* const object = payload.get<vlt_underlying_custom_t>().object;
  Message rest = drop(notification(EVENT_PATH, std::move(payload)),
                      ": Incorrect type in get (you asked for map but it's actually custom)",
                      wrong_kind_line<map_t>().c_str());
  EXPECT_EQ(rest.getPayload().get<vlt_underlying_custom_t>().object, object);
}

TEST_F(DroppedMessagesTest, PayloadOfAnUnknownKindReadsAsEmpty) {
  const Message rest = drop(notification(EVENT_PATH, tagged(11, 5)), ": Get from empty");
  EXPECT_EQ(rest.getPayload().type_tag(), 11U);
  EXPECT_EQ(rest.getMetadataMap(), map_of("pulsarPath", text(EVENT_PATH)));
}

TEST_F(DroppedMessagesTest, PathMustBeAString) {
  const std::string line = wrong_kind_line<const char*>();
  const Message rest =
      drop(Message(eventPayload("4711"), map_of("pulsarPath", whole(1))),
           " ('id' = '4711'): Incorrect type in get (you asked for string but it's actually "
           "integer)",
           line.c_str());
  EXPECT_EQ(rest.getPayload(), data_t(map_of("id", text("4711"))));
  drop(Message(eventPayload("4711"), map_of("pulsarPath", data_t())),
       " ('id' = '4711'): Get from empty");
}

TEST_F(DroppedMessagesTest, PathNamesTheKindBehindItsSecondSlash) {
  struct row_t {
    const char* path;
    const char* segment;
  };
  const row_t rows[] = {{"tenantA/sub1/inventory/7", "inventory"},
                        {"tenantA/sub1/inventory", "inventory"},
                        {"//inventory/7", "inventory"},
                        {"a/b/Events/1", "Events"},
                        {"a/b/event/1", "event"},
                        {"a/b//events", ""},
                        {"events", ""},
                        {"a/events", ""},
                        {"a/b/", ""},
                        {"", ""}};
  for (const row_t& row : rows) {
    drop(notification(row.path, eventPayload()),
         std::string(" ('id' = '1'): Unrecognised Pulsar message type: '") + row.segment + "'");
  }
}

TEST_F(DroppedMessagesTest, NullTextPathReadsAsAnEmptyOne) {
  drop(Message(eventPayload(), map_of("pulsarPath", null_text())),
       " ('id' = '1'): Unrecognised Pulsar message type: ''");
}

TEST_F(DroppedMessagesTest, BorrowedKeysOfThePayloadAreNotFound) {
  map_t payload = map_of("id", text("4711"), borrowed("source"), map_of("id", text("7")));
  drop(notification(EVENT_PATH, std::move(payload)),
       " ('id' = '4711'): Required key 'source' missing from message payload");
}

TEST_F(DroppedMessagesTest, FaultOfTheConversionIsTheReason) {
  map_t payload = eventPayload("4711");
  payload[text("time")] = text("yesterday");
  drop(notification(EVENT_PATH, std::move(payload)),
       " ('id' = '4711'): Error parsing timestamp 'yesterday' in key 'time'");
  payload = eventPayload("4711");
  payload[text("text")] = whole(5);
  drop(notification(EVENT_PATH, std::move(payload)),
       " ('id' = '4711'): Value for key 'text' is not a string.");
}

TEST_F(DroppedMessagesTest, SourceThatIsNoMapIsReportedWithItsKey) {
  map_t payload = eventPayload("4711");
  payload[text("source")] = text("7");
  drop(notification(EVENT_PATH, std::move(payload)),
       " ('id' = '4711'): Problem with key 'source': Incorrect type in get (you asked for map but "
       "it's actually string)",
       wrong_kind_line<map_t>().c_str());
}

TEST_F(DroppedMessagesTest, LineIsNotWrittenBelowItsLevel) {
  standin_set_log_level("connectivity.codec.quiet", 2);
  LoadedCodec quiet(library_, map_of("tenantId", text("")), "codec", "quiet");
  Message message = notification(UNKNOWN_PATH, eventPayload());
  standin_reset_calls();
  EXPECT_EQ(quiet.sendTowardsHost(message), 0);
  EXPECT_EQ(standin_calls(STANDIN_LOG_AT), 0);
  EXPECT_EQ(message.getPayload(), data_t(map_of("id", text("1"))));
}

} // namespace
} // namespace com::velanto::connectivity::test

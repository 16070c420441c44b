// Events: the worked example, the order of the checks, what replaces what.
#include "codec/conversions/event.hpp"

#include "tests/codec/examples.hpp"
#include "tests/codec/faults.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class EventConversion : public HostFixture {};
class EventBuilder : public HostFixture {};

TEST_F(EventConversion, WorkedExampleBecomesTheWholeEvent) {
  const Message message = converted(convertEvent, event_example());
  EXPECT_TRUE(same(message.getPayload(), event_fields()));
  EXPECT_TRUE(same(message.getMetadataMap(), map_of("vlt.type", text("com.tivra.ostrovia.Event"))));
}

TEST_F(EventConversion, FirstFaultInTheOrderOfTheStepsIsReported) {
  std::vector<fault_t> faults;
  faults.push_back({"source", {}, "Required key 'source' missing from message payload"});
  faults.push_back({"id", {}, "Required key 'id' missing from message payload"});
  faults.push_back({"source", text("7"), wrong_kind("source", "map", "string")});
  faults.push_back({"source.id", {}, "Required key 'id' missing from source"});
  faults.push_back({"text", {}, "Required key 'text' missing from message payload"});
  faults.push_back({"time", {}, "Required key 'time' missing from message payload"});
  faults.push_back({"time", whole(1), wrong_kind("time", "string", "integer")});
  faults.push_back(
      {"time", text("yesterday"), "Error parsing timestamp 'yesterday' in key 'time'"});
  faults.push_back({"type", {}, "Required key 'type' missing from message payload"});
  faults.push_back({"id", whole(1), "Value for key 'id' is not a string."});
  faults.push_back({"source.id", whole(7), "Value for key 'source' is not a string."});
  faults.push_back({"text", whole(1), "Value for key 'text' is not a string."});
  faults.push_back({"type", list_of(), "Value for key 'type' is not a string."});
  expectReportedInOrder(convertEvent, event_example, faults);
}

TEST_F(EventConversion, EmptySourceIsNoMap) {
  map_t payload = event_example();
  payload[text("source")] = data_t();
  EXPECT_EQ(conversion_error(convertEvent, std::move(payload)),
            "Problem with key 'source': Get from empty");
}

TEST_F(EventConversion, PayloadThatIsNoMapIsTheTypedGetsError) {
  PulsarMessageDisassembler notification = wrapped(text("a"));
  std::string error;
  stderr_of([&] { error = error_of([&] { (void)convertEvent(notification); }); });
  EXPECT_EQ(error, "Incorrect type in get (you asked for map but it's actually string)");
}

TEST_F(EventConversion, KeysThatAreBorrowedAreNotTheFields) {
  map_t payload = event_example();
  remove(payload, "type");
  payload[borrowed("type")] = text("o6a_Test");
  EXPECT_EQ(conversion_error(convertEvent, std::move(payload)),
            "Required key 'type' missing from message payload");
  map_t both = event_example();
  both[borrowed("text")] = whole(1);
  map_t expected = event_fields();
  expected[borrowed("text")] = whole(1);
  EXPECT_TRUE(same(fields_of(convertEvent, std::move(both)), expected));
}

TEST_F(EventConversion, OptionalDatesBecomeSecondsOrStayAsTheyAre) {
  map_t payload = event_example();
  payload[text("creationTime")] = text("garbage");
  payload[text("lastUpdated")] = text("2023-04-05T06:07:09Z");
  map_t expected = event_fields();
  expected[text("creationTime")] = text("garbage");
  expected[text("lastUpdated")] = real(EXAMPLE_SECONDS + 1);
  EXPECT_TRUE(same(fields_of(convertEvent, std::move(payload)), expected));
}

TEST_F(EventConversion, FirstOccurrenceOfThePayloadReplacesTheTime) {
  for (const bool readable : {true, false}) {
    map_t payload = event_example();
    payload[text("firstOccurrenceTime")] = text(readable ? "2023-04-05T06:07:10Z" : "once");
    map_t expected = event_fields();
    expected[text("firstOccurrenceTime")] = readable ? real(EXAMPLE_SECONDS + 2) : text("once");
    EXPECT_TRUE(same(fields_of(convertEvent, std::move(payload)), expected));
  }
}

TEST_F(EventConversion, FieldsThatOthersMakeAreCarriedOver) {
  map_t payload = event_example();
  payload[text("measurements")] = text("mine");
  payload[text("tenantId")] = whole(1);
  payload[text("position")] = data_t();
  map_t expected = event_fields();
  expected[text("measurements")] = text("mine");
  expected[text("tenantId")] = whole(1);
  expected[text("position")] = data_t();
  EXPECT_TRUE(same(fields_of(convertEvent, std::move(payload)), expected));
}

TEST_F(EventConversion, BlocksAreTheNotificationsOwn) {
  map_t payload = event_example();
  payload[text("list")] = list_of(whole(1));
  payload[text("map")] = map_of("a", whole(1));
  const std::uint64_t id = block_of(at(payload, "id"));
  const std::uint64_t source_id = block_of(at(at(payload, "source").get<map_t>(), "id"));
  const std::uint64_t words = block_of(at(payload, "text"));
  const std::uint64_t type = block_of(at(payload, "type"));
  const std::uint64_t list = block_of(at(payload, "list"));
  const std::uint64_t map = block_of(at(payload, "map"));
  const std::uint64_t key = key_block_of(payload, text("map"));
  map_t fields = fields_of(convertEvent, std::move(payload));
  EXPECT_EQ(block_of(at(fields, "id")), id);
  EXPECT_EQ(block_of(at(fields, "source")), source_id);
  EXPECT_EQ(block_of(at(fields, "text")), words);
  EXPECT_EQ(block_of(at(fields, "type")), type);
  EXPECT_EQ(block_of(at(fields, "list")), list);
  EXPECT_EQ(block_of(at(fields, "map")), map);
  EXPECT_EQ(key_block_of(fields, text("map")), key);
}

TEST_F(EventConversion, BorrowedStringsAreReadAndStayBorrowed) {
  const map_t fields =
      fields_of(convertEvent, map_of("id", borrowed("1"), "source", map_of("id", borrowed("7")),
                                     "text", borrowed("t"), "time", borrowed(EXAMPLE_TIME), "type",
                                     borrowed("x"), "creationTime", borrowed(EXAMPLE_TIME),
                                     "lastUpdated", borrowed("later"), "o6a", borrowed("more")));
  EXPECT_TRUE(
      same(fields, map_of("id", borrowed("1"), "source", borrowed("7"), "text", borrowed("t"),
                          "firstOccurrenceTime", real(EXAMPLE_SECONDS), "type", borrowed("x"),
                          "creationTime", real(EXAMPLE_SECONDS), "lastUpdated", borrowed("later"),
                          "o6a", borrowed("more"), "measurements", map_of())));
}

TEST_F(EventConversion, NullTextsAreMovedAsTheyAreExceptForTheTime) {
  map_t payload = event_example();
  for (const char* const key : {"id", "text", "type", "creationTime"}) {
    payload[text(key)] = null_text();
  }
  at(payload, "source").get<map_t>()[text("id")] = borrowed(nullptr);
  map_t fields = fields_of(convertEvent, std::move(payload));
  for (const char* const key : {"id", "text", "type", "creationTime", "source"}) {
    EXPECT_TRUE(at(fields, key).is_string()) << key;
    EXPECT_EQ(block_of(at(fields, key)), 0U) << key;
  }
  map_t untimed = event_example();
  untimed[text("time")] = null_text();
  EXPECT_EQ(conversion_error(convertEvent, std::move(untimed)),
            "Error parsing timestamp '' in key 'time'");
}

TEST_F(EventBuilder, AddsNoMembers) {
  static_assert(sizeof(EventMessageBuilder) == sizeof(TivraMessageBuilder));
  auto builder =
      std::make_unique<EventMessageBuilder>(text("1"), text("2"), text("3"), 4.5, text("5"));
  EXPECT_TRUE(same(builder->fields, map_of("id", text("1"), "source", text("2"), "text", text("3"),
                                           "firstOccurrenceTime", real(4.5), "type", text("5"))));
  EXPECT_TRUE(builder->measurements.empty());
}

TEST_F(EventBuilder, ChecksIdSourceTextTypeInThisOrder) {
  const auto error = [](bool id, bool source, bool words) {
    const auto good = [](bool is_good) { return is_good ? text("a") : whole(1); };
    return error_of([&] {
      const EventMessageBuilder builder(good(id), good(source), good(words), 0.0, whole(1));
    });
  };
  EXPECT_EQ(error(false, false, false), "Value for key 'id' is not a string.");
  EXPECT_EQ(error(true, false, false), "Value for key 'source' is not a string.");
  EXPECT_EQ(error(true, true, false), "Value for key 'text' is not a string.");
  EXPECT_EQ(error(true, true, true), "Value for key 'type' is not a string.");
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar

// Whole events as they reach the host: every field, every metadata entry, and nothing else.
#include <gtest/gtest.h>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class EventsTest : public EndToEnd {};

map_t notified() {
  return map_of("id", text("1"), "source", map_of("id", text("7"), "name", text("dev")), "text",
                text("t"), "time", text("2023-04-05T06:07:08.000Z"), "type", text("o6a_Test"),
                "o6a_Extra", whole(5));
}

map_t metadataOf(const char* type, const char* channel) {
  return map_of("vlt.type", text(type), "vlt.channel", text(channel));
}

TEST_F(EventsTest, EventHasTheseFieldsAndNoOthers) {
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  const Message event = codec.converted(notification("tenantA/sub1/events/1", notified()));
  EXPECT_EQ(event.getPayload(),
            data_t(map_of("id", text("1"), "source", text("7"), "text", text("t"),
                          "firstOccurrenceTime", real(1680674828.0), "type", text("o6a_Test"),
                          "o6a_Extra", whole(5), "measurements", map_t())));
  EXPECT_EQ(event.getMetadataMap(), metadataOf("com.tivra.ostrovia.Event", "ostrovia.devices"));
}

TEST_F(EventsTest, TenantIsWrittenOverAFieldOfThatName) {
  LoadedCodec codec(library_, map_of("tenantId", text("t1")));
  map_t payload = notified();
  payload[text("tenantId")] = whole(99);
  const Message event = codec.converted(notification("tenantA/sub1/events/1", std::move(payload)));
  EXPECT_EQ(event.getPayload(),
            data_t(map_of("id", text("1"), "source", text("7"), "text", text("t"),
                          "firstOccurrenceTime", real(1680674828.0), "type", text("o6a_Test"),
                          "o6a_Extra", whole(5), "measurements", map_t(), "tenantId", text("t1"))));
}

TEST_F(EventsTest, WithoutATenantAFieldOfThatNamePasses) {
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  map_t payload = notified();
  payload[text("tenantId")] = whole(99);
  Message event = codec.converted(notification("tenantA/sub1/events/1", std::move(payload)));
  EXPECT_EQ(at(event.getPayload().get<map_t>(), "tenantId"), whole(99));
}

TEST_F(EventsTest, OtherMetadataOfTheNotificationIsGone) {
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  Message event =
      codec.converted(Message(notified(), map_of("pulsarPath", text("a/b/events"), "vlt.channel",
                                                 text("x"), "h", whole(1))));
  EXPECT_EQ(event.getMetadataMap(), metadataOf("com.tivra.ostrovia.Event", "ostrovia.devices"));
}

TEST_F(EventsTest, BorrowedPathIsReadLikeAnyOther) {
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  Message event =
      codec.converted(Message(notified(), map_of("pulsarPath", borrowed("a/b/events/1"))));
  EXPECT_EQ(at(event.getMetadataMap(), "vlt.type"), text("com.tivra.ostrovia.Event"));
}

struct kind_t {
  const char* name;
  const char* path;
  const char* type;
  const char* channel;
};
void PrintTo(const kind_t& row, std::ostream* out) { *out << row.name; }

// A payload that every conversion accepts.
map_t payloadForAll() {
  return map_of("id", text("1"), "source", map_of("id", text("7")), "text", text("t"), "time",
                text("2023-04-05T06:07:08.000Z"), "type", text("o6a_Test"), "name", text("n"),
                "status", text("ACTIVE"), "severity", text("MAJOR"), "count", whole(1), "deviceId",
                text("7"));
}

class KindsTest : public EndToEnd, public ::testing::WithParamInterface<kind_t> {};

TEST_P(KindsTest, TypeAndChannelFollowTheBeginningOfTheSegment) {
  LoadedCodec codec(library_, map_of("tenantId", text("t1"), "towardsHostChannelPrefix", text("p."),
                                     "measurementSplittingChannel", text("m")));
  map_t payload = payloadForAll();
  if (std::string(GetParam().type) == "com.tivra.ostrovia.Operation") {
    payload[text("status")] = text("PENDING");
  }
  Message event = codec.converted(notification(GetParam().path, std::move(payload)));
  EXPECT_EQ(event.getMetadataMap(), metadataOf(GetParam().type, GetParam().channel));
  EXPECT_EQ(at(event.getPayload().get<map_t>(), "tenantId"), text("t1"));
  EXPECT_EQ(at(event.getPayload().get<map_t>(), "id"), text("1"));
  EXPECT_EQ(takeLog(), lines_t{});
}

constexpr const char* DEVICES = "p.ostrovia.devices";
constexpr kind_t KINDS[] = {
    {"Alarms", "a/b/alarms/1", "com.tivra.ostrovia.Alarm", DEVICES},
    {"AlarmsAtTheEnd", "a/b/alarms", "com.tivra.ostrovia.Alarm", DEVICES},
    {"AlarmsBehindEmptySegments", "//alarms/1", "com.tivra.ostrovia.Alarm", DEVICES},
    {"AlarmsAndMore", "a/b/alarmsX", "com.tivra.ostrovia.Alarm", DEVICES},
    {"Events", "a/b/events/1", "com.tivra.ostrovia.Event", DEVICES},
    {"EventsAndMore", "a/b/eventsfoo/1", "com.tivra.ostrovia.Event", DEVICES},
    {"Measurements", "a/b/measurements/1", "com.tivra.ostrovia.Measurement", "m"},
    {"MeasurementsAndMore", "a/b/measurementsX", "com.tivra.ostrovia.Measurement", "m"},
    {"ManagedObjects", "a/b/managedobjects/1", "com.tivra.ostrovia.ManagedObject", DEVICES},
    {"Operations", "a/b/operations/1", "com.tivra.ostrovia.Operation", DEVICES},
};
INSTANTIATE_TEST_SUITE_P(Paths, KindsTest, ::testing::ValuesIn(KINDS),
                         [](const auto& row) { return row.param.name; });

} // namespace
} // namespace com::velanto::connectivity::test

// Alarms: the worked example, the order of the checks, severity and status with their texts.
#include "codec/conversions/alarm.hpp"

#include <limits>

#include "tests/codec/examples.hpp"
#include "tests/codec/faults.hpp"

namespace com::velanto::connectivity::plugins::pulsar {
namespace {

using namespace connectivity::test;

class AlarmConversion : public HostFixture {};
class AlarmBuilder : public HostFixture {};
class AlarmTexts : public HostFixture {};

constexpr const char* NULL_TEXT_REFUSED =
    "Cannot use a null char* as a data_t value (consider using an empty data_t() instead)";

TEST_F(AlarmConversion, WorkedExampleBecomesTheWholeEvent) {
  const Message message = converted(convertAlarm, alarm_example());
  EXPECT_TRUE(same(message.getPayload(), alarm_fields()));
  EXPECT_TRUE(same(message.getMetadataMap(), map_of("vlt.type", text("com.tivra.ostrovia.Alarm"))));
}

TEST_F(AlarmConversion, FirstFaultInTheOrderOfTheStepsIsReported) {
  std::vector<fault_t> faults;
  faults.push_back({"source", {}, "Required key 'source' missing from message payload"});
  faults.push_back({"id", {}, "Required key 'id' missing from message payload"});
  faults.push_back({"count", {}, "Required key 'count' missing from message payload"});
  faults.push_back({"count", real(3), wrong_kind("count", "integer", "double")});
  faults.push_back({"severity", {}, "Required key 'severity' missing from message payload"});
  faults.push_back({"severity", whole(1), wrong_kind("severity", "string", "integer")});
  faults.push_back({"severity", text("minor"), "Unrecognized alarm severity: minor"});
  faults.push_back({"source", text("7"), wrong_kind("source", "map", "string")});
  faults.push_back({"source.id", {}, "Required key 'id' missing from source"});
  faults.push_back({"status", {}, "Required key 'status' missing from message payload"});
  faults.push_back({"status", truth(true), wrong_kind("status", "string", "boolean")});
  faults.push_back({"status", text("Cleared"), "Unrecognized alarm status: Cleared"});
  faults.push_back({"text", {}, "Required key 'text' missing from message payload"});
  faults.push_back({"time", {}, "Required key 'time' missing from message payload"});
  faults.push_back({"time", real(1), wrong_kind("time", "string", "double")});
  faults.push_back({"time", text("now"), "Error parsing timestamp 'now' in key 'time'"});
  faults.push_back({"type", {}, "Required key 'type' missing from message payload"});
  faults.push_back({"id", whole(1), "Value for key 'id' is not a string."});
  faults.push_back({"source.id", whole(7), "Value for key 'id' is not a string."});
  faults.push_back({"text", whole(1), "Value for key 'text' is not a string."});
  faults.push_back({"type", map_of(), "Value for key 'type' is not a string."});
  expectReportedInOrder(convertAlarm, alarm_example, faults);
}

TEST_F(AlarmConversion, EmptyValuesOfPresentKeysAreReported) {
  for (const char* const key : {"count", "severity", "source", "status", "time"}) {
    map_t payload = alarm_example();
    payload[text(key)] = data_t();
    EXPECT_EQ(conversion_error(convertAlarm, std::move(payload)),
              std::string("Problem with key '") + key + "': Get from empty");
  }
}

TEST_F(AlarmConversion, EverySeverityAndStatusIsNormalised) {
  for (const char* const severity : {"CRITICAL", "MAJOR", "MINOR", "WARNING"}) {
    for (const char* const status : {"ACTIVE", "ACKNOWLEDGED", "CLEARED"}) {
      map_t payload = alarm_example();
      payload[text("severity")] = borrowed(severity);
      payload[text("status")] = borrowed(status);
      map_t expected = alarm_fields();
      expected[text("severity")] = text(severity); // a copy of the constant
      expected[text("status")] = text(status);
      EXPECT_TRUE(same(fields_of(convertAlarm, std::move(payload)), expected));
    }
  }
}

TEST_F(AlarmConversion, CountKeepsAll64Bits) {
  for (const std::int64_t count : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1},
                                   std::int64_t{0}, std::numeric_limits<std::int64_t>::max()}) {
    map_t payload = alarm_example();
    payload[text("count")] = whole(count);
    map_t fields = fields_of(convertAlarm, std::move(payload));
    EXPECT_TRUE(same(at(fields, "count"), whole(count)));
  }
}

TEST_F(AlarmConversion, UnreadableDatesAreCarriedOverAsTheyAre) {
  map_t payload = alarm_example();
  payload[text("creationTime")] = text("garbage");
  payload[text("firstOccurrenceTime")] = whole(12);
  remove(payload, "lastUpdated");
  map_t expected = alarm_fields();
  expected[text("creationTime")] = text("garbage");
  expected[text("firstOccurrenceTime")] = whole(12);
  remove(expected, "lastUpdated");
  EXPECT_TRUE(same(fields_of(convertAlarm, std::move(payload)), expected));
}

TEST_F(AlarmConversion, FieldsThatOthersMakeAreCarriedOver) {
  map_t payload = alarm_example();
  payload[text("measurements")] = list_of(whole(1));
  payload[text("tenantId")] = text("t9");
  payload[text("name")] = text("n");
  map_t expected = alarm_fields();
  expected[text("measurements")] = list_of(whole(1));
  expected[text("tenantId")] = text("t9");
  expected[text("name")] = text("n");
  EXPECT_TRUE(same(fields_of(convertAlarm, std::move(payload)), expected));
}

TEST_F(AlarmConversion, BlocksAreTheNotificationsOwn) {
  map_t payload = alarm_example();
  const std::uint64_t id = block_of(at(payload, "id"));
  const std::uint64_t source_id = block_of(at(at(payload, "source").get<map_t>(), "id"));
  const std::uint64_t words = block_of(at(payload, "text"));
  const std::uint64_t type = block_of(at(payload, "type"));
  const std::uint64_t fragment = block_of(at(payload, "o6a_Custom"));
  const std::uint64_t deep = block_of(at(at(payload, "o6a_Custom").get<map_t>(), "deep"));
  const std::uint64_t key = key_block_of(payload, text("o6a_Custom"));
  map_t fields = fields_of(convertAlarm, std::move(payload));
  EXPECT_EQ(block_of(at(fields, "id")), id);
  EXPECT_EQ(block_of(at(fields, "source")), source_id);
  EXPECT_EQ(block_of(at(fields, "text")), words);
  EXPECT_EQ(block_of(at(fields, "type")), type);
  EXPECT_EQ(block_of(at(fields, "o6a_Custom")), fragment);
  EXPECT_EQ(block_of(at(at(fields, "o6a_Custom").get<map_t>(), "deep")), deep);
  EXPECT_EQ(key_block_of(fields, text("o6a_Custom")), key);
}

TEST_F(AlarmConversion, BorrowedStringsAreReadAndStayBorrowed) {
  map_t payload = alarm_example();
  for (const char* const key : {"id", "text", "type", "o6a_Custom"}) {
    payload[text(key)] = borrowed(key);
  }
  at(payload, "source").get<map_t>()[text("id")] = borrowed("7");
  payload[text("time")] = borrowed(EXAMPLE_TIME);
  map_t expected = alarm_fields();
  for (const char* const key : {"id", "text", "type", "o6a_Custom"}) {
    expected[text(key)] = borrowed(key);
  }
  expected[text("source")] = borrowed("7");
  EXPECT_TRUE(same(fields_of(convertAlarm, std::move(payload)), expected));
}

TEST_F(AlarmConversion, NullSeverityReadsAsTheEmptyTextNullStatusIsRefused) {
  for (const bool owned : {true, false}) {
    map_t payload = alarm_example();
    payload[text("severity")] = owned ? null_text() : borrowed(nullptr);
    EXPECT_EQ(conversion_error(convertAlarm, std::move(payload)), "Unrecognized alarm severity: ");
    payload = alarm_example();
    payload[text("status")] = owned ? null_text() : borrowed(nullptr);
    EXPECT_EQ(conversion_error(convertAlarm, std::move(payload)), NULL_TEXT_REFUSED);
  }
}

TEST_F(AlarmBuilder, AddsNoMembersAndSetsItsFields) {
  static_assert(sizeof(AlarmMessageBuilder) == sizeof(TivraMessageBuilder));
  const AlarmMessageBuilder builder(text("1"), -2, AlarmSeverity::WARNING, text("3"),
                                    AlarmStatus::ACKNOWLEDGED, text("4"), 5.5, text("6"));
  EXPECT_TRUE(
      same(builder.fields, map_of("id", text("1"), "count", whole(-2), "severity", text("WARNING"),
                                  "source", text("3"), "status", text("ACKNOWLEDGED"), "text",
                                  text("4"), "time", real(5.5), "type", text("6"))));
  EXPECT_TRUE(builder.measurements.empty());
}

// The error with everything wrong from the n-th check on.
std::string errorFromCheck(int n) {
  const auto string = [n](int check) { return check < n ? text("a") : whole(1); };
  const auto severity = static_cast<AlarmSeverity>(1 < n ? 3 : 4);
  const auto status = static_cast<AlarmStatus>(3 < n ? 2 : 3);
  return error_of([&] {
    const AlarmMessageBuilder builder(string(0), 1, severity, string(2), status, string(4), 0.0,
                                      string(5));
  });
}

TEST_F(AlarmBuilder, ChecksIdSeveritySourceStatusTextTypeInThisOrder) {
  EXPECT_EQ(errorFromCheck(0), "Value for key 'id' is not a string.");
  EXPECT_EQ(errorFromCheck(1), "Unrecognized enum value.");
  EXPECT_EQ(errorFromCheck(2), "Value for key 'id' is not a string."); // the source's, on purpose
  EXPECT_EQ(errorFromCheck(3), "Unrecognized enum value.");
  EXPECT_EQ(errorFromCheck(4), "Value for key 'text' is not a string.");
  EXPECT_EQ(errorFromCheck(5), "Value for key 'type' is not a string.");
  EXPECT_EQ(errorFromCheck(6), "nothing thrown");
}

constexpr const char* SEVERITIES[] = {"CRITICAL", "MAJOR", "MINOR", "WARNING"};
constexpr const char* ALARM_STATUSES[] = {"ACTIVE", "ACKNOWLEDGED", "CLEARED"};

TEST_F(AlarmTexts, ValuesAndTextsMatchInOrder) {
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(static_cast<int>(alarmSeverityFromString(SEVERITIES[i])), i);
    EXPECT_TRUE(
        same(alarmSeverityToDataTString(static_cast<AlarmSeverity>(i)), text(SEVERITIES[i])));
  }
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(static_cast<int>(alarmStatusFromString(ALARM_STATUSES[i])), i);
    EXPECT_TRUE(
        same(alarmStatusToDataTString(static_cast<AlarmStatus>(i)), text(ALARM_STATUSES[i])));
  }
  EXPECT_EQ(alarmSeverityFromString("MAJOR"), AlarmSeverity::MAJOR);
  EXPECT_EQ(alarmStatusFromString("ACTIVE"), AlarmStatus::ACTIVE);
}

TEST_F(AlarmTexts, AnyOtherTextIsRefused) {
  for (const char* const other : {"", "critical", "Major", "MINO", "MINORS", "WARNING ", "M", "C",
                                  "active", "ACTIVATED", "ACK", "Cleared", "%s"}) {
    EXPECT_EQ(error_of([&] { (void)alarmSeverityFromString(other); }),
              std::string("Unrecognized alarm severity: ") + other);
    EXPECT_EQ(error_of([&] { (void)alarmStatusFromString(other); }),
              std::string("Unrecognized alarm status: ") + other);
  }
  EXPECT_EQ(error_of([] { (void)alarmStatusFromString(nullptr); }), NULL_TEXT_REFUSED);
}

TEST_F(AlarmTexts, ValueOutsideTheEnumerationIsRefused) {
  for (const int value : {4, 5, 255, -1, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(
        error_of([&] { (void)alarmSeverityToDataTString(static_cast<AlarmSeverity>(value)); }),
        "Unrecognized enum value.");
    EXPECT_EQ(error_of([&] { (void)alarmStatusToDataTString(static_cast<AlarmStatus>(value)); }),
              "Unrecognized enum value.");
  }
  EXPECT_EQ(error_of([] { (void)alarmStatusToDataTString(static_cast<AlarmStatus>(3)); }),
            "Unrecognized enum value.");
}

} // namespace
} // namespace com::velanto::connectivity::plugins::pulsar

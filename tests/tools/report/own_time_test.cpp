#include "tools/report/own_time.hpp"

#include <gtest/gtest.h>

#include "ndjson/json_reader.hpp"

namespace com::velanto::connectivity::test {

using tools::report::secondsOf;
using tools::report::timeText;

TEST(OwnTime, TimestampsOfAllZonesAreRead) {
  const std::pair<const char*, std::int64_t> rows[] = {
      {"1970-01-01T00:00:05Z", 5},
      {"1970-01-01T02:00:05.999+02:00", 5},
      {"1969-12-31T19:30:00-04:30", 0},
      {"2024-05-14T06:55:12", 1'715'669'712}, // without a zone: UTC
      {"9999-12-31T23:59:59Z", 253'402'300'799},
  };
  for (const auto& [text, seconds] : rows) EXPECT_EQ(secondsOf(text), seconds) << text;
}

TEST(OwnTime, OtherTextsHaveNoTime) {
  for (const char* const text :
       {"", "yesterday", "2024-05-14", "2024-05-14 06:55:12Z", "2024-13-14T06:55:12Z",
        "2024-02-30T06:55:12Z", "2024-05-14T06:55:12Zulu", "2024-05-14T06:55:12+2",
        "1969-12-31T00:00:00Z", "2024-05-1aT06:55:12Z"}) {
    EXPECT_FALSE(secondsOf(text)) << text;
  }
}

TEST(OwnTime, FirstReadableFieldDecides) {
  JsonReader reader;
  const tools::report::OwnTimeReader times;
  const std::pair<const char*, std::int64_t> rows[] = {
      {R"({"payload":{"creationTime":"1970-01-01T00:00:09Z","lastUpdated":"1970-01-01T00:00:07Z","time":"1970-01-01T00:00:05Z"}})",
       5},
      {R"({"payload":{"creationTime":"1970-01-01T00:00:09Z","lastUpdated":"1970-01-01T00:00:07Z","time":"soon"}})",
       7},
      {R"({"payload":{"creationTime":"1970-01-01T00:00:09Z"}})", 9},
      {R"({"payload":{"time":12.5}})", 12},
  };
  for (const auto& [line, seconds] : rows) {
    EXPECT_EQ(times.timeOf(reader.parseMessage(line)), seconds) << line;
  }
  EXPECT_FALSE(times.timeOf(reader.parseMessage(R"({"payload":{"time":-1.0}})")));
  EXPECT_FALSE(times.timeOf(reader.parseMessage(R"({"payload":[1]})")));
}

TEST(OwnTime, LabelsLeaveOutWhatIsAlwaysZero) {
  EXPECT_EQ(timeText(1'715'669'712, 1), "2024-05-14 06:55:12");
  EXPECT_EQ(timeText(1'715'669'712, 15), "2024-05-14 06:55:12");
  EXPECT_EQ(timeText(1'715'669'712, 300), "2024-05-14 06:55");
  EXPECT_EQ(timeText(1'715'669'712, 604'800), "2024-05-14");
}

} // namespace com::velanto::connectivity::test

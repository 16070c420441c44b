#include "tools/check/examples.hpp"

#include <utility>

#include "tools/check/values.hpp"

namespace com::velanto::connectivity::tools::check {

namespace {

constexpr std::pair<const char*, const char*> EXAMPLES[] = {
    {"alarms", "FullAlarmConverts"},
    {"events", "AllOptionalDatesConvert"},
    {"events", "FullEventConverts"},
    {"managed_objects", "FullObjectConverts"},
    {"managed_objects", "MapInAPositionBecomesAField"},
    {"managed_objects", "PayloadSourceReplacesTheName"},
    {"measurements", "BadFragmentLeavesTheGoodOnesAlone"},
    {"measurements", "OtherEntriesOfASeriesAreItsParams"},
    {"operations", "FullOperationConverts"},
    {"operations", "SmallestOperationConverts"},
};

std::string plainJson(const std::string& id) {
  return R"({"id": ")" + id +
         R"(", "source": {"id": "7"}, "time": "2023-04-05T06:07:08.000Z", "type": "o6a_Test")";
}

} // namespace

std::vector<line_t> exampleLines() {
  std::vector<line_t> examples;
  for (const auto& [file, name] : EXAMPLES) {
    for (line_t& line : readLines(file)) {
      if (line.name == name) examples.push_back(std::move(line));
    }
  }
  return examples;
}

Message notificationOf(const line_t& example) {
  return std::move(readCase(example.json).in.front());
}

Message plainEvent(const std::string& id, const char* path) {
  return notification(path, std::string_view(plainJson(id) + R"(, "text": "t"})"));
}

Message plainMeasurement(const std::string& id) {
  return notification(MEASUREMENT_PATH, std::string_view(plainJson(id) + "}"));
}

data_t plainEventPayload(const std::string& id) {
  return value(R"({"id": ")" + id +
               R"(", "source": "7", "text": "t", "firstOccurrenceTime": 1680674828.0,)"
               R"( "type": "o6a_Test", "measurements": {}})");
}

} // namespace com::velanto::connectivity::tools::check

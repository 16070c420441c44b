// Keeps docs/fields.md true. (1) It runs each example through the built plug-in and compares it
// value by value, or its log line whole. (2) It does the same with each row of the table of times.
#include <gtest/gtest.h>

#include <set>

#include "ndjson/json_reader.hpp"
#include "ndjson/json_writer.hpp"
#include "tests/docs/markdown.hpp"
#include "tests/docs/replay_codec.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

constexpr const char* FIELDS = "docs/fields.md";
const std::string CATEGORY = "connectivity.OstroviaNotifications2Codec.replay";

// Values, not strings: tables that hold the same entries may list them in different orders.
::testing::AssertionResult isMessage(const Message& actual, const Message& expected) {
  if (actual.getPayload() == expected.getPayload() &&
      actual.getMetadataMap() == expected.getMetadataMap()) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure()
         << "documented: " << toJson(expected) << "\nactual:     " << toJson(actual);
}

class Fields : public HostFixture {
 protected:
  std::vector<Message> sendLine(ReplayCodec& codec, const std::string& line) {
    std::vector<Message> batch;
    batch.push_back(reader_.parseMessage(line));
    return codec.hostGets(std::move(batch));
  }

  void expectAsDocumented(ReplayCodec& codec, const documented_example_t& example) {
    const std::vector<Message> reached = sendLine(codec, example.input);
    std::vector<log_line_t> expected_log;
    if (!example.log.empty()) expected_log.push_back({CATEGORY, 3, example.log});
    EXPECT_EQ(takeLog(), expected_log);
    ASSERT_EQ(reached.size(), example.output.empty() ? 0u : 1u);
    if (reached.empty()) return;
    EXPECT_TRUE(isMessage(reached[0], reader_.parseMessage(example.output)));
  }

  JsonReader reader_;
};

} // namespace

TEST_F(Fields, EveryExampleShowsWhatThePluginDoes) {
  const examples_t documented = readExamples(readDocument(FIELDS));
  ReplayCodec codec(reader_.parseValue(documented.configuration));
  for (const documented_example_t& example : documented.examples) {
    SCOPED_TRACE(example.place);
    expectAsDocumented(codec, example);
  }
}

TEST_F(Fields, EveryKindHasAnExampleThatSucceeds) {
  std::set<std::string> types;
  for (const documented_example_t& example : readExamples(readDocument(FIELDS)).examples) {
    if (example.output.empty()) continue;
    Message output = reader_.parseMessage(example.output);
    map_t& metadata = output.getMetadataMap();
    if (has(metadata, "vlt.type")) types.insert(at(metadata, "vlt.type").get<const char*>());
  }
  const std::set<std::string> expected = {
      "com.tivra.ostrovia.Alarm", "com.tivra.ostrovia.Event", "com.tivra.ostrovia.ManagedObject",
      "com.tivra.ostrovia.Measurement", "com.tivra.ostrovia.Operation"};
  EXPECT_EQ(types, expected);
}

TEST_F(Fields, TimesBecomeTheValuesOfTheTable) {
  ReplayCodec codec(reader_.parseValue(R"({"tenantId": ""})"));
  const auto rows = readTable(readDocument(FIELDS), "Time");
  ASSERT_FALSE(rows.empty());
  for (const std::vector<std::string>& row : rows) {
    SCOPED_TRACE(row[0]);
    std::vector<Message> batch;
    batch.push_back(notification(
        "t/s/managedobjects/1",
        mapOf("id", text("1"), "name", text("n"), "lastUpdated", text(row[0].c_str()))));
    std::vector<Message> reached = codec.hostGets(std::move(batch));
    ASSERT_EQ(reached.size(), 1u);
    const data_t expected =
        row[1] == "unchanged" ? text(row[0].c_str()) : reader_.parseValue(row[1]);
    const data_t& actual = at(reached[0].getPayload().get<map_t>(), "lastUpdated");
    EXPECT_TRUE(actual == expected) << "actual: " << to_string(actual);
  }
}

} // namespace com::velanto::connectivity::test

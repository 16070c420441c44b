// The deepest messages that ostrovia-replay reads, with the built tool and each way of using it, on
// the stack of a usual shell.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ndjson/json_reader.hpp"
#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::HasSubstr;

constexpr int DEEPEST = JsonReader::MAX_DEPTH;

std::string times(int count, const std::string& text) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

// A map of so many levels.
std::string maps(int levels, const std::string& inner = "1") {
  return times(levels, R"({"d":)") + inner + times(levels, "}");
}

// `line` with one more field.
std::string with(std::string line, const std::string& field) {
  return line.insert(line.find(R"("id")"), field + ", ");
}

// Notifications of so many levels.
std::string deepEvent(int levels, const std::string& inner = "1") {
  return with(eventLine("1"), R"("deep": )" + maps(levels - 1, inner));
}
std::string deepTextlessEvent(int levels) {
  return with(textlessLine("2"), R"("deep": )" + maps(levels - 1));
}
// Its event has one more.
std::string deepMeasurement(int levels) {
  return R"({"metadata":{"pulsarPath":"t1/sub/measurements/7"},"payload":{"id":"3",)"
         R"("source":{"id":"9"},"time":"1970-01-01T00:00:05Z","type":"T",)"
         R"("f":{"s":{"value":1,"deep":)" +
         maps(levels - 3) + "}}}}\n";
}

std::string innermostColumn(const std::string& line) {
  return std::to_string(line.find(R"({"d":1})") + 1);
}

class DeepNestingTest : public Program {
 protected:
  result_t replay(const std::string& arguments) {
    result_t result = runShell("ulimit -s 8192; ostrovia-replay " + arguments);
#ifndef VLT_SANITIZED // AddressSanitizer keeps freed memory back
    EXPECT_LT(result.memory, 500'000) << arguments;
#endif
    return result;
  }
};

} // namespace

TEST_F(DeepNestingTest, DeepestEventsAreWrittenAndReadAgain) {
  input_ = deepEvent(DEEPEST) + deepMeasurement(DEEPEST);
  const result_t events = replay("--quiet");
  EXPECT_EQ(events.status, 0);
  EXPECT_EQ(events.diagnostics, "");
  EXPECT_NE(events.out.find(R"("deep":)" + maps(DEEPEST - 1)), std::string::npos);
  EXPECT_NE(events.out.find(R"("params":{"deep":)" + maps(DEEPEST - 3)), std::string::npos);
  input_ = events.out;
  const result_t again = replay("--quiet");
  EXPECT_EQ(again.status, 0);
  EXPECT_TRUE(again.out == events.out); // too long to show
}

TEST_F(DeepNestingTest, OneLevelMoreIsRefused) {
  const std::string event = deepEvent(DEEPEST + 1);
  const std::string measurement = deepMeasurement(DEEPEST + 1);
  input_ = event + measurement;
  const result_t result = replay("");
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.diagnostics, "<stdin>:1:" + innermostColumn(event) +
                                    ": nested deeper than 200000 levels\n"
                                    "<stdin>:2:" +
                                    innermostColumn(measurement) +
                                    ": nested deeper than 200000 levels\n"
                                    "read 2, reached the host 0, dropped 0, malformed 2, T ms\n");
}

TEST_F(DeepNestingTest, EachOptionEndsWell) {
  input_ = deepEvent(DEEPEST) + deepTextlessEvent(DEEPEST);
  environment_ = {"PLUGIN=" VLT_PLUGIN_PATH};
  const std::string events = replay("--quiet").out;
  for (const char* const arguments :
       {"--quiet --record golden --dropped dead", "--quiet --batch-size 3 --threads 2",
        "--quiet --expect golden --report page.html --against \"$PLUGIN\"",
        "--quiet --redact all-texts --redacted copy in", "--summary --log-level 6 2> log"}) {
    const result_t result = replay(arguments);
    EXPECT_EQ(result.status, 0) << arguments;
    EXPECT_EQ(result.diagnostics, "") << arguments;
    EXPECT_TRUE(result.out == events) << arguments; // too long to show
  }
  for (const char* const file : {"dead", "copy"}) {
    input_ = folder_.read(file);
    EXPECT_EQ(replay("--quiet --strict").status, 1) << file;
  }
}

TEST_F(DeepNestingTest, ExplanationsSayThatTheyStop) {
  input_ = deepEvent(DEEPEST);
  const result_t result = replay("--explain");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out,
            "<stdin>:1: events, converted\n"
            "  unknown    everything: the message has too many values, or is nested too\n"
            "               deep, to run again\n");
  EXPECT_EQ(result.diagnostics, "read 1, reached the host 1, dropped 0, malformed 0, T ms\n");
}

TEST_F(DeepNestingTest, DeepDifferencesAreShownAsAWhole) {
  input_ = deepEvent(DEEPEST);
  EXPECT_EQ(replay("--quiet --record golden").status, 0);
  input_ = deepEvent(DEEPEST, "2");
  const result_t result = replay("--quiet --expect golden --report page.html");
  EXPECT_EQ(result.status, 5);
  const std::string braces = times(76, "}");
  const auto value = [&braces](const std::string& sign, const std::string& inner) {
    return sign + R"( …"d":{"d":{"d":{"d":{"d":)" + inner + times(51, "}") + "\n  " + braces +
           "}\n  " + braces + "}\n  " + braces + "…\n";
  };
  EXPECT_EQ(result.diagnostics,
            "--- golden:1\n+++ <stdin>:1\n"
            "@ event.payload.deep" +
                times(27, ".d") +
                "\n"
                "  too deep for paths: the value as a whole\n" +
                value("-", "1") + value("+", "2") +
                "ostrovia-replay: 1 of 1 messages differ from golden\n");
  EXPECT_THAT(folder_.read("page.html"),
              HasSubstr("<span class=\"note\">too deep for paths: the value as a whole</span>"));
}

} // namespace com::velanto::connectivity::test

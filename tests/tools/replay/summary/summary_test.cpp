// --summary of the built tool.
#include "tools/replay/summary/summary.hpp"

#include <gtest/gtest.h>

#include <sstream>

#include "identity/build_name.hpp"
#include "tests/support/pattern.hpp"
#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

namespace {

class SummaryTest : public Program {
 protected:
  // The tool's diagnostics, without log lines and with T for each figure of time.
  std::string summaryOf(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--log-level", "2"});
    static const Pattern TIME(R"([0-9.]+ (messages/s|µs))");
    return TIME.replacedIn(run(arguments).diagnostics, "T $1");
  }
};

const std::string BUILDS =
    "tool     " + std::string(VLT_BUILD_NAME) + "\nplug-in  " + VLT_BUILD_NAME + "\n";
const std::string TIMES = BUILDS + "T messages/s, a batch: median T µs, 99th percentile T µs\n";

} // namespace

TEST_F(SummaryTest, KindsReasonsAndChannelsAreCounted) {
  input_ = eventLine("1") + textlessLine("2") + "\n" + alarmLine("3", "big") + "x\n" +
           passingLine("1") + textlessLine("4") + alarmLine("5") + eventLine("6");
  EXPECT_EQ(summaryOf({"--summary", "--channel-prefix", "p."}),
            "<stdin>:5:1: not well-formed JSON\n"
            "\n"
            "                   converted      passed     dropped\n"
            "alarms                     1           0           1\n"
            "events                     2           0           2\n"
            "no path                    0           1           0\n"
            "all                        3           1           3\n"
            "malformed lines: 1\n"
            "\n"
            "     dropped  reason          key                 first in\n"
            "           2  missing-key     text                <stdin>:2\n"
            "           1  bad-severity    severity            <stdin>:4\n"
            "\n"
            "      events  channel\n"
            "           3  p.ostrovia.devices\n"
            "\n" +
                TIMES +
                "read 8, reached the host 4, dropped 3, malformed 1, T ms, 0 blocks live\n");
}

TEST_F(SummaryTest, NothingReadIsNothingCounted) {
  EXPECT_EQ(summaryOf({"--summary"}),
            "\n"
            "                   converted      passed     dropped\n"
            "all                        0           0           0\n"
            "\n" +
                TIMES +
                "read 0, reached the host 0, dropped 0, malformed 0, T ms, 0 blocks live\n");
}

TEST_F(SummaryTest, OnlyPlacesMayExceed80Columns) {
  const std::string file = folder_.write(std::string(100, 'f'), textlessLine("1") + eventLine("2"));
  input_.clear();
  std::istringstream lines(
      run({"--summary", "--log-level", "2", "--channel-prefix", std::string(100, 'p'), file})
          .diagnostics);
  int cut = 0;
  for (std::string line; std::getline(lines, line);) {
    std::size_t width = 0;
    for (const char c : line) width += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    EXPECT_TRUE(width < 80 || line.ends_with("  " + file + ":1")) << line;
    if (line.find("…") != std::string::npos) ++cut;
  }
  EXPECT_EQ(cut, 1); // the channel's name
}

TEST_F(SummaryTest, ProgramsGetOneLineOfJson) {
  input_ = eventLine("1") + textlessLine("2") + passingLine("1");
  const std::string shown = run({"--summary=json", "--log-level", "2"}).diagnostics;
  EXPECT_EQ(
      shown.rfind(
          R"({"version":1,"complete":true,"read":3,"reached":2,"converted":1,"passed":1,"dropped":1,"malformed":0,)"
          R"("blocks_live":0,"kinds":{"alarms":{"converted":0,"passed":0,"dropped":0},)"
          R"("events":{"converted":1,"passed":0,"dropped":1},)"
          R"("managedobjects":{"converted":0,"passed":0,"dropped":0},)"
          R"("measurements":{"converted":0,"passed":0,"dropped":0},)"
          R"("operations":{"converted":0,"passed":0,"dropped":0},)"
          R"("other path":{"converted":0,"passed":0,"dropped":0},)"
          R"("no path":{"converted":0,"passed":1,"dropped":0}},)"
          R"("reasons":[{"reason":"missing-key","key":"text","count":1,"first":"<stdin>:2","number":2}],)"
          R"("channels":{"ostrovia.devices":1},"printed":[],"printed_otherwise":0,"seconds":)",
          0),
      0u)
      << shown;
  const Pattern times(
      R"("messages_per_second":[0-9.e+]+,"batches":\{"count":3,)"
      R"("median_us":[0-9.]+,"p99_us":[0-9.]+,"classes":\[(\[[0-9]+,[123]\],?)+\]\},"tool":"[^"]*",)"
      R"("plugin":\{"path":"[^"]*","size":[0-9]+,"sha256":"[0-9a-f]{64}",)"
      R"("build_id":"[0-9a-f]{40}","build":"[^"]*"\},"recordings":\[\],)"
      R"("files_read":\[\],"deleted_files":\[\],"headless_bytes":0\}\n$)");
  EXPECT_TRUE(times.isIn(shown)) << shown;
}

TEST_F(SummaryTest, BothBuildsOfAComparisonAreNamed) {
  const std::vector<std::string> against = {"--against", VLT_PLAIN_BUILD_PATH};
  EXPECT_NE(summaryOf({"--summary", against[0], against[1]}).find(BUILDS + "against  build id "),
            std::string::npos);
  const std::string json = summaryOf({"--summary=json", against[0], against[1]});
  EXPECT_TRUE(
      Pattern(R"("against":\{"path":"[^"]*libplain_build.so","size":.*"build":null\})").isIn(json))
      << json;
}

TEST_F(SummaryTest, BatchSizeChangesTheTimesAlone) {
  for (int i = 0; i < 7; ++i) input_ += eventLine("1") + textlessLine("2");
  const std::string alone = summaryOf({"--summary"});
  EXPECT_EQ(summaryOf({"--summary", "--batch-size", "5"}), alone);
  EXPECT_NE(
      run({"--summary=json", "--batch-size", "5"}).diagnostics.find(R"("batches":{"count":3,)"),
      std::string::npos);
}

} // namespace com::velanto::connectivity::test

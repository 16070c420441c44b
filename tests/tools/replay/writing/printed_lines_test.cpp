#include "tools/replay/writing/printed_lines.hpp"

#include "tests/tools/program.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::test {

namespace {

class PrintedLinesTest : public Program {
 protected:
  // Passing messages through the faulty plug-in.
  result_t runFaulty(const std::string& fault, std::vector<std::string> arguments = {}) {
    input_ = passingLine("1") + passingLine("2") + passingLine("3");
    for (const char* const argument : {"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id"}) {
      arguments.emplace_back(argument);
    }
    arguments.push_back(fault);
    return run(arguments);
  }
};

const std::string CREATED = "ostrovia-replay: the plug-in wrote to standard error: created\n";
const char* const READ_3 = "read 3, reached the host 3, dropped 0, malformed 0, T ms\n";

// An event whose source has the wrong kind, which the codec also tells standard error.
std::string sourcelessLine() {
  return R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": "1", "source": 5}})"
         "\n";
}

} // namespace

TEST_F(PrintedLinesTest, EachDistinctLineAppearsOnceWithItsCount) {
  input_ = eventLine("1") + sourcelessLine() + sourcelessLine();
  const std::string shown = run({"--log-level", "2"}).diagnostics;
  EXPECT_TRUE(
      shown.starts_with("<stdin>:2: the plug-in wrote 2 times to standard error: GetVisitor<"))
      << shown;
  EXPECT_EQ(shown.find("GetVisitor<", shown.find("GetVisitor<") + 1), std::string::npos) << shown;
}

TEST_F(PrintedLinesTest, LinesOfCallsAndOfLifeAreApart) {
  EXPECT_EQ(runFaulty("talk").diagnostics,
            CREATED + "<stdin>:1: the plug-in wrote 3 times to standard error: a batch\n" + READ_3);
}

TEST_F(PrintedLinesTest, LargerBatchesAreTakenApart) {
  EXPECT_EQ(runFaulty("talk", {"--batch-size", "3"}).diagnostics,
            CREATED + "<stdin>:1: the plug-in wrote 3 times to standard error: a batch\n" + READ_3);
}

TEST_F(PrintedLinesTest, ThreadsLeaveLinesWithoutAMessage) {
  EXPECT_EQ(runFaulty("talk", {"--threads", "2"}).diagnostics,
            "ostrovia-replay: the plug-in wrote 2 times to standard error: created\n"
            "ostrovia-replay: the plug-in wrote 3 times to standard error: a batch\n" +
                std::string(READ_3));
}

TEST_F(PrintedLinesTest, QuietRunsKeepThemToTheSummary) {
  EXPECT_EQ(runFaulty("talk", {"--quiet"}).diagnostics, "");
  const std::string json = runFaulty("talk", {"--quiet", "--summary=json"}).diagnostics;
  EXPECT_NE(json.find(R"("printed":[{"text":"created","count":1},)"
                      R"({"text":"a batch","count":3,"first":"<stdin>:1"}],"printed_otherwise":0)"),
            std::string::npos)
      << json;
}

TEST_F(PrintedLinesTest, StatusLineIsNeverBroken) {
  input_ = std::string();
  for (int i = 0; i < 3000; ++i) input_ += passingLine("1");
  const std::string shown = shownOnTerminal(
      error_descriptor_, {"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "talk"});
  EXPECT_EQ(shown.find("a batch"), shown.rfind("a batch")) << shown;
  EXPECT_NE(shown.find("wrote 3000 times to standard error: a batch\r\n"), std::string::npos);
}

TEST_F(PrintedLinesTest, LastWordsOfAPluginAreShown) {
  environment_ = {"ASAN_OPTIONS=handle_abort=0"};
  const result_t aborted = runFaulty("abort");
  EXPECT_EQ(aborted.status, -1);
  EXPECT_EQ(aborted.diagnostics, "last ? words\n");
  const result_t ended = runFaulty("exit");
  EXPECT_EQ(ended.status, 3);
  EXPECT_TRUE(ended.diagnostics.starts_with("last ? words\n")) << ended.diagnostics;
}

TEST_F(PrintedLinesTest, PlainHostLibrariesKeepStandardError) {
  environment_ = {"LD_PRELOAD=" VLT_PLAIN_HOST_PATH, "ASAN_OPTIONS=verify_asan_link_order=0"};
  EXPECT_TRUE(runFaulty("talk").diagnostics.starts_with("created\na batch\na batch\na batch\n"));
}

TEST(PrintedLines, LinesBeyondTheMostAreOnlyCounted) {
  tools::PrintedLines lines;
  for (std::size_t i = 0; i < tools::PrintedLines::MOST + 2; ++i) {
    lines.add(std::to_string(i), "");
  }
  lines.add("0\n1\n\n", "in:1");
  EXPECT_EQ(lines.lines().size(), tools::PrintedLines::MOST);
  EXPECT_EQ(lines.lines().front().count, 2u);
  EXPECT_EQ(lines.others(), 3u);
  EXPECT_TRUE(lines.text().ends_with("ostrovia-replay: the plug-in wrote other lines 3 times\n"));
}

} // namespace com::velanto::connectivity::test

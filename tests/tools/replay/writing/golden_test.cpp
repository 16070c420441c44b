// --record, --expect and --against of the built tool.
#include "tools/replay/writing/golden.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "identity/build_name.hpp"
#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

namespace {

const char* const READ_2 = "read 2, reached the host 1, dropped 1, malformed 0, T ms\n";

const std::string REMARK =
    R"({"made by":")" + std::string(VLT_BUILD_NAME) + R"(","plug-in":")" + VLT_BUILD_NAME + "\"}\n";

class GoldenTest : public Program {
 protected:
  // Makes a golden file of `input`, which the next run reads again.
  void record(const std::string& input) {
    input_ = input;
    ASSERT_NE(run({"--record", golden_}).status, 7);
  }
  result_t expect() { return run({"--quiet", "--expect", golden_}); }
  // The result of a golden file with `to` in the place of `from`.
  result_t expectWith(const std::string& from, const std::string& to) {
    std::string content = folder_.read("golden");
    content.replace(content.find(from), from.size(), to);
    folder_.write("golden", content);
    return expect();
  }

  const std::string golden_ = folder_.path("golden");
};

} // namespace

TEST_F(GoldenTest, FileHoldsEventsDropsAndLogInOrder) {
  record(passingLine("1") + "x\n" + textlessLine("2"));
  EXPECT_EQ(
      folder_.read("golden"),
      "{\"at\":\"<stdin>:1\",\"outcome\":\"passed\",\"event\":{\"metadata\":{},\"payload\":1}}\n"
      "{\"at\":\"<stdin>:2\",\"outcome\":\"malformed\",\"reason\":\"not well-formed JSON\"}\n"
      "{\"at\":\"<stdin>:3\",\"outcome\":\"dropped\",\"log\":[{\"level\":3,\"text\":\"" +
          textlessLog("2") + "\"}]}\n" + REMARK);
}

TEST_F(GoldenTest, BuildsInTheFileAreNotCompared) {
  record(passingLine("1"));
  EXPECT_EQ(expectWith(VLT_BUILD_NAME, "another build").status, 0);
  folder_.write("golden", folder_.read("golden") + REMARK);
  EXPECT_EQ(expect().status, 0);
  run({"--plugin", VLT_PLAIN_BUILD_PATH, "--record", golden_});
  EXPECT_NE(folder_.read("golden").find("\"plug-in\":\"build id "), std::string::npos);
  EXPECT_EQ(expect().status, 0);
}

TEST_F(GoldenTest, SameRunIsAsExpected) {
  record(eventLine("1") + textlessLine("2"));
  const result_t result = run({"--expect", golden_});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.diagnostics, "<stdin>:2: " + textlessLog("2") + "\n" + READ_2);
}

TEST_F(GoldenTest, DifferingFieldsAreShownMessageByMessage) {
  record(eventLine("1") + alarmLine("2") + eventLine("3"));
  std::string content = folder_.read("golden");
  content.replace(content.rfind("\"text\":\"x\""), 10, "\"words\":2");
  folder_.write("golden", content);
  const result_t result = expectWith("\"severity\":\"MAJOR\"", "\"severity\":\"MINOR\"");
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.diagnostics, "--- " + golden_ +
                                    ":2\n"
                                    "+++ <stdin>:2\n"
                                    "@ event.payload.severity\n"
                                    "- \"MINOR\"\n"
                                    "+ \"MAJOR\"\n"
                                    "--- " +
                                    golden_ +
                                    ":3\n"
                                    "+++ <stdin>:3\n"
                                    "@ event.payload.words\n"
                                    "- 2\n"
                                    "@ event.payload.text\n"
                                    "+ \"x\"\n"
                                    "ostrovia-replay: 2 of 3 messages differ from " +
                                    golden_ + "\n");
}

TEST_F(GoldenTest, OrderOfEntriesDoesNotMatter) {
  record(passingLine(R"({"a": 1, "b": [1, 2]})"));
  const std::string content = folder_.read("golden");
  const bool a_first = content.find("\"a\":1,") != std::string::npos;
  const result_t result = a_first ? expectWith(R"("a":1,"b":[1,2])", R"("b":[1,2],"a":1)")
                                  : expectWith(R"("b":[1,2],"a":1)", R"("a":1,"b":[1,2])");
  EXPECT_NE(folder_.read("golden"), content);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.diagnostics, "");
}

TEST_F(GoldenTest, OrderOfElementsAndKindsOfNumbersMatter) {
  record(passingLine("[1, 2]"));
  EXPECT_EQ(expectWith("[1,2]", "[2,1]").status, 5);
  EXPECT_EQ(expectWith("[2,1]", "[1,2]").status, 0);
  EXPECT_EQ(expectWith("[1,2]", "[1,2.0]").status, 5);
}

TEST_F(GoldenTest, OrderOfMessagesMatters) {
  record(eventLine("1") + eventLine("2"));
  input_ = eventLine("2") + eventLine("1");
  EXPECT_EQ(expect().status, 5);
}

TEST_F(GoldenTest, PlaceDoesNotMatter) {
  record(eventLine("1"));
  input_ = "\n" + eventLine("1");
  EXPECT_EQ(run({"--expect", golden_, folder_.write("other", input_)}).status, 0);
}

TEST_F(GoldenTest, LogLinesMatter) {
  record(textlessLine("1"));
  const result_t result = expectWith("Required key", "Missing key");
  EXPECT_EQ(result.status, 5);
  EXPECT_NE(result.diagnostics.find("@ log[0].text\n- \"<connectivity."), std::string::npos);
}

TEST_F(GoldenTest, MessagesMissingOnEitherSideAreShown) {
  record(passingLine("1") + passingLine("2"));
  input_ = passingLine("1");
  const result_t fewer = expect();
  EXPECT_EQ(fewer.status, 5);
  EXPECT_EQ(fewer.diagnostics, "--- " + golden_ +
                                   ":2\n"
                                   "+++ nothing\n"
                                   "- "
                                   "{\"at\":\"<stdin>:2\",\"outcome\":\"passed\",\"event\":{"
                                   "\"metadata\":{},\"payload\":2}}\n"
                                   "ostrovia-replay: 1 of 2 messages differ from " +
                                   golden_ + "\n");
  input_ = passingLine("1") + passingLine("2") + "x\n";
  const result_t more = expect();
  EXPECT_EQ(more.status, 5);
  EXPECT_NE(
      more.diagnostics.find("--- nothing\n+++ <stdin>:3\n+ {\"at\":\"<stdin>:3\",\"outcome\""),
      std::string::npos);
}

TEST_F(GoldenTest, DifferencesFit80ColumnsAndAreLimited) {
  std::string other;
  for (int i = 0; i < 60; ++i) {
    input_ += passingLine("\"" + std::string(500, 'a') + "\"");
    other += passingLine("\"" + std::string(450, 'a') + std::string(50, 'b') + "\"");
  }
  record(input_);
  input_ = other;
  const std::string shown = expect().diagnostics;
  std::istringstream lines(shown);
  int differences = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("---")) ++differences;
    if (line.starts_with("+ ")) {
      EXPECT_NE(line.find('b'), std::string::npos) << line;
    }
    if (!line.starts_with("ostrovia-replay")) {
      EXPECT_LE(line.size(), 83u) << line; // two ellipses of these have 3 bytes each
    }
  }
  EXPECT_EQ(differences, 50);
  EXPECT_NE(shown.find("60 of 60 messages differ from " + golden_ + ", the first 50 are shown\n"),
            std::string::npos);
}

TEST_F(GoldenTest, LinesWithoutAMessageBelongToTheRun) {
  input_ = passingLine("1");
  run({"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "shutdown", "--record", golden_});
  EXPECT_NE(folder_.read("golden").find(
                "\n{\"at\":\"\",\"outcome\":\"no message\",\"log\":[{\"level\":3,"),
            std::string::npos);
  EXPECT_EQ(run({"--expect", golden_}).status, 5);
}

TEST_F(GoldenTest, FileOfAnotherKindIsRefused) {
  record(eventLine("1"));
  folder_.write("golden", folder_.read("golden") + eventLine("2"));
  input_ = eventLine("1") + eventLine("2");
  const result_t result = expect();
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: " + golden_ + ":3: no line of a golden file, which --record makes\n");
}

TEST_F(GoldenTest, FolderIsNoGoldenFile) {
  std::filesystem::create_directory(folder_.path("d"));
  const result_t result = run({"--expect", "d"});
  EXPECT_EQ(result.status, tools::EXIT_IO);
  EXPECT_EQ(result.diagnostics, "ostrovia-replay: d: Is a directory\n");
}

TEST_F(GoldenTest, MissingGoldenFileIsAnError) {
  const result_t result = run({"--expect", "/nowhere/golden"});
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.diagnostics, "ostrovia-replay: /nowhere/golden: No such file or directory\n");
}

TEST_F(GoldenTest, BothBuildsOfOnePluginDoTheSame) {
  std::filesystem::copy(VLT_PLUGIN_PATH, folder_.path("next.so"));
  input_ = eventLine("1") + textlessLine("2");
  const result_t result = run({"--against", "next.so"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.diagnostics, "<stdin>:2: " + textlessLog("2") + "\n" + READ_2);
}

TEST_F(GoldenTest, DifferencesOfAnotherBuildAreShown) {
  input_ = passingLine("1") + textlessLine("2");
  const result_t result = run({"--quiet", "--against", VLT_FAULTY_PLUGIN_PATH});
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.diagnostics.rfind("--- <stdin>:2\n"
                                     "+++ <stdin>:2, the other build\n"
                                     "@ outcome\n"
                                     "- \"dropped\"\n"
                                     "+ \"passed\"\n",
                                     0),
            0u)
      << result.diagnostics;
  EXPECT_NE(result.diagnostics.find("@ log\n- [{\"level\":3,\"text\":\"<connectivity."),
            std::string::npos);
  EXPECT_NE(result.diagnostics.find("1 of 2 messages differ from " VLT_FAULTY_PLUGIN_PATH "\n"),
            std::string::npos);
}

TEST_F(GoldenTest, LogLinesAtTheEndAreCompared) {
  input_ = passingLine("1");
  const result_t result = run({"--quiet", "--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id",
                               "shutdown", "--against", VLT_PLUGIN_PATH});
  EXPECT_EQ(result.status, 5);
  EXPECT_NE(result.diagnostics.find("--- the log without a message\n"
                                    "+++ the same of the other build\n@ log\n- [{"),
            std::string::npos);
}

TEST_F(GoldenTest, UnusableOtherBuildIsAnError) {
  EXPECT_EQ(run({"--against", "/nowhere/next.so"}).status, 4);
}

} // namespace com::velanto::connectivity::test

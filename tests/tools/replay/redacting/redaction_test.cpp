// --redact of the built tool.
#include "tools/replay/redacting/redaction.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/pattern.hpp"
#include "tests/support/samples.hpp"
#include "tests/tools/program.hpp"
#include "tests/tools/recorded_lines.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

class RedactionTest : public Program {
 protected:
  result_t redact(const std::string& fields, std::vector<std::string> others = {}) {
    others.insert(others.end(), {"--quiet", "--redact", fields, "--redacted", "copy.ndjson"});
    return run(others);
  }
  std::string copy() const { return folder_.read("copy.ndjson"); }

  // The summary of an input without its times; the same name for any file.
  std::string summaryOf(const std::string& path) {
    const std::string json = run({"--summary=json", "--log-level", "2", path}).diagnostics;
    const std::string summary = json.substr(json.find("\"read\":"));
    return Pattern("\"first\":\"[^\"]*:")
        .replacedIn(summary.substr(0, summary.find(",\"seconds\"")), "");
  }
};

} // namespace

TEST_F(RedactionTest, EqualTextsStayEqualInAllMessages) {
  input_ = eventLine("47110815") + alarmLine("47110815") + eventLine("47110816");
  EXPECT_EQ(redact("all-texts").status, 0);
  const auto ids = Pattern("\"id\": \"(\\d{15})\", \"source\"").allIn(copy());
  ASSERT_EQ(ids.size(), 3u);
  EXPECT_EQ(ids[0][1], ids[1][1]);
  EXPECT_NE(ids[0][1], ids[2][1]);
  EXPECT_THAT(copy(), Not(HasSubstr("47110815")));
  EXPECT_THAT(copy(), HasSubstr("/events/"));
  EXPECT_THAT(copy(), HasSubstr("\"severity\": \"MAJOR\""));
}

TEST_F(RedactionTest, SamplesKeepTheirSummary) {
  for (const auto& entry : fs::directory_iterator(VLT_SAMPLES)) {
    if (entry.path().extension() != ".ndjson") continue;
    const std::string path = entry.path();
    const std::string before = summaryOf(path);
    if (before.find("\"malformed\":0") == std::string::npos) continue;
    EXPECT_EQ(redact("all-texts,all-times", {path}).status, 0) << path;
    EXPECT_EQ(summaryOf("copy.ndjson"), before) << path;
  }
}

TEST_F(RedactionTest, OneKeyGivesOneCopy) {
  input_ = eventLine("1");
  const std::string key = folder_.write("key", "the key of this test, of some bytes");
  EXPECT_EQ(redact("all-texts", {"--redact-key", key}).status, 0);
  const std::string first = copy();
  redact("all-texts", {"--redact-key", key});
  EXPECT_EQ(copy(), first);
  redact("all-texts");
  EXPECT_NE(copy(), first);
}

TEST_F(RedactionTest, FieldsOfNoMessageAreReported) {
  input_ = eventLine("1");
  const result_t result = redact("source,source.id,all-text,payload.txt,metadata.pulsarPath");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: --redact: no message has the field all-text\n"
            "ostrovia-replay: --redact: no message has the field payload.txt\n");
}

TEST_F(RedactionTest, CopyThatHidesNothingIsNotWritten) {
  input_ = eventLine("1");
  const result_t result = redact("all-text,source.nmae");
  EXPECT_EQ(result.status, tools::EXIT_USAGE);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: --redact: no message has the field all-text\n"
            "ostrovia-replay: --redact: no message has the field source.nmae\n"
            "ostrovia-replay: nothing would be hidden; copy.ndjson is not written\n");
  EXPECT_FALSE(fs::exists(folder_.path("copy.ndjson")));
  input_ = "";
  EXPECT_EQ(redact("id").status, 0);
}

TEST_F(RedactionTest, DifferingOutcomeLeavesTheOldFile) {
  folder_.write("copy.ndjson", "old\n");
  // The codec takes blanks for digits here, a stand-in has none of them.
  input_ = eventLine("1") + Pattern("1970-01-01T00").replacedIn(eventLine("2"), "1970-01-01T 0");
  const result_t result = redact("all-texts", {"--log-level", "2"});
  EXPECT_EQ(result.status, tools::EXIT_DIFFERENT);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: <stdin>:2: redacted, this message is not 'converted' but 'dropped, "
            "bad-timestamp time'; copy.ndjson is not written\n");
  EXPECT_EQ(copy(), "old\n");
  EXPECT_FALSE(fs::exists(folder_.path(".copy.ndjson.1")));
}

TEST_F(RedactionTest, MalformedLinesAndRemarksAreLeftOut) {
  input_ = "secret\n" + textlessLine("47110815");
  input_.insert(input_.rfind('}'), R"(,"dropped":{"text":"47110815"})");
  const result_t result = redact("all-texts");
  EXPECT_EQ(result.status, tools::EXIT_BAD_INPUT);
  EXPECT_THAT(result.diagnostics,
              HasSubstr("ostrovia-replay: 1 malformed lines are not in copy.ndjson\n"));
  EXPECT_THAT(copy(), Not(HasSubstr("secret")));
  EXPECT_THAT(copy(), Not(HasSubstr("dropped")));
  EXPECT_THAT(copy(), Not(HasSubstr("47110815")));
}

TEST_F(RedactionTest, RecordingIsARecordingAgain) {
  fs::create_directory(folder_.path("rec"));
  folder_.write(
      "rec/before.000001.ndjson",
      headLine({"before", 1}) + recordedLine({1, 1}, eventLine("47110815")) + gapLine(2, 3, 2) +
          recordedLine({4, 4, 0, 1, "transport"}, textlessLine("47110815")) + footLine(4, 2, 0, 2));
  const std::string before = run({"rec", "--as-recorded"}).diagnostics;
  EXPECT_EQ(redact("all-texts", {"rec", "--as-recorded", "--threads", "2"}).status, 0);
  EXPECT_THAT(copy(), Not(HasSubstr("47110815")));
  EXPECT_THAT(copy(), HasSubstr(R"("redacted":["all-texts"]}}})"
                                "\n"));
  EXPECT_THAT(copy(), HasSubstr(gapLine(2, 3, 2)));
  EXPECT_THAT(copy(), HasSubstr(footLine(4, 2, 0, 2)));
  fs::rename(folder_.path("copy.ndjson"), folder_.path("rec/before.000001.ndjson"));
  EXPECT_EQ(run({"rec", "--as-recorded"}).diagnostics, before);
}

TEST_F(RedactionTest, CopyOfOneDirectionAloneIsRefused) {
  const std::string lines = headLine({"before", 1}) +
                            recordedLine({1, 1, 0, 1, "transport"}, eventLine("47110815")) +
                            footLine(1, 1, 0, 0);
  folder_.write("before.000001.ndjson", lines);
  const result_t result = redact("all-texts", {"before.000001.ndjson"});
  EXPECT_EQ(result.status, tools::EXIT_USAGE);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: before has messages of both directions, which only --as-recorded "
            "copies; copy.ndjson is not written\n");
  EXPECT_FALSE(fs::exists(folder_.path("copy.ndjson")));
}

TEST_F(RedactionTest, WrongUseIsNamed) {
  constexpr const char* TOGETHER =
      "ostrovia-replay: --redact and --redacted need each other, --redact-key needs both\n";
  EXPECT_EQ(run({"--redact", "id"}).diagnostics, TOGETHER);
  EXPECT_EQ(run({"--redacted", "copy.ndjson"}).diagnostics, TOGETHER);
  EXPECT_EQ(run({"--redact-key", "key"}).diagnostics, TOGETHER);
  EXPECT_EQ(run({"--redact", "id", "--redacted", "copy.ndjson", "--suite", "."}).status,
            tools::EXIT_USAGE);
  EXPECT_EQ(redact("id", {"--repeat", "2", "in"}).status, tools::EXIT_USAGE);
  EXPECT_EQ(redact("a[1]").status, tools::EXIT_USAGE);
}

} // namespace com::velanto::connectivity::test

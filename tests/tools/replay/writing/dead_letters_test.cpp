// --dropped of the built tool, and the form of its lines.
#include "tools/replay/writing/dead_letters.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

namespace {

class DeadLettersTest : public Program {
 protected:
  // The lines of a string, without line ends.
  static std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size(); begin = text.find('\n', begin) + 1) {
      lines.push_back(text.substr(begin, text.find('\n', begin) - begin));
    }
    return lines;
  }

  // `line` without the remark, by the rule that the documents give.
  static std::string original(std::string line) {
    const std::size_t begin = line.rfind(",\"dropped\":{\"file\":");
    const std::size_t end = line.rfind('}');
    return line.erase(begin, end - begin);
  }

  const std::string dropped_ = folder_.path("dropped.ndjson");
};

} // namespace

TEST_F(DeadLettersTest, LineHasItsPlaceAndReason) {
  input_ = eventLine("1") + textlessLine("2");
  EXPECT_EQ(run({"--dropped", dropped_}).status, 0);
  std::string expected = textlessLine("2");
  expected.insert(expected.rfind('}'),
                  R"(,"dropped":{"file":"<stdin>","line":2,"reason":"missing-key","key":"text",)"
                  R"("text":")" +
                      textlessLog("2") + "\"}");
  EXPECT_EQ(folder_.read("dropped.ndjson"), expected);
}

TEST_F(DeadLettersTest, OriginalLineIsRecoveredByteForByte) {
  const std::vector<std::string> lines = {
      R"({"metadata": {"pulsarPath": "t/s/events/1"}, "payload": {"id": "caf\u00e9"}})",
      "  {\t\"payload\" : {\"id\":\"\\\"dropped\\\":{\\\"file\\\":\"} , "
      "\"metadata\":{\"pulsarPath\":\"t/s/x\"} } \t\r",
      R"({"metadata":{"pulsarPath":"a"},"payload":{"dropped":{"file":1.50e1}}})"};
  for (const std::string& line : lines) input_ += line + "\n";
  run({"--dropped", dropped_});
  std::vector<std::string> recovered = linesOf(folder_.read("dropped.ndjson"));
  std::transform(recovered.begin(), recovered.end(), recovered.begin(), &DeadLettersTest::original);
  EXPECT_EQ(recovered, lines);
}

TEST_F(DeadLettersTest, CorrectedFileIsInputThatReachesTheHost) {
  input_ = textlessLine("1") + alarmLine("2", "big") + eventLine("3");
  EXPECT_EQ(run({"--dropped", dropped_}).diagnostics.substr(0, 1), "<");
  std::string corrected = folder_.read("dropped.ndjson");
  corrected.replace(corrected.find("\"source\""), 8, "\"text\": \"mended\", \"source\"");
  corrected.replace(corrected.find("\"big\""), 5, "\"MAJOR\"");
  folder_.write("corrected", corrected);
  input_.clear();
  const result_t result = run({"--strict", folder_.path("corrected")});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.diagnostics, "read 2, reached the host 2, dropped 0, malformed 0, T ms\n");
  EXPECT_NE(result.out.find(R"("text":"mended")"), std::string::npos);
  EXPECT_EQ(result.out.find("dropped"), std::string::npos);
}

TEST_F(DeadLettersTest, LineThatIsDroppedAgainHasOneRemark) {
  input_ = textlessLine("1");
  run({"--dropped", dropped_});
  const std::string once = folder_.read("dropped.ndjson");
  input_ = "\n\n" + once;
  run({"--dropped", dropped_});
  std::string expected = once;
  expected.replace(expected.find("\"line\":1"), 8, "\"line\":3");
  EXPECT_EQ(folder_.read("dropped.ndjson"), expected);
}

TEST_F(DeadLettersTest, RemarkOfAnEmptyObjectNeedsNoComma) {
  tools::record_t record;
  const std::string file = "in";
  record.file = &file;
  record.line_number = 7;
  record.line = " { } ";
  EXPECT_EQ(tools::deadLetterOf(record),
            " { \"dropped\":{\"file\":\"in\",\"line\":7,\"reason\":\"unreported\",\"key\":\"\","
            "\"text\":\"\"}} ");
}

TEST_F(DeadLettersTest, RemarkMayBeAnywhere) {
  const std::string message = textlessLine("1").substr(1);
  input_ = R"({"dropped": 1 , )" + message;
  run({"--dropped", dropped_});
  EXPECT_EQ(folder_.read("dropped.ndjson").rfind("{ " + message.substr(0, message.size() - 2), 0),
            0u);
}

TEST_F(DeadLettersTest, OnlyDroppedMessagesAreWritten) {
  input_ = eventLine("1") + "x\n" + passingLine("1");
  EXPECT_EQ(run({"--dropped", dropped_}).status, 3);
  EXPECT_EQ(folder_.read("dropped.ndjson"), "");
}

TEST_F(DeadLettersTest, FileThatIsReadIsNotOverwritten) {
  const std::string in = folder_.write("in.ndjson", textlessLine("1"));
  const result_t result = run({in, "--dropped", in});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.diagnostics, "ostrovia-replay: " + in + " is read and cannot be written, too\n");
  EXPECT_EQ(folder_.read("in.ndjson"), textlessLine("1"));
}

TEST_F(DeadLettersTest, FileThatCannotBeWrittenIsAnError) {
  input_ = textlessLine("1");
  const result_t missing = run({"--dropped", "/nowhere/x"});
  EXPECT_EQ(missing.status, 7);
  EXPECT_EQ(missing.diagnostics, "ostrovia-replay: /nowhere/x: No such file or directory\n");
  const result_t full = run({"--dropped", "/dev/full"});
  EXPECT_EQ(full.status, 7);
  EXPECT_NE(
      full.diagnostics.find("ostrovia-replay: cannot write /dev/full: No space left on device\n"),
      std::string::npos);
}

} // namespace com::velanto::connectivity::test

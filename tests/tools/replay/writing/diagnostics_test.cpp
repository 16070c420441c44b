#include "tools/replay/writing/diagnostics.hpp"

#include "ndjson/visible_text.hpp"
#include "tests/tools/program.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::test {

namespace {

using DiagnosticsTest = Program;

// A message that erases the screen, moves the cursor and turns the direction of text round.
const std::string EVIL = R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": )"
                         "\"\\u001b[2J\u202E\xC2\x9B\x7F\\n\"}}\n";
const std::string SHOWN = R"('\u001b[2J\u202e\u009b\u007f\u000a')";

// Whether a terminal would obey nothing in `text` but line ends and the status line's own codes.
bool isHarmless(std::string text) {
  for (const char* const own : {"\r", "\x1B[K", "\x1B[A"}) {
    for (std::size_t at = 0; (at = text.find(own)) != std::string::npos;) {
      text.erase(at, std::string(own).size());
    }
  }
  return visibleLines(text) == text;
}

} // namespace

TEST_F(DiagnosticsTest, PlainLinesBeginWithTheirPlace) {
  input_ = eventLine("1") + textlessLine("2") + "x\n";
  EXPECT_EQ(run({}).diagnostics, "<stdin>:2: " + textlessLog("2") +
                                     "\n<stdin>:3:1: not well-formed JSON\n"
                                     "read 3, reached the host 1, dropped 1, malformed 1, T ms\n");
}

TEST_F(DiagnosticsTest, MachinesGetALineOfJson) {
  input_ = eventLine("1") + textlessLine("2") + "x\n";
  EXPECT_EQ(run({"--quiet", "--log-level", "3", "--log-format", "json"}).diagnostics,
            R"({"at":"<stdin>:2","level":3,"text":")" + textlessLog("2") +
                "\"}\n"
                R"({"at":"<stdin>:3","column":1,"malformed":"not well-formed JSON"})"
                "\n");
}

TEST_F(DiagnosticsTest, LinesWithoutAMessageHaveNoPlace) {
  const std::string json =
      run({"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "create", "--log-format", "json"})
          .diagnostics;
  EXPECT_TRUE(json.starts_with(
      R"({"level":2,"text":"<connectivity.OstroviaNotifications2Codec.replay> Exception from)"))
      << json;
}

TEST_F(DiagnosticsTest, LogLinesAndSummariesShowControlCharacters) {
  input_ = EVIL;
  const std::string log = run({}).diagnostics;
  EXPECT_NE(log.find(SHOWN), std::string::npos) << log;
  EXPECT_TRUE(isHarmless(log));
  folder_.write("e\x1b[2J\u202E", EVIL);
  const std::string named = run({"--summary", "e\x1b[2J\u202E"}).diagnostics;
  EXPECT_NE(named.find("e\\u001b[2J\\u202e:1"), std::string::npos) << named;
  EXPECT_TRUE(isHarmless(named));
}

TEST_F(DiagnosticsTest, ComplaintsShowControlCharacters) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--\x1b[2J"}, {"\x1b[2J"}, {"--plugin", "\x1b[2J"}}) {
    const std::string shown = run(arguments).diagnostics;
    EXPECT_NE(shown.find("\\u001b[2J"), std::string::npos) << shown;
    EXPECT_TRUE(isHarmless(shown));
  }
}

TEST_F(DiagnosticsTest, DifferencesShowControlCharacters) {
  input_ = passingLine("\"\xC2\x9B\u202E\"");
  run({"--record", "golden"});
  input_ = passingLine("\"\x7F\"");
  const std::string shown = run({"--quiet", "--expect", "golden"}).diagnostics;
  EXPECT_NE(shown.find("\"\\u009b\\u202e\""), std::string::npos) << shown;
  EXPECT_TRUE(isHarmless(shown));
}

TEST_F(DiagnosticsTest, ExplanationsShowControlCharacters) {
  input_ = EVIL + passingLine("{\"\u202E\":\"\xC2\x9B\"}");
  const std::string shown = run({"--explain"}).out;
  EXPECT_NE(shown.find(SHOWN.substr(1, 20)), std::string::npos) << shown;
  EXPECT_TRUE(isHarmless(shown));
  EXPECT_TRUE(isHarmless(run({"--explain=json"}).out));
}

TEST_F(DiagnosticsTest, TerminalsGetEventsThatMeanTheSame) {
  input_ = passingLine("\"\xC2\x9B\u202E\"");
  EXPECT_EQ(run({}).out, "{\"metadata\":{},\"payload\":\"\xC2\x9B\u202E\"}\n"); // data
  const std::string shown = shownOnTerminal(out_descriptor_, {"--quiet"});
  EXPECT_EQ(shown, "{\"metadata\":{},\"payload\":\"\\u009b\\u202e\"}\r\n");
}

TEST_F(DiagnosticsTest, FilesWrittenToATerminalAreHarmlessToo) {
  input_ = EVIL;
  EXPECT_TRUE(isHarmless(shownOnTerminal(out_descriptor_, {"--quiet", "--dropped", "-"})));
  out_descriptor_ = -1;
  EXPECT_FALSE(isHarmless(run({"--quiet", "--dropped", "-"}).out)); // data
}

} // namespace com::velanto::connectivity::test

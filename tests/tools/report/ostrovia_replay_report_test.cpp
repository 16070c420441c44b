// --report of the built tool.
#include <gmock/gmock.h>

#include <filesystem>

#include "tests/support/pattern.hpp"
#include "tests/tools/program.hpp"
#include "tests/tools/recorded_lines.hpp"
#include "tests/tools/report/page.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class ReportTest : public Program {
 protected:
  // The page of a run with these arguments.
  std::string pageOf(std::vector<std::string> arguments, int status = tools::EXIT_FINE) {
    arguments.insert(arguments.begin(), {"--quiet", "--report", "page.html"});
    const result_t result = run(arguments);
    EXPECT_EQ(result.status, status) << result.diagnostics;
    std::string page = folder_.read("page.html");
    expectSound(page);
    return page;
  }
  std::string pageOfInput(const std::string& input, const std::vector<std::string>& more = {}) {
    input_ = input;
    return pageOf(more);
  }
};

} // namespace

TEST_F(ReportTest, OutcomeIsTheHeadline) {
  const std::pair<std::string, const char*> rows[] = {
      {"", "No messages"},
      {eventLine("1"), "1 message arrived"},
      {eventLine("1") + passingLine("1"), "All 2 messages arrived"},
      {eventLine("1") + textlessLine("2"), "1 of 2 messages was dropped"},
      {textlessLine("1") + textlessLine("2"), "2 of 2 messages were dropped"},
  };
  for (const auto& [input, headline] : rows) {
    EXPECT_THAT(pageOfInput(input), HasSubstr("<h1>" + std::string(headline) + "</h1>"));
  }
  input_ = eventLine("1") + "x\n";
  EXPECT_THAT(pageOf({}, tools::EXIT_BAD_INPUT),
              HasSubstr("<h1>1 message arrived, 1 line malformed</h1>"));
}

TEST_F(ReportTest, WordsOfFiguresAndFatesAreExplained) {
  const std::string page = pageOfInput(eventLine("1"));
  EXPECT_THAT(textOf(page, "outcome"), HasSubstr(" lines read 1 "));
  EXPECT_THAT(textOf(page, "ways"),
              HasSubstr("A gathered field came out in a list or map that the plug-in has put "
                        "together. A copied one came out once more, in addition to its own place. "
                        "A replaced one vanished, and another value has its place."));
}

TEST_F(ReportTest, DroppedMessagesHaveTheScaleOfAll) {
  const std::string page =
      pageOfInput(eventLine("1") + textlessLine("2") + eventLine("3") + textlessLine("4"));
  EXPECT_THAT(page, HasSubstr(R"(viewBox="0 0 12 1520")")); // by time: a column of 4, 2 dropped
  EXPECT_THAT(page, HasSubstr(R"(<rect class="drop" x="1" y="1020" width="10" height="500"/>)"));
}

TEST_F(ReportTest, SectionsHaveStableAnchors) {
  input_ = eventLine("1");
  run({"--quiet", "--record", "golden"});
  input_ = textlessLine("1") + "x\n" + eventLine("1");
  EXPECT_THAT(sectionsOf(pageOf({"--expect", "golden"}, tools::EXIT_DIFFERENT)),
              ElementsAre("outcome", "arrivals", "reasons", "malformed", "changes", "ways",
                          "channels", "batches", "configuration", "builds", "left-out"));
  EXPECT_THAT(sectionsOf(pageOfInput("")),
              ElementsAre("outcome", "configuration", "builds", "left-out"));
}

TEST_F(ReportTest, ReasonHasPlacesMessageFaultAndCure) {
  const std::string page = pageOfInput(eventLine("1") + textlessLine("2") + textlessLine("3"));
  EXPECT_THAT(
      textOf(page, "reason-missing-key-text"),
      StartsWith(" text is missing 2 messages with the reason missing-key , first at <stdin>:2 , "
                 "<stdin>:3 <stdin>:2 " +
                 textlessLog("2") +
                 " Fields at fault; with these values, the message arrives Field Found Would do "
                 "text nothing \"x\" The whole message { \"metadata\": { \"pulsarPath\": "
                 "\"t1/sub/events/7\" }, \"payload\": { \"id\": \"2\", "));
}

TEST_F(ReportTest, ArrivalsAreCountedByTimePlaceAndKind) {
  const std::string page =
      pageOfInput(eventLine("1") + textlessLine("2") + alarmLine("3") + passingLine("1"));
  EXPECT_EQ(textOf(page, "kinds"),
            " Messages by kind and outcome Kind converted passed dropped all alarms 1 0 0 1 events "
            "1 0 1 2 no path 0 1 0 1 ");
  EXPECT_THAT(textOf(page, "arrivals"), HasSubstr("By the messages’ own time (UTC)"));
  EXPECT_THAT(textOf(page, "by-time"), HasSubstr("1970-01-01 00:00:05: 3 messages, 1 dropped"));
  EXPECT_THAT(textOf(page, "by-place"), HasSubstr("2: 1 message, 1 dropped"));
  EXPECT_THAT(textOf(page, "left-out"), HasSubstr("not in the chart of times: 1."));
}

TEST_F(ReportTest, WaysShowTheFateOfEveryField) {
  const std::string page = pageOfInput(eventLine("1") + eventLine("2"), {"--tenant-id", "t1"});
  const std::string ways = textOf(page, "ways");
  EXPECT_THAT(ways, HasSubstr("2 messages: events, converted, first at <stdin>:1"));
  EXPECT_THAT(ways, HasSubstr(" converted time \"1970-01-01T00:00:05Z\" firstOccurrenceTime 5.0 "));
  EXPECT_THAT(ways, HasSubstr(" lost metadata.pulsarPath without it, the message passes "));
}

TEST_F(ReportTest, MessagesOfManyFormsAreCounted) {
  std::string input;
  for (int i = 0; i < 25; ++i) input += passingLine("{\"k" + std::to_string(i) + "\":1}");
  EXPECT_THAT(textOf(pageOfInput(input), "left-out"),
              HasSubstr("Messages that went in further ways: 5."));
}

TEST_F(ReportTest, ChangesStandSideBySide) {
  input_ = eventLine("1") + eventLine("2") + eventLine("3");
  run({"--quiet", "--record", "golden"});
  input_ = eventLine("1") + textlessLine("2");
  const std::string page =
      pageOf({"--expect", "golden", "--tenant-id", "t1"}, tools::EXIT_DIFFERENT);
  EXPECT_THAT(page, HasSubstr("<h1>1 of 2 messages was dropped, 3 differ from golden</h1>"));
  EXPECT_THAT(textOf(page, "outcome"), HasSubstr("3 of 3 messages differ from golden"));
  const std::string changes = textOf(page, "changes-expect");
  EXPECT_THAT(changes, HasSubstr(" Field Messages Golden run This run "));
  EXPECT_THAT(changes, HasSubstr(" event.payload.tenantId 1 nothing \"t1\" "));
  EXPECT_THAT(changes, HasSubstr(" outcome 1 \"converted\" \"dropped\" "));
  EXPECT_THAT(changes, HasSubstr("Golden run: golden:3 , This run: nothing"));
}

TEST_F(ReportTest, OtherBuildIsComparedAndNamed) {
  input_ = eventLine("1");
  const std::string page = pageOf({"--against", VLT_PLUGIN_PATH});
  EXPECT_THAT(textOf(page, "changes-against"), HasSubstr("0 of 1 message differ"));
  const Pattern build(
      "Other build File /\\S+ Build ostrovia-notifications [^B]+ Build id [0-9a-f]+ Product "
      "version "
      "[0-9.]+ Size [^S]+ SHA-256 [0-9a-f]{64} ");
  EXPECT_TRUE(build.isIn(textOf(page, "builds"))) << textOf(page, "builds");
}

TEST_F(ReportTest, RecordedEventsAreCompared) {
  input_ = eventLine("1");
  const std::string event = run({"--quiet", "--tenant-id", "t1"}).out;
  std::filesystem::create_directory(folder_.path("rec"));
  folder_.write("rec/before.000001.ndjson",
                headLine({"before"}) + recordedLine({1, 1}, eventLine("1")) + footLine(1, 1, 0, 0));
  folder_.write("rec/after.000001.ndjson",
                headLine({"after"}) + recordedLine({1, 1}, event) + footLine(1, 1, 0, 0));
  const std::string page = pageOf(
      {"--tenant-id", "t2", "--expect-events", "rec/after", "rec/before"}, tools::EXIT_DIFFERENT);
  EXPECT_THAT(textOf(page, "changes-events"),
              HasSubstr(" event.payload.tenantId 1 \"t1\" \"t2\" "));
  EXPECT_THAT(textOf(page, "configuration"), HasSubstr("recorder before in chain site"));
}

TEST_F(ReportTest, MeasuredTimesAreShownOnRequestAlone) {
  EXPECT_THAT(textOf(pageOfInput(eventLine("1")), "batches"), Not(HasSubstr("Microseconds")));
  EXPECT_THAT(textOf(pageOfInput(eventLine("1"), {"--summary"}), "batches"),
              HasSubstr("Batches by the time that the plug-in took Microseconds"));
}

TEST_F(ReportTest, BatchesAreCountedBySize) {
  std::string input;
  for (int i = 0; i < 7; ++i) input += eventLine("1");
  EXPECT_THAT(textOf(pageOfInput(input, {"--batch-size", "3"}), "batches"),
              HasSubstr(" 1 1 2–3 2 "));
}

TEST_F(ReportTest, SameInputGivesTheSameBytes) {
  const std::vector<std::string> samples = {VLT_SAMPLES "/site-day.ndjson",
                                            VLT_SAMPLES "/failing.ndjson"};
  const std::string first = pageOf(samples);
  EXPECT_EQ(pageOf(samples), first);
}

TEST_F(ReportTest, ThreadsChangeNothingButTheirNumber) {
  std::string input;
  for (int i = 0; i < 700; ++i) input += eventLine("1") + textlessLine("2");
  const std::string alone = pageOfInput(input);
  const std::string together = pageOfInput(input, {"--threads", "3"});
  for (const char* const section : {"outcome", "arrivals", "reasons", "ways", "channels"}) {
    EXPECT_EQ(textOf(together, section), textOf(alone, section));
  }
}

TEST_F(ReportTest, TextsOfMessagesStayTexts) {
  const std::string text = R"(</pre><script>alert(1)</script>\" onload='x')";
  input_ = R"({"metadata":{"pulsarPath":"t/s/events/7"},"payload":{"id":")" + text +
           R"(","source":{"id":"9"},")" + text + R"(":")" + text +
           "\xE2\x80\xAE\x7F"
           R"(","time":"now","type":"T","text":"x"}})"
           "\n";
  const std::string page = pageOf({"--channel-prefix", "<b>\x1B"});
  EXPECT_THAT(textOf(page, "reasons"), HasSubstr(text + R"(\u202e\u007f")"));
  EXPECT_THAT(textOf(page, "configuration"), HasSubstr("<b>"));
}

TEST_F(ReportTest, PageIsBounded) {
  std::string input;
  const std::string large = std::string(6000, '<');
  for (int i = 0; i < 60; ++i) {
    const std::string number = std::to_string(i);
    std::string key = "\"k";
    key.append(number).append(large).append("\":\"").append(large).append("\"");
    input += passingLine("{" + key + "}");
    input
        .append(R"({"metadata":{"pulsarPath":"t/s/events/7"},"payload":{"id":"x'): Required key ')")
        .append(number)
        .append(R"(' missing from message payload",)")
        .append(key)
        .append("}}\n");
  }
  input_ = input;
  run({"--quiet", "--record", "golden", "--tenant-id", "t1"});
  folder_.write("golden", Pattern("<{300}").replacedIn(folder_.read("golden"), ">"));
  const std::string page = pageOf({"--expect", "golden"}, tools::EXIT_DIFFERENT);
  EXPECT_LT(page.size(), 3'000'000u);
  EXPECT_THAT(textOf(page, "left-out"), HasSubstr("Messages that went in further ways: 40."));
}

TEST_F(ReportTest, RecordedDirectionsAreKept) {
  folder_.write("rec.ndjson", headLine({"before"}) + recordedLine({1, 1}, eventLine("1")) +
                                  recordedLine({2, 2, 0, 1, "transport"}, eventLine("2")) +
                                  footLine(2, 2, 0, 0));
  const std::string ways = textOf(pageOf({"--as-recorded", "rec.ndjson"}), "ways");
  EXPECT_THAT(ways, HasSubstr("1 message: events, converted, first at rec.ndjson:2"));
  EXPECT_THAT(ways, HasSubstr("1 message: events, passed, first at rec.ndjson:3 The fate of its "
                              "fields is not known."));
}

TEST_F(ReportTest, PageAppearsWholeOrNotAtAll) {
  folder_.write("page.html", "old");
  folder_.write("in.ndjson", eventLine("1"));
  EXPECT_EQ(run({"--quiet", "--report", "page.html", "in.ndjson", "/dev/null/none"}).status, 7);
  EXPECT_EQ(folder_.read("page.html"), "old");
  const result_t full = run({"--quiet", "--report", "/dev/full", "in.ndjson"});
  EXPECT_EQ(full.status, tools::EXIT_IO);
  EXPECT_EQ(full.diagnostics, "ostrovia-replay: cannot write /dev/full: No space left on device\n");
}

TEST_F(ReportTest, InputIsNeverOverwritten) {
  folder_.write("in.ndjson", eventLine("1"));
  const result_t result = run({"--report", "in.ndjson", "in.ndjson"});
  EXPECT_EQ(result.status, tools::EXIT_USAGE);
  EXPECT_EQ(result.diagnostics, "ostrovia-replay: in.ndjson is read and cannot be written, too\n");
  EXPECT_EQ(folder_.read("in.ndjson"), eventLine("1"));
}

TEST_F(ReportTest, RunGoesOnWithoutAReaderOfEvents) {
  std::string input;
  for (int i = 0; i < 5000; ++i) input += eventLine("1");
  folder_.write("in.ndjson", input);
  const result_t result =
      runShell("ostrovia-replay --quiet --report page.html in.ndjson | head -1");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(folder_.read("page.html"), HasSubstr("<h1>All 5\u202F000 messages arrived</h1>"));
}

} // namespace com::velanto::connectivity::test

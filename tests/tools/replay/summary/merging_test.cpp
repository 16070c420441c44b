// --merge-summaries of the built tool: the summaries of parts against the one of a single run.
#include "tools/replay/summary/merging.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/pattern.hpp"
#include "tests/tools/program.hpp"
#include "tests/tools/recorded_lines.hpp"

namespace com::velanto::connectivity::test {

namespace {

using texts_t = std::vector<std::string>;

const std::string NO_SUMMARY = "no summary, which is a line that --summary=json writes\n";

class MergingTest : public Program {
 protected:
  // Writes `content` to the file `name` and returns its name.
  std::string file(const std::string& name, const std::string& content) const {
    folder_.write(name, content);
    return name;
  }
  // The summary of a run, with all else that it writes to standard error.
  std::string summaryOf(texts_t arguments) {
    arguments.insert(arguments.end(), {"--summary=json", "--log-level", "2"});
    return run(arguments).diagnostics;
  }
  result_t merge(texts_t paths) {
    paths.insert(paths.begin(), "--merge-summaries");
    return run(paths);
  }
  // The merged summary of a run for each of `parts`, which are inputs and further arguments.
  std::string merged(const std::vector<texts_t>& parts) {
    texts_t paths;
    for (const texts_t& part : parts) {
      paths.push_back(file("summary" + std::to_string(paths.size()), summaryOf(part)));
    }
    const result_t result = merge(paths);
    EXPECT_EQ(result.diagnostics, "");
    EXPECT_EQ(result.status, 0);
    return result.out;
  }
  void expectRefused(const std::string& summaries, const std::string& reason) {
    file("odd", summaries);
    const result_t result = merge({"odd"});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.diagnostics, "ostrovia-replay: odd:" + reason);
    EXPECT_EQ(result.status, 2);
  }
};

std::string withoutMeasurements(const std::string& summary) {
  static const Pattern TIMES(
      R"re("(seconds|messages_per_second|median_us|p99_us)":[0-9.e+-]+|"classes":\[[^a-z]*\])re");
  return TIMES.replacedIn(summary, "T");
}

// Places are those of the parts.
std::string withoutPlaces(const std::string& summary) {
  static const Pattern FIRST("\"first\":\"[^\"]*\"");
  return FIRST.replacedIn(withoutMeasurements(summary), "F");
}

// Lines of all outcomes; in two of them the plug-in also writes to standard error.
texts_t mixedLines() {
  const std::string odd =
      R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": "1", "source": 5}})"
      "\n";
  return {eventLine("1"),         "x\n", textlessLine("2"), odd, alarmLine("3", "big"),
          alarmLine("4", "none"), "\n",  passingLine("1"),  odd, textlessLine("5"),
          eventLine("6")};
}

std::string joinedLines(const texts_t& lines, std::size_t begin, std::size_t end) {
  std::string all;
  for (std::size_t i = begin; i < end; ++i) all += lines[i];
  return all;
}

// A file of a recording: a sample with an omitted text, a message that is dropped, one of the other
// direction, a gap, and the rest of a line.
std::string fileOfRecording(unsigned number) {
  return headLine({"before", number, "00000000000000a1", 5, "\"payload.text\""}) +
         recordedLine({number, number}, textlessLine("1")) +
         recordedLine({number + 1, number, 0, 1, "transport"}, eventLine("2")) +
         gapLine(number + 2, number + 4, 3) + footLine(number + 4, number + 1, 0, 3, number < 5) +
         "{";
}

} // namespace

TEST_F(MergingTest, PartsCutAtAnyLineEndGiveTheWhole) {
  const texts_t lines = mixedLines();
  file("all", joinedLines(lines, 0, lines.size()));
  const std::string whole = summaryOf({"all"});
  const std::string summary = withoutPlaces(whole.substr(whole.find("{\"version")));
  for (std::size_t cut = 0; cut <= lines.size(); ++cut) {
    file("begin", joinedLines(lines, 0, cut));
    file("end", joinedLines(lines, cut, lines.size()));
    EXPECT_EQ(withoutPlaces(merged({{"begin"}, {"end"}})), summary) << cut;
  }
}

TEST_F(MergingTest, FilesGiveTheSummaryOfOneRun) {
  texts_t all;
  std::vector<texts_t> parts;
  const texts_t lines = mixedLines();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    all.push_back(file("part" + std::to_string(i), lines[i]));
    parts.push_back({all.back()});
  }
  const std::string whole = summaryOf(all);
  EXPECT_EQ(withoutMeasurements(merged(parts)),
            withoutMeasurements(whole.substr(whole.find("{\"version"))));
}

TEST_F(MergingTest, FilesOfARecordingGiveTheSummaryOfAll) {
  std::filesystem::create_directory(folder_.path("rec"));
  std::vector<texts_t> parts;
  for (const unsigned number : {1U, 2U, 5U}) { // two files have been deleted
    const std::string name = "rec/before.00000" + std::to_string(number) + ".ndjson";
    parts.push_back({file(name, fileOfRecording(number))});
  }
  const std::string whole = summaryOf({"rec"});
  EXPECT_NE(whole.find(R"("files_read":[{"name":"before","first":1,"last":5}],)"
                       R"("deleted_files":[{"name":"before","first":3,"last":4}],)"),
            std::string::npos)
      << whole;
  EXPECT_EQ(withoutMeasurements(merged(parts)), withoutMeasurements(whole));
}

TEST_F(MergingTest, PiecesWithOneHeadAreOneFile) {
  const std::string head = headLine({"before"});
  const std::string first = recordedLine({1, 1}, eventLine("1"));
  const std::string second = recordedLine({2, 2}, eventLine("2")) + footLine(2, 2, 0, 0);
  input_ = head + first + second;
  const std::string whole = summaryOf({});
  input_ = head + first;
  const std::string begin = summaryOf({});
  input_ = head + second;
  EXPECT_EQ(withoutMeasurements(merge({file("all", begin + summaryOf({}))}).out),
            withoutMeasurements(whole));
}

TEST_F(MergingTest, RecordedEventsAddUp) {
  const std::string samples = VLT_SAMPLES "/recordings/";
  const texts_t run = {samples + "before", "--expect-events", samples + "after"};
  const std::string twice = merged({run, run});
  EXPECT_TRUE(Pattern(R"("events":\{"compared":28,"different":22,)").isIn(twice)) << twice;
}

// Quantiles of the parts would not tell those of the whole: of three classes, the middle one.
TEST_F(MergingTest, DistributionsAddUpClassByClass) {
  input_ = eventLine("1");
  const Pattern batches(R"("batches":\{.*\]\]\})");
  const auto with = [&](const std::string& summary, const std::string& classes) {
    return batches.replacedIn(
        summary, R"("batches":{"count":0,"median_us":0,"p99_us":0,"classes":[)" + classes + "]}");
  };
  const std::string summary = summaryOf({});
  const std::string all =
      with(summary, "[1000,1],[5120,2]") + with(summary, "[1000,1],[1024,3],[9216,1]");
  const std::string sum = merge({file("all", all)}).out;
  EXPECT_NE(sum.find(R"("batches":{"count":8,"median_us":1.024,"p99_us":9.216,)"
                     R"("classes":[[992,2],[1024,3],[5120,2],[9216,1]]})"),
            std::string::npos)
      << sum;
}

TEST_F(MergingTest, PrintedLinesAddUpByText) {
  input_ = eventLine("1");
  const std::string summary =
      Pattern(R"("printed":\[\],"printed_otherwise":0)")
          .replacedIn(summaryOf({}), R"("printed":[{"text":"a","count":2},)"
                                     R"({"text":"b","count":1,"first":"x:1"}],)"
                                     R"("printed_otherwise":7)");
  const std::string sum = merge({file("all", summary + summary)}).out;
  EXPECT_NE(sum.find(R"("printed":[{"text":"a","count":4},{"text":"b","count":2,"first":"x:1"}],)"
                     R"("printed_otherwise":14)"),
            std::string::npos)
      << sum;
}

TEST_F(MergingTest, MergedSummariesMergeLikeParts) {
  texts_t parts;
  for (int i = 0; i < 3; ++i) {
    input_ = textlessLine("1") + alarmLine("2", "big");
    parts.push_back(file(std::to_string(i), summaryOf({})));
  }
  const std::string first = file("first", merge({parts[0], parts[1]}).out);
  EXPECT_EQ(merge({first, parts[2]}).out, merge(parts).out);
}

TEST_F(MergingTest, OnePartThatEndedEarlyMakesTheWholeIncomplete) {
  input_ = eventLine("1");
  const std::string summary = summaryOf({});
  std::string cut = summary;
  cut.replace(cut.find("\"complete\":true"), 15, "\"complete\":false");
  cut.replace(cut.find("\"blocks_live\":0"), 15, "\"blocks_live\":null");
  const std::string sum = merge({file("all", summary + cut)}).out;
  EXPECT_TRUE(sum.starts_with(R"({"version":1,"complete":false,"read":2,)")) << sum;
  EXPECT_NE(sum.find("\"blocks_live\":null"), std::string::npos);
}

TEST_F(MergingTest, OtherInputIsRefused) {
  input_ = eventLine("1");
  const std::string summary = summaryOf({});
  expectRefused("", " " + NO_SUMMARY);
  expectRefused("read 8, reached the host 5\n", " " + NO_SUMMARY);
  expectRefused("a log\n{\"version\":2}\n",
                "2: a summary of version 2, this program knows version 1\n");
  expectRefused("{\"version\":\"1\"}\n", "1: a summary with a wrong value in version\n");
  expectRefused("{\"version\":1}\n", "1: a summary without tool, perhaps of an older tool\n");
  expectRefused(summary.substr(0, summary.find("no path") + 1),
                "1: a summary that is cut or damaged: string without a closing quote\n");
  const Pattern classes(R"(,"classes":\[.*\]\])");
  expectRefused(classes.replacedIn(summary, ""),
                "1: a summary without batches.classes, perhaps of an older tool\n");
  expectRefused(classes.replacedIn(summary, R"(,"classes":[[5]])"),
                "1: a summary with a wrong value in batches.classes\n");
  expectRefused(Pattern(R"("read":1)").replacedIn(summary, R"("read":-1)"),
                "1: a summary with a wrong value in read\n");
}

TEST_F(MergingTest, PartsOfOtherBuildsAreRefused) {
  input_ = eventLine("1");
  const std::string summary = summaryOf({});
  expectRefused(summary + summaryOf({"--plugin", VLT_PLAIN_BUILD_PATH}),
                "2: another plug-in than in odd:1\n");
  expectRefused(summary + summaryOf({"--against", VLT_PLAIN_BUILD_PATH}),
                "2: another build to compare with than in odd:1\n");
  expectRefused(summary + Pattern("\"tool\":\"[^\"]*\"").replacedIn(summary, "\"tool\":\"older\""),
                "2: another build of the tool than in odd:1\n");
}

TEST_F(MergingTest, FullDeviceIsReported) {
  input_ = eventLine("1");
  file("summary", summaryOf({}));
  const result_t result = runShell("ostrovia-replay --merge-summaries summary > /dev/full");
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.diagnostics, "ostrovia-replay: cannot write to standard output\n");
}

} // namespace com::velanto::connectivity::test

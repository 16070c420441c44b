// --explain of the built tool.
#include <chrono>
#include <sstream>

#include "ndjson/json_reader.hpp"
#include "tests/tools/program.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::test {

namespace {

class ExplainProgramTest : public Program {
 protected:
  // Standard output of a run with the odd plug-in.
  std::string told(const char* way, const std::string& input) {
    input_ = input;
    return run({"--plugin", VLT_ODD_PLUGIN_PATH, "--tenant-id", way, "--explain"}).out;
  }
};

const char* const FIGURES = "read 1, reached the host 1, dropped 0, malformed 0, T ms\n";

} // namespace

TEST_F(ExplainProgramTest, ExplanationsReplaceTheEvents) {
  input_ = eventLine("1");
  const result_t result = run({"--explain", "--tenant-id", "t1"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out,
            "<stdin>:1: events, converted\n"
            "  unchanged  id, text, type\n"
            "  renamed    source.id → source\n"
            "  converted  time \"1970-01-01T00:00:05Z\" → firstOccurrenceTime 5.0\n"
            "  added      metadata.\"vlt.channel\" \"ostrovia.devices\"\n"
            "             metadata.\"vlt.type\" \"com.tivra.ostrovia.Event\"\n"
            "             measurements {}\n"
            "             tenantId \"t1\"\n"
            "  lost       metadata.pulsarPath (without it, the message passes unchanged)\n");
  EXPECT_EQ(result.diagnostics, FIGURES);
}

TEST_F(ExplainProgramTest, AlarmsMeasurementsManagedObjectsAndOperations) {
  input_ = alarmLine("1") +
           R"({"metadata":{"pulsarPath":"t/s/measurements/1"},"payload":{"id":"1","type":"T",)"
           R"("source":{"id":"9","name":"n"},"time":"1970-01-01T00:00:05Z","empty":{},)"
           R"("f":{"T":{"value":1,"units":"C"},"U":{"value":2.5,"limit":7}},"text":"x"}})"
           "\n"
           R"({"metadata":{"pulsarPath":"t/s/managedobjects/1"},"payload":{"id":"1","name":"n",)"
           R"("type":"T","childDevices":{"references":[]},"o6a_Position":{"lat":1,"fix":"R"},)"
           R"("tenantId":"t9"}})"
           "\n"
           R"({"metadata":{"pulsarPath":"t/s/operations/1"},"payload":{"id":"1","deviceId":"2",)"
           R"("source":{"id":"9"},"status":"PENDING","creationTime":"pending"}})"
           "\n";
  const std::string added =
      "  added      metadata.\"vlt.channel\" \"ostrovia.devices\"\n"
      "             metadata.\"vlt.type\" \"com.tivra.ostrovia.";
  const std::string lost = "metadata.pulsarPath (without it, the message passes unchanged)\n";
  EXPECT_EQ(run({"--explain", "--tenant-id", "t1"}).out,
            "<stdin>:1: alarms, converted\n"
            "  unchanged  count, id, severity, status, text, type\n"
            "  renamed    source.id → source\n"
            "  converted  time \"1970-01-01T00:00:05Z\" → 5.0\n" +
                added + "Alarm\"\n             measurements {}\n             tenantId \"t1\"\n" +
                "  lost       " + lost +
                "\n<stdin>:2: measurements, converted\n"
                "  unchanged  id, text, type\n"
                "  renamed    source.id → source\n"
                "  gathered   f.T → measurements.T\n"
                "             f.U.limit → measurements.U.params.limit\n"
                "             f.U.value → measurements.U.value\n"
                "  converted  time \"1970-01-01T00:00:05Z\" → 5.0\n"
                "  added      metadata.\"vlt.channel\" \"ostrovia.measurements\"\n"
                "             metadata.\"vlt.type\" \"com.tivra.ostrovia.Measurement\"\n"
                "             measurements.T.params {}\n"
                "             tenantId \"t1\"\n"
                "  lost       empty, source.name\n             " +
                lost +
                "\n<stdin>:3: managedobjects, converted\n"
                "  unchanged  id\n"
                "  renamed    childDevices → childDeviceIds\n"
                "             name → source\n"
                "             o6a_Position.fix → fix\n"
                "  gathered   o6a_Position.lat → position.lat\n"
                "  replaced   tenantId \"t9\" → \"t1\"\n" +
                added + "ManagedObject\"\n             measurements {}\n  lost       type\n" +
                "             " + lost +
                "\n<stdin>:4: operations, converted\n"
                "  unchanged  creationTime, id, status\n"
                "  renamed    source.id → source\n"
                "  replaced   deviceId \"2\" by id (needed all the same)\n" +
                added +
                "Operation\"\n             measurements {}\n             tenantId \"t1\"\n" +
                "  lost       " + lost);
}

TEST_F(ExplainProgramTest, DroppedMessagesHaveTheirLogLinesWithThem) {
  input_ = textlessLine("7");
  const result_t result = run({"--explain"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out,
            "<stdin>:1: events, dropped\n"
            "  logged     <connectivity.OstroviaNotifications2Codec.replay> Error when\n"
            "               transforming message towards host ('id' = '7'): Required key\n"
            "               'text' missing from message payload\n"
            "  at fault   text is missing; \"x\" would do\n"
            "  lost       metadata.pulsarPath, id, source, time, type\n");
  EXPECT_EQ(result.diagnostics, "read 1, reached the host 0, dropped 1, malformed 0, T ms\n");
  EXPECT_TRUE(run({"--explain", "--log-level", "3"})
                  .diagnostics.starts_with("<stdin>:1: " + textlessLog("7")));
}

TEST_F(ExplainProgramTest, TheDefectItselfIsNamed) {
  input_ = eventLine("1");
  const std::string zoned = "1970-01-01T00:00:05Z";
  input_.replace(input_.find(zoned), zoned.size(), "1970-01-01T00:00:05");
  input_.insert(input_.find("\"type\""), R"("creationTime": "2001-02-03T04:05:06Z", )");
  const std::string shown = run({"--explain"}).out;
  EXPECT_NE(shown.find("  at fault   time \"1970-01-01T00:00:05\" has no zone;\n"
                       "               \"1970-01-01T00:00:05Z\" would do\n"),
            std::string::npos)
      << shown;
  EXPECT_NE(run({"--explain=json"})
                .out.find(R"("mended":"1970-01-01T00:00:05Z","defect":"has no zone"})"),
            std::string::npos);
}

TEST_F(ExplainProgramTest, TooLargeMessagesSaySo) {
  input_ = passingLine("\"" + std::string(std::size_t{7} << 20, 'x') + "\"");
  EXPECT_EQ(run({"--explain"}).out,
            "<stdin>:1: no path, passed\n"
            "  unknown    everything: explanations reach up to 6 MiB, this message has 7\n");
  std::string many = "[1";
  for (int i = 0; i < 100'000; ++i) many += ",1";
  input_ = passingLine(many + "]");
  const result_t result = run({"--explain", "--summary"});
  EXPECT_EQ(result.out,
            "<stdin>:1: no path, passed\n"
            "  unknown    everything: the message has too many values, or is nested too\n"
            "               deep, to run again\n");
  EXPECT_EQ(result.diagnostics.find("alike"), std::string::npos);
  EXPECT_NE(run({"--explain=json"}).out.find(R"("limited":true,"stopped":"everything: )"),
            std::string::npos);
}

// 200 MB is what an explanation may take.
TEST_F(ExplainProgramTest, DeepMessagesAreExplainedInBoundedMemory) {
  std::string deep(1000, '[');
  deep.append("1").append(1000, ']');
  input_ = passingLine(deep);
  const result_t result = run({"--explain"});
  EXPECT_EQ(result.out, "<stdin>:1: no path, passed\n  unchanged  everything\n");
#ifndef VLT_SANITIZED // AddressSanitizer keeps freed memory back
  EXPECT_LT(result.memory, 200'000);
#endif
}

TEST_F(ExplainProgramTest, OtherPluginsAreExplainedJustTheSame) {
  EXPECT_EQ(told("swap", passingLine(R"({"a":"x","b":"x","c":1})")),
            "<stdin>:1: no path, passed\n  unchanged  c\n  renamed    a → b\n             b → a\n");
  EXPECT_EQ(
      told("sum", passingLine(R"({"a":9007199254740993,"b":1})")),
      "<stdin>:1: no path, passed\n  converted  a 9007199254740993, b 1 → sum 9007199254740994\n");
  EXPECT_EQ(told("refuse", passingLine(R"({"key":7})")),
            "<stdin>:1: no path, dropped\n"
            "  logged     <connectivity.OstroviaNotifications2Codec.replay> no 'key'\n"
            "  suspect    key 7\n  lost       key\n");
  EXPECT_EQ(told("whisper", passingLine("{\"a\":1}")),
            "<stdin>:1: no path, dropped\n  lost       a\n");
  EXPECT_EQ(told("", passingLine("[1]")), "<stdin>:1: no path, passed\n  unchanged  everything\n");
  EXPECT_EQ(told("numbers", passingLine("{\"a\":1}")),
            "<stdin>:1: no path, passed\n"
            "  unknown    when asked again, the plug-in gives something else\n");
}

TEST_F(ExplainProgramTest, OutputOfFurtherRunsIsHidden) {
  input_ = passingLine("{\"a\":1,\"b\":[]}");
  EXPECT_EQ(run({"--plugin", VLT_ODD_PLUGIN_PATH, "--tenant-id", "noise", "--explain"}).diagnostics,
            std::string("<stdin>:1: the plug-in wrote to standard error: noise\n") + FIGURES);
}

TEST_F(ExplainProgramTest, FiguresBelongToTheRunAlone) {
  input_ = passingLine("{\"a\":1}") + passingLine("{\"a\":[2]}");
  environment_ = {"ASAN_OPTIONS=detect_leaks=0"}; // the leak is the subject
  const result_t result =
      run({"--plugin", VLT_ODD_PLUGIN_PATH, "--tenant-id", "leak", "--explain"});
  EXPECT_EQ(result.status, tools::EXIT_LAW);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: the plug-in leaked 2 blocks of the host\n"
            "read 2, reached the host 2, dropped 0, malformed 0, T ms, 2 blocks live\n");
}

// Explaining takes a hundred times as long as the run.
TEST_F(ExplainProgramTest, TimesBelongToTheRunAlone) {
  for (int i = 0; i < 300; ++i) input_ += eventLine("1");
  const auto start = std::chrono::steady_clock::now();
  const std::string figures = run({"--explain", "--summary=json"}).diagnostics;
  const std::chrono::duration<double> all = std::chrono::steady_clock::now() - start;
  const std::string name = "\"seconds\":";
  const double seconds = std::stod(figures.substr(figures.find(name) + name.size()));
  EXPECT_GT(seconds, 0);
  EXPECT_LT(seconds, all.count() / 2) << figures;
}

TEST_F(ExplainProgramTest, ThreadsBatchesAndRepetitionChangeNothing) {
  for (int i = 0; i < 1100; ++i) {
    input_ += passingLine(std::to_string(i));
    if (i % 100 == 0) input_ += eventLine("1") + textlessLine("x") + alarmLine("5", "Major");
  }
  const std::string file = folder_.write("in.ndjson", input_);
  const std::string once = run({"--explain", file}).out;
  EXPECT_EQ(run({"--explain", "--threads", "3", file}).out, once);
  EXPECT_EQ(run({"--explain", "--batch-size", "7", file}).out, once);
  const result_t repeated = run({"--explain", "--repeat", "3", "--quiet", file});
  EXPECT_EQ(repeated.out, once);
  EXPECT_EQ(repeated.diagnostics, "");
}

TEST_F(ExplainProgramTest, LinesOfJsonAreJson) {
  input_ = eventLine("1") + "x\n" + textlessLine("2") + passingLine("{}");
  std::istringstream lines(run({"--explain=json"}).out);
  const char* const begins[] = {
      R"({"at":"<stdin>:1","kind":"events","outcome":"converted","unchanged":false,"fields":[{)",
      R"({"at":"<stdin>:2","kind":"no path","outcome":"malformed","reason":"not well-formed JSON"})",
      R"({"at":"<stdin>:3","kind":"events","outcome":"dropped","unchanged":false,"fields":[{)",
      R"({"at":"<stdin>:4","kind":"no path","outcome":"passed","unchanged":true,"fields":[{)"};
  JsonReader reader;
  for (const char* const begin : begins) {
    std::string line;
    std::getline(lines, line);
    EXPECT_TRUE(line.starts_with(begin)) << line;
    EXPECT_NO_THROW(static_cast<void>(reader.parseValue(line))) << line;
  }
}

TEST_F(ExplainProgramTest, TowardsTheTransportEverythingPasses) {
  input_ = eventLine("1");
  EXPECT_EQ(run({"--explain", "--direction", "transport"}).out,
            "<stdin>:1: events, passed\n  unchanged  everything\n");
}

TEST_F(ExplainProgramTest, OtherFilesAreWrittenBesides) {
  input_ = eventLine("1") + textlessLine("2");
  const result_t result =
      run({"--explain", "--summary=json", "--dropped", "lost", "--record", "golden"});
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(
      result.diagnostics.starts_with(R"({"version":1,"complete":true,"read":2,"reached":1,)"))
      << result.diagnostics;
  EXPECT_NE(folder_.read("lost").find(R"("reason":"missing-key")"), std::string::npos);
  EXPECT_NE(folder_.read("golden").find(R"("firstOccurrenceTime":5.0)"), std::string::npos);
  EXPECT_EQ(run({"--explain", "--expect", "golden"}).status, 0);
}

TEST_F(ExplainProgramTest, SuitesHaveNoExplanations) {
  const result_t result = run({"--suite", ".", "--explain"});
  EXPECT_EQ(result.status, tools::EXIT_USAGE);
  EXPECT_EQ(
      result.diagnostics,
      "ostrovia-replay: --suite takes no FILES, --expect, --expect-events, --record, --dropped, "
      "--redacted, --report, --summary, --explain or --follow\n");
}

TEST_F(ExplainProgramTest, AFullDeviceIsAnError) {
  input_ = eventLine("1");
  out_path_ = "/dev/full";
  const result_t result = run({"--explain"});
  EXPECT_EQ(result.status, tools::EXIT_IO);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: cannot write the explanations: No space left on device\n");
}

TEST_F(ExplainProgramTest, TerminalsShowColoursUnlessTheyAreUnwanted) {
  input_ = eventLine("1");
  environment_ = {"NO_COLOR="}; // empty is as good as none
  EXPECT_NE(shownOnTerminal(out_descriptor_, {"--explain"})
                .find("\x1B[2munchanged\x1B[0m  id, text, type\r\n"),
            std::string::npos);
  environment_ = {"NO_COLOR=1"};
  EXPECT_EQ(shownOnTerminal(out_descriptor_, {"--explain"}).find('\x1B'), std::string::npos);
}

TEST_F(ExplainProgramTest, LinesOfAllSamplesFit80Columns) {
#ifdef VLT_SANITIZED
  GTEST_SKIP() << "a minute of explanations, which SamplesTest makes as well";
#endif
  std::istringstream lines(runShell("ostrovia-replay --explain " VLT_SAMPLES "/*.ndjson").out);
  std::size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    std::size_t width = 0;
    for (const char c : line) width += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    EXPECT_LT(width, 80u) << line;
  }
  EXPECT_GT(count, 5000u);
}

} // namespace com::velanto::connectivity::test

// The built program as people run it: its standard streams and its exit status.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/tools/program.hpp"
#include "tests/tools/recorded_lines.hpp"
#include "tools/options/exit_status.hpp"
#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::test {

namespace {

using OstroviaReplayTest = Program;

} // namespace

TEST_F(OstroviaReplayTest, StandardInputIsDecodedToStandardOutput) {
  input_ = R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": "1", )"
           R"("source": {"id": "9"}, "text": "x", "time": "1970-01-01T00:00:05Z", "type": "T"}})"
           "\n";
  const result_t result = run({"--tenant-id", "t1", "-"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out.rfind(R"({"metadata":{)", 0), 0u);
  EXPECT_NE(result.out.find(R"("firstOccurrenceTime":5.0)"), std::string::npos);
  EXPECT_NE(result.out.find(R"("tenantId":"t1")"), std::string::npos);
  EXPECT_EQ(result.diagnostics, "read 1, reached the host 1, dropped 0, malformed 0, T ms\n");
}

TEST_F(OstroviaReplayTest, PluginsLogGoesToStandardError) {
  input_ = R"({"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": "1"}})";
  const result_t result = run({});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(
      result.diagnostics,
      "<stdin>:1: <connectivity.OstroviaNotifications2Codec.replay> Error when transforming "
      "message towards host ('id' = '1'): Required key 'source' missing from message payload\n"
      "read 1, reached the host 0, dropped 1, malformed 0, T ms\n");
}

TEST_F(OstroviaReplayTest, FilesKeepOrderAndMalformedLinesAreNamed) {
  const std::string first = folder_.write("first", "{\"payload\":1}\nx\n");
  input_ = "{\"payload\":2}\n{}x";
  const result_t result = run({first, "-"});
  EXPECT_EQ(result.status, tools::EXIT_BAD_INPUT);
  EXPECT_EQ(result.out, "{\"metadata\":{},\"payload\":1}\n{\"metadata\":{},\"payload\":2}\n");
  EXPECT_EQ(result.diagnostics,
            first +
                ":2:1: not well-formed JSON\n<stdin>:2:3: not well-formed JSON\n"
                "read 4, reached the host 2, dropped 0, malformed 2, T ms\n");
}

TEST_F(OstroviaReplayTest, DroppedMessagesAreStatus1WhenStrict) {
  input_ = eventLine("1") + textlessLine("2");
  EXPECT_EQ(run({}).status, 0);
  EXPECT_EQ(run({"--strict"}).status, 1);
}

TEST_F(OstroviaReplayTest, WrongUseIsStatus2) {
  const result_t unknown = run({"--unknown"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_EQ(unknown.diagnostics, "ostrovia-replay: unknown option '--unknown'; see --help\n");
}

TEST_F(OstroviaReplayTest, BareStartOnATerminalSaysWhatItWaitsFor) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_EQ(grantpt(terminal), 0);
  ASSERT_EQ(unlockpt(terminal), 0);
  in_descriptor_ = ::open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
  const std::string end_of_input = "\x04";
  ASSERT_EQ(write(terminal, end_of_input.data(), 1), 1);
  const result_t result = run({});
  close(in_descriptor_);
  close(terminal);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: waits for messages from the terminal, each a line of JSON; "
            "Ctrl-D ends them\n"
            "read 0, reached the host 0, dropped 0, malformed 0, T ms\n");
}

TEST_F(OstroviaReplayTest, UnusableFilesCostALineEach) {
  const std::string input = folder_.write("one.ndjson", eventLine("1"));
  for (const char* const path : {"/nowhere/at-all.so", "/etc", "/etc/passwd"}) {
    const result_t plugin = run({"--plugin", path, input});
    EXPECT_EQ(plugin.status, tools::EXIT_PLUGIN) << path;
    EXPECT_EQ(std::count(plugin.diagnostics.begin(), plugin.diagnostics.end(), '\n'), 1)
        << plugin.diagnostics;
    EXPECT_NE(plugin.diagnostics.find(path), std::string::npos) << plugin.diagnostics;
  }
  const result_t folder = run({"/etc/apt"});
  EXPECT_EQ(folder.status, tools::EXIT_USAGE);
  EXPECT_EQ(folder.diagnostics,
            "ostrovia-replay: /etc/apt has no recording, no file NAME.000001.ndjson\n");
}

TEST_F(OstroviaReplayTest, MalformedLinesAreStatus3) {
  input_ = "x\n";
  EXPECT_EQ(run({"--strict"}).status, 3);
}

TEST_F(OstroviaReplayTest, PluginThatCannotBeUsedIsStatus4) {
  EXPECT_EQ(run({"--plugin", "/nowhere/plugin.so"}).status, 4);
  EXPECT_EQ(run({"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "create"}).status, 4);
}

TEST_F(OstroviaReplayTest, BrokenLawIsStatus6) {
  input_ = "{\"payload\":1}\n";
  EXPECT_EQ(run({"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "twice"}).status, 6);
}

TEST_F(OstroviaReplayTest, LeakIsStatus6) {
  input_ = "{\"payload\":1}\n{\"payload\":2}\n";
  environment_ = {"ASAN_OPTIONS=detect_leaks=0"}; // the leak is the subject
  const result_t result = run({"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "leak"});
  EXPECT_EQ(result.status, 6);
  EXPECT_EQ(result.out, "{\"metadata\":{},\"payload\":1}\n{\"metadata\":{},\"payload\":2}\n");
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: the plug-in leaked 2 blocks of the host\n"
            "read 2, reached the host 2, dropped 0, malformed 0, T ms, 2 blocks live\n");
  const result_t quiet =
      run({"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "leak", "--quiet"});
  EXPECT_EQ(quiet.status, 6);
  EXPECT_EQ(quiet.diagnostics, "ostrovia-replay: the plug-in leaked 2 blocks of the host\n");
}

TEST_F(OstroviaReplayTest, UnreadableInputIsStatus7) {
  const result_t missing = run({"/nowhere/in"});
  EXPECT_EQ(missing.status, 7);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.diagnostics, "ostrovia-replay: /nowhere/in: No such file or directory\n");
}

TEST_F(OstroviaReplayTest, FileOfAnotherFormEndsTheRun) {
  std::string lines;
  std::string shown;
  for (int i = 1; i <= 20; ++i) {
    lines += "x\n";
    shown += "bad:" + std::to_string(i) + ":1: not well-formed JSON\n";
  }
  folder_.write("good", passingLine("1"));
  folder_.write("bad", lines + "x\n" + passingLine("1"));
  for (const char* const threads : {"1", "2"}) {
    const result_t result =
        run({"good", "bad", "good", "--record", "golden", "--threads", threads});
    EXPECT_EQ(result.status, tools::EXIT_IO) << threads;
    EXPECT_EQ(result.diagnostics,
              shown +
                  "ostrovia-replay: bad: the first 20 lines are malformed; a line of input is one "
                  "JSON object\n"
                  "ostrovia-replay: incomplete: the input cannot be read further; no file is "
                  "written\n"
                  "read 21, reached the host 1, dropped 0, malformed 20, T ms\n");
  }
  folder_.write("bad", lines.substr(2) + passingLine("1") + lines + lines);
  EXPECT_EQ(run({"bad", "bad"}).status, tools::EXIT_BAD_INPUT);
}

TEST_F(OstroviaReplayTest, ClosedStandardOutputIsStatus7) {
  folder_.write("in.ndjson", passingLine("1"));
  const result_t result = runShell("ostrovia-replay in.ndjson >&-");
  EXPECT_EQ(result.status, tools::EXIT_IO);
  EXPECT_EQ(result.diagnostics, "ostrovia-replay: cannot write the events: Bad file descriptor\n");
}

TEST_F(OstroviaReplayTest, FullDeviceIsStatus7) {
  input_ = "{\"payload\":1}\n";
  out_path_ = "/dev/full";
  const result_t events = run({});
  EXPECT_EQ(events.status, 7);
  EXPECT_EQ(events.diagnostics,
            "ostrovia-replay: cannot write the events: No space left on device\n");
  const result_t help = run({"--help"});
  EXPECT_EQ(help.status, 7);
  EXPECT_EQ(help.diagnostics, "ostrovia-replay: cannot write to standard output\n");
}

// Closes the file's other side at once, as `| head -1` does after its line.
TEST_F(OstroviaReplayTest, ReaderThatGoesAwayIsNoError) {
  const std::string pipe = folder_.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  const int writer = ::open(pipe.c_str(), O_WRONLY);
  ASSERT_GE(writer, 0);
  close(reader);
  input_ = "{\"payload\":1}\n";
  out_descriptor_ = writer;
  const result_t result = run({});
  close(writer);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: incomplete: nobody reads the output any more\n"
            "read 1, reached the host 1, dropped 0, malformed 0, T ms\n");
}

TEST_F(OstroviaReplayTest, ReadingStopsWhenTheReaderIsGone) {
  input_ = eventLine("1");
  for (int i = 0; i < 14; ++i) input_ += input_;
  const result_t result = runShell("ostrovia-replay | head -1");
  EXPECT_EQ(result.out.rfind(R"({"metadata":{)", 0), 0u);
  EXPECT_EQ(result.diagnostics.find("read 16384,"), std::string::npos) << result.diagnostics;
}

TEST_F(OstroviaReplayTest, MessagesComeOutWhileTheInputPauses) {
  int in[2] = {};
  int out[2] = {};
  ASSERT_EQ(pipe2(in, O_CLOEXEC), 0);
  ASSERT_EQ(pipe2(out, O_CLOEXEC), 0);
  in_descriptor_ = in[0];
  out_descriptor_ = out[1];
  const pid_t child = start(VLT_REPLAY_PATH, {});
  const std::string line = passingLine("1");
  ASSERT_EQ(write(in[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
  char event[100] = {};
  const ssize_t size = read(out[0], event, sizeof event); // waits forever for a tool that waits
  EXPECT_EQ(std::string(event, static_cast<std::size_t>(size)),
            "{\"metadata\":{},\"payload\":1}\n");
  for (const int descriptor : {in[0], in[1], out[0], out[1]}) close(descriptor);
  EXPECT_EQ(waitFor(child).status, 0);
}

TEST_F(OstroviaReplayTest, NumbersSurviveUnchanged) {
  const std::string numbers =
      "[9223372036854775807,-9223372036854775808,9007199254740993,0.1,1e+22,5e-324,"
      "1.7976931348623157e+308,-0.0,4.35,123456789.125]";
  input_ = passingLine(numbers);
  EXPECT_EQ(run({}).out, "{\"metadata\":{},\"payload\":" + numbers + "}\n");
}

TEST_F(OstroviaReplayTest, MalformedLineIsReportedWithItsPlace) {
  input_ =
      "{\"payload\":9223372036854775808}\n{\"payload\":{\"a\":1,\"a\":2}}\n"
      "{\"payload\":\"\xff\"}\n";
  const result_t result = run({"--dropped", "dropped"});
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.diagnostics,
            "<stdin>:1:12: integer beyond 64 bits\n"
            "<stdin>:2:19: repeated key \"a\"\n"
            "<stdin>:3:13: bytes that are not UTF-8\n"
            "read 3, reached the host 0, dropped 0, malformed 3, T ms\n");
}

TEST_F(OstroviaReplayTest, QuietRunsStillReportFailures) {
  input_ = textlessLine("1") + "x\n" + eventLine("2");
  EXPECT_EQ(run({"--quiet"}).diagnostics, "<stdin>:2:1: not well-formed JSON\n");
  EXPECT_EQ(run({"--quiet", "--log-level", "3"}).diagnostics,
            "<stdin>:1: " + textlessLog("1") + "\n<stdin>:2:1: not well-formed JSON\n");
}

// Each in a shell, over recordings of the names that they use.
TEST_F(OstroviaReplayTest, ExamplesOfTheHelpWork) {
  folder_.write("recorded.ndjson", eventLine("1"));
  input_ = eventLine("1");
  std::filesystem::create_directory(folder_.path("rec"));
  folder_.write("rec/after.000001.ndjson", headLine({"after"}) + recordedLine({}, run({}).out));
  folder_.write("rec/before.000001.ndjson", headLine({"before"}) + recordedLine({}, input_));
  std::filesystem::copy(VLT_PLUGIN_PATH, folder_.path("next.so"));
  tools::ReplayOptions options;
  for (const tools::example_row_t& example : tools::replayTool(options).examples) {
    const result_t result = runShell(example.command);
    EXPECT_EQ(result.status, 0) << example.command << '\n' << result.diagnostics;
    EXPECT_NE(result.diagnostics.find("read 1, reached the host 1, "), std::string::npos)
        << example.command << '\n'
        << result.diagnostics;
  }
}

TEST_F(OstroviaReplayTest, MemoryDoesNotGrowWithTheInput) {
#ifdef VLT_SANITIZED
  GTEST_SKIP() << "AddressSanitizer keeps freed memory back";
#endif
  // Written piece by piece: a program starts out with its parent's memory on its account.
  const std::string line = "{\"payload\":\"" + std::string(1000, 'x') + "\"}\n";
  std::ofstream file(folder_.path("in.ndjson"));
  for (int i = 0; i < 5000; ++i) file << line;
  file.flush();
  const std::vector<std::string> arguments = {
      folder_.path("in.ndjson"), "--threads", "2", "--summary", "--record", "/dev/null"};
  const result_t some = run(arguments);
  for (int i = 0; i < 46000; ++i) file << line;
  file.flush();
  out_path_ = "/dev/null";
  const result_t many = run(arguments);
  EXPECT_TRUE(many.diagnostics.ends_with(
      "read 51000, reached the host 51000, dropped 0, malformed 0, T ms, 0 blocks live\n"));
  EXPECT_LT(many.memory, some.memory + 8192);
}

// A host library as a real one is: with the host's functions and no others.
TEST_F(OstroviaReplayTest, OtherHostLibrariesNeedNotCount) {
  input_ = "{\"payload\":[1]}\n";
  environment_ = {"LD_PRELOAD=" VLT_PLAIN_HOST_PATH, "ASAN_OPTIONS=verify_asan_link_order=0"};
  const result_t result = run({"--log-level", "6"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "{\"metadata\":{},\"payload\":[1]}\n");
  EXPECT_EQ(result.diagnostics,
            "ostrovia-replay: this host library does not let its log level be set; --log-level is "
            "ignored\n"
            "read 1, reached the host 1, dropped 0, malformed 0, T ms, live blocks not counted by "
            "this host library\n");
}

} // namespace com::velanto::connectivity::test

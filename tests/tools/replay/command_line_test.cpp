#include "tools/replay/command_line.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "identity/build_name.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/pattern.hpp"
#include "tests/tools/elapsed.hpp"
#include "tests/tools/temporary_folder.hpp"
#include "tools/options/exit_status.hpp"
#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::test {

namespace {

class CommandLineTest : public HostFixture {
 protected:
  int run(std::vector<const char*> arguments) {
    out_.str("");
    diagnostics_.str("");
    arguments.insert(arguments.begin(), "ostrovia-replay");
    return tools::runReplay(static_cast<int>(arguments.size()), arguments.data(), out_,
                            diagnostics_);
  }
  std::string out() const { return out_.str(); }
  std::string diagnostics() const { return withoutElapsed(diagnostics_.str()); }

  // An event: its conversion shows the plug-in's configuration.
  const TemporaryFolder folder_;
  const std::string events_ = folder_.write(
      "events", R"({"metadata": {"pulsarPath": "a/b/events"}, "payload": {"id": "1", "source": )"
                R"({"id": "9"}, "text": "x", "time": "1970-01-01T00:00:05Z", "type": "T"}})");

 private:
  std::ostringstream out_;
  std::ostringstream diagnostics_;
};

} // namespace

TEST_F(CommandLineTest, HelpHasTheExamplesAndEveryOption) {
  EXPECT_EQ(run({"--help"}), 0);
  std::string examples = "Examples:\n";
  tools::ReplayOptions options;
  const tools::tool_t tool = tools::replayTool(options);
  for (const tools::example_row_t& row : tool.examples) {
    examples += std::string("  # ") + row.purpose + "\n  " + row.command + "\n";
  }
  EXPECT_EQ(out().rfind(examples + "\n", 0), 0u);
  for (const tools::option_group_t& group : tool.groups) {
    EXPECT_NE(out().find(std::string("\n") + group.title + ":\n"), std::string::npos);
    for (const tools::option_row_t& row : group.rows) {
      EXPECT_NE(out().find(std::string("\n  ") + row.name), std::string::npos) << row.name;
    }
  }
  EXPECT_EQ(diagnostics(), "");
}

TEST_F(CommandLineTest, HelpFitsATerminal) {
  EXPECT_EQ(run({"-h"}), 0);
  std::istringstream lines(out());
  for (std::string line; std::getline(lines, line);) EXPECT_LT(line.size(), 80u) << line;
}

TEST_F(CommandLineTest, HelpListsTheExitStatuses) {
  EXPECT_EQ(run({"--help"}), 0);
  EXPECT_NE(out().find("Exit status, the largest that applies:\n"
                       "    0  fine, also when messages were dropped\n"
                       "    1  with --strict: messages were dropped\n"
                       "    2  the command line is wrong\n"
                       "    3  lines of the input are malformed\n"
                       "    4  the plug-in or its configuration is unusable, or a call failed\n"
                       "    5  the run differs from the recorded one, the other build or the copy\n"
                       "    6  the plug-in lost or made up messages, or leaked blocks of the host\n"
                       "    7  reading or writing failed\n"
                       "  130  ended by Ctrl-C, with the results so far\n"),
            std::string::npos);
}

TEST_F(CommandLineTest, VersionIsTheProjects) {
  EXPECT_EQ(run({"--version"}), 0);
  static const Pattern VERSION(
      R"(ostrovia-replay [0-9.]+, (unknown commit|commit [0-9a-f]{12}(, modified)?)\n)");
  EXPECT_TRUE(VERSION.isAllOf(out())) << out();
  EXPECT_EQ("ostrovia-notifications" + out().substr(15), std::string(VLT_BUILD_NAME) + "\n");
}

TEST_F(CommandLineTest, WrongArgumentsAreNamed) {
  const std::vector<std::pair<std::vector<const char*>, const char*>> rows = {
      {{"--unknown"}, "unknown option '--unknown'; see --help"},
      {{"-q"}, "unknown option '-q'; see --help"},
      {{"--tenantid=a"}, "unknown option '--tenantid', did you mean '--tenant-id'?"},
      {{"--batch-siez", "4"}, "unknown option '--batch-siez', did you mean '--batch-size'?"},
      {{"--direction", "up"}, "--direction: 'up' is none of host|transport"},
      {{"--direction", "host|transport"},
       "--direction: 'host|transport' is none of host|transport"},
      {{"--log-level", "high"}, "--log-level: 'high' is not a level of the log, such as 2, 3 or 6"},
      {{"--log-level", "99999999999"},
       "--log-level: '99999999999' is not a level of the log, such as 2, 3 or 6"},
      {{"--tenant-id", "a", "--tenant-id", "b"}, "--tenant-id is given twice"},
      {{"--quiet=yes"}, "--quiet takes no value"},
      {{"--summary="}, "--summary: '' is none of text|json"},
      {{"--summary", "json"}, "--summary json: write --summary=json, or ./json for a file"},
      {{"--threads", "1025"}, "--threads takes at most 1024"},
      {{"--merge-summaries", "--strict"}, "--merge-summaries takes FILES alone"},
      {{"--merge-summaries", "--summary=json"}, "--merge-summaries takes FILES alone"},
      {{"--report", "-"}, "--report needs a file: standard output has the events"},
      {{"--record", "/dev/stdout"}, "--record needs a file: standard output has the events"},
      {{"--redact", "id", "--redacted", "/dev/fd/1"},
       "--redacted needs a file: standard output has the events"},
      {{"--config", "--quiet"}, "--config needs a value: FILE"},
      {{"--tenant-id"}, "--tenant-id needs a value: TEXT"}};
  for (const auto& [arguments, complaint] : rows) {
    EXPECT_EQ(run(arguments), tools::EXIT_USAGE) << complaint;
    EXPECT_EQ(diagnostics(), std::string("ostrovia-replay: ") + complaint + "\n");
    EXPECT_EQ(out(), "");
  }
}

TEST_F(CommandLineTest, EmptyValueIsTheEmptyText) {
  EXPECT_EQ(run({"--tenant-id=", events_.c_str()}), 0);
  EXPECT_EQ(out().find("tenantId"), std::string::npos) << out();
  EXPECT_NE(out(), "");
  EXPECT_EQ(run({"--batch-size=", events_.c_str()}), tools::EXIT_USAGE);
  EXPECT_EQ(diagnostics(),
            "ostrovia-replay: --batch-size: '' is not a whole number from 1 to 2^64-1\n");
}

TEST_F(CommandLineTest, TwoDashesEndTheOptions) {
  EXPECT_EQ(run({"--quiet", "--", "--nowhere"}), tools::EXIT_IO);
  EXPECT_EQ(diagnostics(), "ostrovia-replay: --nowhere: No such file or directory\n");
}

TEST_F(CommandLineTest, BatchSizeIsAWholeNumberFrom1) {
  for (const std::string size : {"0", "-1", "1x", "0.5", "99999999999999999999", ""}) {
    EXPECT_EQ(run({"--batch-size", size.c_str(), events_.c_str()}), tools::EXIT_USAGE) << size;
    EXPECT_EQ(diagnostics(), "ostrovia-replay: --batch-size: '" + size +
                                 "' is not a whole number from 1 to 2^64-1\n");
  }
  EXPECT_EQ(run({"--batch-size", "1", events_.c_str()}), 0);
}

TEST_F(CommandLineTest, MissingFileIsNamed) {
  EXPECT_EQ(run({events_.c_str(), "/nowhere/in"}), tools::EXIT_IO);
  EXPECT_EQ(diagnostics(), "ostrovia-replay: /nowhere/in: No such file or directory\n");
  EXPECT_EQ(out(), "");
}

TEST_F(CommandLineTest, DefaultsAreNoTenantAndTheOwnPlugin) {
  EXPECT_EQ(run({events_.c_str()}), 0);
  EXPECT_EQ(out().find("tenantId"), std::string::npos);
  EXPECT_NE(out().find(R"("vlt.channel":"ostrovia.devices")"), std::string::npos);
  EXPECT_EQ(diagnostics(), "read 1, reached the host 1, dropped 0, malformed 0, T ms\n");
}

TEST_F(CommandLineTest, OptionsReachThePlugin) {
  EXPECT_EQ(run({"--tenant-id", "t1", "--channel-prefix", "p.", "--log-level=6", events_.c_str()}),
            0);
  EXPECT_NE(out().find(R"("tenantId":"t1")"), std::string::npos);
  EXPECT_NE(out().find(R"("vlt.channel":"p.ostrovia.devices")"), std::string::npos);
  EXPECT_NE(diagnostics().find("Processing message: "), std::string::npos);
}

TEST_F(CommandLineTest, EmptyMeasurementChannelIsNotTheDefault) {
  const std::string file = folder_.write(
      "measurement", R"({"metadata": {"pulsarPath": "a/b/measurements"}, "payload": {"id": "1", )"
                     R"("source": {"id": "9"}, "time": "1970-01-01T00:00:05Z", "type": "T"}})");
  EXPECT_EQ(run({"--measurement-channel", "", file.c_str()}), 0);
  EXPECT_NE(out().find(R"("vlt.channel":"")"), std::string::npos);
  EXPECT_EQ(run({"--measurement-channel", "m", file.c_str()}), 0);
  EXPECT_NE(out().find(R"("vlt.channel":"m")"), std::string::npos);
  EXPECT_EQ(run({file.c_str()}), 0);
  EXPECT_NE(out().find(R"("vlt.channel":"ostrovia.measurements")"), std::string::npos);
}

TEST_F(CommandLineTest, DirectionTurnsTheChainRound) {
  EXPECT_EQ(run({"--direction", "transport", events_.c_str()}), 0);
  EXPECT_NE(out().find("pulsarPath"), std::string::npos);
  EXPECT_EQ(diagnostics(), "read 1, reached the transport 1, dropped 0, malformed 0, T ms\n");
}

TEST_F(CommandLineTest, OtherPluginIsLoaded) {
  EXPECT_EQ(run({"--plugin", VLT_FAULTY_PLUGIN_PATH, "--tenant-id", "create", events_.c_str()}),
            tools::EXIT_PLUGIN);
  EXPECT_EQ(diagnostics(),
            "<connectivity.OstroviaNotifications2Codec.replay> Exception from create: boom\n"
            "ostrovia-replay: the plug-in refused its configuration\n");
}

} // namespace com::velanto::connectivity::test

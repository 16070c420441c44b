// Keeps docs/replay.md, docs/operating.md and docs/host-interface.md true. Runs each console block,
// command by command, in one folder a document, with the samples and with $PLUGIN naming the
// plug-in. Compares the output with the lines below the command.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/docs/console.hpp"
#include "tests/support/pattern.hpp"
#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::test {

namespace {

constexpr const char* REPLAY = "docs/replay.md";
class ReplayDocument : public Console {
 protected:
  ReplayDocument() { copySamples(""); }
};

// The examples for operators of a host, and for writers of one.
class OperatingDocument : public ReplayDocument {};
class HostInterfaceDocument : public ReplayDocument {};

// The lines that are not empty, in alphabetical order.
std::string sorted(const std::string& text) {
  std::vector<std::string> lines = documentOf(text).lines;
  std::sort(lines.begin(), lines.end());
  std::string result;
  for (const std::string& line : lines) {
    if (!line.empty()) result += line + "\n";
  }
  return result;
}

} // namespace

TEST_F(ReplayDocument, EveryExampleShowsTheOutputOfTheTool) { expectAsShown(REPLAY); }
TEST_F(OperatingDocument, EveryExampleShowsTheOutputOfTheTools) {
  expectAsShown("docs/operating.md");
}

// Instead of waiting for a minute, bpftrace runs a host, and it does so once it listens.
TEST_F(OperatingDocument, TracersCountAsShown) {
  const result_t allowed = runShell("bpftrace -e 'BEGIN { exit(); }' 2>&1");
  if (allowed.status != 0) GTEST_SKIP() << "no tracing here: " << allowed.out;
  // Tracers of a file see all of its processes, other tests' too.
  runShell("cp $PLUGIN traced.so");
  folder_.write("host", "chain_host $PLUGIN $RECORDER . site-day.ndjson > sent 2> log");
  const std::string minute = "interval:s:60 {";
  const std::string run = R"(interval:s:1 { system(\"sh ./host\");)";
  int examples = 0;
  for (const block_t& block : readBlocks(readDocument("docs/operating.md"))) {
    if (block.info != "console bpftrace") continue;
    ++examples;
    const std::size_t end = block.text.find('\n');
    std::string command = block.text.substr(2, end - 2);
    command.replace(command.find(minute), minute.size(), run)
        .insert(command.find(' '), " --unsafe");
    const std::string expected = sorted(block.text.substr(end + 1));
    EXPECT_EQ(
        abbreviated(sorted(runShell("export PLUGIN=$PWD/traced.so\n" + command).out), expected),
        expected)
        << command;
  }
  EXPECT_EQ(examples, 2);
}

TEST_F(HostInterfaceDocument, ProgramPrintsTheOutputShown) {
  expectAsShown("docs/host-interface.md");
}

TEST_F(ReplayDocument, EveryOptionHasAnExample) {
  std::string commands;
  for (const session_t& session : sessionsOf(readDocument(REPLAY))) {
    commands += " " + session.command + " ";
  }
  tools::ReplayOptions options;
  for (const tools::option_group_t& group : tools::replayTool(options).groups) {
    if (group.title == tools::ABOUT_THE_TOOL.title) continue;
    for (const tools::option_row_t& row : group.rows) {
      EXPECT_TRUE(Pattern(std::string(" ") + row.name + "[ =]").isIn(commands)) << row.name;
    }
  }
}

} // namespace com::velanto::connectivity::test

// Keeps docs/replay.md, docs/operating.md and docs/host-interface.md true. Runs each console block,
// command by command, in one folder a document, with the samples and with $PLUGIN naming the
// plug-in. Compares the output with the lines below the command.
#include <gtest/gtest.h>

#include <string>

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

} // namespace

TEST_F(ReplayDocument, EveryExampleShowsTheOutputOfTheTool) { expectAsShown(REPLAY); }
TEST_F(OperatingDocument, EveryExampleShowsTheOutputOfTheTools) {
  expectAsShown("docs/operating.md");
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

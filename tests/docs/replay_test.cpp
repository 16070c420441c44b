// Keeps docs/replay.md, docs/operating.md and docs/host-interface.md true: each console block is
// run, command by command, in one folder a document with the samples and with $PLUGIN naming the
// plug-in, and must show what stands below the command. Times differ from run to run, and a line
// that ends in "…" is only begun.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <string_view>

#include "tests/docs/markdown.hpp"
#include "tests/tools/program.hpp"
#include "tools/replay/options.hpp"

namespace com::velanto::connectivity::test {

namespace {

constexpr const char* REPLAY = "docs/replay.md";
constexpr std::string_view ELLIPSIS = "…";

struct session_t {
  std::string place;
  std::string command;
  std::string shown;
};

std::vector<session_t> sessionsOf(const document_t& document) {
  std::vector<session_t> sessions;
  for (const block_t& block : readBlocks(document)) {
    if (block.info != "console") continue;
    std::istringstream lines(block.text);
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("$ ")) {
        sessions.push_back({placeOf(document, block.line), line.substr(2), {}});
      } else {
        sessions.back().shown += line + "\n";
      }
    }
  }
  return sessions;
}

std::string withoutTimes(const std::string& text) {
  static const std::regex TIME(R"( *\b[0-9]+(\.[0-9]+)? ?(ms|µs|messages/s))");
  return std::regex_replace(text, TIME, " T $2");
}

// The lines of `shown` as `expected` has them: cut off where it says so.
std::string abbreviated(const std::string& shown, const std::string& expected) {
  std::istringstream shown_lines(shown);
  std::istringstream expected_lines(expected);
  std::string result;
  for (std::string line; std::getline(shown_lines, line);) {
    std::string pattern;
    std::getline(expected_lines, pattern);
    if (pattern.ends_with(ELLIPSIS)) {
      const std::string begin = pattern.substr(0, pattern.size() - ELLIPSIS.size());
      if (line.starts_with(begin)) line = pattern;
    }
    result += line + "\n";
  }
  return result;
}

class ReplayDocument : public Program {
 protected:
  ReplayDocument() {
    environment_ = {"PLUGIN=" VLT_PLUGIN_PATH};
    for (const auto& file : std::filesystem::directory_iterator(VLT_PROJECT_ROOT "/samples")) {
      std::filesystem::copy(file.path(), folder_.path(file.path().filename()));
    }
  }

  void expectAsShown(const char* document) {
    const std::vector<session_t> sessions = sessionsOf(readDocument(document));
    EXPECT_FALSE(sessions.empty());
    for (const session_t& session : sessions) {
      const std::string shown = withoutTimes(runShell("{ " + session.command + "\n} 2>&1").out);
      const std::string expected = withoutTimes(session.shown);
      EXPECT_EQ(abbreviated(shown, expected), expected) << session.place << ": " << session.command;
    }
  }
};

// The examples for those who run a host, and for those who write one.
class OperatingDocument : public ReplayDocument {};
class HostInterfaceDocument : public ReplayDocument {};

} // namespace

TEST_F(ReplayDocument, EveryExampleShowsWhatTheToolDoes) { expectAsShown(REPLAY); }
TEST_F(OperatingDocument, EveryExampleShowsWhatTheToolsDo) { expectAsShown("docs/operating.md"); }
TEST_F(HostInterfaceDocument, ProgramPrintsWhatIsShown) { expectAsShown("docs/host-interface.md"); }

TEST_F(ReplayDocument, EveryOptionHasAnExample) {
  std::string commands;
  for (const session_t& session : sessionsOf(readDocument(REPLAY))) {
    commands += " " + session.command + " ";
  }
  for (const tools::option_group_t& group : tools::optionTable()) {
    for (const tools::option_row_t& row : group.rows) {
      const std::regex named(std::string(" ") + row.name + "[ =]");
      EXPECT_TRUE(std::regex_search(commands, named)) << row.name;
    }
  }
}

} // namespace com::velanto::connectivity::test

// Keeps true what the documents say of ./dev: (1) their examples show its output; (2) the commands
// that they name exist. Programs that build and test are called, but do not run inside of a test.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "tests/docs/door.hpp"
#include "tests/support/pattern.hpp"

namespace com::velanto::connectivity::test {

namespace {

class Readme : public Door {
 protected:
  // The examples of a document: `normal` of the output is `normal` of the example. Adds `options`
  // to the last command.
  template <class Normal>
  void expectAtDoor(const char* document, std::size_t examples, const Normal& normal,
                    const std::string& options = "") {
    std::vector<session_t> sessions = sessionsOf(readDocument(document));
    ASSERT_EQ(sessions.size(), examples);
    sessions.back().command += options;
    for (const session_t& session : sessions) {
      const std::string shown = normal(runAtDoor(session.command));
      const std::string expected = normal(session.shown);
      EXPECT_EQ(abbreviated(shown, expected), expected) << session.place << ": " << session.command;
    }
  }
};

std::string withoutNumbers(const std::string& text) {
  return Pattern("[0-9]+(\\.[0-9]+)?").replacedIn(text, "N");
}

} // namespace

TEST_F(Readme, EveryExampleShowsTheOutputOfTheDoor) {
  expectAtDoor("README.md", 4, withoutTimes);
  EXPECT_EQ(takeCalls(), "status 0\nstatus 0\nstatus 0\nstatus 0\n") << "all was there already";
}

TEST_F(Readme, PluginCheckPrintsTheOutputInItsDocument) {
  const auto as_it_is = [](const std::string& text) { return text; };
  expectAtDoor("docs/check-plugin.md", 2, as_it_is, " --timeout 250"); // the machine may be busy
}

// The machine decides how much it does in that time.
TEST_F(Readme, SoakPrintsTheOutputInItsDocument) {
  expectAtDoor("docs/reliability.md", 1, withoutNumbers);
}

// The same two that scripts/test_package.sh runs in a clean Debian.
TEST_F(Readme, PackageCommandsAgreeWithTheOperatingDocument) {
  std::vector<std::string> shown;
  for (const block_t& block : readBlocks(readDocument("docs/operating.md"))) {
    if (block.info != "console debian") continue;
    for (const std::string& line : documentOf(block.text).lines) {
      if (line.starts_with("$ ")) shown.push_back("    " + line.substr(2));
    }
  }
  ASSERT_EQ(shown.size(), 2U);
  const std::vector<std::string> lines = readDocument("README.md").lines;
  EXPECT_NE(std::search(lines.begin(), lines.end(), shown.begin(), shown.end()), lines.end());
}

TEST_F(Readme, FirstCommandReplaysTheSamples) {
  EXPECT_EQ(withoutTimes(runAtDoor("./dev replay samples/*.ndjson")),
            withoutTimes(runAtDoor("./dev replay")));
}

// From anywhere, as the samples' own document has it from the project's root.
TEST_F(Readme, SamplesAreReplayedAsTheirDocumentSays) {
  const document_t document = readDocument("samples/README.md");
  const std::string command = "./dev replay samples/site-day.ndjson";
  EXPECT_NE(std::find(document.lines.begin(), document.lines.end(), "    " + command),
            document.lines.end());
  const std::string shown = withoutTimes(runAtDoor(command));
  EXPECT_NE(shown.find("read 401, reached the host 395, dropped 6"), std::string::npos) << shown;
  std::string from_samples = shown;
  const std::string folder = "samples/";
  for (std::size_t at = 0; (at = from_samples.find(folder)) != std::string::npos;) {
    from_samples.erase(at, folder.size());
  }
  EXPECT_EQ(withoutTimes(runAtDoor("cd samples; ../dev replay site-day.ndjson")), from_samples);
}

TEST_F(Readme, HelpOfTheToolListsNamedOptions) {
  const std::string help = runAtDoor("./dev replay --help");
  for (const char* const option : {"--summary", "--dropped", "--against"}) {
    EXPECT_NE(help.find(option), std::string::npos) << option;
  }
}

TEST_F(Readme, QuickTestTakesArgumentsOfCtest) {
  runAtDoor("./dev test --quick -R Alarm");
  EXPECT_EQ(takeCalls(), "ctest --preset quick --label-exclude whole -R Alarm\nstatus 0\n");
}

TEST_F(Readme, NamedPresetsExist) {
  std::string presets;
  for (const std::string& line : readDocument("CMakePresets.json").lines) presets += line;
  for (const char* const name : {"release", "debug", "thread"}) {
    EXPECT_TRUE(Pattern(std::string("\"name\": *\"") + name + "\"").isIn(presets)) << name;
  }
}

// `./dev help` lists every ./dev COMMAND of the documents, and no other.
TEST_F(Readme, NamedCommandsAgreeWithTheHelp) {
  std::set<std::string> listed;
  for (const std::string& line : documentOf(runAtDoor("./dev help")).lines) {
    for (const Pattern::match_t& found : Pattern("^  ([a-z]+) ").allIn(line)) {
      listed.insert(found[1]);
    }
  }
  std::set<std::string> named;
  for (const std::string& name : documentNames()) {
    for (const std::string& line : readDocument(name).lines) {
      static const Pattern COMMAND(R"(\./dev ([a-z]+))");
      for (const Pattern::match_t& found : COMMAND.allIn(line)) named.insert(found[1]);
    }
  }
  EXPECT_FALSE(listed.empty());
  EXPECT_EQ(named, listed);
}

TEST_F(Readme, UnknownCommandPrintsTheList) {
  const std::string shown = runAtDoor("./dev tests");
  EXPECT_TRUE(shown.starts_with("usage: ./dev COMMAND")) << shown;
  EXPECT_TRUE(shown.ends_with("dev: there is no command 'tests'\n")) << shown;
  EXPECT_EQ(takeCalls(), "status 2\n");
}

} // namespace com::velanto::connectivity::test

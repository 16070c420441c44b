#include "tools/options/man_page.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "tests/support/values.hpp"
#include "tests/tools/options/command_output.hpp"
#include "tools/options/check_plugin_options.hpp"
#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using tools::manPage;
using tools::tool_t;

constexpr std::array EXAMPLES = {tools::example_row_t{"tool -x 'a'", "Why?"}};
constexpr std::array STATUSES = {tools::status_row_t{0, "fine"}};
const tool_t TOOL{"tool",
                  EXAMPLES,
                  "",
                  "FILES",
                  {},
                  {{"Group",
                    {{"--flag", "", "a flag", {}},
                     {"--way", "in|out", "way", {}},
                     {"--to", "FILE", "to", {}},
                     {"--sum", "[=a|b]", "sum", {}},
                     {"--why", "[=json]", "why", {}}}}},
                  "Exit status",
                  STATUSES};

std::string proseError(const std::string& prose) {
  return errorOf([&] { static_cast<void>(manPage(TOOL, prose)); });
}

// A page of this build.
class BuiltPage : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (outputOf("command -v man lexgrog groff").find("status") != std::string::npos) {
      GTEST_SKIP() << "no man to read it with";
    }
  }
  static std::string path() { return std::string(VLT_MANUAL_FOLDER "/") + GetParam() + ".1"; }
  static std::string shown() {
    return outputOf("LC_ALL=C.UTF-8 MANWIDTH=80 man --local-file " + path() + " | col -bx");
  }
};

} // namespace

TEST(ManPageTest, TextShowsUnchanged) {
  EXPECT_EQ(tools::roff("a-b 'c' d\\e"), "a\\-b \\(aqc\\(aq d\\ee");
  EXPECT_EQ(tools::roff(".golden"), "\\&.golden");
}

TEST(ManPageTest, TablesTakeTheirPlaces) {
  EXPECT_EQ(
      manPage(TOOL,
              "tool @VERSION@\n@EXAMPLES@\n.SH OPTIONS\n@OPTIONS@\n.SH EXIT\n@EXIT_STATUS@\n"),
      "tool " VLT_VERSION
      "\n"
      ".PP\nWhy?\n.EX\n\\fBtool \\-x \\(aqa\\(aq\\fP\n.EE\n"
      ".SH OPTIONS\n"
      ".SS Group\n"
      ".TP\n\\fB\\-\\-flag\\fP\na flag\n"
      ".TP\n\\fB\\-\\-way\\fP \\fBin\\fP|\\fBout\\fP\nway\n"
      ".TP\n\\fB\\-\\-to\\fP \\fIFILE\\fP\nto\n"
      ".TP\n\\fB\\-\\-sum\\fP[=\\fBa\\fP|\\fBb\\fP]\nsum\n"
      ".TP\n\\fB\\-\\-why\\fP[=\\fBjson\\fP]\nwhy\n"
      ".SH EXIT\n"
      ".TP\n\\fB0\\fP\nfine\n");
}

TEST(ManPageTest, ProseWithoutATableIsRefused) {
  EXPECT_EQ(proseError("\n@EXAMPLES@\n@OPTIONS@\n"),
            "the prose of tool has no line @EXIT_STATUS@\n");
}

TEST(ManPageTest, UnknownNameInTheProseIsRefused) {
  EXPECT_EQ(proseError("\n@EXAMPLES@\n@OPTIONS@\n@EXIT_STATUS@\n@OPTION@\n"),
            "the prose of tool names an unknown @OPTION@");
}

TEST(ManPageTest, SignsAroundNoNameStay) {
  EXPECT_EQ(proseError("\n@EXAMPLES@\n@OPTIONS@\n@EXIT_STATUS@\n@ a@b.example @@ @x@ @A b@ @A"),
            "nothing thrown");
}

TEST_P(BuiltPage, GivesNoWarning) {
  EXPECT_EQ(outputOf("LC_ALL=C.UTF-8 man --warnings --encoding=UTF-8 --local-file --troff-device="
                     "utf8 --ditroff " +
                     path() + " > /dev/null"),
            "");
  EXPECT_EQ(outputOf("groff -man -ww -z " + path()), "");
}

TEST_P(BuiltPage, IsFoundByItsNameAndPurpose) {
  EXPECT_THAT(outputOf("lexgrog " + path()), HasSubstr(".1: \"" + std::string(GetParam()) + " - "));
}

TEST_P(BuiltPage, HasTheCustomarySections) {
  std::vector<std::string> sections;
  for (const std::string& line : linesOf(shown())) {
    if (!line.empty() && line.find(' ') != 0 && line.find('(') == std::string::npos) {
      sections.push_back(line);
    }
  }
  sections.erase(
      std::remove_if(sections.begin(), sections.end(),
                     [](const auto& line) { return line.find("  ") != std::string::npos; }),
      sections.end());
  EXPECT_THAT(sections, ElementsAre("NAME", "SYNOPSIS", "DESCRIPTION", "EXAMPLES", "OPTIONS",
                                    "EXIT STATUS", "ENVIRONMENT", "FILES", "SEE ALSO"));
}

TEST_P(BuiltPage, FitsATerminal) {
  for (const std::string& line : linesOf(shown())) {
    const auto columns = std::count_if(line.begin(), line.end(), [](char byte) {
      return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; // begins a character
    });
    EXPECT_LE(columns, 80) << line;
  }
}

TEST_P(BuiltPage, ShowsExamplesOptionsAndExitStatuses) {
  const std::string page = shown();
  tools::ReplayOptions replay;
  tools::check::command_t check_plugin;
  const tool_t tool = GetParam() == std::string(tools::REPLAY_NAME)
                          ? tools::replayTool(replay)
                          : tools::check::checkPluginTool(check_plugin);
  for (const auto& example : tool.examples) {
    EXPECT_THAT(page, HasSubstr(std::string(example.command) + "\n"));
  }
  for (const auto& group : tool.groups) {
    for (const auto& option : group.rows) {
      EXPECT_THAT(page, HasSubstr(std::string("\n       ") + option.name));
    }
  }
  for (const auto& row : tool.statuses) {
    EXPECT_THAT(page, HasSubstr("\n       " + std::to_string(row.status) + " "));
  }
}

INSTANTIATE_TEST_SUITE_P(Manual, BuiltPage,
                         ::testing::Values("ostrovia-replay", "ostrovia-check-plugin"));

} // namespace com::velanto::connectivity::test

#include "tools/options/completion.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/values.hpp"
#include "tests/tools/options/command_output.hpp"
#include "tools/options/check_plugin_options.hpp"
#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using tools::bashCompletion;
using tools::tool_t;
using words_t = std::vector<std::string>;

const std::string FILES = "compopt -o default"; // bash completes names of files
const std::string FOLDERS = "compopt -o dirnames";

// The offers of bash for the last of `words`, cut as bash cuts them; the first is the tool's name.
words_t offered(const words_t& words) {
  const std::string& tool = words.front();
  std::string function = "_" + tool;
  std::replace(function.begin(), function.end(), '-', '_');
  std::string script = "source " VLT_MANUAL_FOLDER "/" + tool +
                       ".bash\n"
                       "PATH=" VLT_TOOLS_FOLDER
                       ":$PATH\n"
                       "compopt() { echo compopt \"$@\"; }\n"
                       "COMP_WORDS=(";
  for (const std::string& word : words) script += "'" + word + "' ";
  script += ") COMP_CWORD=" + std::to_string(words.size() - 1) + "\n" + function + " " + tool +
            "\nfor reply in \"${COMPREPLY[@]}\"; do echo \"$reply\"; done\n";
  return linesOf(outputOf(script));
}

} // namespace

TEST(CompletionTest, EveryOptionIsOffered) {
  tools::ReplayOptions replay;
  tools::check::command_t check_plugin;
  for (const tool_t& tool :
       {tools::replayTool(replay), tools::check::checkPluginTool(check_plugin)}) {
    words_t names;
    for (const auto& group : tool.groups) {
      for (const auto& option : group.rows) names.emplace_back(option.name);
    }
    EXPECT_THAT(offered({tool.name, "-"}), ElementsAreArray(names)) << tool.name;
  }
}

TEST(CompletionTest, BeginningOfAnOptionIsCompleted) {
  EXPECT_THAT(offered({"ostrovia-replay", "--summary", "--che"}), ElementsAre("--check-config"));
}

TEST(CompletionTest, FixedValuesAreOffered) {
  EXPECT_THAT(offered({"ostrovia-replay", "--direction", ""}), ElementsAre("host", "transport"));
  EXPECT_THAT(offered({"ostrovia-replay", "--direction", "=", "t"}), ElementsAre("transport"));
  EXPECT_THAT(offered({"ostrovia-replay", "--log-level", ""}), ElementsAre("2", "3", "6"));
}

TEST(CompletionTest, OptionalValueComesAfterTheEqualsSign) {
  EXPECT_THAT(offered({"ostrovia-replay", "--summary", "="}), ElementsAre("text", "json"));
  EXPECT_THAT(offered({"ostrovia-replay", "--summary", "=", "j"}), ElementsAre("json"));
  EXPECT_THAT(offered({"ostrovia-replay", "--summary", ""}), ElementsAre(FILES));
}

TEST(CompletionTest, FilesAreOfferedWhereFilesBelong) {
  EXPECT_THAT(offered({"ostrovia-replay", ""}), ElementsAre(FILES));
  EXPECT_THAT(offered({"ostrovia-replay", "--plugin", "./n"}), ElementsAre(FILES));
  EXPECT_THAT(offered({"ostrovia-replay", "--suite", ""}), ElementsAre(FOLDERS));
  EXPECT_THAT(offered({"ostrovia-replay", "--threads", ""}), ElementsAre());
  EXPECT_THAT(offered({"ostrovia-replay", "--tenant-id", "=", "t"}), ElementsAre());
  EXPECT_THAT(offered({"ostrovia-check-plugin", "--json", ""}), ElementsAre(FILES));
}

TEST(CompletionTest, ChecksComeFromTheTool) {
  EXPECT_THAT(offered({"ostrovia-check-plugin", "--only", "versions.p"}),
              ElementsAre("versions.product", "versions.product-text-stays"));
  EXPECT_THAT(offered({"ostrovia-check-plugin", "--skip", ""}), Contains("memory.creation"));
}

TEST(CompletionTest, BashKnowsItUnderTheToolsName) {
  EXPECT_EQ(outputOf("source " VLT_MANUAL_FOLDER "/ostrovia-replay.bash && complete -p"),
            "complete -F _ostrovia_replay ostrovia-replay\n");
}

TEST(CompletionTest, ArgumentOfAnUnknownSortIsRefused) {
  const tool_t tool{"tool", {}, "", "", {}, {{"Options", {{"--odd", "ODDITY", "odd", {}}}}},
                    "",     {}};
  EXPECT_EQ(errorOf([&] { static_cast<void>(bashCompletion(tool)); }),
            "it is not known what completes the ODDITY of --odd");
}

} // namespace com::velanto::connectivity::test

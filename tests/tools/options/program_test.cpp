#include "tools/options/program.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/values.hpp"
#include "tools/options/check_plugin_options.hpp"
#include "tools/options/replay_options.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::ElementsAreArray;
using tools::manual::describe;
using tools::manual::program_t;

std::vector<std::string> namesIn(const program_t& program) {
  std::vector<std::string> names;
  for (const auto& group : program.groups) {
    for (const auto& option : group.options) names.push_back(option.name);
  }
  return names;
}

} // namespace

TEST(ProgramTest, OptionsAreThoseOfTheCommandLineThenHelpAndVersion) {
  std::vector<std::string> names;
  for (const auto& group : tools::optionTable()) {
    for (const auto& row : group.rows) names.emplace_back(row.name);
  }
  names.insert(names.end(), {"--help", "--version"});
  EXPECT_THAT(namesIn(describe("ostrovia-replay")), ElementsAreArray(names));

  names.clear();
  for (const auto& row : tools::check::optionTable()) names.emplace_back(row.name);
  names.insert(names.end(), {"--help", "--version"});
  EXPECT_THAT(namesIn(describe("ostrovia-check-plugin")), ElementsAreArray(names));
}

TEST(ProgramTest, ExitStatusesAreThoseOfTheTool) {
  EXPECT_EQ(describe("ostrovia-replay").statuses.back().status, 130);
  const auto statuses = describe("ostrovia-check-plugin").statuses;
  ASSERT_EQ(statuses.size(), 3U);
  EXPECT_EQ(statuses[1].status, 1);
  EXPECT_EQ(statuses[1].meaning, "some failed, crashed or hung");
}

TEST(ProgramTest, OtherNamesAreRefused) {
  EXPECT_EQ(error_of([] { static_cast<void>(describe("ostrovia")); }),
            "there is no tool 'ostrovia'");
}

} // namespace com::velanto::connectivity::test

// --config and --check-config of the built tool.
#include "tools/replay/running/configuration.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>
#include <vector>

#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

namespace {

const std::string LOGGER_LABEL = "<connectivity.OstroviaNotifications2Codec.replay> ";
const std::string REFUSED = "ostrovia-replay: the plug-in refused its configuration\n";

class ConfigurationTest : public Program {
 protected:
  result_t check(const std::string& yaml) {
    folder_.write("c.yaml", yaml);
    return run({"--config", "c.yaml", "--check-config"});
  }
  // The event of a notification under a configuration.
  std::string eventWith(const std::string& yaml, std::vector<std::string> options = {}) {
    folder_.write("c.yaml", yaml);
    input_ = eventLine("1");
    options.insert(options.end(), {"--config", "c.yaml"});
    return run(options).out;
  }
};

} // namespace

TEST_F(ConfigurationTest, FileBecomesTheConfiguration) {
  const std::string event = eventWith("tenantId: t1\ntowardsHostChannelPrefix: 'p.'\n");
  EXPECT_NE(event.find(R"("tenantId":"t1")"), std::string::npos);
  EXPECT_NE(event.find(R"("vlt.channel":"p.ostrovia.devices")"), std::string::npos);
}

TEST_F(ConfigurationTest, OptionsReplaceSingleKeys) {
  const std::string event =
      eventWith("tenantId: t1\ntowardsHostChannelPrefix: p.\n", {"--tenant-id", "t2"});
  EXPECT_NE(event.find(R"("tenantId":"t2")"), std::string::npos);
  EXPECT_NE(event.find(R"("vlt.channel":"p.ostrovia.devices")"), std::string::npos);
}

TEST_F(ConfigurationTest, ValuesKeepTheirKinds) {
  const std::vector<std::pair<std::string, std::string>> rows = {{"12", "12"},
                                                                 {"0x1F", "31"},
                                                                 {"true", "true"},
                                                                 {"1.5", "1.5"},
                                                                 {"'12'", "12"},
                                                                 {"+7", "7"},
                                                                 {"+-7", "+-7"},
                                                                 {"0x-7", "0x-7"},
                                                                 {"-nan(1)", "-nan(1)"},
                                                                 {"12 litres", "12 litres"},
                                                                 {"yes", "yes"},
                                                                 {"[1]", ""},
                                                                 {"~", ""},
                                                                 {"", ""},
                                                                 {"1e3", "1000"}};
  for (const auto& [yaml, prefix] : rows) {
    std::string content = "tenantId: t\ntowardsHostChannelPrefix: ";
    content.append(yaml).append("\n");
    std::string channel = R"("vlt.channel":")";
    channel.append(prefix).append("ostrovia.devices\"");
    const std::string event = eventWith(content);
    EXPECT_NE(event.find(channel), std::string::npos) << yaml << '\n' << event;
  }
}

TEST_F(ConfigurationTest, FileWithoutATenantIsRefused) {
  folder_.write("c.yaml", "towardsHostChannelPrefix: p.\n");
  const result_t result = run({"--config", "c.yaml"});
  EXPECT_EQ(result.status, 4);
  EXPECT_TRUE(result.diagnostics.ends_with(REFUSED)) << result.diagnostics;
}

TEST_F(ConfigurationTest, OtherFilesAreRefusedWithTheirLine) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"- a\n", "c.yaml:1:1: not a mapping of keys to values"},
      {"tenantId: a\n\ntenantId: b\n", "c.yaml:3:1: repeated key 'tenantId'"},
      {"tenantId: t\nx:\n  - {a: 1, a: 2}\n", "c.yaml:3:12: repeated key 'a'"},
      {"\"a\\nb\": 1\n\"a\\nb\": 2\n", "c.yaml:2:1: repeated key 'a\\u000ab'"},
      {"tenantId: t\n---\ntenantId: u\n", "c.yaml:3:1: a second document"},
      {"tenantId: t\nx: 9223372036854775808\n", "c.yaml:2:4: integer beyond 64 bits"},
      {"tenantId: t\n[1]: x\n", "c.yaml:2:1: a key that is no string"},
      {"tenantId: \"a\\0b\"\n", "c.yaml:1:11: string with an embedded NUL"},
      {"tenantId: \"a\\Nb\"\n", "c.yaml:1:11: string that is not UTF-8"},
      {"a: 1\ntenantId: caf\xE9\n", "c.yaml:2:14: not UTF-8 text"},
      {"\xFF\xFE\x61", "c.yaml:1:1: not UTF-8 text"},
      {std::string("a: b\0c\n", 7), "c.yaml:1:5: not UTF-8 text"},
      {"a: 1\nb: [1\n",
       "c.yaml:3:1: not well-formed YAML, here or just before; look at indentation, colons and "
       "quotes"},
      {",\n",
       "c.yaml:1:1: not well-formed YAML, here or just before; look at indentation, colons and "
       "quotes"},
      {"a: 1\n b: 2\n",
       "c.yaml:2:3: not well-formed YAML, here or just before; look at indentation, colons and "
       "quotes"},
      {"tenantId: t\nx: &a [*a]\n", "c.yaml:2:4: too much, or too deep"}};
  for (const auto& [yaml, complaint] : rows) {
    const result_t result = check(yaml);
    EXPECT_EQ(result.status, 4) << yaml;
    EXPECT_EQ(result.diagnostics, "ostrovia-replay: " + complaint + "\n");
  }
  const result_t missing = run({"--config", "/nowhere/c.yaml"});
  EXPECT_EQ(missing.status, 7);
  EXPECT_EQ(missing.diagnostics, "ostrovia-replay: /nowhere/c.yaml: No such file or directory\n");
  std::filesystem::create_directory(folder_.path("d"));
  const result_t folder = run({"--config", "d", "--check-config"});
  EXPECT_EQ(folder.status, 7);
  EXPECT_EQ(folder.diagnostics, "ostrovia-replay: d: Is a directory\n");
}

TEST_F(ConfigurationTest, GoodConfigurationIsFine) {
  const result_t result =
      check("tenantId: t1\ntowardsHostChannelPrefix: '5'\nmeasurementSplittingChannel: \"m\"\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "c.yaml: fine\n");
  EXPECT_EQ(result.diagnostics, "");
}

TEST_F(ConfigurationTest, SilentlyIgnoredEntriesAreReported) {
  const result_t result = check(
      "# codec\n"
      "tenantId: t1\n"
      "tenantID: t2\n"
      "towardHostChannelPrefix: p\n"
      "\"col\\nour\": blue\n"
      "measurementSplittingChannel: 5\n"
      "towardsHostChannelPrefix: [p]\n");
  EXPECT_EQ(result.status, 4);
  EXPECT_EQ(result.out, "");
  // The codec itself writes a line past the log when it reads the wrong kind.
  EXPECT_EQ(result.diagnostics.substr(0, result.diagnostics.find("GetVisitor<")),
            "c.yaml:3:1: unknown key 'tenantID' is ignored, did you mean 'tenantId'?\n"
            "c.yaml:4:1: unknown key 'towardHostChannelPrefix' is ignored, did you mean "
            "'towardsHostChannelPrefix'?\n"
            "c.yaml:5:1: unknown key 'col\\u000aour' is ignored\n"
            "c.yaml:6:30: 'measurementSplittingChannel' is integer, not string, and silently "
            "becomes the default 'ostrovia.measurements'; put it in quotes\n"
            "c.yaml:7:27: 'towardsHostChannelPrefix' is list, not string, and silently becomes no "
            "prefix\n"
            "ostrovia-replay: the plug-in wrote to standard error: ");
}

TEST_F(ConfigurationTest, KeysWithoutAValueArePointedOut) {
  EXPECT_EQ(
      check("tenantId: t\nmeasurementSplittingChannel:\n").diagnostics,
      "c.yaml:2:1: 'measurementSplittingChannel' is nothing, not string, and silently becomes "
      "the default 'ostrovia.measurements'\n");
}

TEST_F(ConfigurationTest, PrefixesThatAreNumbersAreReportedWithTheirText) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"1.0", "double, not string, and becomes '1'"},
      {"012", "integer, not string, and becomes '12'"},
      {"True", "boolean, not string, and becomes 'true'"}};
  for (const auto& [yaml, fate] : rows) {
    const result_t result = check("tenantId: t\ntowardsHostChannelPrefix: " + yaml + "\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.diagnostics,
              "c.yaml:2:27: 'towardsHostChannelPrefix' is " + fate + "; put it in quotes\n");
  }
}

TEST_F(ConfigurationTest, EmptyMeasurementChannelIsReported) {
  const result_t result = check("tenantId: t\nmeasurementSplittingChannel: ''\n");
  EXPECT_EQ(result.status, 4);
  EXPECT_EQ(result.diagnostics,
            "c.yaml:2:30: 'measurementSplittingChannel' is empty: measurements get a channel "
            "without a name\n");
}

TEST_F(ConfigurationTest, TenantThatIsNoStringIsReported) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"4100", "integer, not string, so a host gets no codec; put it in quotes\n"},
      {"[t]", "list, not string, so a host gets no codec\n"}};
  for (const auto& [yaml, fault] : rows) {
    const result_t result = check("tenantId: " + yaml + "\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_TRUE(result.diagnostics.starts_with("c.yaml:1:11: 'tenantId' is " + fault))
        << result.diagnostics;
  }
}

TEST_F(ConfigurationTest, EmptyTenantIsAWarning) {
  const result_t result = check("tenantId: ''\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "c.yaml: usable, with a warning\n");
  EXPECT_EQ(result.diagnostics,
            "c.yaml:1:11: warning: 'tenantId' is empty: events get no tenant\n");
}

TEST_F(ConfigurationTest, RefusedConfigurationIsNeverFine) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"", "Key '\"tenantId\"' not found in Notifications2Codec"},
      {"tenantId:\n", "Key '\"tenantId\"' has an empty value in Notifications2Codec"},
      {"tenantId: 12\n", "Incorrect type in get (you asked for string but it's actually integer)"}};
  for (const auto& [yaml, reason] : rows) {
    const result_t result = check(yaml);
    EXPECT_EQ(result.status, 4) << yaml;
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.diagnostics.find(LOGGER_LABEL), std::string::npos);
    EXPECT_NE(result.diagnostics.find(std::string(reason).append("\n").append(REFUSED)),
              std::string::npos)
        << result.diagnostics;
  }
  folder_.write("c.yaml", "tenantId: create\n");
  EXPECT_EQ(
      run({"--config", "c.yaml", "--check-config", "--plugin", VLT_FAULTY_PLUGIN_PATH}).status, 4);
  folder_.write("c.yaml", "tenantId: start\n");
  EXPECT_EQ(
      run({"--config", "c.yaml", "--check-config", "--plugin", VLT_FAULTY_PLUGIN_PATH}).status, 4);
}

TEST_F(ConfigurationTest, CheckNeedsAFileAndNoInput) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--check-config"}, {"--check-config", "--config", "c", "x"}}) {
    const result_t result = run(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.diagnostics,
              "ostrovia-replay: --check-config needs --config and takes no FILES\n");
  }
}

} // namespace com::velanto::connectivity::test

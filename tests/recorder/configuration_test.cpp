#include "recorder/configuration.hpp"

#include <gtest/gtest.h>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

using recorder::configuration_t;
using recorder::readConfiguration;

class ConfigurationTest : public HostFixture {
 protected:
  static configuration_t read(const map_t& settings) {
    return readConfiguration(settings, "before", "site");
  }
};

TEST_F(ConfigurationTest, FolderIsEnough) {
  const configuration_t read_settings = read(mapOf("recordingFolder", text("/var/rec")));
  EXPECT_EQ(read_settings.folder, "/var/rec");
  EXPECT_EQ(read_settings.name, "before-site");
  EXPECT_EQ(read_settings.max_file_bytes, 64U << 20U);
  EXPECT_EQ(read_settings.max_files, 16U);
  EXPECT_TRUE(read_settings.is_ring);
  EXPECT_EQ(read_settings.stop_after_messages, 0U);
  EXPECT_EQ(read_settings.stop_after_seconds, 0U);
  EXPECT_EQ(read_settings.directions, 3U);
  EXPECT_EQ(read_settings.kinds, 0U);
  EXPECT_EQ(read_settings.path_prefix, "");
  EXPECT_EQ(read_settings.one_in, 1U);
  EXPECT_EQ(read_settings.omit_json, "[]");
  EXPECT_EQ(read_settings.while_file_exists, "");
  EXPECT_EQ(read_settings.json,
            R"("recordingFolder":"/var/rec","recordingName":"before-site","maxFileMebibytes":64,)"
            R"("maxFiles":16,"whenFull":"ring","oneIn":1)");
}

TEST_F(ConfigurationTest, TakesEverySetting) {
  const configuration_t read_settings = read(
      mapOf("recordingFolder", text("f"), "recordingName", text("n"), "maxFileMebibytes", whole(2),
            "maxFiles", whole(3), "whenFull", text("stop"), "stopAfterMessages", whole(4),
            "stopAfterSeconds", whole(5), "directions", listOf(text("transport")), "kinds",
            listOf(text("alarms"), text("operations")), "pathPrefix", text("t/"), "oneIn", whole(6),
            "omit", listOf(text("payload.text")), "whileFileExists", text("/on")));
  EXPECT_EQ(read_settings.name, "n");
  EXPECT_EQ(read_settings.max_file_bytes, 2U << 20U);
  EXPECT_EQ(read_settings.max_files, 3U);
  EXPECT_FALSE(read_settings.is_ring);
  EXPECT_EQ(read_settings.stop_after_messages, 4U);
  EXPECT_EQ(read_settings.stop_after_seconds, 5U);
  EXPECT_EQ(read_settings.directions, 2U);
  EXPECT_EQ(read_settings.kinds, 17U);
  EXPECT_EQ(read_settings.path_prefix, "t/");
  EXPECT_EQ(read_settings.one_in, 6U);
  EXPECT_EQ(read_settings.omit_json, R"(["payload.text"])");
  EXPECT_TRUE(FieldSet::covers(FieldSet::below(read_settings.omitted.payload(), "text")));
  EXPECT_EQ(read_settings.while_file_exists, "/on");
  EXPECT_EQ(read_settings.json,
            R"("recordingFolder":"f","recordingName":"n","maxFileMebibytes":2,"maxFiles":3,)"
            R"("whenFull":"stop","stopAfterMessages":4,"stopAfterSeconds":5,)"
            R"("directions":["transport"],"kinds":["alarms","operations"],"pathPrefix":"t/",)"
            R"("oneIn":6,"omit":["payload.text"],"whileFileExists":"/on")");
}

TEST_F(ConfigurationTest, NameKeepsOnlyPlainCharacters) {
  EXPECT_EQ(readConfiguration(mapOf("recordingFolder", text("f")), "a/b", "c d.é").name,
            "a_b-c_d.__");
  EXPECT_EQ(read(mapOf("recordingFolder", text("f"), "recordingName", text("../x"))).name, ".._x");
  const std::string endless(300, 'x');
  EXPECT_EQ(readConfiguration(mapOf("recordingFolder", text("f")), endless, "c").name,
            std::string(200, 'x'));
}

TEST_F(ConfigurationTest, RefusesWrongValuesInOneLine) {
  const struct {
    const char* setting;
    data_t value;
    const char* error;
  } rows[] = {
      {"recordingFolder", whole(1), "must be a string, not 1"},
      {"recordingFolder", text(""), R"(must be a string, not "")"},
      {"recordingFolder", data_t(), "must be a string, not a value of kind empty"},
      {"recordingName", truth(true), "must be a string, not a value of kind boolean"},
      {"recordingName", nullText(), R"(must be a string, not "")"},
      {"maxFileMebibytes", whole(0), "must be an integer from 1 to 1048576, not 0"},
      {"maxFileMebibytes", whole(1048577), "must be an integer from 1 to 1048576, not 1048577"},
      {"maxFileMebibytes", text("64"), R"(must be an integer from 1 to 1048576, not "64")"},
      {"maxFiles", whole(-1), "must be an integer from 1 to 100000, not -1"},
      {"maxFiles", real(2.0), "must be an integer from 1 to 100000, not a value of kind double"},
      {"whenFull", text("wrap\n"), R"(must be 'ring' or 'stop', not "wrap\n")"},
      {"stopAfterMessages", whole(0), "must be an integer from 1 to 9223372036854775807, not 0"},
      {"stopAfterSeconds", whole(-5), "must be an integer from 1 to 1000000000, not -5"},
      {"directions", text("host"), R"(must be a list of 'host' 'transport', not "host")"},
      {"directions", listOf(), "must be a list of 'host' 'transport', not an empty list"},
      {"directions", listOf(whole(1)), "must be a list of 'host' 'transport', not 1"},
      {"kinds", listOf(text("events"), text("alarm")),
       "must be a list of 'alarms' 'events' 'measurements' 'managedobjects' 'operations', not "
       R"("alarm")"},
      {"pathPrefix", listOf(), "must be a string, not a value of kind list"},
      {"oneIn", whole(0), "must be an integer from 1 to 9223372036854775807, not 0"},
      {"omit", text("payload"), R"(must be a list of paths, not "payload")"},
      {"whileFileExists", mapOf(), "must be a string, not a value of kind map"},
  };
  for (const auto& row : rows) {
    map_t settings = mapOf("recordingFolder", text("f"));
    settings[text(row.setting)] = data_t(row.value);
    EXPECT_EQ(errorOf([&] { static_cast<void>(read(settings)); }),
              std::string("Setting '") + row.setting + "' " + row.error);
  }
}

TEST_F(ConfigurationTest, RefusesMissingFolderSetting) {
  EXPECT_EQ(errorOf([] { static_cast<void>(read(mapOf("maxFiles", whole(1)))); }),
            "Setting 'recordingFolder' is missing");
}

TEST_F(ConfigurationTest, NamesTheWrongPathToOmit) {
  const std::string error = errorOf([] {
    static_cast<void>(read(mapOf("recordingFolder", text("f"), "omit", listOf(text("a..b")))));
  });
  EXPECT_TRUE(error.starts_with("Setting 'omit': path 'a..b': ")) << error;
}

TEST_F(ConfigurationTest, RefusesEndlessSettings) {
  const std::string endless(70000, 'x');
  EXPECT_EQ(
      errorOf([&] { static_cast<void>(read(mapOf("recordingFolder", text(endless.c_str())))); }),
      "The settings are too long");
}

TEST_F(ConfigurationTest, LeavesForeignSettingsAlone) {
  const configuration_t settings = read(mapOf("recordingFolder", text("f"), "tenantId", text("t")));
  EXPECT_EQ(settings.json.find("tenantId"), std::string::npos);
}

} // namespace
} // namespace com::velanto::connectivity::test

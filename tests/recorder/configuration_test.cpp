#include "recorder/configuration.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

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
  // With a folder.
  template <class... KeysAndValues>
  static configuration_t readMore(KeysAndValues&&... settings) {
    return read(mapOf("recordingFolder", text("f"), std::forward<KeysAndValues>(settings)...));
  }
  // All but the paths to omit.
  static std::string contentOf(const configuration_t& read) {
    std::ostringstream out;
    out << "folder '" << read.folder << "' name '" << read.name << "' bytes " << read.max_file_bytes
        << " files " << read.max_files << (read.is_ring ? " ring" : " stop") << " after "
        << read.stop_after_messages << " messages, " << read.stop_after_seconds << " s, directions "
        << read.directions << " kinds " << read.kinds << " prefix '" << read.path_prefix
        << "' one in " << read.one_in << " while '" << read.while_file_exists << "'\n{" << read.json
        << "}";
    return out.str();
  }
};

TEST_F(ConfigurationTest, FolderIsEnough) {
  const configuration_t settings = readMore();
  EXPECT_EQ(contentOf(settings),
            "folder 'f' name 'before-site' bytes 67108864 files 16 ring after 0 messages, 0 s, "
            "directions 3 kinds 0 prefix '' one in 1 while ''\n"
            R"({"recordingFolder":"f","recordingName":"before-site","maxFileMebibytes":64,)"
            R"("maxFiles":16,"whenFull":"ring","oneIn":1})");
  EXPECT_EQ(settings.omit_json, "[]");
}

TEST_F(ConfigurationTest, TakesEverySetting) {
  const configuration_t settings =
      readMore("recordingName", text("n"), "maxFileMebibytes", whole(2), "maxFiles", whole(3),
               "whenFull", text("stop"), "stopAfterMessages", whole(4), "stopAfterSeconds",
               whole(5), "directions", listOf(text("transport")), "kinds",
               listOf(text("alarms"), text("operations")), "pathPrefix", text("t/"), "oneIn",
               whole(6), "omit", listOf(text("payload.text")), "whileFileExists", text("/on"));
  EXPECT_EQ(contentOf(settings),
            "folder 'f' name 'n' bytes 2097152 files 3 stop after 4 messages, 5 s, "
            "directions 2 kinds 17 prefix 't/' one in 6 while '/on'\n"
            R"({"recordingFolder":"f","recordingName":"n","maxFileMebibytes":2,"maxFiles":3,)"
            R"("whenFull":"stop","stopAfterMessages":4,"stopAfterSeconds":5,)"
            R"("directions":["transport"],"kinds":["alarms","operations"],"pathPrefix":"t/",)"
            R"("oneIn":6,"omit":["payload.text"],"whileFileExists":"/on"})");
  EXPECT_EQ(settings.omit_json, R"(["payload.text"])");
  EXPECT_TRUE(FieldSet::covers(FieldSet::below(settings.omitted.payload(), "text")));
}

TEST_F(ConfigurationTest, NameKeepsOnlyPlainCharacters) {
  const map_t folder = mapOf("recordingFolder", text("f"));
  EXPECT_EQ(readConfiguration(folder, "a/b", "c d.é").name, "a_b-c_d.__");
  EXPECT_EQ(readMore("recordingName", text("../x")).name, ".._x");
  EXPECT_EQ(readMore("recordingName", text("/09:@AZ[`az{")).name, "_09__AZ__az_");
  EXPECT_EQ(readMore("recordingName", text(" !\"#$%&'()*+,-.;<=>?\\]^_|}~")).name,
            "_____________-.____________");
  EXPECT_EQ(readConfiguration(folder, std::string(300, 'x'), "c").name, std::string(200, 'x'));
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
  const std::string error =
      errorOf([] { static_cast<void>(readMore("omit", listOf(text("a..b")))); });
  EXPECT_TRUE(error.starts_with("Setting 'omit': path 'a..b': ")) << error;
}

TEST_F(ConfigurationTest, TakesTheHighestNumbers) {
  const configuration_t settings = readMore("maxFileMebibytes", whole(1048576), "maxFiles",
                                            whole(100000), "stopAfterSeconds", whole(1000000000));
  EXPECT_EQ(settings.max_file_bytes, std::uint64_t{1} << 40U);
  EXPECT_EQ(settings.max_files, 100000u);
  EXPECT_EQ(settings.stop_after_seconds, 1000000000u);
}

TEST_F(ConfigurationTest, RefusesSettingsAboveTheLongest) {
  const auto json_with = [](const std::string& folder) {
    return read(mapOf("recordingFolder", text(folder.c_str()))).json;
  };
  const std::string longest(65536 - json_with("f").size() + 1, 'x');
  EXPECT_EQ(json_with(longest).size(), 65536u);
  EXPECT_EQ(errorOf([&] { json_with(longest + 'x'); }), "The settings are too long");
}

TEST_F(ConfigurationTest, LeavesForeignSettingsAlone) {
  EXPECT_EQ(readMore("tenantId", text("t")).json, readMore().json);
}

} // namespace
} // namespace com::velanto::connectivity::test

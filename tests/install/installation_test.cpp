// The files of `cmake --install`. Each test installs into a folder of its own, with a blank in its
// name, stripped as in the packages, and runs the tools from there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/pattern.hpp"
#include "tests/tools/elapsed.hpp"
#include "tests/tools/temporary_folder.hpp"
#include "tools/host/interface_names.hpp"

namespace com::velanto::connectivity::test {

namespace {

using ::testing::AllOf;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using texts_t = std::vector<std::string>;

const std::string LIB = VLT_LIBRARY_FOLDER;
const std::string DOC = "share/doc/ostrovia-notifications";
const std::string EXAMPLE_FOLDER = DOC + "-dev/examples";
const std::string HEADERS = "include/ostrovia-notifications";
const std::string PLUGIN = "libOstroviaNotifications2Codec.so";

const texts_t INSTALLED = {
    "bin/ostrovia-check-plugin",
    "bin/ostrovia-replay",
    HEADERS + "/host/logging.h",
    HEADERS + "/host/status.h",
    HEADERS + "/host/storage.h",
    HEADERS + "/host/types.h",
    HEADERS + "/standin/standin.h",
    LIB + "/plugin/" + PLUGIN,
    LIB + "/plugin/libOstroviaNotificationsRecorder.so",
    LIB + "/standin/libtvclient.so.10.15",
    "share/bash-completion/completions/ostrovia-check-plugin",
    "share/bash-completion/completions/ostrovia-replay",
    "share/cmake/ostrovia-notifications/ostrovia-notifications-config-version.cmake",
    "share/cmake/ostrovia-notifications/ostrovia-notifications-config.cmake",
    EXAMPLE_FOLDER + "/CMakeLists.txt",
    EXAMPLE_FOLDER + "/c_host.c",
    EXAMPLE_FOLDER + "/chain_host.c",
    EXAMPLE_FOLDER + "/minimal_host.c",
    DOC + "/CHANGELOG.md",
    DOC + "/README.md",
    DOC + "/SECURITY.md",
    DOC + "/docs/check-plugin.md",
    DOC + "/docs/check-report.schema.json",
    DOC + "/docs/event.schema.json",
    DOC + "/docs/fields.md",
    DOC + "/docs/host-interface.md",
    DOC + "/docs/operating.md",
    DOC + "/docs/performance.md",
    DOC + "/docs/recording.md",
    DOC + "/docs/reliability.md",
    DOC + "/docs/replay-summary.schema.json",
    DOC + "/docs/replay.md",
    DOC + "/docs/report.png",
    DOC + "/docs/scaling.md",
    DOC + "/samples/README.md",
    DOC + "/samples/alarms.ndjson",
    DOC + "/samples/events.ndjson",
    DOC + "/samples/failing.md",
    DOC + "/samples/failing.ndjson",
    DOC + "/samples/managedobjects.ndjson",
    DOC + "/samples/measurements.ndjson",
    DOC + "/samples/operations.ndjson",
    DOC + "/samples/recordings/after.000001.ndjson",
    DOC + "/samples/recordings/before.000001.ndjson",
    DOC + "/samples/site-day.ndjson",
    "share/man/man1/ostrovia-check-plugin.1",
    "share/man/man1/ostrovia-replay.1",
    "share/pkgconfig/ostrovia-notifications.pc",
};

class InstallationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const result_t installed =
        shell("'" VLT_CMAKE "' --install '" VLT_BUILD_FOLDER "' --strip --prefix '" + prefix() +
              "' > log");
    ASSERT_EQ(installed.status, 0) << folder_.read("log") << installed.diagnostics;
  }

  struct result_t {
    int status; // -1 when a signal ended the shell
    std::string out;
    std::string diagnostics;
  };

  // `command`, which a shell reads, finds the installed files at $HERE.
  [[nodiscard]] result_t shell(const std::string& command) const {
    const std::string line = "cd '" + folder_.path("") + "' && HERE='" + prefix() + "' && { " +
                             command + "; } > out 2> diagnostics";
    const int status = std::system(line.c_str()); // NOLINT(cert-env33-c): a shell is the subject
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder_.read("out"),
            withoutElapsed(folder_.read("diagnostics"))};
  }

  [[nodiscard]] std::string prefix() const { return folder_.path("an odd place"); }
  [[nodiscard]] std::string at(const std::string& name) const { return prefix() + "/" + name; }

  const TemporaryFolder folder_;
};

} // namespace

TEST_F(InstallationTest, PutsEveryFileInItsPlace) {
  texts_t names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(prefix())) {
    if (entry.is_directory()) continue;
    names.push_back(std::filesystem::relative(entry.path(), prefix()));
  }
  std::sort(names.begin(), names.end());
  EXPECT_THAT(names, ElementsAreArray(INSTALLED));
}

TEST_F(InstallationTest, ReplayFindsItsPlugIn) {
  const result_t run = shell("\"$HERE/bin/ostrovia-replay\" \"$HERE/" + DOC +
                             "/samples/events.ndjson\" --log-level 2 | cut -c 1-60");
  EXPECT_EQ(run.diagnostics, "read 8, reached the host 5, dropped 3, malformed 0, T ms\n");
  EXPECT_THAT(run.out, StartsWith("{\"metadata\":{\"vlt.type\":\"com.tivra.ostrovia.Event\","));
}

TEST_F(InstallationTest, ReplayIsFoundThroughALink) {
  const result_t run = shell("ln -s \"$HERE/bin/ostrovia-replay\" linked && ./linked < /dev/null");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.diagnostics, "read 0, reached the host 0, dropped 0, malformed 0, T ms\n");
}

TEST_F(InstallationTest, PlugInBesideTheToolGoesFirst) {
  const result_t run = shell("cp '" VLT_OUTDATED_PLUGIN_PATH "' \"$HERE/bin/" + PLUGIN +
                             "\" && \"$HERE/bin/ostrovia-replay\" < /dev/null");
  EXPECT_EQ(run.status, 4);
  EXPECT_EQ(run.diagnostics,
            "ostrovia-replay: " + at("bin/" + PLUGIN) + " has interface version 3, expected 4\n");
}

TEST_F(InstallationTest, MissingPlugInIsReportedWithItsPlace) {
  std::filesystem::remove(at(LIB + "/plugin/" + PLUGIN));
  const result_t run = shell("\"$HERE/bin/ostrovia-replay\" < /dev/null");
  EXPECT_EQ(run.status, 4);
  EXPECT_EQ(run.diagnostics, "ostrovia-replay: cannot load " + at(LIB + "/plugin/" + PLUGIN) +
                                 ": cannot open shared object file: No such file or directory\n");
}

TEST_F(InstallationTest, ReplayAloneTakesAHostsOwnLibrary) {
  const std::string host =
      "mkdir host && ln -s '" VLT_PLAIN_HOST_PATH
      "' host/libtvclient.so.10.15 && "
      "export LD_LIBRARY_PATH=\"$PWD/host\" ASAN_OPTIONS=verify_asan_link_order=0 && ";
  const result_t replay = shell(host + "\"$HERE/bin/ostrovia-replay\" < /dev/null");
  EXPECT_THAT(replay.diagnostics, HasSubstr("live blocks not counted by this host library"));
  std::filesystem::remove_all(folder_.path("host"));
  const result_t check =
      shell(host + "\"$HERE/bin/ostrovia-check-plugin\" --only versions.product \"$HERE/" + LIB +
            "/plugin/" + PLUGIN + "\"");
  EXPECT_EQ(check.status, 0) << check.out << check.diagnostics;
}

TEST_F(InstallationTest, InstalledHostProgramBuildsAndRuns) {
  const result_t run =
      shell("'" VLT_CMAKE "' -S \"$HERE/" + EXAMPLE_FOLDER +
            "\" -B host -DCMAKE_PREFIX_PATH=\"$HERE\" > log && '" VLT_CMAKE
            "' --build host > log && LIB=\"$HERE/" +
            LIB + "\" && LD_LIBRARY_PATH=\"$LIB/standin\" host/minimal_host \"$LIB/plugin/" +
            PLUGIN + "\"");
  EXPECT_EQ(run.status, 0) << run.diagnostics;
  EXPECT_THAT(run.out, HasSubstr("vlt.type: com.tivra.ostrovia.Event\n"));
}

TEST_F(InstallationTest, StrippedPlugInsKeepTheirInterface) {
  for (const std::string name : {"OstroviaNotifications2Codec", "OstroviaNotificationsRecorder"}) {
    std::string plugin = " \"$HERE/" + LIB + "/plugin/lib";
    plugin.append(name).append(".so\"");
    EXPECT_THAT(shell("readelf --dynamic" + plugin).out,
                AllOf(HasSubstr("[libtvclient.so.10.15]"), Not(HasSubstr("PATH)"))));
    std::string exported;
    for (const std::string& symbol : tools::entryPoints(name)) exported += symbol + "\n";
    EXPECT_EQ(shell("LC_ALL=C nm --dynamic --defined-only --just-symbols" + plugin).out, exported);
    EXPECT_THAT(shell("readelf --segments" + plugin).out, HasSubstr("GNU_RELRO"));
    EXPECT_THAT(shell("strings" + plugin).out, HasSubstr("\nostrovia-notifications "));
  }
}

TEST_F(InstallationTest, ToolsSeekLibrariesInTheInstallationOnly) {
  const std::string folders = "[$ORIGIN/" VLT_LIBRARIES_FROM_TOOLS "/standin:$ORIGIN]\n";
  const std::string shown = " | grep PATH | sed 's/.*(//; s/).*\\[/ [/'";
  EXPECT_EQ(shell("readelf --dynamic \"$HERE/bin/ostrovia-replay\"" + shown).out,
            "RUNPATH " + folders);
  EXPECT_EQ(shell("readelf --dynamic \"$HERE/bin/ostrovia-check-plugin\"" + shown).out,
            "RPATH " + folders);
}

TEST_F(InstallationTest, DocumentsLinkToInstalledDocuments) {
  const Pattern link(R"(\]\(([^)#]+)(#[^)]*)?\))");
  int links = 0;
  for (const std::string& name : INSTALLED) {
    if (!name.ends_with(".md")) continue;
    const std::filesystem::path file = at(name);
    std::ifstream stream(file);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    for (const Pattern::match_t& found : link.allIn(text)) {
      const std::string& target = found[1];
      ++links;
      EXPECT_TRUE(std::filesystem::exists(file.parent_path() / target)) << name << ": " << target;
    }
  }
  EXPECT_GT(links, 20);
}

} // namespace com::velanto::connectivity::test

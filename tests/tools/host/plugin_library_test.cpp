#include "tools/host/plugin_library.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

std::string loadError(const std::string& path) {
  return errorOf([&] { tools::PluginLibrary library(path); });
}

} // namespace

TEST(PluginLibraryTest, FunctionsAreThePlugIns) {
  const tools::PluginLibrary library(VLT_PLUGIN_PATH);
  EXPECT_EQ(library.apiVersion(), 4u);
  EXPECT_STREQ(library.productVersion(), "10.15.4.1");
  library.checkIsCodec();
  EXPECT_EQ(library.destroy(nullptr), 0);
  EXPECT_EQ(library.start(nullptr), 1);
}

TEST(PluginLibraryTest, DefaultIsBesideTheProgram) {
  EXPECT_TRUE(std::filesystem::equivalent(tools::PluginLibrary::defaultPath(), VLT_PLUGIN_PATH));
}

TEST(PluginLibraryTest, MissingLibraryIsRefused) {
  EXPECT_EQ(loadError("/nowhere/plugin.so"),
            "cannot load /nowhere/plugin.so: cannot open shared object file: No such file or "
            "directory");
}

TEST(PluginLibraryTest, PathWithoutSlashIsInTheCurrentDirectory) {
  EXPECT_EQ(loadError("nosuchplugin.so"),
            "cannot load ./nosuchplugin.so: cannot open shared object file: No such file or "
            "directory");
  EXPECT_EQ(loadError(""), "cannot load ./: cannot read file data: Is a directory");
}

TEST(PluginLibraryTest, LibraryThatIsNoPluginIsRefused) {
  EXPECT_EQ(loadError(VLT_CLIENT_LIBRARY_PATH),
            std::string(VLT_CLIENT_LIBRARY_PATH) +
                " is no plug-in: it has no function "
                "vlt_plugin_api_version_OstroviaNotifications2Codec");
}

TEST(PluginLibraryTest, OtherInterfaceVersionIsRefused) {
  EXPECT_EQ(loadError(VLT_OUTDATED_PLUGIN_PATH),
            std::string(VLT_OUTDATED_PLUGIN_PATH) + " has interface version 3, expected 4");
}

} // namespace com::velanto::connectivity::test

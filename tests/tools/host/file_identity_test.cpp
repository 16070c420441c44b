#include "tools/host/file_identity.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "identity/build_name.hpp"
#include "tests/support/values.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

using tools::file_identity_t;
using tools::identityOf;

TEST(FileIdentityTest, BothPlugInsHaveTheNameOfTheBuild) {
  for (const char* const path : {VLT_PLUGIN_PATH, VLT_RECORDER_PATH}) {
    const file_identity_t plugin = identityOf(path);
    EXPECT_EQ(plugin.build_name, VLT_BUILD_NAME);
    EXPECT_EQ(plugin.size, std::filesystem::file_size(path));
    EXPECT_EQ(plugin.build_id.size(), 40U) << plugin.build_id;
  }
}

TEST(FileIdentityTest, OtherBuildsNeedNoName) {
  EXPECT_EQ(identityOf(VLT_PLAIN_BUILD_PATH).build_name, "");
}

TEST(FileIdentityTest, AnyFileHasSizeAndHash) {
  const TemporaryFolder folder;
  const file_identity_t text = identityOf(folder.write("t", "abc"));
  EXPECT_EQ(text.size, 3U);
  EXPECT_EQ(text.sha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(text.build_id + text.build_name, "");
  EXPECT_EQ(errorOf([] { static_cast<void>(identityOf("/nowhere")); }),
            "/nowhere: No such file or directory");
}

} // namespace com::velanto::connectivity::test

#include "tools/host/host_library.hpp"

#include <gtest/gtest.h>

#include "host/logging.h"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class HostLibraryTest : public HostFixture {};

} // namespace

TEST_F(HostLibraryTest, LiveBlocksComeFromTheStandIn) {
  const std::int64_t before = tools::liveBlocks().value();
  EXPECT_EQ(before, standin_live_blocks_total());
  const data_t one = text("a");
  EXPECT_EQ(tools::liveBlocks(), before + 1);
}

TEST_F(HostLibraryTest, LevelIsThatOfEveryCategory) {
  EXPECT_TRUE(tools::setLogLevel(6));
  EXPECT_EQ(vlt_get_log_level("connectivity.any.chain"), 6);
}

} // namespace com::velanto::connectivity::test

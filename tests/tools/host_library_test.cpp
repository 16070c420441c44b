#include "tools/host_library.hpp"

#include <gtest/gtest.h>

#include <new>

#include "host/logging.h"
#include "tests/support/failing_allocations.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class HostLibraryTest : public HostFixture {};

} // namespace

TEST_F(HostLibraryTest, ListHoldsTheElementsInOrder) {
  std::vector<data_t> elements;
  elements.push_back(text("a"));
  elements.emplace_back();
  elements.emplace_back(map_of("b", whole(2)));
  const data_t list = tools::makeList(std::move(elements));
  EXPECT_EQ(list, list_of(text("a"), data_t(), map_of("b", whole(2))));
}

TEST_F(HostLibraryTest, ListOfNothingIsEmpty) { EXPECT_EQ(data_t(tools::makeList({})), list_of()); }

TEST_F(HostLibraryTest, ElementsAreMovedIntoTheHostsBlock) {
  std::vector<data_t> elements;
  elements.push_back(text("a"));
  const char* const address = elements[0].get<const char*>();
  const std::int64_t lists = standin_live_blocks(STANDIN_BLOCK_LIST);
  const list_t list = tools::makeList(std::move(elements));
  EXPECT_EQ(list[0].get<const char*>(), address);
  EXPECT_EQ(standin_live_blocks(STANDIN_BLOCK_LIST), lists + 1);
}

TEST_F(HostLibraryTest, RefusedListLeavesTheElements) {
  std::vector<data_t> elements;
  elements.push_back(text("a"));
  standin_fail_allocation(1);
  EXPECT_THROW(static_cast<void>(tools::makeList(std::move(elements))), std::bad_alloc);
  // NOLINTNEXTLINE(bugprone-use-after-move): what is left is the subject
  EXPECT_EQ(elements[0], text("a"));
}

TEST_F(HostLibraryTest, LiveBlocksAreTheStandIns) {
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

#include "ndjson/make_blocks.hpp"

#include <gtest/gtest.h>

#include <new>

#include "tests/support/failing_allocations.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class MakeBlocksTest : public HostFixture {};

} // namespace

TEST_F(MakeBlocksTest, ListHoldsTheElementsInOrder) {
  std::vector<data_t> elements;
  elements.push_back(text("a"));
  elements.emplace_back();
  elements.emplace_back(mapOf("b", whole(2)));
  const data_t list = makeList(std::move(elements));
  EXPECT_EQ(list, listOf(text("a"), data_t(), mapOf("b", whole(2))));
}

TEST_F(MakeBlocksTest, ListOfNothingIsEmpty) { EXPECT_EQ(data_t(makeList({})), listOf()); }

TEST_F(MakeBlocksTest, ElementsAreMovedIntoTheHostsBlock) {
  std::vector<data_t> elements;
  elements.push_back(text("a"));
  const char* const address = elements[0].get<const char*>();
  const std::int64_t lists = standin_live_blocks(STANDIN_BLOCK_LIST);
  const list_t list = makeList(std::move(elements));
  EXPECT_EQ(list[0].get<const char*>(), address);
  EXPECT_EQ(standin_live_blocks(STANDIN_BLOCK_LIST), lists + 1);
}

TEST_F(MakeBlocksTest, RefusedListLeavesTheElements) {
  std::vector<data_t> elements;
  elements.push_back(text("a"));
  standin_fail_allocation(1);
  EXPECT_THROW(static_cast<void>(makeList(std::move(elements))), std::bad_alloc);
  // NOLINTNEXTLINE(bugprone-use-after-move): a refused list must not move the elements
  EXPECT_EQ(elements[0], text("a"));
}

TEST_F(MakeBlocksTest, BufferHoldsTheBytes) {
  EXPECT_EQ(data_t(makeBuffer(std::string_view("a\0\xff", 3))), bytes(std::string("a\0\xff", 3)));
  EXPECT_EQ(data_t(makeBuffer("")), bytes(""));
}

TEST_F(MakeBlocksTest, RefusedBufferIsAnError) {
  standin_fail_allocation(1);
  EXPECT_THROW(static_cast<void>(makeBuffer("a")), std::bad_alloc);
}

} // namespace com::velanto::connectivity::test

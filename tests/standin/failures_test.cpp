// Refused allocations: which one, for how long, and what counts as an allocation.
#include "standin/standin.h"

#include <thread>

#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

using Failures = Blocks;

// True: there was memory for the string.
bool allocates() {
  char* text = vlt_copy_string("a");
  vlt_free_string(text);
  return text != nullptr;
}

TEST_F(Failures, OnlyTheNthAllocationIsRefused) {
  standin_fail_allocation(2);
  EXPECT_TRUE(allocates());
  EXPECT_FALSE(allocates());
  EXPECT_TRUE(allocates());
  EXPECT_EQ(standin_failed_allocations(), 1U);
}

TEST_F(Failures, OneMeansTheNextAllocation) {
  standin_fail_allocation(1);
  EXPECT_FALSE(allocates());
}

TEST_F(Failures, FromTheNthOnAllAreRefused) {
  standin_fail_allocations_from(2);
  EXPECT_TRUE(allocates());
  EXPECT_FALSE(allocates());
  EXPECT_FALSE(allocates());
  standin_fail_allocation(0);
  EXPECT_TRUE(allocates());
  EXPECT_EQ(standin_failed_allocations(), 2U);
}

TEST_F(Failures, SwitchingOffBeforeTheNthRefusesNothing) {
  standin_fail_allocation(2);
  EXPECT_TRUE(allocates());
  standin_fail_allocation(0);
  EXPECT_TRUE(allocates());
  EXPECT_EQ(standin_failed_allocations(), 0U);
}

TEST_F(Failures, ANewRequestStartsCountingAgain) {
  standin_fail_allocation(1);
  EXPECT_FALSE(allocates());
  standin_fail_allocation(2);
  EXPECT_EQ(standin_failed_allocations(), 0U);
  EXPECT_TRUE(allocates());
  EXPECT_FALSE(allocates());
}

TEST_F(Failures, AllocationsOfAllThreadsCount) {
  standin_fail_allocation(2);
  std::thread([] { EXPECT_TRUE(allocates()); }).join();
  EXPECT_FALSE(allocates());
}

TEST_F(Failures, EveryMakerOfBlocksCanBeRefused) {
  const data_t text = borrowed("a");
  standin_fail_allocations_from(1);
  EXPECT_EQ(vlt_allocate_map(8), nullptr);
  EXPECT_EQ(vlt_reallocate_map(nullptr, 8), nullptr);
  EXPECT_EQ(vlt_copy_string("a"), nullptr);
  EXPECT_EQ(vlt_copy_data(&text).tag, uint32_t{VLT_TAG_EMPTY});
  EXPECT_EQ(vlt_data_to_string(&text).value.string, nullptr);
  EXPECT_EQ(standin_make_list(0, 1), nullptr);
  EXPECT_EQ(standin_make_buffer(1), nullptr);
  EXPECT_EQ(standin_make_custom(1).object, nullptr);
  EXPECT_EQ(standin_failed_allocations(), 8U);
}

} // namespace
} // namespace standin::test

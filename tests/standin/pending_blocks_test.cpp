// The stack threaded through waiting blocks.
#include "standin/pending_blocks.hpp"

#include <gtest/gtest.h>

namespace standin {
namespace {

TEST(PendingBlocks, ComeBackInReverseWithKindAndNote) {
  vlt_underlying_vector_t list{};
  vlt_underlying_map_table_t map{};
  PendingBlocks<int64_t> pending;
  pending.push(Container(&list), 3);
  pending.push(Container(&map), -4);

  const auto first = pending.pop();
  EXPECT_EQ(first.container.block(), &map);
  EXPECT_TRUE(first.container.isMap());
  EXPECT_EQ(first.note, -4);
  const auto second = pending.pop();
  EXPECT_EQ(second.container.block(), &list);
  EXPECT_FALSE(second.container.isMap());
  EXPECT_EQ(second.note, 3);
}

TEST(PendingBlocks, AreEmptyBeforeFirstAndAfterLast) {
  vlt_underlying_vector_t list{};
  PendingBlocks<int64_t> pending;
  EXPECT_TRUE(pending.empty());
  pending.push(Container(&list), 1);
  EXPECT_FALSE(pending.empty());
  pending.pop();
  EXPECT_TRUE(pending.empty());
}

TEST(PendingBlocks, UseTheHeadOfAListAlone) {
  vlt_underlying_map_table_t map{1, 2, 30, 40};
  PendingBlocks<int64_t> pending;
  pending.push(Container(&map), 5);
  EXPECT_EQ(map.capacity, 30);
  EXPECT_EQ(map.deleted, 40);
}

} // namespace
} // namespace standin

// Freeing: all owned blocks, and no others.
#include "host/storage.h"

#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

using Free = Blocks;

TEST_F(Free, NullIsAcceptedByEveryFunction) {
  const int64_t before = standin_live_blocks_total();
  vlt_free_map(nullptr);
  vlt_free_string(nullptr);
  vlt_free_vector(nullptr);
  vlt_free_buffer(nullptr);
  vlt_free_custom({nullptr});
  EXPECT_EQ(standin_live_blocks_total(), before);
}

// From here on, the fixture counts the remaining blocks.
TEST_F(Free, ListTakesItsElementsAlong) {
  freeData(list({string("a"), buffer("b"), custom(1), list({string("c")}), integer(1)}));
}

TEST_F(Free, MapTakesKeysAndValuesAlong) {
  freeData(map(tableOf(4, {{1, 5, string("a"), list({string("b")})},
                           {3, 0, list({custom(1)}), map(tableOf(1, {}))}})));
}

TEST_F(Free, ListIsFreedUpToItsCountOnly) {
  data_t value = tagged(VLT_TAG_LIST);
  value.value.list = standin_make_list(1, 2);
  const Held unused(string("beyond the count"));
  elementsOf(value.value.list)[1] = unused.value;
  freeData(value);
  EXPECT_STREQ(unused.value.value.string, "beyond the count");
}

TEST_F(Free, FreeAndDeletedSlotsOwnNothing) {
  const Held stale(string("stale"));
  table_t* freed = tableOf(2, {});
  markDeleted(freed, 1);
  slotsOf(freed)[0].value = stale.value;
  slotsOf(freed)[1].value = stale.value;
  vlt_free_map(freed);
  EXPECT_STREQ(stale.value.value.string, "stale");
}

TEST_F(Free, EmptyKeyWithOtherHashIsLive) {
  freeData(map(tableOf(1, {{0, 2, empty(), string("owned")}})));
}

TEST_F(Free, BorrowedStringsAndUnknownKindsAreLeftAlone) {
  const Held text(string("kept"));
  data_t unknown = text.value;
  unknown.tag = 11;
  freeData(list({borrowed(text.value.value.string), unknown}));
  EXPECT_STREQ(text.value.value.string, "kept");
}

TEST_F(Free, NullBlocksInsideContainersAreSkipped) {
  const data_t key = tagged(VLT_TAG_STRING);
  freeData(map(tableOf(1, {{0, 5, key,
                            list({tagged(VLT_TAG_STRING), tagged(VLT_TAG_LIST), tagged(VLT_TAG_MAP),
                                  tagged(VLT_TAG_BUFFER), tagged(VLT_TAG_CUSTOM),
                                  tagged(VLT_TAG_BORROWED_STRING)})}})));
}

TEST_F(Free, NeedsNoMemory) {
  const data_t value = list({map(tableOf(1, {{0, 5, string("a"), list({list({})})}}))});
  standin_fail_allocations_from(1);
  freeData(value);
  EXPECT_EQ(standin_failed_allocations(), 0U);
}

} // namespace
} // namespace standin::test

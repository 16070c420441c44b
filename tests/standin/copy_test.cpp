// Deep copies: equal parts, new parts, and the remains of an exhausted copy.
#include "host/storage.h"

#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

using Copy = Blocks;

uint64_t bitsOf(const data_t& value) {
  uint64_t bits = 0;
  std::memcpy(&bits, &value.value, sizeof bits);
  return bits;
}

TEST_F(Copy, ValuesWithoutBlocksAreCopiedBitForBit) {
  for (const uint32_t tag : {0U, 1U, 2U, 3U, 4U, 11U, 0xffffffffU}) {
    const data_t source = tagged(tag, 0x7ff4000000000123);
    const data_t copy = vlt_copy_data(&source);
    EXPECT_EQ(copy.tag, tag);
    EXPECT_EQ(bitsOf(copy), bitsOf(source)) << "tag " << tag;
  }
}

TEST_F(Copy, NullBlocksStayNullAndKeepTheirKind) {
  for (const uint32_t tag :
       {VLT_TAG_STRING, VLT_TAG_LIST, VLT_TAG_MAP, VLT_TAG_BUFFER, VLT_TAG_CUSTOM}) {
    const data_t source = tagged(tag);
    const data_t copy = vlt_copy_data(&source);
    EXPECT_EQ(copy.tag, tag);
    EXPECT_EQ(bitsOf(copy), 0U) << "tag " << tag;
  }
}

TEST_F(Copy, NoSourceCopiesToEmpty) {
  EXPECT_EQ(vlt_copy_data(nullptr).tag, uint32_t{VLT_TAG_EMPTY});
}

TEST_F(Copy, StringIsANewEqualBlock) {
  const Held source(string("text"));
  const Held copy(vlt_copy_data(&source.value));
  EXPECT_EQ(copy.value.tag, uint32_t{VLT_TAG_STRING});
  EXPECT_STREQ(copy.value.value.string, "text");
  EXPECT_NE(copy.value.value.string, source.value.value.string);
}

TEST_F(Copy, BorrowedStringBecomesOwned) {
  const data_t source = borrowed("text");
  const Held copy(vlt_copy_data(&source));
  EXPECT_EQ(copy.value.tag, uint32_t{VLT_TAG_STRING});
  EXPECT_STREQ(copy.value.value.string, "text");
  EXPECT_NE(copy.value.value.string, source.value.string);
}

TEST_F(Copy, BorrowedNullStringBecomesAnOwnedOne) {
  const data_t source = borrowed(nullptr);
  const data_t copy = vlt_copy_data(&source);
  EXPECT_EQ(copy.tag, uint32_t{VLT_TAG_STRING});
  EXPECT_EQ(copy.value.string, nullptr);
}

TEST_F(Copy, BufferKeepsItsBytes) {
  const Held source(buffer(std::string_view("a\0b", 3)));
  const Held copy(vlt_copy_data(&source.value));
  ASSERT_EQ(copy.value.value.buffer->length, 3U);
  EXPECT_EQ(std::memcmp(bytesOf(copy.value.value.buffer), "a\0b", 3), 0);
  EXPECT_NE(copy.value.value.buffer, source.value.value.buffer);
}

TEST_F(Copy, CustomObjectIsCopied) {
  const Held source(custom(7));
  const Held copy(vlt_copy_data(&source.value));
  EXPECT_EQ(standin_custom_label(copy.value.value.custom), 7U);
  EXPECT_NE(copy.value.value.custom.object, source.value.value.custom.object);
}

TEST_F(Copy, ListIsCopiedWithItsElementsInOrder) {
  const Held source(list({integer(1), string("b"), list({list({}), borrowed("c")})}));
  const Held copy(vlt_copy_data(&source.value));
  EXPECT_EQ(rendered(copy.value), R"([1, "b", [[], "c"]])");
  EXPECT_NE(copy.value.value.list, source.value.value.list);
  EXPECT_NE(elementsOf(copy.value.value.list)[1].value.string,
            elementsOf(source.value.value.list)[1].value.string);
}

TEST_F(Copy, ListCopyHasRoomForItsElementsOnly) {
  data_t source = tagged(VLT_TAG_LIST);
  source.value.list = standin_make_list(2, 10);
  const Held held(source);
  const Held copy(vlt_copy_data(&source));
  EXPECT_EQ(copy.value.value.list->count, 2);
  EXPECT_EQ(copy.value.value.list->capacity, 2);
}

TEST_F(Copy, MapKeepsCapacitySlotsHashesAndCounts) {
  table_t* original = tableOf(5, {{1, 6, string("a"), integer(1)}, {3, 11, string("b"), list({})}});
  markDeleted(original, 2);
  original->deleted = 4; // counts deletions since the last rebuild, not deleted slots
  const Held source(map(original));
  const Held copy(vlt_copy_data(&source.value));
  const table_t* copied = copy.value.value.map;
  EXPECT_EQ(copied->capacity, 5);
  EXPECT_EQ(copied->live, 2);
  EXPECT_EQ(copied->deleted, 4);
  for (int64_t i = 0; i < 5; ++i) {
    EXPECT_EQ(slotsOf(copied)[i].hash, slotsOf(original)[i].hash) << "slot " << i;
    EXPECT_EQ(isLive(slotsOf(copied)[i]), isLive(slotsOf(original)[i])) << "slot " << i;
    EXPECT_EQ(isDeleted(slotsOf(copied)[i]), isDeleted(slotsOf(original)[i])) << "slot " << i;
  }
  EXPECT_EQ(rendered(copy.value), R"({"a": 1, "b": []})");
}

TEST_F(Copy, SourceIsUnchanged) {
  const Held source(map(tableOf(2, {{0, 6, list({string("k")}), map(tableOf(0, {}))}})));
  const std::string before = rendered(source.value);
  freeData(vlt_copy_data(&source.value));
  EXPECT_EQ(rendered(source.value), before);
  EXPECT_EQ(source.value.value.map->capacity, 2);
}

// The fixture counts blocks that a failed copy leaves.
TEST_F(Copy, ExhaustionAnywhereGivesEmptyAndLeaksNothing) {
  const Held source(list({string("a"),
                          map(tableOf(3, {{0, 0, string("k"), list({custom(1)})},
                                          {2, 8, list({string("l")}), buffer("b")}})),
                          list({list({}), string("c")})}));
  const std::string whole = rendered(source.value);
  const int allocations = failEach([&] {
    const Held copy(vlt_copy_data(&source.value));
    standin_fail_allocation(0); // this test is not about the rendering below
    if (standin_failed_allocations() > 0) {
      EXPECT_EQ(copy.value.tag, uint32_t{VLT_TAG_EMPTY});
    } else {
      EXPECT_EQ(rendered(copy.value), whole);
    }
  });
  EXPECT_EQ(allocations, 12); // one for each block
}

} // namespace
} // namespace standin::test

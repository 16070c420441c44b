// The places of a block's parts, by byte, and the states of a slot.
#include "standin/layout.hpp"

#include <gtest/gtest.h>

namespace standin {
namespace {

TEST(Layout, PartsFollowTheHeads) {
  alignas(8) unsigned char block[80] = {};
  EXPECT_EQ(reinterpret_cast<unsigned char*>(
                elementsOf(reinterpret_cast<vlt_underlying_vector_t*>(block))),
            block + 16);
  EXPECT_EQ(reinterpret_cast<unsigned char*>(
                slotsOf(reinterpret_cast<vlt_underlying_map_table_t*>(block))),
            block + 32);
  EXPECT_EQ(bytesOf(reinterpret_cast<vlt_underlying_buffer_t*>(block)), block + 8);
}

TEST(Layout, SlotStateFollowsHashAndKey) {
  const struct {
    const char* state;
    uint64_t hash;
    uint32_t key_tag;
    bool live;
    bool deleted;
  } rows[] = {
      {"free", 0, VLT_TAG_EMPTY, false, false},
      {"deleted", 1, VLT_TAG_EMPTY, false, true},
      {"live, hash 0", 0, VLT_TAG_STRING, true, false},
      {"live, hash 1", 1, VLT_TAG_STRING, true, false},
      {"live", 2, VLT_TAG_STRING, true, false},
      {"live, empty key", 2, VLT_TAG_EMPTY, true, false},
      {"live, unknown key", 0, 11, true, false},
  };
  for (const auto& row : rows) {
    slot_t slot{};
    slot.hash = row.hash;
    slot.key.tag = row.key_tag;
    EXPECT_EQ(isLive(slot), row.live) << row.state;
    EXPECT_EQ(isDeleted(slot), row.deleted) << row.state;
  }
}

} // namespace
} // namespace standin

// The three states of a slot, told by hash and key together.
#include "value/map_slot.hpp"

#include <gtest/gtest.h>

#include <cstddef>

#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

static_assert(sizeof(map_slot_t) == 40);
static_assert(offsetof(map_slot_t, hash) == 0);
static_assert(offsetof(map_slot_t, key) == 8);
static_assert(offsetof(map_slot_t, value) == 24);

using MapSlot = HostFixture;

TEST_F(MapSlot, HashAndKeyTellTheStates) {
  const struct {
    std::uint64_t hash;
    data_t key;
    const char* state;
  } rows[] = {{0, data_t(), "free"},  {1, data_t(), "deleted"}, {0, text("k"), "live"},
              {1, text("k"), "live"}, {2, text("k"), "live"},   {2, data_t(), "live"},
              {0, whole(0), "live"},  {1, tagged(11), "live"},  {UINT64_MAX, whole(1), "live"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.hash);
    const map_slot_t slot{row.hash, row.key, data_t()};
    EXPECT_EQ(slot.is_free(), std::string(row.state) == "free");
    EXPECT_EQ(is_deleted(slot), std::string(row.state) == "deleted");
    EXPECT_EQ(slot.is_live(), std::string(row.state) == "live");
  }
}

} // namespace
} // namespace com::velanto::connectivity::test

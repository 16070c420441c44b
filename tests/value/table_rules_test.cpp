// The rules for the places of entries, against plain arithmetic.
#include "value/table_rules.hpp"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "value/map_t.hpp"

namespace com::velanto::connectivity::test {
namespace {

using table_rules::grown_capacity;
using table_rules::home_slot;
using table_rules::is_due_to_grow;

std::vector<std::int64_t> capacities() {
  std::vector<std::int64_t> all;
  for (std::int64_t capacity = 1; capacity <= 400; ++capacity) all.push_back(capacity);
  for (const int bits : {16, 31, 32, 33, 47, 62}) {
    const std::int64_t power = std::int64_t{1} << bits;
    all.insert(all.end(), {power - 1, power, power + 1, power + power / 2});
  }
  all.push_back(INT64_MAX);
  return all;
}

TEST(TableRules, HomeSlotIsTheRemainderOfTheHash) {
  std::mt19937_64 random(1);
  for (const std::int64_t capacity : capacities()) {
    const auto divisor = static_cast<std::uint64_t>(capacity);
    std::vector<std::uint64_t> hashes{0, 1, divisor - 1, divisor, divisor + 1, UINT64_MAX};
    hashes.insert(hashes.end(),
                  {UINT64_MAX / divisor * divisor, UINT64_MAX / divisor * divisor - 1});
    for (int i = 0; i < 8; ++i) hashes.push_back(random());
    for (const std::uint64_t hash : hashes) {
      ASSERT_EQ(home_slot(hash, capacity), static_cast<std::int64_t>(hash % divisor))
          << hash << " in " << capacity << " slots";
    }
  }
}

TEST(TableRules, TableGrowsBeyondThreeQuarters) {
  for (std::int64_t capacity = 1; capacity <= 2000; ++capacity) {
    const std::int64_t quarters = 3 * capacity / 4;
    for (const std::int64_t count :
         {std::int64_t{0}, quarters - 1, quarters, quarters + 1, quarters + 2, 2 * capacity}) {
      const bool due = static_cast<double>(capacity) * 0.75 < static_cast<double>(count);
      ASSERT_EQ(is_due_to_grow(capacity, count), due) << count << " in " << capacity << " slots";
    }
  }
}

TEST(TableRules, TableWithoutSlotsIsAlwaysDueToGrow) {
  EXPECT_TRUE(is_due_to_grow(0, 0));
  EXPECT_TRUE(is_due_to_grow(0, 1));
}

TEST(TableRules, GrownTableHasTwiceItsEntriesPlusTwo) {
  EXPECT_EQ(table_rules::FIRST_CAPACITY, 8);
  for (const std::int64_t live : {0, 1, 2, 3}) EXPECT_EQ(grown_capacity(live), 8) << live;
  for (std::int64_t live = 4; live < 300; ++live) EXPECT_EQ(grown_capacity(live), live + live + 2);
}

} // namespace
} // namespace com::velanto::connectivity::test

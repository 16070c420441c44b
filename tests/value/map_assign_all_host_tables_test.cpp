// Assigning all entries of another map when a host has made one of the two maps, with a head that
// tells lies or more entries than this side would put into a table. Text keys hash to the number
// that they start with.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

// A table of `capacity` slots with the keys `first`, `first` + 1, … in `count` slots from the
// first one on.
map_t host_table(std::int64_t capacity, std::int64_t first, std::int64_t count) {
  map_t map = table_of(capacity);
  for (std::int64_t i = 0; i < count; ++i) {
    const std::int64_t number = first + i;
    put(map, number % capacity, static_cast<std::uint64_t>(number),
        data_t(std::to_string(number).c_str()), whole(number));
  }
  return map;
}

class MapAssignAllOfHosts : public PlacedKeys {
 protected:
  // All keys that there are must be in the target, whatever table it has then, and each once.
  static void expect_all_assigned(map_t&& target, std::int64_t in_target, map_t&& source,
                                  std::int64_t in_source) {
    target.assign_all(std::move(source), text("5000"));
    EXPECT_EQ(source.table(), nullptr);
    std::int64_t live = 0;
    for (std::int64_t i = 0; i < target.capacity(); ++i) {
      live += slot_at(target, i).is_live() ? 1 : 0;
    }
    EXPECT_EQ(live, in_target + in_source);
    for (std::int64_t i = 0; i < in_target; ++i) expect_there(target, i);
    for (std::int64_t i = 0; i < in_source; ++i) expect_there(target, 1000 + i);
  }

  // A source of `count` entries whose head claims another number goes into a small target.
  static void expect_source_taken(std::int64_t capacity, std::int64_t count, std::int64_t claimed) {
    SCOPED_TRACE(claimed);
    map_t source = host_table(capacity, 1000, count);
    head_of(source).live = claimed;
    expect_all_assigned(host_table(8, 0, 5), 5, std::move(source), count);
  }

 private:
  static void expect_there(const map_t& map, std::int64_t number) {
    const data_t* const value = map.find_value(data_t(std::to_string(number).c_str()));
    ASSERT_NE(value, nullptr) << number;
    EXPECT_EQ(*value, whole(number));
  }
};

TEST_F(MapAssignAllOfHosts, SourceMayClaimFewerEntriesThanItHas) {
  for (const std::int64_t claimed : {0, 1, 14, 19, 39}) expect_source_taken(64, 40, claimed);
}

TEST_F(MapAssignAllOfHosts, SourceMayHaveMoreEntriesThanALayoutTakesAndClaimFewer) {
  for (const std::int64_t claimed : {20, 50, 51}) expect_source_taken(300, 300, claimed);
}

TEST_F(MapAssignAllOfHosts, SourceMayClaimMoreEntriesThanItHas) {
  for (const std::int64_t claimed : {11, 20, 50, 51, 1000}) expect_source_taken(64, 10, claimed);
}

TEST_F(MapAssignAllOfHosts, TargetMayClaimFewerEntriesThanItHas) {
  for (const std::int64_t capacity : {8, 16, 28, 46, 72}) {
    for (std::int64_t live = capacity - 4; live < capacity; ++live) {
      SCOPED_TRACE(std::to_string(live) + " in " + std::to_string(capacity) + " slots");
      map_t target = host_table(capacity, 0, capacity - 1);
      head_of(target).live = live;
      expect_all_assigned(std::move(target), capacity - 1, host_table(64, 1000, 20), 20);
    }
  }
}

TEST_F(MapAssignAllOfHosts, TargetMayHaveMoreEntriesThanALayoutTakesAndClaimFewer) {
  map_t target = host_table(72, 0, 71);
  head_of(target).live = 40;
  expect_all_assigned(std::move(target), 71, host_table(64, 1000, 15), 15);
}

TEST_F(MapAssignAllOfHosts, TargetMayBeFull) {
  for (const std::int64_t capacity : {8, 16, 28, 46, 72}) {
    SCOPED_TRACE(capacity);
    expect_all_assigned(host_table(capacity, 0, capacity), capacity, host_table(64, 1000, 20), 20);
  }
}

TEST_F(MapAssignAllOfHosts, KeyBehindATombstoneThatIsNotCountedIsFound) {
  map_t target = with_keys("3", "11");
  EXPECT_TRUE(target.extract(text("3")));
  head_of(target).deleted = 0;
  map_t source = host_table(64, 1000, 20);
  put(source, 0, 11, text("11"), whole(11));
  target.assign_all(std::move(source), text("5000"));
  EXPECT_EQ(target.size(), 21U);
  EXPECT_EQ(at(target, "11"), whole(11));
  EXPECT_TRUE(target.extract(text("11")));
  EXPECT_FALSE(has(target, "11")) << "it was there once";
}

} // namespace
} // namespace com::velanto::connectivity::test

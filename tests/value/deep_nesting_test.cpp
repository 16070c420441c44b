// Values nested a million deep: moving, storing, copying and destroying them takes no more stack
// than a flat one, since messages may nest as deeply as their sender likes.
#include <gtest/gtest.h>

#include "tests/support/host_fixture.hpp"
#include "tests/support/small_stack.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr int DEPTH = 1'000'000;

// Lists and maps in turn, each the only content of the one around it.
data_t nested(int depth) {
  data_t value = whole(7);
  for (int i = 0; i < depth; ++i) {
    if (i % 2 == 0) {
      value = listOf(std::move(value));
      continue;
    }
    map_t around(vlt_allocate_map(1));
    around.insert(whole(1), std::move(value));
    value = std::move(around);
  }
  return value;
}

class DeepValues : public HostFixture {
 protected:
  data_t value_ = nested(DEPTH);
};

TEST_F(DeepValues, MoveFromValueToValue) {
  runOnSmallStack([this] {
    data_t moved(std::move(value_));
    data_t assigned = whole(1);
    assigned = std::move(moved);
    std::swap(assigned, value_);
  });
  EXPECT_EQ(value_.type_tag(), 7u);
}

TEST_F(DeepValues, MoveThroughAMapThatGrows) {
  runOnSmallStack([this] {
    map_t map;
    map[text("deep")] = std::move(value_);
    for (std::int64_t i = 0; i < 100; ++i) map.insert(whole(i), data_t());
    map_t moved(std::move(map));
    value_ = std::move(at(moved, "deep"));
  });
  EXPECT_EQ(value_.type_tag(), 7u);
}

TEST_F(DeepValues, AreErasedFromAMap) {
  map_t map;
  map[text("deep")] = std::move(value_);
  runOnSmallStack([&map] { map.erase(map.begin()); });
  EXPECT_TRUE(map.empty());
}

TEST_F(DeepValues, AreOverwrittenAndDestroyed) {
  runOnSmallStack([this] { value_ = whole(1); });
  EXPECT_EQ(value_, whole(1));
}

TEST_F(DeepValues, AreCopied) {
  runOnSmallStack([this] {
    data_t copy(value_);
    map_t map;
    map[text("deep")] = std::move(copy);
    const map_t copied = map.copy();
    EXPECT_EQ(copied.size(), 1u);
  });
}

TEST_F(DeepValues, TravelInMessages) {
  runOnSmallStack([this] {
    Message message(std::move(value_));
    Message other;
    std::swap(message, other);
    value_ = std::move(other.getPayload());
  });
  EXPECT_EQ(value_.type_tag(), 7u);
}

} // namespace
} // namespace com::velanto::connectivity::test

#include "recorder/filter.hpp"

#include <gtest/gtest.h>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

using recorder::Direction;
using recorder::Filter;

constexpr std::uint64_t RUN = 0x1a2b3c4d5e6f7081;

class FilterTest : public HostFixture {
 protected:
  // With these settings, the folder added.
  template <class... KeysAndValues>
  static Filter make(KeysAndValues&&... settings) {
    return Filter(recorder::readConfiguration(
                      mapOf("recordingFolder", text("f"), std::forward<KeysAndValues>(settings)...),
                      "p", "c"),
                  RUN);
  }
  static Message withPath(const char* path) { return notification(path, mapOf()); }
  static Message withType(const char* type) {
    return Message(mapOf(), mapOf("vlt.channel", text("c"), "vlt.type", text(type)));
  }
};

TEST_F(FilterTest, TakesEverythingByDefault) {
  const Filter filter = make();
  EXPECT_TRUE(filter.takesAllMessages());
  EXPECT_TRUE(filter.takes(Message()));
  EXPECT_TRUE(filter.takesDirection(Direction::HOST));
  EXPECT_TRUE(filter.takesDirection(Direction::TRANSPORT));
  EXPECT_FALSE(filter.samples());
}

TEST_F(FilterTest, TakesOnlyTheDirectionsOfTheList) {
  const Filter filter = make("directions", listOf(text("transport")));
  EXPECT_FALSE(filter.takesDirection(Direction::HOST));
  EXPECT_TRUE(filter.takesDirection(Direction::TRANSPORT));
}

TEST_F(FilterTest, TellsKindsBeforeTheCodecByPath) {
  const Filter filter = make("kinds", listOf(text("alarms")));
  EXPECT_TRUE(filter.takes(withPath("t/s/alarms/1")));
  EXPECT_TRUE(filter.takes(withPath("t/s/alarmsWithChildren"))); // as the codec reads it
  EXPECT_FALSE(filter.takes(withPath("t/s/events/1")));
  EXPECT_FALSE(filter.takes(withPath("alarms")));
  EXPECT_FALSE(filter.takes(withPath("")));
}

TEST_F(FilterTest, TellsKindsAfterTheCodecByType) {
  const Filter filter = make("kinds", listOf(text("managedobjects"), text("operations")));
  EXPECT_TRUE(filter.takes(withType("com.tivra.ostrovia.ManagedObject")));
  EXPECT_TRUE(filter.takes(withType("com.tivra.ostrovia.Operation")));
  EXPECT_FALSE(filter.takes(withType("com.tivra.ostrovia.Alarm")));
  EXPECT_FALSE(filter.takes(withType("")));
  EXPECT_TRUE(make("kinds", listOf(text("alarms"))).takes(withType("com.tivra.ostrovia.Alarm")));
  EXPECT_TRUE(make("kinds", listOf(text("events"))).takes(withType("com.tivra.ostrovia.Event")));
  EXPECT_TRUE(make("kinds", listOf(text("measurements")))
                  .takes(withType("com.tivra.ostrovia.Measurement")));
}

// Some of these keys come before the path in their table, some after it.
TEST_F(FilterTest, PathIsFoundAmongOtherKeys) {
  const Filter filter = make("kinds", listOf(text("alarms")));
  for (const char* other : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
    Message message = withPath("t/s/alarms/1");
    message.getMetadataMap()[text(other)] = text("t/s/events/1");
    EXPECT_TRUE(filter.takes(message)) << other;
  }
}

TEST_F(FilterTest, MessageOfNoKindIsFilteredByKinds) {
  const Filter filter = make("kinds", listOf(text("alarms")));
  EXPECT_FALSE(filter.takes(Message()));
  EXPECT_FALSE(filter.takes(Message(mapOf(), mapOf("pulsarPath", whole(1)))));
  EXPECT_FALSE(filter.takes(Message(mapOf(), mapOf("vlt.type", nullText()))));
}

TEST_F(FilterTest, PathMustBeginWithThePrefix) {
  const Filter filter = make("pathPrefix", text("t/s/"));
  EXPECT_TRUE(filter.takes(withPath("t/s/alarms/1")));
  EXPECT_FALSE(filter.takes(withPath("t/other/alarms/1")));
  EXPECT_FALSE(filter.takes(withType("com.tivra.ostrovia.Alarm")));
}

TEST_F(FilterTest, CallsNoFunctionOfTheHost) {
  const Filter filter = make("kinds", listOf(text("alarms")), "pathPrefix", text("t"));
  const Message message = withPath("t/s/alarms/1");
  standin_reset_calls();
  EXPECT_TRUE(filter.takes(message));
  EXPECT_EQ(standin_calls_total(), 0);
}

// 4096 runs of 64 batches: each remainder of the number is chosen as often as any other.
TEST_F(FilterTest, SampleHasNoBias) {
  const Filter filter = make("oneIn", whole(4));
  ASSERT_TRUE(filter.samples());
  EXPECT_TRUE(make("oneIn", whole(2)).samples());
  constexpr std::uint64_t BATCHES = 262144;
  std::uint64_t chosen[4] = {};
  for (std::uint64_t batch = 1; batch <= BATCHES; ++batch) {
    if (filter.takesBatch(batch)) ++chosen[batch % 4];
  }
  for (const std::uint64_t count : chosen) {
    EXPECT_NEAR(static_cast<double>(count), BATCHES / 16.0, 5 * 128); // five standard deviations
  }
}

TEST_F(FilterTest, RecordersOfOneRunChooseTheSameBatches) {
  const Filter before = make("oneIn", whole(10));
  const Filter after = make("oneIn", whole(10), "kinds", listOf(text("alarms")));
  for (std::uint64_t batch = 1; batch <= 1000; ++batch) {
    EXPECT_EQ(before.takesBatch(batch), after.takesBatch(batch)) << batch;
  }
}

// The two recorders of a chain may be of different builds.
TEST_F(FilterTest, EveryBuildChoosesTheSameBatches) {
  const Filter filter = make("oneIn", whole(4));
  std::string chosen;
  for (std::uint64_t batch = 0; batch < 64; ++batch) chosen += filter.takesBatch(batch) ? '#' : '.';
  EXPECT_EQ(chosen, "..#.#..###.##...#.......#...##.##......#..#.........##.#...#.#..");
}

} // namespace
} // namespace com::velanto::connectivity::test

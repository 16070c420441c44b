#include "tools/replay/summary/durations.hpp"

#include <gtest/gtest.h>

namespace com::velanto::connectivity::test {

using std::chrono::nanoseconds;

TEST(Durations, WithoutAnyTheQuantilesAreZero) {
  const tools::Durations none;
  EXPECT_EQ(none.quantile(0.5).count(), 0);
}

TEST(Durations, SmallOnesAreExact) {
  tools::Durations durations;
  for (int i = 1; i <= 31; ++i) durations.add(nanoseconds(i));
  EXPECT_EQ(durations.quantile(0).count(), 1);
  EXPECT_EQ(durations.quantile(0.5).count(), 16);
  EXPECT_EQ(durations.quantile(1).count(), 31);
}

TEST(Durations, LargeOnesAreExactTo3Percent) {
  for (std::int64_t value = 1; value < (std::int64_t{1} << 60); value = value * 3 + 1) {
    tools::Durations durations;
    durations.add(nanoseconds(value));
    const double found = static_cast<double>(durations.quantile(0.5).count());
    EXPECT_LE(found, static_cast<double>(value));
    EXPECT_GE(found, 0.968 * static_cast<double>(value)) << value;
  }
}

TEST(Durations, ClassesMakeTheSameDurationsAgain) {
  tools::Durations durations;
  for (int i = 0; i < 1000; ++i) durations.add(nanoseconds(i * i));
  tools::Durations again;
  for (const auto& [bound, count] : durations.classes()) again.add(bound, count);
  EXPECT_EQ(again.classes(), durations.classes());
  EXPECT_EQ(again.count(), durations.count());
  EXPECT_EQ(again.quantile(0.99), durations.quantile(0.99));
}

TEST(Durations, TailIsSeen) {
  tools::Durations durations;
  for (int i = 0; i < 980; ++i) durations.add(nanoseconds(10));
  for (int i = 0; i < 20; ++i) durations.add(nanoseconds(1024));
  EXPECT_EQ(durations.quantile(0.5).count(), 10);
  EXPECT_EQ(durations.quantile(0.99).count(), 1024);
}

} // namespace com::velanto::connectivity::test

#include "tools/report/timeline.hpp"

#include <gtest/gtest.h>

namespace com::velanto::connectivity::test {

namespace {

using tools::Kind;
using tools::report::Timeline;
using tools::report::timeline_view_t;
using tools::report::WIDTHS_OF_PLACES;
using tools::report::WIDTHS_OF_TIMES;

std::uint64_t sumOf(const timeline_view_t& view) {
  std::uint64_t sum = 0;
  for (const tools::report::bar_t& bar : view.bars) sum += bar.sum();
  return sum;
}

} // namespace

TEST(Timeline, WithoutMessagesThereAreNoBars) {
  EXPECT_TRUE(Timeline(WIDTHS_OF_PLACES).view().bars.empty());
}

TEST(Timeline, KindsAndDropsAreCounted) {
  Timeline line(WIDTHS_OF_PLACES);
  line.add(7, Kind::ALARMS, false);
  line.add(7, Kind::NONE, true);
  line.add(9, Kind::ALARMS, true);
  const timeline_view_t view = line.view();
  EXPECT_EQ(view.begin, 7);
  EXPECT_EQ(view.last, 9);
  ASSERT_EQ(view.bars.size(), 3u);
  EXPECT_EQ(view.bars[0].messages.front(), 1u);
  EXPECT_EQ(view.bars[0].messages.back(), 1u);
  EXPECT_EQ(view.bars[0].dropped, 1u);
  EXPECT_EQ(view.bars[1].sum(), 0u);
  EXPECT_EQ(view.bars[2].dropped, 1u);
}

TEST(Timeline, BarsWidenUntilTheyFit) {
  Timeline line(WIDTHS_OF_PLACES);
  for (std::int64_t place = 0; place < 61; ++place) line.add(place, Kind::EVENTS, false);
  const timeline_view_t view = line.view();
  EXPECT_EQ(view.width, 2);
  EXPECT_EQ(view.bars.size(), 31u);
  EXPECT_EQ(sumOf(view), 61u);
}

TEST(Timeline, MemoryIsBoundedAndNothingLost) {
  Timeline line(WIDTHS_OF_TIMES);
  constexpr std::int64_t DAY = 86'400;
  for (std::int64_t i = 0; i < 30'000; ++i) line.add(i * DAY, Kind::EVENTS, i % 3 == 0);
  const timeline_view_t view = line.view();
  EXPECT_LE(view.bars.size(), Timeline::SHOWN_BARS);
  EXPECT_EQ(sumOf(view), 30'000u);
  EXPECT_EQ(view.outside, 0u);
  EXPECT_EQ(view.begin % view.width, 0);
}

TEST(Timeline, BarsBeginAtRoundTimes) {
  Timeline line(WIDTHS_OF_TIMES);
  for (std::int64_t minute = 0; minute < 120; ++minute) {
    line.add(1'000'000'021 + minute * 60, Kind::EVENTS, false);
  }
  const timeline_view_t view = line.view();
  EXPECT_EQ(view.width, 300);
  EXPECT_EQ(view.begin, 999'999'900);
}

TEST(Timeline, TimesBeforeTheEpochAreRoundedDown) {
  Timeline line(WIDTHS_OF_PLACES);
  for (std::int64_t place = -61; place < 61; ++place) line.add(place, Kind::EVENTS, false);
  const timeline_view_t view = line.view();
  EXPECT_EQ(view.begin, -64);
  EXPECT_EQ(view.bars.front().sum(), 1u); // -61 alone
  EXPECT_EQ(sumOf(view), 122u);
}

TEST(Timeline, FewFarMessagesStayOutside) {
  Timeline line(WIDTHS_OF_TIMES);
  line.add(0, Kind::EVENTS, true);
  for (std::int64_t second = 0; second < 40; ++second) {
    line.add(1'700'000'000 + second, Kind::EVENTS, false);
  }
  const timeline_view_t view = line.view();
  EXPECT_EQ(view.outside, 1u);
  EXPECT_EQ(view.width, 1);
  EXPECT_EQ(sumOf(view), 40u);
  EXPECT_EQ(view.last, 1'700'000'039);
}

TEST(Timeline, ManyFarMessagesStayInside) {
  Timeline line(WIDTHS_OF_TIMES);
  for (std::int64_t second = 0; second < 20; ++second) {
    line.add(second, Kind::EVENTS, false);
    line.add(1'700'000'000 + second, Kind::EVENTS, false);
  }
  EXPECT_EQ(line.view().outside, 0u);
}

} // namespace com::velanto::connectivity::test

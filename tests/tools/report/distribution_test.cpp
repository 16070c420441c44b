#include "tools/report/distribution.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace com::velanto::connectivity::test {

using tools::report::Distribution;

TEST(Distribution, WithoutNumbersThereAreNoClasses) {
  EXPECT_TRUE(Distribution().classes().empty());
}

TEST(Distribution, BoundsDouble) {
  Distribution distribution;
  for (const std::uint64_t number : {1U, 2U, 3U, 4U, 7U, 8U, 16U}) distribution.add(number);
  std::string text;
  for (const auto& [first, last, count] : distribution.classes()) {
    text +=
        std::to_string(first) + "-" + std::to_string(last) + ": " + std::to_string(count) + "\n";
  }
  EXPECT_EQ(text, "1-1: 1\n2-3: 2\n4-7: 2\n8-15: 1\n16-31: 1\n");
}

TEST(Distribution, EmptyClassesBetweenOthersStay) {
  Distribution distribution;
  distribution.add(0);
  distribution.add(2);
  const auto classes = distribution.classes();
  ASSERT_EQ(classes.size(), 3u);
  EXPECT_EQ(classes[0].last, 0u);
  EXPECT_EQ(classes[1].count, 0u);
}

TEST(Distribution, LargestNumberHasAClass) {
  Distribution distribution;
  constexpr std::uint64_t LARGEST = std::numeric_limits<std::uint64_t>::max();
  distribution.add(LARGEST);
  EXPECT_EQ(distribution.classes().front().last, LARGEST);
}

} // namespace com::velanto::connectivity::test

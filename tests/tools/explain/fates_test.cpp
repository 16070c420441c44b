#include "tools/explain/fates.hpp"

#include <gtest/gtest.h>

#include <set>

namespace com::velanto::connectivity::test {

TEST(FatesTest, EachHasANameOfItsOwn) {
  std::set<std::string> names;
  for (int i = 0; i <= static_cast<int>(tools::Fate::UNKNOWN); ++i) {
    names.insert(tools::nameOf(static_cast<tools::Fate>(i)));
  }
  EXPECT_EQ(names, (std::set<std::string>{"unchanged", "renamed", "gathered", "copied", "converted",
                                          "replaced", "added", "lost", "unknown"}));
}

TEST(FatesTest, AbsencesHaveNames) {
  EXPECT_STREQ(tools::nameOf(tools::Without::SAME), "same");
  EXPECT_STREQ(tools::nameOf(tools::Without::DROPPED), "dropped");
  EXPECT_STREQ(tools::nameOf(tools::Without::PASSED), "passed");
  EXPECT_STREQ(tools::nameOf(tools::Without::DIFFERENT), "different");
}

} // namespace com::velanto::connectivity::test

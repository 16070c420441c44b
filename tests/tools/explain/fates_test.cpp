#include "tools/explain/fates.hpp"

#include <gtest/gtest.h>

#include <set>

namespace com::velanto::connectivity::test {

TEST(FatesTest, EachHasANameOfItsOwn) {
  std::set<std::string> names;
  for (int i = 0; i <= static_cast<int>(tools::Fate::unknown); ++i) {
    names.insert(tools::nameOf(static_cast<tools::Fate>(i)));
  }
  EXPECT_EQ(names, (std::set<std::string>{"unchanged", "renamed", "gathered", "copied", "converted",
                                          "replaced", "added", "lost", "unknown"}));
}

TEST(FatesTest, AbsencesHaveNames) {
  EXPECT_STREQ(tools::nameOf(tools::Without::same), "same");
  EXPECT_STREQ(tools::nameOf(tools::Without::dropped), "dropped");
  EXPECT_STREQ(tools::nameOf(tools::Without::passed), "passed");
  EXPECT_STREQ(tools::nameOf(tools::Without::different), "different");
}

} // namespace com::velanto::connectivity::test

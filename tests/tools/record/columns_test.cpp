#include "tools/record/columns.hpp"

#include <gtest/gtest.h>

namespace com::velanto::connectivity::test {

TEST(Columns, CharactersAreCountedNotBytes) {
  EXPECT_EQ(tools::widthOf("aé…"), 3u);
  EXPECT_EQ(tools::padded("é", 3), "é  ");
  EXPECT_EQ(tools::leftPadded("é", 3), "  é");
  EXPECT_EQ(tools::padded("abcd", 3), "abcd");
}

TEST(Columns, CutStringsHaveTheWidthAskedFor) {
  EXPECT_EQ(tools::cutBehind("abcd", 4), "abcd");
  EXPECT_EQ(tools::cutBehind("abcde", 4), "abc…");
  EXPECT_EQ(tools::cutBehind("ééééé", 4), "ééé…");
  EXPECT_EQ(tools::cutBefore("abcd", 4), "abcd");
  EXPECT_EQ(tools::cutBefore("abcde", 4), "…cde");
  EXPECT_EQ(tools::cutBefore("ééééé", 4), "…ééé");
}

} // namespace com::velanto::connectivity::test

#include "tools/explain/echo.hpp"

#include <gtest/gtest.h>

namespace com::velanto::connectivity::test {

TEST(EchoTest, NewValueInOldWordsIsAnEcho) {
  EXPECT_TRUE(tools::isEcho("no time 'a' in a", "no time 'b' in b", "a", "b"));
  EXPECT_TRUE(
      tools::isEcho("kind 'inventory'", "kind 'inventorz'", "t/inventory/7", "t/inventorz/7"));
}

TEST(EchoTest, OtherWordsAreNone) {
  EXPECT_FALSE(tools::isEcho("no time 'a'", "no text", "a", "b"));
  EXPECT_FALSE(tools::isEcho("no time", "no time", "a", "b"));
  EXPECT_FALSE(tools::isEcho("kind 'inventory'", "kind 'inventorx'", "t/inventory", "t/inventorz"));
  EXPECT_FALSE(tools::isEcho("no key", "no kex", "", "x"));
}

TEST(EchoTest, APieceWithTheValueIsAMention) {
  EXPECT_TRUE(tools::isWithoutMention("failed ('id' = '7'): why", "failed: why", "7"));
  EXPECT_FALSE(tools::isWithoutMention("failed ('id' = '7'): why", "failed: why", "8"));
  EXPECT_FALSE(tools::isWithoutMention("failed ('id' = '7'): why", "failed: how", "7"));
  EXPECT_FALSE(tools::isWithoutMention("failed", "failed", "7"));
}

} // namespace com::velanto::connectivity::test

#include "tools/check/same_content.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

using tools::check::NotANumber;
using tools::check::sameContent;

constexpr std::uint64_t QUIET_NAN = 0x7ff8'0000'0000'0000;

data_t notANumber(std::uint64_t payload) {
  return data_t(std::bit_cast<double>(QUIET_NAN | payload));
}

TEST(SameContent, BitsOfNumbersCount) {
  for (const NotANumber rule : {NotANumber::sameBits, NotANumber::anyBits}) {
    EXPECT_TRUE(sameContent(data_t(0.0), data_t(0.0), rule));
    EXPECT_FALSE(sameContent(data_t(0.0), data_t(-0.0), rule));
    EXPECT_FALSE(sameContent(notANumber(1), data_t(1.0), rule));
    EXPECT_FALSE(sameContent(data_t(1.0), notANumber(1), rule));
  }
}

TEST(SameContent, BitsOfNanCountOnRequest) {
  EXPECT_TRUE(sameContent(notANumber(1), notANumber(1), NotANumber::sameBits));
  EXPECT_FALSE(sameContent(notANumber(1), notANumber(2), NotANumber::sameBits));
  EXPECT_TRUE(sameContent(notANumber(1), notANumber(2), NotANumber::anyBits));
}

TEST(SameContent, NullStringIsNotTheEmptyOne) {
  const data_t missing = null_text();
  EXPECT_TRUE(sameContent(missing, missing, NotANumber::sameBits));
  EXPECT_FALSE(sameContent(missing, text(""), NotANumber::sameBits));
  EXPECT_TRUE(sameContent(text("a"), text("a"), NotANumber::sameBits));
}

} // namespace
} // namespace com::velanto::connectivity::test

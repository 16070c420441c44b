// Values read as strings: scalars and strings convert, everything else is refused by its kind.
#include "value/convert_to.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/host_fixture.hpp"
#include "tests/value/kinds.hpp"

namespace com::velanto::connectivity::test {
namespace {

using ConvertTo = HostFixture;

std::string converted(const data_t& value) { return convert_to<std::string>(value); }

TEST_F(ConvertTo, ScalarsAndStringsBecomeStrings) {
  EXPECT_EQ(converted(truth(true)), "true");
  EXPECT_EQ(converted(truth(false)), "false");
  EXPECT_EQ(converted(whole(-5)), "-5");
  EXPECT_EQ(converted(whole(0)), "0");
  EXPECT_EQ(converted(whole(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
  EXPECT_EQ(converted(whole(std::numeric_limits<std::int64_t>::max())), "9223372036854775807");
  EXPECT_EQ(converted(text("a \n b")), "a \n b");
  EXPECT_EQ(converted(text("")), "");
  EXPECT_EQ(converted(borrowed("not owned")), "not owned");
}

TEST_F(ConvertTo, DoublesTakeTheShortGeneralForm) {
  EXPECT_EQ(converted(real(0.5)), "0.5");
  EXPECT_EQ(converted(real(1e20)), "1e+20");
  EXPECT_EQ(converted(real(1.0)), "1");
  EXPECT_EQ(converted(real(-0.0)), "-0");
  EXPECT_EQ(converted(real(1234567.0)), "1.23457e+06");
  EXPECT_EQ(converted(real(-std::numeric_limits<double>::max())), "-1.79769e+308");
  EXPECT_EQ(converted(real(std::numeric_limits<double>::infinity())), "inf");
}

TEST_F(ConvertTo, LongStringIsNotCut) {
  const std::string text(5000, 'x');
  EXPECT_EQ(converted(data_t(text.c_str())), text);
}

TEST_F(ConvertTo, NullReadsAsTheEmptyString) {
  EXPECT_EQ(converted(nullText()), "");
  EXPECT_EQ(converted(tagged(10)), "");
}

TEST_F(ConvertTo, EmptyIsRefused) {
  EXPECT_THROW(converted(data_t()), std::runtime_error);
  EXPECT_EQ(errorOf([] { converted(data_t()); }), "Trying to parse from empty");
}

TEST_F(ConvertTo, OtherKindsAreRefusedByName) {
  const struct {
    std::size_t kind;
    const char* name;
  } rows[] = {{4, "decimal"}, {6, "list"},     {7, "map"},     {8, "buffer"},
              {9, "custom"},  {11, "Unknown"}, {12, "Unknown"}};
  for (const auto& row : rows) {
    const data_t value = KINDS[row.kind].make();
    EXPECT_THROW(converted(value), std::runtime_error);
    EXPECT_EQ(errorOf([&] { converted(value); }),
              std::string("Trying to parse from incorrect type (actually ") + row.name + ")");
  }
}

TEST_F(ConvertTo, NullContainersAreRefusedLikeOthers) {
  EXPECT_EQ(errorOf([] { converted(tagged(6)); }),
            "Trying to parse from incorrect type (actually list)");
  EXPECT_EQ(errorOf([] { converted(tagged(7)); }),
            "Trying to parse from incorrect type (actually map)");
}

TEST_F(ConvertTo, VisitorNamesTheKindItWasGiven) {
  const convert_to_details::_get_or_convert<std::string> visitor("given");
  EXPECT_EQ(visitor(std::int64_t{7}), "7");
  EXPECT_EQ(errorOf([&] { visitor(list_t()); }),
            "Trying to parse from incorrect type (actually given)");
}

} // namespace
} // namespace com::velanto::connectivity::test

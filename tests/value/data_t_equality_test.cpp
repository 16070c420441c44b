// When two values are equal: same kind and same content, with no conversion between kinds.
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/host_fixture.hpp"
#include "tests/value/kinds.hpp"
#include "tests/value/tables.hpp"

namespace com::velanto::connectivity::test {
namespace {

using DataTEquality = HostFixture;

constexpr double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();

TEST_F(DataTEquality, OnlyTheSameKindCanBeEqual) {
  for (const kind_t& left : KINDS) {
    for (const kind_t& right : KINDS) {
      SCOPED_TRACE(std::string(left.name) + " and " + right.name);
      const bool comparable = left.tag != 9 && left.tag <= 10;
      EXPECT_EQ(left.make() == right.make(), left.tag == right.tag && comparable);
      EXPECT_EQ(left.make() != right.make(), left.tag != right.tag || !comparable);
    }
  }
}

TEST_F(DataTEquality, EqualBitsOfDifferentKindsAreUnequal) {
  EXPECT_NE(whole(1), real(1.0));
  EXPECT_NE(whole(1), truth(true));
  EXPECT_NE(whole(1), decimal(1));
  EXPECT_NE(real(0.0), whole(0));
  EXPECT_NE(text("a"), borrowed("a"));
  EXPECT_NE(borrowed("a"), text("a"));
}

TEST_F(DataTEquality, EmptyValueEqualsOnlyEmptyValues) {
  EXPECT_EQ(data_t(), data_t());
  EXPECT_NE(data_t(), text(""));
  EXPECT_NE(data_t(), data_t(map_t()));
  EXPECT_NE(data_t(), data_t(list_t()));
  EXPECT_EQ(tagged(0, 5), data_t()); // with any content
}

TEST_F(DataTEquality, BooleansAreComparedByTheirByte) {
  EXPECT_NE(truth(true), truth(false));
  EXPECT_EQ(tagged(1, 0x0101), tagged(1, 0xff01));
  EXPECT_NE(tagged(1, 2), tagged(1, 1));
}

TEST_F(DataTEquality, DoublesAreComparedAsNumbers) {
  EXPECT_EQ(real(0.5), real(0.5));
  EXPECT_NE(real(0.5), real(0.25));
  EXPECT_EQ(real(0.0), real(-0.0));
  const data_t nan = real(NAN_VALUE);
  EXPECT_FALSE(nan == nan);
  EXPECT_TRUE(nan != nan);
}

TEST_F(DataTEquality, IntegersAndDecimalsAreComparedByAllBytes) {
  EXPECT_EQ(whole(-1), whole(-1));
  EXPECT_NE(whole(1), whole(1 + (std::int64_t{1} << 56)));
  EXPECT_EQ(decimal(7), decimal(7));
  EXPECT_NE(decimal(7), decimal(7 + (std::uint64_t{1} << 56)));
}

TEST_F(DataTEquality, StringsAreComparedByContent) {
  EXPECT_EQ(text("id"), text("id"));
  EXPECT_NE(text("id"), text("ID"));
  EXPECT_NE(text("id"), text("idx"));
  EXPECT_EQ(borrowed("id"), borrowed(std::string("id").c_str()));
  EXPECT_NE(borrowed("id"), borrowed("i"));
}

TEST_F(DataTEquality, NullEqualsNullAndTheEmptyString) {
  EXPECT_EQ(nullText(), nullText());
  EXPECT_EQ(nullText(), text(""));
  EXPECT_EQ(text(""), nullText());
  EXPECT_EQ(tagged(10), borrowed(""));
  EXPECT_EQ(tagged(10), tagged(10));
  EXPECT_NE(nullText(), text("a"));
  EXPECT_NE(tagged(10), nullText());
}

TEST_F(DataTEquality, ListsAreComparedInOrder) {
  EXPECT_EQ(listOf(whole(1), text("b")), listOf(whole(1), text("b")));
  EXPECT_NE(listOf(whole(1), text("b")), listOf(text("b"), whole(1)));
  EXPECT_NE(listOf(whole(1)), listOf(whole(1), whole(2)));
  EXPECT_NE(listOf(listOf(whole(1))), listOf(listOf(whole(2))));
}

TEST_F(DataTEquality, NullListEqualsAListWithoutElements) {
  const data_t null = tagged(6);
  EXPECT_EQ(null, tagged(6));
  EXPECT_EQ(null, listOf());
  EXPECT_EQ(listOf(), null);
  EXPECT_EQ(listOf(), data_t(list_t(standin_make_list(0, 4))));
  EXPECT_NE(null, listOf(data_t()));
  EXPECT_NE(listOf(data_t()), null);
}

TEST_F(DataTEquality, MapsAreComparedByTheirEntries) {
  EXPECT_EQ(data_t(mapOf("a", whole(1))), data_t(mapOf("a", whole(1))));
  EXPECT_NE(data_t(mapOf("a", whole(1))), data_t(mapOf("a", whole(2))));
  EXPECT_EQ(tagged(7), data_t(table_of(8)));
  EXPECT_EQ(data_t(table_of(8)), tagged(7));
  EXPECT_NE(tagged(7), data_t(mapOf("a", data_t())));
}

TEST_F(DataTEquality, BuffersAreComparedByLengthAndBytes) {
  EXPECT_EQ(bytes(std::string("a\0b", 3)), bytes(std::string("a\0b", 3)));
  EXPECT_NE(bytes(std::string("a\0b", 3)), bytes(std::string("a\0c", 3)));
  EXPECT_NE(bytes("ab"), bytes("abc"));
  EXPECT_NE(bytes("a"), bytes("b"));
  EXPECT_EQ(tagged(8), tagged(8));
  EXPECT_EQ(tagged(8), bytes(""));
  EXPECT_EQ(bytes(""), tagged(8));
  EXPECT_NE(tagged(8), bytes("a"));
}

TEST_F(DataTEquality, CustomAndUnknownValuesDifferFromThemselves) {
  for (const data_t& value : {custom(1), tagged(9), tagged(11, 4), tagged(4294967295, 4)}) {
    SCOPED_TRACE(value.type_tag());
    EXPECT_FALSE(value == value);
    EXPECT_TRUE(value != value);
  }
  EXPECT_NE(listOf(custom(1)), listOf(custom(1)));
}

} // namespace
} // namespace com::velanto::connectivity::test

// The display text of every kind of value.
#include "host/storage.h"

#include <limits>

#include "tests/standin/values.hpp"

namespace standin::test {
namespace {

using Render = Blocks;

TEST_F(Render, ResultIsAnOwnedString) {
  const data_t value = integer(1);
  const Held text(vlt_data_to_string(&value));
  EXPECT_EQ(text.value.tag, uint32_t{VLT_TAG_STRING});
  EXPECT_STREQ(text.value.value.string, "1");
}

TEST_F(Render, ScalarsHaveOneForm) {
  EXPECT_EQ(rendered(empty()), "null");
  EXPECT_EQ(rendered(boolean(true)), "true");
  EXPECT_EQ(rendered(boolean(false)), "false");
  EXPECT_EQ(rendered(integer(std::numeric_limits<int64_t>::min())), "-9223372036854775808");
  EXPECT_EQ(rendered(integer(std::numeric_limits<int64_t>::max())), "9223372036854775807");
  EXPECT_EQ(rendered(decimal(0x0123456789abcdef)), "decimal(0x0123456789abcdef)");
  EXPECT_EQ(rendered(decimal(0)), "decimal(0x0000000000000000)");
}

TEST_F(Render, BooleanByteOtherThanZeroIsTrue) {
  EXPECT_EQ(rendered(tagged(VLT_TAG_BOOLEAN, 0x02)), "true");
  EXPECT_EQ(rendered(tagged(VLT_TAG_BOOLEAN, 0xff00)), "false");
}

TEST_F(Render, DoublesAreShortestAndStayDoubles) {
  const struct {
    double number;
    const char* text;
  } rows[] = {{5, "5.0"},
              {-0.0, "-0.0"},
              {2.5, "2.5"},
              {0.1, "0.1"},
              {1e20, "1e+20"},
              {-1.7976931348623157e308, "-1.7976931348623157e+308"},
              {5e-324, "5e-324"},
              {1577934245.123, "1577934245.123"},
              {std::numeric_limits<double>::infinity(), "inf"},
              {-std::numeric_limits<double>::infinity(), "-inf"},
              {std::numeric_limits<double>::quiet_NaN(), "nan"}};
  for (const auto& row : rows) EXPECT_EQ(rendered(real(row.number)), row.text);
}

TEST_F(Render, StringsAreQuotedAndEscaped) {
  EXPECT_EQ(rendered(borrowed("")), R"("")");
  EXPECT_EQ(rendered(borrowed("plain")), R"("plain")");
  EXPECT_EQ(rendered(borrowed("\"a\\b\"")), R"("\"a\\b\"")");
  EXPECT_EQ(rendered(borrowed("a\nb\rc\td")), R"("a\nb\rc\td")");
  EXPECT_EQ(rendered(borrowed("\x01\x1f\x7f")), R"("\u0001\u001f\u007f")");
  EXPECT_EQ(rendered(borrowed("\xc3\xa4\xff")), "\"\xc3\xa4\xff\"");
}

TEST_F(Render, OwnedAndBorrowedStringsLookAlike) {
  EXPECT_EQ(renderedAndFreed(string("a")), rendered(borrowed("a")));
}

TEST_F(Render, ListsAreInBrackets) {
  EXPECT_EQ(renderedAndFreed(list({})), "[]");
  EXPECT_EQ(renderedAndFreed(list({integer(1), list({boolean(true), real(2.5)}), empty()})),
            "[1, [true, 2.5], null]");
}

TEST_F(Render, MapsShowLiveEntriesInSlotOrder) {
  table_t* shown = tableOf(6, {{5, 1, borrowed("b"), list({boolean(true), real(2.5)})},
                               {1, 0, borrowed("a"), integer(1)},
                               {3, 9, list({}), map(tableOf(2, {}))}});
  markDeleted(shown, 2);
  EXPECT_EQ(renderedAndFreed(map(shown)), R"({"a": 1, []: {}, "b": [true, 2.5]})");
}

TEST_F(Render, MapAsKeyIsShownLikeAnyValue) {
  const data_t key = map(tableOf(1, {{0, 2, integer(1), integer(2)}}));
  EXPECT_EQ(renderedAndFreed(map(tableOf(1, {{0, 5, key, list({integer(3)})}}))), "{{1: 2}: [3]}");
}

TEST_F(Render, OpaqueKindsAreNamed) {
  EXPECT_EQ(renderedAndFreed(buffer("twelve bytes")), "buffer(12 bytes)");
  EXPECT_EQ(renderedAndFreed(custom(1)), "custom");
  EXPECT_EQ(rendered(tagged(11, 0xdead)), "unknown(11)");
  EXPECT_EQ(rendered(tagged(0xffffffff)), "unknown(4294967295)");
}

TEST_F(Render, NullBlocksAreEmptyOnes) {
  EXPECT_EQ(rendered(tagged(VLT_TAG_STRING)), R"("")");
  EXPECT_EQ(rendered(tagged(VLT_TAG_BORROWED_STRING)), R"("")");
  EXPECT_EQ(rendered(tagged(VLT_TAG_LIST)), "[]");
  EXPECT_EQ(rendered(tagged(VLT_TAG_MAP)), "{}");
  EXPECT_EQ(rendered(tagged(VLT_TAG_BUFFER)), "buffer(0 bytes)");
  EXPECT_EQ(rendered(tagged(VLT_TAG_CUSTOM)), "custom");
}

TEST_F(Render, NoValueIsRenderedAsEmpty) {
  const Held text(vlt_data_to_string(nullptr));
  EXPECT_STREQ(text.value.value.string, "null");
}

// Every length around the sizes of a growing string, exact fits among them.
TEST_F(Render, StringsOfAnyLengthAreWhole) {
  for (std::size_t length = 0; length < 300; ++length) {
    const std::string text(length, 'x');
    EXPECT_EQ(rendered(borrowed(text.c_str())), '"' + text + '"');
  }
  const std::string text(100'000, 'x');
  EXPECT_EQ(rendered(borrowed(text.c_str())), '"' + text + '"');
}

// 20 levels outgrow the first stack of open containers, 100 bytes the first string.
TEST_F(Render, ExhaustionAnywhereGivesNullAndLeaksNothing) {
  data_t value = borrowed("sixty bytes and more, so that the text has to grow once on its way");
  for (int i = 0; i < 20; ++i) value = list({value});
  const Held held(value);
  const int allocations = failEach([&value] {
    const Held text(vlt_data_to_string(&value));
    EXPECT_EQ(text.value.tag, uint32_t{VLT_TAG_STRING});
    EXPECT_EQ(text.value.value.string == nullptr, standin_failed_allocations() > 0);
  });
  EXPECT_EQ(allocations, 4);
}

} // namespace
} // namespace standin::test

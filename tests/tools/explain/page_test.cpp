#include "tools/explain/page.hpp"

#include <gtest/gtest.h>

namespace com::velanto::connectivity::test {

namespace {

using tools::Colour;
using tools::Page;

std::string of(std::size_t size, char c) { return std::string().append(size, c); }

} // namespace

TEST(PageTest, ALabelIsShownOnce) {
  Page page(false);
  page.heading("in:1: events");
  page.entry("lost", Colour::RED, {"a,", "b"});
  page.entry("lost", Colour::RED, {"c"});
  page.entry("added", Colour::GREEN, {"d"});
  page.heading("in:2: events");
  page.entry("added", Colour::GREEN, {"e"});
  EXPECT_EQ(std::move(page).take(),
            "in:1: events\n"
            "  lost       a, b\n"
            "             c\n"
            "  added      d\n"
            "in:2: events\n"
            "  added      e\n");
}

TEST(PageTest, PartsGoOnIn79Columns) {
  Page page(false);
  page.entry("lost", Colour::RED, {of(58, 'a'), of(5, 'b'), of(64, 'c'), of(63, 'd'), "ee"});
  EXPECT_EQ(std::move(page).take(), "  lost       " + of(58, 'a') + " bbbbb\n" + of(15, ' ') +
                                        of(64, 'c') + "\n" + of(15, ' ') + of(63, 'd') + "\n" +
                                        of(15, ' ') + "ee\n");
}

TEST(PageTest, StringsBreakBetweenWordsOrWithinThem) {
  Page page(false);
  page.text("logged", Colour::NONE, of(50, 'a') + " " + of(20, 'b') + " " + of(70, 'c'));
  EXPECT_EQ(std::move(page).take(), "  logged     " + of(50, 'a') + "\n" + of(15, ' ') +
                                        of(20, 'b') + "\n" + of(15, ' ') + of(64, 'c') + "\n" +
                                        of(15, ' ') + of(6, 'c') + "\n");
}

TEST(PageTest, ColumnsAreCharacters) {
  Page page(false);
  std::string accents;
  for (int i = 0; i < 65; ++i) accents += "é";
  page.text("logged", Colour::NONE, accents);
  EXPECT_EQ(std::move(page).take(),
            "  logged     " + accents.substr(0, 128) + "\n" + of(15, ' ') + "é\n");
}

TEST(PageTest, ColoursAreOfLabelsAndHeadings) {
  Page page(true);
  page.heading("in:1");
  page.entry("lost", Colour::RED, {"a"});
  page.entry("logged", Colour::NONE, {"b"});
  EXPECT_EQ(std::move(page).take(),
            "\x1B[1min:1\x1B[0m\n  \x1B[31mlost\x1B[0m       a\n  logged     b\n");
}

} // namespace com::velanto::connectivity::test

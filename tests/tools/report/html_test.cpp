#include "tools/report/html.hpp"

#include <gtest/gtest.h>

namespace com::velanto::connectivity::test {

namespace {

using tools::report::Html;
using tools::report::shown;

std::string escaped(std::string_view text) {
  std::size_t left_out = 0;
  std::string result = tools::report::escaped(text, 1000, left_out);
  EXPECT_EQ(left_out, 0u);
  return result;
}

} // namespace

TEST(Html, TextsCannotBecomeMarkup) {
  EXPECT_EQ(escaped("</script><b a=\"1\" c='2'>&amp;"),
            "&lt;/script&gt;&lt;b a=&quot;1&quot; c=&#39;2&#39;&gt;&amp;amp;");
}

TEST(Html, InvisibleCharactersAndStrayBytesAreShown) {
  EXPECT_EQ(escaped("a\t\n\x1B[31m\x7F"), "a\\u0009\\u000a\\u001b[31m\\u007f");
  EXPECT_EQ(escaped("\u0085\xE2\x80\xAEo\xE2\x81\xA6\uFEFF"), "\\u0085\\u202eo\\u2066\\ufeff");
  EXPECT_EQ(escaped("a\xFFz\xE2\x82<"), "a\\xffz\\xe2\\x82&lt;");
  EXPECT_EQ(escaped(std::string_view("a\0b", 3)), "a\\u0000b");
}

TEST(Html, WordsOfAnyScriptStay) {
  const char* const text = "größer 日本 עברית \U0001F3D7";
  EXPECT_EQ(escaped(text), text);
}

TEST(Html, LimitCountsTheEscapedText) {
  std::size_t left_out = 0;
  EXPECT_EQ(tools::report::escaped("a<<b", 9, left_out), "a&lt;&lt;");
  EXPECT_EQ(left_out, 1u);
  EXPECT_EQ(tools::report::escaped("a<<b", 8, left_out), "a&lt;");
  EXPECT_EQ(left_out, 2u);
}

TEST(Html, CutTextsSayHowMuchIsMissing) {
  Html html;
  html << "<p>" << shown("abcdef", 4) << "</p>" << shown("abcd", 4);
  EXPECT_EQ(html.cutTexts(), 1u);
  EXPECT_EQ(std::move(html).take(), "<p>abcd… (2 bytes more)</p>abcd");
}

TEST(Html, LinesShareOneLimit) {
  Html html;
  html.lines("ab\n<\ncdef\ng", 8);
  EXPECT_EQ(std::move(html).take(), "ab\n&lt;\ncd… (4 bytes more)");
}

TEST(Html, OmissionsAreSaidAndKept) {
  Html html;
  html.leaveOut("More <b>: 7.");
  ASSERT_EQ(html.omissions().size(), 1u);
  EXPECT_EQ(html.omissions().front(), "More <b>: 7.");
  EXPECT_EQ(std::move(html).take(), "<p class=\"note\">More &lt;b&gt;: 7.</p>\n");
}

TEST(Html, LongNumbersAreGrouped) {
  EXPECT_EQ(tools::report::grouped(999), "999");
  EXPECT_EQ(tools::report::grouped(1000), "1\u202F000");
  EXPECT_EQ(tools::report::grouped(1'234'567), "1\u202F234\u202F567");
  EXPECT_EQ(tools::report::counted(1, "message"), "1 message");
  EXPECT_EQ(tools::report::counted(0, "message"), "0 messages");
}

TEST(Html, AnchorsHaveOnlySafeCharacters) {
  using tools::report::anchorOf;
  EXPECT_EQ(anchorOf("site-A1"), "site-A1");
  EXPECT_EQ(anchorOf("source.id \"_ä"), "source_2eid_20_22_5f_c3_a4");
  EXPECT_EQ(anchorOf(std::uint64_t{255}), "00000000000000ff");
  EXPECT_EQ(anchorOf(std::string(41, 'a')).size(), std::string("long-").size() + 16);
  EXPECT_NE(anchorOf(std::string(41, 'a')), anchorOf(std::string(42, 'a')));
}

} // namespace com::velanto::connectivity::test

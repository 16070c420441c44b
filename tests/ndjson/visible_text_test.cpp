#include "ndjson/visible_text.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>

#include "ndjson/json_reader.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity {

TEST(VisibleText, ControlsBecomeEscapes) {
  struct row_t {
    std::string text;
    const char* shown;
  };
  const row_t rows[] = {
      {"plain ä € 😀", "plain ä € 😀"},
      {"\x1b[2J\r\n\t", "\\u001b[2J\\u000d\\u000a\\u0009"},
      {std::string(1, '\0') + "\x7f", "\\u0000\\u007f"},
      {"\xC2\x9B\xC2\x85\xC2\xA0", "\\u009b\\u0085\xC2\xA0"},
      {"\u061C\u200E\u202E\u2066\u2028\uFEFF", "\\u061c\\u200e\\u202e\\u2066\\u2028\\ufeff"},
      {"\xff\xC2", "\\xff\\xc2"}};
  for (const row_t& row : rows) {
    EXPECT_EQ(visible(row.text), row.shown);
    EXPECT_EQ(visible(visible(row.text)), row.shown);
  }
  EXPECT_EQ(visibleLines("a\x1b\nb\n"), "a\\u001b\nb\n");
}

TEST(VisibleText, VisibleJsonReadsAsTheSameValue) {
  const std::string json = "\"a\\u001bb\x7f\xC2\x9B\u202E\"";
  JsonReader reader;
  EXPECT_NE(visible(json), json);
  EXPECT_EQ(reader.parseValue(visible(json)), reader.parseValue(json));
}

TEST(VisibleText, StreamHandsOnWholeLines) {
  std::stringbuf out;
  {
    VisibleLines lines(out);
    std::ostream stream(&lines);
    stream << "one" << '\x1b';
    EXPECT_EQ(out.str(), "");
    stream << "\ntwo \xE2\x82";
    EXPECT_EQ(out.str(), "one\\u001b\n");
    stream << "\xAC";
  }
  EXPECT_EQ(out.str(), "one\\u001b\ntwo €");
}

} // namespace com::velanto::connectivity

#include "ndjson/json_text.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace com::velanto::connectivity::test {

TEST(JsonText, StringsAreEscaped) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"", R"("")"},
      {"a\"b\\c", R"("a\"b\\c")"},
      {"a\nb\x1f", R"("a\nb\u001f")"},
      {"é😀", R"("é😀")"},
      {std::string("\0", 1), R"("\u0000")"}};
  for (const auto& [text, json] : rows) {
    std::string out;
    appendJsonText(out, text);
    EXPECT_EQ(out, json);
  }
}

TEST(JsonText, BytesThatAreNotUtf8AreReplaced) {
  std::string out;
  appendJsonText(out,
                 "a\xff"
                 "b\xc3");
  EXPECT_EQ(out,
            "\"a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD\"");
}

TEST(JsonText, FirstInvalidByteIsFound) {
  const std::vector<std::pair<std::string, std::size_t>> rows = {
      {"aé€😀", std::string::npos},
      {"a\xff", 1},
      {"\x80", 0},
      {"é\xc3", 2},
      {"\xed\xa0\x80", 0},     // a surrogate
      {"\xc0\xaf", 0},         // longer than necessary
      {"\xe0\x80\xaf", 0},     // the same with three bytes
      {"\xf4\x90\x80\x80", 0}, // beyond U+10FFFF
      {"ab\xe2\x82", 2}};
  for (const auto& [text, place] : rows) EXPECT_EQ(findInvalidUtf8(text), place);
}

} // namespace com::velanto::connectivity::test

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

} // namespace com::velanto::connectivity::test

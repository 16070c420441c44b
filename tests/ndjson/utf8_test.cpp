#include "ndjson/utf8.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace com::velanto::connectivity::test {

TEST(Utf8, FirstInvalidByteIsFound) {
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

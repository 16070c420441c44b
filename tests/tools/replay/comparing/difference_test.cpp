#include "tools/replay/comparing/difference.hpp"

#include <gtest/gtest.h>

#include <string>

#include "ndjson/json_reader.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class DifferenceTest : public HostFixture {
 protected:
  std::string shown(const char* before, const char* after) {
    std::string text;
    for (const auto& difference :
         tools::differencesOf(reader_.parseValue(before), reader_.parseValue(after))) {
      text += tools::unified(difference);
    }
    return text;
  }

  JsonReader reader_;
};

} // namespace

TEST_F(DifferenceTest, EqualValuesHaveNone) {
  EXPECT_EQ(shown(R"({"a":[1,{"b":2}],"c":"x"})", R"({"c":"x","a":[1,{"b":2}]})"), "");
}

TEST_F(DifferenceTest, PathsLeadToTheField) {
  EXPECT_EQ(shown(R"({"a":[1,{"b c":2}]})", R"({"a":[1,{"b c":3}]})"),
            "@ a[1].\"b c\"\n- 2\n+ 3\n");
  EXPECT_EQ(shown(R"({"":1})", R"({"":2})"), "@ \"\"\n- 1\n+ 2\n");
  EXPECT_EQ(shown("1", "1.0"), "@ \n- 1\n+ 1.0\n");
}

TEST_F(DifferenceTest, PathsEnterThirtyLevels) {
  const auto lists = [](int levels, const char* inner) {
    return std::string(static_cast<std::size_t>(levels), '[') + inner +
           std::string(static_cast<std::size_t>(levels), ']');
  };
  std::string path;
  for (int i = 0; i < 30; ++i) path += "[0]";
  EXPECT_EQ(shown(lists(30, "1").c_str(), lists(30, "2").c_str()),
            "@ …" + path.substr(14) + "\n- 1\n+ 2\n");
  EXPECT_EQ(
      shown(lists(31, "1").c_str(), lists(31, "2").c_str()),
      "@ …" + path.substr(14) + "\n  too deep for paths: the value as a whole\n- [1]\n+ [2]\n");
}

TEST_F(DifferenceTest, FieldsOfOneSideAppearWhole) {
  EXPECT_EQ(shown(R"({"a":{"b":1}})", "{}"), "@ a\n- {\"b\":1}\n");
  EXPECT_EQ(shown("[1]", "[1,2]"), "@ [1]\n+ 2\n");
  EXPECT_EQ(shown("null", "[]"), "@ \n- null\n+ []\n");
}

TEST_F(DifferenceTest, LongValuesAreFoldedAndCut) {
  const std::string text = tools::unified({"a", std::string(100, 'x'), {}});
  EXPECT_EQ(text, "@ a\n- " + std::string(77, 'x') + "\n  " + std::string(23, 'x') + "\n");
  const std::string cut =
      tools::unified({"a", std::string(1000, 'x'), std::string(500, 'x') + "y"});
  EXPECT_EQ(cut, "@ a\n- …" + std::string(76, 'x') + "\n  " + std::string(77, 'x') + "\n  " +
                     std::string(77, 'x') + "\n  " + std::string(76, 'x') + "…\n+ …" +
                     std::string(24, 'x') + "y\n");
}

} // namespace com::velanto::connectivity::test

#include "tools/explain/mending.hpp"

#include "ndjson/json_reader.hpp"
#include "ndjson/json_writer.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class MendingTest : public HostFixture {
 protected:
  std::string mended(const std::string& json) {
    std::string text;
    for (const data_t& value : tools::mendedValues(reader_.parseValue(json))) {
      if (!text.empty()) text += ' ';
      text += toJson(value);
    }
    return text;
  }

  JsonReader reader_;
};

} // namespace

TEST_F(MendingTest, StringsBecomeOtherKindsAndOtherLetters) {
  EXPECT_EQ(mended("\"Warning\""), R"("WARNING" "warning" {})");
  EXPECT_EQ(mended("\" a\""), R"("a" "A" {})");
  EXPECT_EQ(mended("\"15\""), "15 15.0 {}");
  EXPECT_EQ(mended("\"1.5\""), "1.5 {}");
}

TEST_F(MendingTest, NumbersBecomeStrings) {
  EXPECT_EQ(mended("15"), R"("15" "x" 1 {})");
  EXPECT_EQ(mended("15.0"), R"(15 "15.0")");
  EXPECT_EQ(mended("1e300"), R"("1e+300")"); // more than an integer holds
}

TEST_F(MendingTest, TheOthersBecomeAnything) {
  EXPECT_EQ(mended("true"), R"("true" "x" 1 {})");
  EXPECT_EQ(mended("null"), R"("x" 1 {})");
  EXPECT_EQ(mended("[1]"), R"("x" 1 {})");
}

TEST(QuotedNamesTest, AreFoundOnceEach) {
  EXPECT_EQ(tools::quotedNames("<a> key 'text' of 'text' and 'x'"),
            (std::vector<std::string>{"text", "x"}));
  EXPECT_EQ(tools::quotedNames("it's '' and 'two words"), std::vector<std::string>{});
}

TEST_F(MendingTest, EachValueIsALeafOnce) {
  const tools::Trace trace(Message(mapOf("a", text("1"), "b", text("1"), "c", whole(1))));
  EXPECT_EQ(tools::differentLeaves(trace).size(), 2u);
}

} // namespace com::velanto::connectivity::test

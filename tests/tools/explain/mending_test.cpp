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
    for (const tools::mended_t& mended : tools::mendedValues(reader_.parseValue(json))) {
      if (!text.empty()) text += ' ';
      text += toJson(mended.value);
    }
    return text;
  }
  // The ones that tell the defect, with it.
  std::string defects(const std::string& json) {
    std::string text;
    for (const tools::mended_t& mended : tools::mendedValues(reader_.parseValue(json))) {
      if (mended.defect.empty()) continue;
      text += (text.empty() ? "" : ", ") + mended.defect + ": " + mended.value.get<const char*>();
    }
    return text;
  }

  JsonReader reader_;
};

} // namespace

TEST_F(MendingTest, StringsBecomeOtherKindsAndOtherLetters) {
  EXPECT_EQ(mended("\"Warning\""), R"("WARNING" "warning" {} "2000-01-01T00:00:00Z")");
  EXPECT_EQ(mended("\" a\""), R"("a" "A" {} "2000-01-01T00:00:00Z")");
  EXPECT_EQ(mended("\"15\""), R"(15 15.0 {} "2000-01-01T00:00:00Z")");
  EXPECT_EQ(mended("\"1.5\""), R"(1.5 {} "2000-01-01T00:00:00Z")");
}

TEST_F(MendingTest, NumbersBecomeStrings) {
  EXPECT_EQ(mended("15"), R"("15" "x" 1 {} "2000-01-01T00:00:00Z")");
  EXPECT_EQ(mended("15.0"), R"(15 "15.0")");
  EXPECT_EQ(mended("1e300"), R"("1e+300")"); // more than an integer holds
}

TEST_F(MendingTest, TheOthersBecomeAnything) {
  EXPECT_EQ(mended("true"), R"("true" "x" 1 {} "2000-01-01T00:00:00Z")");
  EXPECT_EQ(mended("null"), R"("x" 1 {} "2000-01-01T00:00:00Z")");
  EXPECT_EQ(mended("[1]"), R"("x" 1 {} "2000-01-01T00:00:00Z")");
}

TEST_F(MendingTest, DefectsOfStringsHaveNames) {
  struct row_t {
    const char* text;
    const char* defects;
  };
  const row_t rows[] = {
      {"Warning", "is not in capitals: WARNING, is not in small letters: warning"},
      {" 1", "has blanks around it: 1"},
      {"2024-05-14T06:55:12", "has no zone: 2024-05-14T06:55:12Z"},
      {"2024-05-14", "has no time of day and no zone: 2024-05-14T00:00:00Z"},
      {"2024-05-14 06:55", "has a blank for 'T' and no seconds and no zone: 2024-05-14T06:55:00Z"},
      {"2024-05-14 06:55:12.5+02:00", "has a blank for 'T': 2024-05-14T06:55:12.5+02:00"},
      {"2024-05-14T06:55:12-02", "has a zone without minutes: 2024-05-14T06:55:12-02:00"},
      {"2024-05-14T06:55+0200", "has no seconds: 2024-05-14T06:55:00+0200"}};
  for (const row_t& row : rows) {
    const std::string found = defects("\"" + std::string(row.text) + "\"");
    EXPECT_TRUE(found.starts_with(row.defects)) << found; // small letters may come after
  }
  EXPECT_EQ(defects("\"2024-05-14T06:55:12.5Z\""),
            "is not in small letters: 2024-05-14t06:55:12.5z");
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

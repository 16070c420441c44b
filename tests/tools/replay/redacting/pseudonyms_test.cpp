#include "tools/replay/redacting/pseudonyms.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/pattern.hpp"
#include "tests/support/values.hpp"
#include "tests/tools/temporary_folder.hpp"
#include "tools/options/exit_status.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::Pseudonyms;

class PseudonymsTest : public ::testing::Test {
 protected:
  const TemporaryFolder folder_;
  const std::string key_ = folder_.write("key", "no more than sixteen bytes");
  const Pseudonyms pseudonyms_{key_};
};

} // namespace

TEST_F(PseudonymsTest, TextKeepsTheFormThatDecides) {
  struct row_t {
    const char* text;
    const char* form;
  };
  constexpr const char* WORD = "[a-hjkmp-t][a-hjkmnp-wyz0-9]{15}";
  for (const row_t& row : {row_t{"", ""},
                           {"MAJOR", "MAJOR"},
                           {"PENDING", "PENDING"},
                           {"major", WORD},
                           {"north quay", WORD},
                           {"a", WORD},
                           {"0x10", WORD},
                           {"x-ray 12", WORD},
                           {"4711", "[1-9][0-9]{14}"},
                           {"-12.5", "-[1-9][0-9]{14}"},
                           {"1e400", "[1-9][0-9]{14}"},
                           {"7th floor", "[1-9][a-hjkmnp-wyz0-9]{15}"},
                           {"nano", "[1-9][a-hjkmnp-wyz0-9]{15}"},
                           {"twenty characters...", "[a-hjkmp-t][a-hjkmnp-wyz0-9]{19}"}}) {
    EXPECT_TRUE(Pattern(row.form).isAllOf(pseudonyms_.ofText(row.text)))
        << row.text << ": " << pseudonyms_.ofText(row.text);
  }
  EXPECT_EQ(pseudonyms_.ofText(std::string(1000, 'a')).size(), 64u);
}

TEST_F(PseudonymsTest, EqualTextsAndNumbersStayEqual) {
  const Pseudonyms again(key_);
  EXPECT_EQ(pseudonyms_.ofText("north quay"), again.ofText("north quay"));
  EXPECT_NE(pseudonyms_.ofText("north quay"), pseudonyms_.ofText("north quai"));
  EXPECT_EQ(pseudonyms_.ofText("4711"), pseudonyms_.ofNumber("4711"));
  EXPECT_EQ(pseudonyms_.ofText("2.5") + ".0", pseudonyms_.ofNumber("2.5"));
}

TEST_F(PseudonymsTest, OtherKeysGiveOtherTexts) {
  const Pseudonyms other(folder_.write("other", "no more than sixteen byteS"));
  const Pseudonyms random({});
  EXPECT_NE(pseudonyms_.ofText("a"), other.ofText("a"));
  EXPECT_NE(pseudonyms_.ofText("a"), random.ofText("a"));
  EXPECT_NE(Pseudonyms({}).ofText("a"), random.ofText("a"));
}

TEST_F(PseudonymsTest, PathKeepsTheWordOfItsKind) {
  const std::string tenant = pseudonyms_.ofText("t4100");
  const std::string id = pseudonyms_.ofText("7");
  EXPECT_EQ(pseudonyms_.ofPath("t4100//alarms/7"), tenant + "//alarms/" + id);
  EXPECT_EQ(pseudonyms_.ofPath("t4100/7/events"), tenant + "/" + id + "/events");
  EXPECT_EQ(pseudonyms_.ofPath("t4100/7/eventsNorth"),
            tenant + "/" + id + "/events" + pseudonyms_.ofText("North"));
  EXPECT_EQ(pseudonyms_.ofPath("7/7/inventory"),
            id + "/" + id + "/" + pseudonyms_.ofText("inventory"));
  EXPECT_EQ(pseudonyms_.ofPath("7"), id);
}

TEST_F(PseudonymsTest, TimestampsMoveByTheSameDays) {
  const std::int64_t noon = 1'715'688'000'000'000'000; // 2024-05-14T12:00:00Z
  const std::int64_t days = (noon - pseudonyms_.ofTime(noon)) / 86'400 / 1'000'000'000;
  EXPECT_GE(days, 1);
  EXPECT_LE(days, 3650);
  const Pattern date("(....-..-..)T12:00:00\\.5\\+02:00");
  const std::string text = *pseudonyms_.ofTimestamp("2024-05-14T12:00:00.5+02:00");
  ASSERT_TRUE(date.isAllOf(text)) << text;
  const std::string shown = date.allIn(text).at(0).at(1);
  EXPECT_EQ(pseudonyms_.ofTimestamp("2024-05-14T23:59:60Z"), shown + "T23:59:60Z");
  EXPECT_EQ(pseudonyms_.ofTimestamp("2024-02-31T00:00:00Z"),
            pseudonyms_.ofTimestamp("2024-03-02T00:00:00Z"));
}

TEST_F(PseudonymsTest, OtherTextsAreNoTimestamps) {
  for (const char* const text : {"", "2024-05-14", "2024-05-14 12:00:00Z", "2024-13-14T12:00:00Z",
                                 "2024-05-00T12:00:00Z", "2024-05-14T12:00:00Z by Ann",
                                 "2024-05-14T12:00:00+02:00+02:00+02:00", "0000-01-01T00:00:00Z"}) {
    EXPECT_EQ(pseudonyms_.ofTimestamp(text), std::nullopt) << text;
  }
}

TEST_F(PseudonymsTest, BytesStayBytesOfTheirKind) {
  EXPECT_TRUE(Pattern("[a-z0-9]{16}").isAllOf(pseudonyms_.ofBytes("AAEC", true)));
  EXPECT_TRUE(Pattern("////[a-z0-9]{16}").isAllOf(pseudonyms_.ofBytes("/w==", false)));
  EXPECT_EQ(pseudonyms_.ofBytes("", true), "");
  EXPECT_TRUE(Pattern("[0-9a-f]{16}").isAllOf(pseudonyms_.ofBits("00000000000000ff")));
}

TEST_F(PseudonymsTest, UnusableKeysAreNamed) {
  const std::string brief = folder_.write("brief", "fifteen bytes..");
  EXPECT_EQ(errorOf([&] { Pseudonyms{brief}; }), brief + ": a key has at least 16 bytes");
  const std::string missing = folder_.path("missing");
  EXPECT_EQ(errorOf([&] { Pseudonyms{missing}; }), missing + ": No such file or directory");
  const std::string folder = folder_.path("");
  EXPECT_EQ(errorOf([&] { Pseudonyms{folder}; }), folder + ": Is a directory");
}

} // namespace com::velanto::connectivity::test

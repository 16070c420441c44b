#include "tools/replay/redacting/line_redactor.hpp"

#include <gtest/gtest.h>

#include "tests/support/values.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::LineRedactor;
using tools::Pseudonyms;
using tools::redacted_fields_t;
using tools::redactedFields;

class LineRedactorTest : public ::testing::Test {
 protected:
  std::string redacted(const std::string& fields, std::string_view line) const {
    const redacted_fields_t read = redactedFields({fields});
    return LineRedactor(read, pseudonyms_).redacted(line);
  }
  // In quotes.
  std::string standIn(std::string_view text) const {
    return "\"" + pseudonyms_.ofText(text) + "\"";
  }

  const TemporaryFolder folder_;
  const Pseudonyms pseudonyms_{folder_.write("key", "no more than sixteen bytes")};
};

} // namespace

TEST_F(LineRedactorTest, OtherBytesStayAsTheyAre) {
  constexpr std::string_view LINE =
      " {\t\"payload\" : {\"text\":\"caf\\u00e9\", \"b\" : [ 1.50e1,null , {\"text\":\"\\\"}\"}] } "
      ", "
      "\"metadata\":{ } } \t";
  std::string expected(LINE);
  expected.replace(expected.find("\"caf\\u00e9\""), 11, standIn("caf\xC3\xA9"));
  EXPECT_EQ(redacted("text", LINE), expected);
  EXPECT_EQ(redacted("textual,metadata.text", LINE), LINE);
}

TEST_F(LineRedactorTest, NamedFieldCoversAllThatIsInIt) {
  EXPECT_EQ(
      redacted("source", R"({"payload":{"source":{"id":"9","n":[12,-2.5,true,null]},"id":"9"}})"),
      R"({"payload":{"source":{"id":)" + standIn("9") + R"(,"n":[)" + pseudonyms_.ofNumber("12") +
          "," + pseudonyms_.ofNumber("-2.5") + R"(,true,null]},"id":"9"}})");
  EXPECT_EQ(redacted("list.name", R"({"payload":{"list":[{"name":"a"},{"name":"b","id":"a"}]}})"),
            R"({"payload":{"list":[{"name":)" + standIn("a") + R"(},{"name":)" + standIn("b") +
                R"(,"id":"a"}]}})");
  EXPECT_EQ(redacted(R"(metadata."a,b")", R"({"metadata":{"a,b":"x","a":"x"},"payload":"x"})"),
            R"({"metadata":{"a,b":)" + standIn("x") + R"(,"a":"x"},"payload":"x"})");
}

TEST_F(LineRedactorTest, AllTextsAreTextsAlone) {
  EXPECT_EQ(redacted("all-texts", R"({"metadata":{"k":"t"},"payload":[1,2.5,"t",{"t":"MAJOR"}]})"),
            R"({"metadata":{"k":)" + standIn("t") + R"(},"payload":[1,2.5,)" + standIn("t") +
                R"(,{"t":"MAJOR"}]})");
}

TEST_F(LineRedactorTest, OnlyThePathOfTheMetadataIsAPath) {
  EXPECT_EQ(
      redacted("all-texts",
               R"({"metadata":{"pulsarPath":"a/b/alarms"},"payload":{"pulsarPath":"a/b/alarms"}})"),
      R"({"metadata":{"pulsarPath":")" + pseudonyms_.ofPath("a/b/alarms") +
          R"("},"payload":{"pulsarPath":)" + standIn("a/b/alarms") + "}}");
}

TEST_F(LineRedactorTest, TimestampsMoveOnlyWhenNamed) {
  const std::string line = R"({"payload":{"time":"2024-05-14T12:00:00Z"}})";
  const std::string moved =
      R"({"payload":{"time":")" + *pseudonyms_.ofTimestamp("2024-05-14T12:00:00Z") + R"("}})";
  EXPECT_EQ(redacted("all-texts", line), line);
  EXPECT_EQ(redacted("all-times", line), moved);
  EXPECT_EQ(redacted("time", line), moved);
}

TEST_F(LineRedactorTest, NotationOfRecordedLinesIsKept) {
  constexpr std::string_view START =
      R"({"recorded":{"time":5,"number":1,"direction":"host"},"metadata":{},"payload":)";
  const std::string bytes = pseudonyms_.ofBytes("/w==", false);
  struct row_t {
    std::string value;
    std::string expected; // for all-texts
  };
  for (const row_t& row :
       {row_t{R"({"$":["decimal","00000000000000ff"]})", R"({"$":["decimal","00000000000000ff"]})"},
        {R"({"$":["buffer","AAEC"]})",
         R"({"$":["buffer",")" + pseudonyms_.ofBytes("AAEC", true) + R"("]})"},
        {R"({"$":["custom"]})", R"({"$":["custom"]})"},
        {R"({"$":["borrowed","a"]})", R"({"$":["borrowed",)" + standIn("a") + "]}"},
        {R"({"$":["string",null]})", R"({"$":["string",null]})"},
        {R"({"$":["bytes","/w=="]})", R"({"$":["bytes",")" + bytes + R"("]})"},
        {R"({"$":["borrowed-bytes","/w=="]})", R"({"$":["borrowed-bytes",")" + bytes + R"("]})"},
        {R"({"$":["double","7ff8000000000000"]})", R"({"$":["double","7ff8000000000000"]})"},
        {R"({"$":["tag",11,"00000000000000ff"]})", R"({"$":["tag",11,"00000000000000ff"]})"},
        {R"({"$":["map",[["$","a"],[7,{"b":"c"}],[["k"],[]]]]})",
         R"({"$":["map",[["$",)" + standIn("a") + R"(],[7,{"b":)" + standIn("c") +
             R"(}],[["k"],[]]]]})"}}) {
    const std::string line =
        std::string(START) + R"([)" + row.value + R"(,{"k":)" + row.value + "}]}";
    EXPECT_EQ(redacted("all-texts", line),
              std::string(START) + "[" + row.expected + R"(,{"k":)" + row.expected + "}]}");
    EXPECT_EQ(redacted("other", line), line);
  }
}

TEST_F(LineRedactorTest, NamedFieldsAreFoundInTheNotation) {
  constexpr std::string_view START = R"({"recorded":{"number":1},"payload":)";
  EXPECT_EQ(
      redacted("a.b",
               std::string(START) +
                   R"({"$":["map",[[{"$":["borrowed","a"]},{"b":"x","c":"x"}],["$","x"]]]}})"),
      std::string(START) + R"({"$":["map",[[{"$":["borrowed","a"]},{"b":)" + standIn("x") +
          R"(,"c":"x"}],["$","x"]]]}})");
  EXPECT_EQ(redacted("a", std::string(START) + R"({"a":{"$":["decimal","00000000000000ff"]}}})"),
            std::string(START) + R"({"a":{"$":["decimal",")" +
                pseudonyms_.ofBits("00000000000000ff") + R"("]}}})");
}

TEST_F(LineRedactorTest, DollarOfHandWrittenLinesIsAName) {
  EXPECT_EQ(redacted("all-texts", R"({"payload":{"$":["borrowed","a"]}})"),
            R"({"payload":{"$":[)" + standIn("borrowed") + "," + standIn("a") + "]}}");
}

TEST_F(LineRedactorTest, HeadNamesTheFields) {
  constexpr std::string_view HEAD =
      R"({"recording":{"head":{"format":1,"chain":"a","configuration":{"b":"c"}}}})";
  std::string expected(HEAD);
  expected.insert(expected.size() - 3, R"(,"redacted":["text","metadata.\"a b\""])");
  EXPECT_EQ(redacted(R"(text,metadata."a b")", HEAD), expected);
  std::string twice = expected;
  twice.insert(twice.find(']'), R"(,"id")");
  EXPECT_EQ(redacted("id", expected), twice);
}

TEST_F(LineRedactorTest, TimesOfTheRecordingMoveWithAllTimes) {
  const std::string before = "1715659331482000000";
  const std::string after = std::to_string(pseudonyms_.ofTime(std::stoll(before)));
  for (const auto& [begin, end] :
       {std::pair<std::string, std::string>(R"({"recorded":{"time":)", R"(,"number":18}})"),
        {R"({"recording":{"foot":{"ended":)", R"(,"seen":24}}})"},
        {R"({"recording":{"head":{"started":)", R"(,"format":1}}})"}}) {
    const auto at = [&, first = begin, last = end](const std::string& time) {
      return std::string(first).append(time).append(last);
    };
    EXPECT_EQ(redacted("all-times", at(before)).substr(begin.size(), after.size()), after);
    EXPECT_EQ(redacted("all-texts", at(before)).substr(begin.size(), before.size()), before);
  }
}

TEST_F(LineRedactorTest, DeepNestingSparesTheStack) {
  const std::string begin = R"({"payload":)" + std::string(1024, '[');
  const std::string end = std::string(1024, ']') + "}";
  EXPECT_EQ(redacted("all-texts", begin + R"("a")" + end), begin + standIn("a") + end);
}

TEST_F(LineRedactorTest, UnreadableFieldsAreNamed) {
  EXPECT_EQ(errorOf([] { static_cast<void>(redactedFields({"text,list[2]"})); }),
            "--redact: path 'list[2]': a list has no index here, all its elements count");
  EXPECT_EQ(errorOf([] { static_cast<void>(redactedFields({"text,"})); }),
            "--redact: path '': expected a name at byte 1, or one in quotes");
}

} // namespace com::velanto::connectivity::test

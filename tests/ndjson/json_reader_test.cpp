#include "ndjson/json_reader.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "ndjson/json_writer.hpp"
#include "tests/support/failing_allocations.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/small_stack.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

constexpr std::int64_t SMALLEST = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t LARGEST = std::numeric_limits<std::int64_t>::max();

struct value_row_t {
  const char* json;
  data_t value;
};

struct error_row_t {
  std::string json;
  const char* reason;
};

std::string times(std::size_t count, const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

class JsonReaderTest : public HostFixture {
 protected:
  void expectValues(const std::vector<value_row_t>& rows) {
    for (const value_row_t& row : rows)
      EXPECT_EQ(reader_.parseValue(row.json), row.value) << row.json;
  }
  // The reason of a refusal, as a value or as a message.
  std::string valueError(const std::string& json) {
    return errorOf([&] { static_cast<void>(reader_.parseValue(json)); });
  }
  std::string messageError(const std::string& line) {
    return errorOf([&] { static_cast<void>(reader_.parseMessage(line)); });
  }
  void expectErrors(const std::vector<error_row_t>& rows) {
    for (const error_row_t& row : rows) EXPECT_EQ(valueError(row.json), row.reason) << row.json;
  }

  JsonReader reader_;
};

} // namespace

TEST_F(JsonReaderTest, ScalarsKeepTheirKind) {
  expectValues({{"null", data_t()},
                {"true", truth(true)},
                {"false", truth(false)},
                {R"("")", text("")},
                {R"("caf\u00e9 \ud83d\ude00 é")", text("café 😀 é")},
                {R"("\"\\\/\b\f\n\r\t")", text("\"\\/\b\f\n\r\t")},
                {" \t5 \r\n", whole(5)}});
}

TEST_F(JsonReaderTest, WholeNumbersWithin64BitsAreIntegers) {
  expectValues({{"0", whole(0)},
                {"-7", whole(-7)},
                {"-0", whole(0)},
                {"9223372036854775807", whole(LARGEST)},
                {"-9223372036854775808", whole(SMALLEST)}});
}

TEST_F(JsonReaderTest, AllOtherNumbersAreDoubles) {
  expectValues({{"5.0", real(5)},
                {"1e2", real(100)},
                {"1E+2", real(100)},
                {"-0.0", real(0)},
                {"0.1", real(0.1)},
                {"9223372036854775808.0", real(9223372036854775808.0)},
                {"123456789012345678901234567890e0", real(123456789012345678901234567890.0)},
                {"1.7976931348623157e308", real(std::numeric_limits<double>::max())},
                {"5e-324", real(std::numeric_limits<double>::denorm_min())},
                {"1e-400", real(0)}});
}

TEST_F(JsonReaderTest, ListsAndMapsNest) {
  expectValues({{"[]", listOf()},
                {"{}", mapOf()},
                {"[1, [true, null], {}]", listOf(whole(1), listOf(truth(true), data_t()), mapOf())},
                {R"({"a": {"b": [1.5]}, "": "x"})",
                 mapOf("a", mapOf("b", listOf(real(1.5))), "", text("x"))}});
}

TEST_F(JsonReaderTest, IntegersBeyond64BitsAreRefused) {
  for (const char* json : {"9223372036854775808", "-9223372036854775809", "18446744073709551615",
                           "18446744073709551616", "123456789012345678901234567890"}) {
    EXPECT_EQ(valueError(json), "integer beyond 64 bits") << json;
  }
}

TEST_F(JsonReaderTest, RepeatedKeysAreRefused) {
  expectErrors({{R"({"a": 1, "b": 2, "a": [3]})", "repeated key \"a\""},
                {R"({"a": 1, "\u0061": 2})", "repeated key \"a\""},
                {R"([{"": 1, "": 1}])", "repeated key \"\""}});
}

TEST_F(JsonReaderTest, FaultsAreLocated) {
  const std::vector<std::pair<std::string, std::size_t>> rows = {
      {R"({"payload": {"a": [1, 9223372036854775808]}})", 23},
      {R"({"payload": {"a": 1, "é": 2, "a": 3}})", 31},
      {R"({"payload": 1, "payload": 2})", 16},
      {R"({"payload": 1, "other": 2})", 16},
      {R"({"payload": [1.5, 01]})", 19},
      {"{\"payload\": \"ab\xff\"}", 16},
      {"{\"payload\": \"a\tb\"}", 15},
      {R"({"payload": "é)", 13},
      {R"({"payload": ["a\u0000"]})", 14},
      {R"({"payload": {"a": "\x"}})", 19},
      {R"({"payload": {"\ud83d": 1}})", 14},
      {"\xEF\xBB\xBF{\"payload\": 1, \"other\": 2}", 19},
      {"\xEF\xBB\xBF{\"payload\": \"\x80\"}", 17},
      {R"({"payload": [1}]})", 15},
      {R"({"payload": 1} x)", 16},
      {R"({"payload": "}{\"", "b": [1, 2)", 31},
      {"x", 1}};
  for (const auto& [line, column] : rows) {
    try {
      static_cast<void>(reader_.parseMessage(line));
      ADD_FAILURE() << line;
    } catch (const MalformedJson& e) {
      EXPECT_EQ(e.column(), column) << line << ": " << e.what();
    }
  }
  try {
    static_cast<void>(reader_.parseValue("[1, 1e999]"));
    ADD_FAILURE();
  } catch (const MalformedJson& e) {
    EXPECT_EQ(e.column(), 5u); // of the value, with or without an array of the reader around it
  }
}

TEST_F(JsonReaderTest, StructuralFaultsAreLocatedNearby) {
  const std::vector<std::string> lines = {R"({"payload": [1, 2})", R"({"payload": {"a" 1}})",
                                          R"({"payload": 1} {"payload": 2})", R"({"payload": tru})",
                                          R"({"payload": "\x"})"};
  for (const std::string& line : lines) {
    try {
      static_cast<void>(reader_.parseMessage(line));
      ADD_FAILURE() << line;
    } catch (const MalformedJson& e) {
      EXPECT_GE(e.column(), 12u) << line;
      EXPECT_LE(e.column(), line.size() + 1) << line;
    }
  }
}

TEST_F(JsonReaderTest, KeysGrowTheTableAsAnyInsertionDoes) {
  const data_t value = reader_.parseValue(R"({"a":1,"b":2,"c":3,"d":4,"e":5,"f":6,"g":7,"h":8})");
  EXPECT_EQ(value.get<map_t>().table()->capacity, 16);
}

TEST_F(JsonReaderTest, BrokenStructureIsRefused) {
  for (const char* json :
       {"[1",        "[1,]",      "[,1]",       "[1 2]",      "[1}",
        "{\"a\":1]", "{\"a\":1",  "{\"a\":1,}", "{\"a\" 1}",  "{\"a\":}",
        "{\"a\"}",   "{a:1}",     "{1:2}",      "{\"a\"::1}", "{\"a\":1 \"b\":2}",
        "[\"a\":1]", "[[1],[2}]", "'a'",        "NaN",        "Infinity",
        "+5",        ".5",        "[1]//",      "/* */ 1",    "{",
        "["}) {
    EXPECT_EQ(valueError(json), "not well-formed JSON") << json;
  }
}

TEST_F(JsonReaderTest, BadNumbersAreRefused) {
  const std::string digits = times(400, "9");
  for (const std::string& json :
       {std::string("01"), std::string("-01"), std::string("1."), std::string("1.e5"),
        std::string("-"), std::string("--1"), std::string("1e"), std::string("1e+"),
        std::string("0x10"), std::string("12a"), std::string("1.5.5"), std::string("1true"),
        std::string("1e400"), std::string("-1e400"), digits}) {
    EXPECT_EQ(valueError(json), "bad number, or one beyond the range of doubles") << json;
  }
}

TEST_F(JsonReaderTest, MalformedValuesAreRefused) {
  const char* const escape = "bad escape in a string";
  const char* const encoding = "bytes that are not UTF-8";
  expectErrors({{R"("\x")", escape},
                {R"("\u12")", escape},
                {R"("\u12G4")", escape},
                {R"("\ud83d")", escape},       // a high surrogate alone
                {R"("\ude00")", escape},       // a low one
                {R"("\ud83d\u0041")", escape}, // a high one and no low one
                {"\"\xff\"", encoding},
                {"\"\xc3\"", encoding},
                {"\"\xed\xa0\x80\"", encoding}, // a surrogate, encoded
                {"\"\xc0\xaf\"", encoding},     // longer than necessary
                {"\"a\tb\"", "control character in a string, not escaped"},
                {std::string("\"a\0b\"", 5), "control character in a string, not escaped"},
                {"\"abc", "string without a closing quote"},
                {R"({"a": 1, "\ud83d": 2})", escape}});
}

TEST_F(JsonReaderTest, StringWithAnEmbeddedNulIsRefused) {
  expectErrors({{R"("a\u0000b")", "string with an embedded NUL"},
                {R"("\u0000")", "string with an embedded NUL"},
                {R"({"a\u0000": 1})", "string with an embedded NUL"}});
}

TEST_F(JsonReaderTest, BadLiteralsAreRefused) {
  for (const char* json : {"nul", "nulll", "nan", "tru", "truex", "fals", "[truefalse]"}) {
    EXPECT_EQ(valueError(json), "bad literal, expected true, false or null") << json;
  }
}

TEST_F(JsonReaderTest, ContentAroundTheValueIsRefused) {
  const char* const after = "content after the end of the JSON value";
  expectErrors({{"1 2", "not well-formed JSON"},
                {"1,2", after},
                {"[1] [2]", "not well-formed JSON"},
                {"1]", after},
                {"],[", after},
                {"", "no JSON value"},
                {" \t", "no JSON value"},
                {"\xEF\xBB\xBF", "no JSON value"}});
}

TEST_F(JsonReaderTest, ByteOrderMarkIsSkipped) {
  expectValues(
      {{"\xEF\xBB\xBF"
        "1",
        whole(1)}});
  EXPECT_EQ(reader_.parseMessage("\xEF\xBB\xBF{\"payload\":5}").getPayload(), whole(5));
}

TEST_F(JsonReaderTest, JsonOverSeveralLinesIsRecognised) {
  for (const char* line : {"{", "[", " {\r", "\xEF\xBB\xBF{ "}) {
    EXPECT_EQ(messageError(line), "JSON over several lines, expected each message on a line")
        << line;
  }
  EXPECT_EQ(messageError("{{"), "not well-formed JSON");
}

TEST_F(JsonReaderTest, DeepestAllowedNestingIsRead) {
  constexpr std::size_t DEEPEST = JsonReader::MAX_DEPTH;
  runOnSmallStack([&] {
    const std::string lists = times(DEEPEST, "[") + times(DEEPEST, "]");
    const std::string maps = times(DEEPEST, R"({"a":)") + "1" + times(DEEPEST, "}");
    const std::string line = R"({"metadata":)" + maps + R"(,"payload":)" + lists + "}";
    EXPECT_TRUE(toJson(reader_.parseMessage(line)) == line); // too long to show
  });
}

TEST_F(JsonReaderTest, DeeperNestingIsRefused) {
  const auto lists = [](std::size_t levels) { return times(levels, "[") + times(levels, "]"); };
  const std::string path = R"({"metadata":{"pulsarPath":"t1/sub/events/7"},"payload":)";
  runOnSmallStack([&] {
    for (const std::size_t levels : {200'001U, 2'000'000U}) {
      const std::string maps = times(levels, R"({"a":)") + "1" + times(levels, "}");
      EXPECT_EQ(messageError(R"({"metadata":)" + maps + "}"), "nested deeper than 200000 levels");
    }
    EXPECT_EQ(messageError(path + lists(200'000) + "}"), "nothing thrown");
    EXPECT_EQ(messageError(path + lists(200'001) + "}"), "nested deeper than 200000 levels");
    EXPECT_EQ(messageError(R"({"payload":)" + lists(200'001) + "}"), "nothing thrown");
    EXPECT_EQ(messageError(R"({"payload":)" + lists(200'002) + "}"),
              "nested deeper than 200001 levels");
    EXPECT_EQ(valueError(lists(200'004)), "nothing thrown");
    EXPECT_EQ(valueError(lists(200'005)), "nested deeper than 200004 levels");
  });
}

TEST_F(JsonReaderTest, MessageHasMetadataAndPayload) {
  const Message message = reader_.parseMessage(
      R"( {"metadata": {"pulsarPath": "t1/sub/events/7"}, "payload": {"id": "1", "count": 2}} )");
  EXPECT_EQ(message.getMetadataMap(), mapOf("pulsarPath", text("t1/sub/events/7")));
  EXPECT_EQ(message.getPayload(), data_t(mapOf("id", text("1"), "count", whole(2))));
}

TEST_F(JsonReaderTest, MissingMembersAreEmpty) {
  for (const char* line : {"{}", R"({"payload": null})", R"({"metadata": {}})"}) {
    const Message message = reader_.parseMessage(line);
    EXPECT_TRUE(message.getPayload().empty()) << line;
    EXPECT_TRUE(message.getMetadataMap().empty()) << line;
  }
}

TEST_F(JsonReaderTest, PayloadMayBeAnyValue) {
  EXPECT_EQ(reader_.parseMessage(R"({"payload": 5.0})").getPayload(), real(5));
  EXPECT_EQ(reader_.parseMessage(R"({"payload": [1]})").getPayload(), listOf(whole(1)));
  EXPECT_EQ(reader_.parseMessage(R"({"payload": "a"})").getPayload(), text("a"));
}

TEST_F(JsonReaderTest, RepeatedMemberIsRefused) {
  EXPECT_EQ(messageError(R"({"payload": 1, "metadata": {}, "payload": 2})"),
            "repeated key \"payload\"");
  EXPECT_EQ(messageError(R"({"dropped": 1, "dropped": 2})"), "repeated key \"dropped\"");
}

TEST_F(JsonReaderTest, RemarkIsIgnoredAndLocated) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {R"({"payload":1,"dropped":{"a":[1]}})", R"({"payload":1})"},
      {R"({"payload":1 , "dropped" : "x" } )", R"({"payload":1  } )"},
      {R"({"dropped":1,"payload":1})", R"({"payload":1})"},
      {R"({"dropped":1})", "{}"},
      {R"({"payload":1})", R"({"payload":1})"}};
  for (const auto& [line, expected] : rows) {
    const Message message = reader_.parseMessage(line);
    EXPECT_EQ(message.getPayload().empty(), expected == "{}");
    std::string without = line;
    without.erase(reader_.remark().begin, reader_.remark().size);
    EXPECT_EQ(without, expected);
  }
  EXPECT_EQ(messageError(R"({"dropped": nul})"), "bad literal, expected true, false or null");
}

TEST_F(JsonReaderTest, LineThatIsNoMessageIsRefused) {
  const std::vector<error_row_t> rows = {
      {"[]", "not a JSON object"},
      {"5", "not a JSON object"},
      {"null", "not a JSON object"},
      {R"({"metadata": null})", R"("metadata" is not an object)"},
      {R"({"metadata": []})", R"("metadata" is not an object)"},
      {R"({"other": 1})", R"(unknown member "other", expected "metadata" and "payload")"},
      {R"({"a\nb": 1})", R"(unknown member "a\nb", expected "metadata" and "payload")"},
      {R"({"payload": 1} {"payload": 2})", "content after the end of the JSON value"},
      {R"({"payload": 1}})", "content after the end of the JSON value"},
      {R"({"payload": 1},)", "not well-formed JSON"},
      {R"({"payload": 1)", "not well-formed JSON"},
      {"", "no JSON value"}};
  for (const error_row_t& row : rows) EXPECT_EQ(messageError(row.json), row.reason) << row.json;
}

TEST_F(JsonReaderTest, ReaderIsUsableAfterAnError) {
  EXPECT_THROW(static_cast<void>(reader_.parseMessage("{")), MalformedJson);
  EXPECT_EQ(valueError(R"({"a": [1, {"b": "\x"}]})"), "bad escape in a string");
  EXPECT_EQ(reader_.parseValue("[1]"), listOf(whole(1)));
}

TEST_F(JsonReaderTest, ShortLineAfterALongOneIsAlone) {
  const std::string content(100000, 'x');
  EXPECT_EQ(reader_.parseValue('"' + content + '"'), text(content.c_str()));
  EXPECT_EQ(reader_.parseValue("1"), whole(1));
}

TEST_F(JsonReaderTest, ExhaustedMemoryLeaksNothing) {
  const std::int64_t before = standin_live_blocks_total();
  const std::uint64_t allocations = failEachAllocation(
      [&] {
        static_cast<void>(reader_.parseMessage(
            R"({"metadata": {"a": "b"}, "payload": {"c": ["d", {"e": ["f"]}], "h": "g"}})"));
      },
      [&] { EXPECT_EQ(standin_live_blocks_total(), before); });
  EXPECT_GT(allocations, 8u);
}

} // namespace com::velanto::connectivity::test

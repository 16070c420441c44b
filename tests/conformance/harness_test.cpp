// The harness itself: a comparison or a format that lets a mistake pass would make every case of
// the data files worthless.
#include <gtest/gtest.h>

#include "ndjson/json_reader.hpp"
#include "tests/conformance/case.hpp"
#include "tests/conformance/comparison.hpp"
#include "tests/support/values.hpp"
#include "value/hashes.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::test {
namespace {

data_t json(const char* written) { return JsonReader().parseValue(written); }

// The difference between two values that are written as in a data file.
std::string between(const char* expected, const char* actual) {
  ValueDecoder decoder;
  return difference(decoder.decode(json(expected)), decoder.decode(json(actual)), "it");
}

std::string faultOf(const char* line) {
  return error_of([&] { (void)readCase(json(line)); });
}

TEST(HarnessComparison, EqualValuesDoNotDiffer) {
  for (const char* value : {"null",
                            "true",
                            "5",
                            "5.5",
                            "-0.0",
                            "\"x\"",
                            "[1, [2.0], null]",
                            "{}",
                            "{\"a\": {\"b\": []}}",
                            R"({"$double": "nan"})",
                            R"({"$double": "-inf"})",
                            R"({"$decimal": 7})",
                            R"({"$buffer": "x"})",
                            R"({"$custom": 7})",
                            R"({"$borrowed": "x"})",
                            R"({"$tag": 11})",
                            R"({"$null_text": 5})",
                            R"({"$null_text": 10})",
                            R"({"$null_list": true})",
                            R"({"$null_map": true})",
                            R"({"$null_buffer": true})",
                            R"({"$map": [[5, 1], [[1], 2]]})",
                            R"({"$map": [[{"$tag": 11}, 1], [{"$tag": 11}, 2]]})",
                            R"({"$ordered": [["a", 1]]})"}) {
    EXPECT_EQ(between(value, value), "") << value;
  }
}

TEST(HarnessComparison, TellsKindsAndContentsApart) {
  const struct {
    const char* expected;
    const char* actual;
    const char* told;
  } rows[] = {
      {"5", "5.0", "it: expected integer 5, is double 5.0"},
      {"5", "6", "it: expected integer 5, is integer 6"},
      {"0.0", "-0.0", "it: expected double 0.0, is double -0.0"},
      {"true", "false", "it: expected boolean true, is boolean false"},
      {"\"\"", "null", "it: expected string \"\", is nothing"},
      {"\"a\"", "\"b\"", "it: expected string \"a\", is string \"b\""},
      {"\"a\"", R"({"$borrowed": "a"})", "it: expected string \"a\", is borrowed string \"a\""},
      {"\"\"", R"({"$null_text": 5})", "it: expected string \"\", is string without a text"},
      {R"({"$decimal": 1})", R"({"$decimal": 2})",
       "it: expected decimal decimal(0x0000000000000001), is decimal decimal(0x0000000000000002)"},
      {R"({"$custom": 1})", R"({"$custom": 2})", "it: expected custom custom, is custom custom"},
      {R"({"$buffer": "a"})", R"({"$buffer": "b"})",
       "it: expected buffer buffer(1 bytes), is buffer buffer(1 bytes)"},
      {R"({"$tag": 11})", R"({"$tag": 12})",
       "it: expected Unknown unknown(11), is Unknown unknown(12)"},
      {"[1]", "[1, 2]", "it: expected 1 elements, has 2"},
      {"[1, 2]", "[1, 3]", "it[1]: expected integer 2, is integer 3"},
  };
  for (const auto& row : rows) EXPECT_EQ(between(row.expected, row.actual), row.told);
}

TEST(HarnessComparison, TellsMissingAndExtraEntries) {
  EXPECT_EQ(between(R"({"a": {"b": 1}})", R"({"a": {}})"),
            "it.\"a\".\"b\": missing, expected integer 1");
  EXPECT_EQ(between(R"({"a": {}})", R"({"a": {"b": 1}})"),
            "it.\"a\".\"b\": expected no such entry, is integer 1");
  EXPECT_EQ(between(R"({"$map": [[1, 2]]})", R"({"$map": [["1", 2]]})"),
            "it.1: missing, expected integer 2");
}

TEST(HarnessComparison, MapWithoutATableIsOneWithoutEntriesButNotTheReverse) {
  EXPECT_EQ(between("{}", R"({"$null_map": true})"), "");
  EXPECT_EQ(between(R"({"$null_map": true})", "{}"), "it: expected no table, has {}");
}

TEST(HarnessComparison, TellsAKeyThatALookupDoesNotFind) {
  map_t map(vlt_allocate_map(8));
  auto* const table = const_cast<vlt_underlying_map_table_t*>(map.table());
  const std::uint64_t home = hashes::key_hash(text("a")) % 8;
  auto& slot = reinterpret_cast<map_slot_t*>(table + 1)[(home + 4) % 8];
  slot.key = text("a");
  slot.hash = hashes::key_hash(slot.key);
  table->live = 1;
  EXPECT_EQ(difference(map, map, "it"), "it: string \"a\" is not where a lookup finds it");
  table->live = 2;
  EXPECT_EQ(difference(map, map, "it"), "it: counts other entries than it has");
  table->live = 1;
}

TEST(HarnessComparison, MessagesDifferInMetadataToo) {
  const Message expected(text("x"), map_of("a", whole(1)));
  EXPECT_EQ(difference(expected, Message(text("x"), map_of("a", whole(2))), "out 1"),
            "out 1 metadata.\"a\": expected integer 1, is integer 2");
  EXPECT_EQ(difference(expected, Message(text("y"), map_of("a", whole(1))), "out 1"),
            "out 1 payload: expected string \"x\", is string \"y\"");
}

TEST(HarnessFormat, MarkersGiveTheValuesTheyName) {
  ValueDecoder decoder;
  EXPECT_EQ(decoder.decode(json(R"({"$decimal": 7})")), decimal(7));
  EXPECT_EQ(decoder.decode(json(R"({"$borrowed": "x"})")), borrowed("x"));
  EXPECT_EQ(decoder.decode(json(R"({"$buffer": "x"})")), bytes("x"));
  EXPECT_EQ(decoder.decode(json(R"({"$tag": 11})")).type_tag(), 11U);
  EXPECT_EQ(decoder.decode(json(R"({"$null_text": 10})")).type_tag(), VLT_TAG_BORROWED_STRING);
  EXPECT_EQ(decoder.decode(json(R"({"$map": [[5, "x"]]})")), data_t(map_of(whole(5), text("x"))));
}

TEST(HarnessFormat, OrderedEntriesLieInTheirOrderAndAreAllFound) {
  ValueDecoder decoder;
  const map_t map =
      decoder.decodeMap(json(R"({"$ordered": [["c", 1], ["a", 2], ["b", 3]]})"), "it");
  std::string order;
  for (const auto& [key, value] : map) order += key.get<const char*>();
  EXPECT_EQ(order, "cab");
  EXPECT_EQ(map.table()->capacity, 3);
  for (const char* key : {"a", "b", "c"}) EXPECT_TRUE(has(map, key)) << key;
  EXPECT_FALSE(has(map, "d"));
}

TEST(HarnessFormat, MistakesInALineAreNamed) {
  const struct {
    const char* line;
    const char* fault;
  } rows[] = {
      {"5", "a case must be a map, not 5"},
      {R"({"in": [], "out": []})", "lacks \"name\""},
      {R"({"name": "a b", "in": [], "out": []})",
       "\"name\" must be ASCII letters and digits, not \"a b\""},
      {R"({"name": "a", "in": []})", "lacks \"out\""},
      {R"({"name": "a", "out": []})", "lacks \"in\""},
      {R"({"name": "a", "in": [], "out": [], "logs": []})", "unknown member \"logs\""},
      {R"({"name": "a", "in": [{"pat": "x"}], "out": []})", "unknown member \"pat\""},
      {R"({"name": "a", "in": [{"path": "x", "metadata": {}}], "out": []})",
       "\"path\" makes no sense beside metadata"},
      {R"({"name": "a", "in": [], "out": [{"event": "Event"}]})", "lacks \"channel\""},
      {R"({"name": "a", "in": [{"payload": {"$what": 1}}], "out": []})", "unknown marker $what"},
      {R"({"name": "a", "in": [{"payload": {"$tag": 11, "b": 1}}], "out": []})",
       "a marker stands alone: $tag"},
      {R"({"name": "a", "in": [{"payload": {"$map": [[1, 1], [1, 2]]}}], "out": []})",
       "repeated key 1"},
      {R"({"name": "a", "in": [], "out": [], "log": ["text"]})",
       "a log line is a level, a blank and a text"},
      {R"({"name": "a", "in": [], "out": [], "stderr": ["list"]})",
       "\"stderr\" takes map, string or integer, not list"},
      {R"({"name": "a", "in": [], "out": [], "direction": "up"})",
       "\"direction\" is host or transport"},
      {R"({"name": "a", "created": false, "in": []})",
       "\"in\" makes no sense beside a codec that is not created"},
  };
  for (const auto& row : rows) EXPECT_EQ(faultOf(row.line), row.fault) << row.line;
}

TEST(HarnessFormat, LogLinesGetTheLabelOfThePlugin) {
  const case_t read =
      readCase(json(R"({"name": "a", "in": [], "out": [], "log": ["3 a text", "-1 b"]})"));
  const std::string category = "connectivity.codec.conformance";
  EXPECT_EQ(read.log, (std::vector<log_line_t>{{category, 3, "<" + category + "> a text"},
                                               {category, -1, "<" + category + "> b"}}));
}

} // namespace
} // namespace com::velanto::connectivity::test

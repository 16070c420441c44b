// The harness itself: if its comparison or format missed mistakes, no conformance file would prove
// anything.
#include <gtest/gtest.h>

#include "ndjson/json_reader.hpp"
#include "tests/support/values.hpp"
#include "tools/check/comparison.hpp"
#include "tools/check/conformance/case.hpp"
#include "value/hashes.hpp"
#include "value/map_slot.hpp"

namespace com::velanto::connectivity::test {
namespace {

using tools::check::case_t;
using tools::check::readCase;
using tools::check::ValueDecoder;

data_t json(const char* written) { return JsonReader().parseValue(written); }

template <class Value>
std::string told(const Value& expected, const Value& actual, const char* where = "it") {
  const auto found = tools::check::findMismatch(expected, actual, where);
  return found ? found->where + ": " + found->expected + " / " + found->actual : "";
}

// The mismatch between two values that are written as in a conformance file.
std::string between(const char* expected, const char* actual) {
  ValueDecoder decoder;
  return told(decoder.decode(json(expected)), decoder.decode(json(actual)));
}

std::string faultOf(const char* line) {
  return errorOf([&] { (void)readCase(json(line)); });
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
      {"5", "5.0", "it: integer 5 / double 5.0"},
      {"5", "6", "it: integer 5 / integer 6"},
      {"0.0", "-0.0", "it: double 0.0 / double -0.0"},
      {"true", "false", "it: boolean true / boolean false"},
      {"\"\"", "null", "it: string \"\" / an empty value"},
      {"\"a\"", "\"b\"", "it: string \"a\" / string \"b\""},
      {"\"a\"", R"({"$borrowed": "a"})", "it: string \"a\" / borrowed string \"a\""},
      {"\"\"", R"({"$null_text": 5})", "it: string \"\" / string without a text"},
      {R"({"$decimal": 1})", R"({"$decimal": 2})",
       "it: decimal \"decimal(0x0000000000000001)\" / decimal \"decimal(0x0000000000000002)\""},
      {R"({"$custom": 1})", R"({"$custom": 2})", "it: custom \"custom\" / custom \"custom\""},
      {R"({"$buffer": "a"})", R"({"$buffer": "b"})",
       "it: buffer \"buffer(1 bytes)\" / buffer \"buffer(1 bytes)\""},
      {R"({"$tag": 11})", R"({"$tag": 12})",
       "it: Unknown \"unknown(11)\" / Unknown \"unknown(12)\""},
      {"[1]", "[1, 2]", "it: 1 elements / 2 elements"},
      {"[1, 2]", "[1, 3]", "it[1]: integer 2 / integer 3"},
  };
  for (const auto& row : rows) EXPECT_EQ(between(row.expected, row.actual), row.told);
}

TEST(HarnessComparison, TellsMissingAndExtraEntries) {
  EXPECT_EQ(between(R"({"a": {"b": 1}})", R"({"a": {}})"),
            "it.\"a\".\"b\": integer 1 / no such entry");
  EXPECT_EQ(between(R"({"a": {}})", R"({"a": {"b": 1}})"),
            "it.\"a\".\"b\": no such entry / integer 1");
  EXPECT_EQ(between(R"({"$map": [[1, 2]]})", R"({"$map": [["1", 2]]})"),
            "it.1: integer 2 / no such entry");
}

TEST(HarnessComparison, NullMapPassesForEmptyNotReversed) {
  EXPECT_EQ(between("{}", R"({"$null_map": true})"), "");
  EXPECT_EQ(between(R"({"$null_map": true})", "{}"), "it: no table / a table of 0");
}

TEST(HarnessComparison, TellsKeysThatLookupsMiss) {
  map_t map(vlt_allocate_map(8));
  auto* const table = const_cast<vlt_underlying_map_table_t*>(map.table());
  const std::uint64_t home = hashes::key_hash(text("a")) % 8;
  auto& slot = reinterpret_cast<map_slot_t*>(table + 1)[(home + 4) % 8];
  slot.key = text("a");
  slot.hash = hashes::key_hash(slot.key);
  table->live = 1;
  EXPECT_EQ(told(map, map), "it.\"a\": an entry that a lookup finds / an entry in another place");
  table->live = 2;
  EXPECT_EQ(told(map, map), "it, entries that the table counts: 1 / 2");
  table->live = 1;
}

TEST(HarnessComparison, MessagesDifferInMetadataToo) {
  const Message expected(text("x"), mapOf("a", whole(1)));
  EXPECT_EQ(told(expected, Message(text("x"), mapOf("a", whole(2)))),
            "it metadata.\"a\": integer 1 / integer 2");
  EXPECT_EQ(told(expected, Message(text("y"), mapOf("a", whole(1)))),
            "it payload: string \"x\" / string \"y\"");
}

TEST(HarnessFormat, MarkersGiveTheValuesTheyName) {
  ValueDecoder decoder;
  EXPECT_EQ(decoder.decode(json(R"({"$decimal": 7})")), decimal(7));
  EXPECT_EQ(decoder.decode(json(R"({"$borrowed": "x"})")), borrowed("x"));
  EXPECT_EQ(decoder.decode(json(R"({"$buffer": "x"})")), bytes("x"));
  EXPECT_EQ(decoder.decode(json(R"({"$tag": 11})")).type_tag(), 11U);
  EXPECT_EQ(decoder.decode(json(R"({"$null_text": 10})")).type_tag(), VLT_TAG_BORROWED_STRING);
  EXPECT_EQ(decoder.decode(json(R"({"$map": [[5, "x"]]})")), data_t(mapOf(whole(5), text("x"))));
}

TEST(HarnessFormat, OrderedEntriesKeepOrderAndAreFound) {
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

TEST(HarnessFormat, LogLinesGetThePluginsLabel) {
  const case_t read =
      readCase(json(R"({"name": "a", "in": [], "out": [], "log": ["3 a text", "-1 b"]})"));
  const std::string category = "connectivity.codec.chain";
  EXPECT_EQ(read.log, (tools::check::lines_t{"3 " + category + " <" + category + "> a text",
                                             "-1 " + category + " <" + category + "> b"}));
}

TEST(HarnessFormat, OnlyUnchangedMessagesPass) {
  EXPECT_TRUE(
      readCase(json(R"({"name": "a", "in": [{"payload": 1}], "out": [{"payload": 1}]})")).passes);
  EXPECT_FALSE(
      readCase(json(R"({"name": "a", "in": [{"payload": 1}], "out": [{"payload": 2}]})")).passes);
}

} // namespace
} // namespace com::velanto::connectivity::test

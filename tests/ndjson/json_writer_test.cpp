#include "ndjson/json_writer.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/small_stack.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

struct json_row_t {
  data_t value;
  const char* json;
};

class JsonWriterTest : public HostFixture {};

std::string jsonOf(const data_t& value) {
  std::string out;
  writeJson(out, value);
  return out;
}

std::string jsonOf(const Message& message) {
  std::string out;
  writeJson(out, message);
  return out;
}

void expectRows(const std::vector<json_row_t>& rows) {
  for (const json_row_t& row : rows) EXPECT_EQ(jsonOf(row.value), row.json);
}

} // namespace

TEST_F(JsonWriterTest, ScalarsAreWrittenByKind) {
  expectRows({{data_t(), "null"},
              {truth(true), "true"},
              {truth(false), "false"},
              {whole(0), "0"},
              {whole(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808"},
              {text(""), R"("")"},
              {text("a\"b\\c/\n\x01 é"), R"("a\"b\\c/\n\u0001 é")"},
              {nullText(), R"("")"}});
}

TEST_F(JsonWriterTest, BorrowedStringIsWrittenAsAString) {
  EXPECT_EQ(jsonOf(borrowed("a")), R"("a")");
  EXPECT_EQ(jsonOf(tagged(VLT_TAG_BORROWED_STRING)), R"("")");
}

TEST_F(JsonWriterTest, DoublesStayDoublesInTheirShortestForm) {
  expectRows({{real(5), "5.0"},
              {real(-0.0), "-0.0"},
              {real(0.1), "0.1"},
              {real(1e22), "1e+22"},
              {real(1e5), "1e+05"},
              {real(1715659331.482), "1715659331.482"},
              {real(9223372036854775808.0), "9223372036854775808.0"},
              {real(std::numeric_limits<double>::max()), "1.7976931348623157e+308"},
              {real(std::numeric_limits<double>::denorm_min()), "5e-324"}});
}

TEST_F(JsonWriterTest, DoublesReadBackAsTheSameBits) {
  JsonReader reader;
  for (const double content : {0.0, -0.0, 1.0 / 3, 1e-7, 123456789.0, 1e15, 1e16, 1e17, 1e300, -2.5,
                               4.9e-324, 9007199254740993.0, 18446744073709551616.0}) {
    const data_t back = reader.parseValue(jsonOf(real(content)));
    ASSERT_EQ(back.type_tag(), std::uint32_t{VLT_TAG_DOUBLE}) << content;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(back.get<double>()),
              std::bit_cast<std::uint64_t>(content))
        << content;
  }
}

TEST_F(JsonWriterTest, NumbersThatAreNotFiniteBecomeStrings) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(jsonOf(listOf(real(infinity), real(-infinity), real(std::nan("")))),
            R"(["inf","-inf","nan"])");
}

TEST_F(JsonWriterTest, ContainersNest) {
  expectRows({{listOf(), "[]"},
              {list_t(), "[]"},
              {map_t(), "{}"},
              {map_t(vlt_allocate_map(8)), "{}"},
              {listOf(whole(1), listOf(), mapOf(), text("a")), R"([1,[],{},"a"])"},
              {mapOf("a", listOf(mapOf("b", data_t()), real(1))), R"({"a":[{"b":null},1.0]})"}});
}

TEST_F(JsonWriterTest, DeletedEntriesAreLeftOut) {
  map_t map = mapOf("a", whole(1), "b", whole(2));
  map.erase(map.find(text("a")));
  EXPECT_EQ(jsonOf(std::move(map)), R"({"b":2})");
}

TEST_F(JsonWriterTest, KindsWithoutJsonBecomeTheHostsString) {
  expectRows({{decimal(5), "\"decimal(0x0000000000000005)\""},
              {bytes("abc"), "\"buffer(3 bytes)\""},
              {custom(), R"("custom")"},
              {tagged(11, 1), "\"unknown(11)\""}});
}

TEST_F(JsonWriterTest, OtherKeysHaveTheHostsNames) {
  expectRows({{mapOf(whole(1), whole(2)), R"({"1":2})"},
              {mapOf(truth(true), whole(2)), R"({"true":2})"},
              {mapOf(listOf(text("a")), whole(2)), R"({"[\"a\"]":2})"},
              {mapOf(nullText(), whole(2)), R"({"":2})"}});
  EXPECT_EQ(jsonOf(mapOf(borrowed("k"), whole(2))), R"({"k":2})");
}

TEST_F(JsonWriterTest, MessageHasMetadataAndPayload) {
  EXPECT_EQ(jsonOf(notification("t1/sub/events/7", mapOf("id", text("1")))),
            R"({"metadata":{"pulsarPath":"t1/sub/events/7"},"payload":{"id":"1"}})");
  EXPECT_EQ(jsonOf(Message(listOf(whole(1)))), R"({"metadata":{},"payload":[1]})");
}

TEST_F(JsonWriterTest, EmptyPayloadIsLeftOut) {
  EXPECT_EQ(jsonOf(Message()), R"({"metadata":{}})");
}

TEST_F(JsonWriterTest, OutputIsAppended) {
  std::string out = "[";
  writeJson(out, whole(1));
  out += ',';
  writeJson(out, Message());
  EXPECT_EQ(out, R"([1,{"metadata":{}})");
}

TEST_F(JsonWriterTest, WrittenMessageReadsBackEqual) {
  JsonReader reader;
  const Message message = reader.parseMessage(
      R"({"metadata":{"a":[1,2.0]},"payload":{"b":{"c":[null,true,"\u0001\"x"]},"":-0.5}})");
  const Message back = reader.parseMessage(jsonOf(message));
  EXPECT_EQ(back.getPayload(), message.getPayload());
  EXPECT_EQ(back.getMetadataMap(), message.getMetadataMap());
}

TEST_F(JsonWriterTest, DepthCostsNoStack) {
  constexpr std::size_t DEPTH = 20000;
  data_t value = whole(1);
  for (std::size_t i = 0; i < DEPTH; ++i) {
    data_t outer =
        i % 2 == 0 ? data_t(listOf(std::move(value))) : data_t(mapOf("", std::move(value)));
    value = std::move(outer);
  }
  std::string out;
  runOnSmallStack([&] { writeJson(out, value); });
  EXPECT_EQ(out.size(), DEPTH / 2 * std::strlen("[]") + DEPTH / 2 * std::strlen(R"({"":})") + 1);
}

} // namespace com::velanto::connectivity::test

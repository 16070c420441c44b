#include "ndjson/notation.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "ndjson/json_reader.hpp"
#include "ndjson/recorded_writer.hpp"
#include "tests/ndjson/recorded_law.hpp"
#include "tests/support/failing_allocations.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/small_stack.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class NotationTest : public HostFixture {
 protected:
  // The payload of a recorded line.
  data_t read(const std::string& json) {
    return std::move(reader_.parseMessage(REMARK + (R"("payload":)" + json) + "}").getPayload());
  }
  // The reason of its refusal, and the column, from 1 at the payload.
  std::string errorAt(const std::string& json) {
    try {
      static_cast<void>(read(json));
    } catch (const MalformedJson& e) {
      const std::size_t before = std::string(REMARK).size() + std::string(R"("payload":)").size();
      return std::to_string(e.column() - before) + ": " + e.what();
    }
    return "nothing thrown";
  }

  static void expectReadBack() {}
  template <class... Rest>
  static void expectReadBack(data_t&& value, Rest&&... rest) {
    const Message message(std::move(value));
    EXPECT_TRUE(isReadBack(message)) << recordedLine(message);
    expectReadBack(std::forward<Rest>(rest)...);
  }

  JsonReader reader_;
};

} // namespace

TEST_F(NotationTest, EachKindReadsBack) {
  expectReadBack(
      data_t(), truth(true), truth(false), whole(-7), real(0.1), real(-0.0), real(5), decimal(255),
      text("a"), text(""), text("\xff\"\n"), nullText(), borrowed("b"), borrowed("\x80"),
      tagged(VLT_TAG_BORROWED_STRING), listOf(whole(1), listOf()), mapOf("a", mapOf()),
      mapOf("$", whole(1)), mapOf("$", whole(1), "a", whole(2)), mapOf(borrowed("k"), text("v")),
      mapOf(nullText(), truth(true)), mapOf(listOf(whole(1)), mapOf(whole(2), text("v"))),
      mapOf(real(std::nan("")), whole(1)), mapOf(tagged(11, 5), whole(1)), bytes(""), bytes("a"),
      bytes("ab"), bytes("abc"), bytes(std::string("\0\xff", 2)), custom(), tagged(11, 5),
      tagged(4294967295), real(std::bit_cast<double>(0x7ff8000000000001)), real(-HUGE_VAL));
}

TEST_F(NotationTest, KeysOfDifferentTruthStayApart) {
  expectReadBack(mapOf(truth(true), whole(1), tagged(VLT_TAG_BOOLEAN, 2), whole(2)));
}

TEST_F(NotationTest, EmptyKeyReadsBack) {
  map_t map;
  map.maybe_insert(map_t::const_pair(data_t(), whole(1)));
  expectReadBack(std::move(map));
}

TEST_F(NotationTest, AnyMessageReadsBack) {
  std::mt19937_64 random(20240514); // NOLINT(cert-msc51-cpp): the same values each time
  std::vector<std::uint8_t> bytes(400);
  for (int i = 0; i < 3000; ++i) {
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    const Message message = messageFrom(bytes);
    ASSERT_TRUE(isReadBack(message)) << "message " << i << ": " << recordedLine(message);
  }
}

TEST_F(NotationTest, AnyFiniteDoubleReadsBack) {
  std::mt19937_64 random(20240515); // NOLINT(cert-msc51-cpp): the same values each time
  for (int i = 0; i < 20000; ++i) {
    const auto content = std::bit_cast<double>(random());
    ASSERT_TRUE(isReadBack(Message(real(content)))) << content;
    ASSERT_TRUE(isReadBack(Message(real(static_cast<double>(random() >> 20U) / 1000))));
  }
}

TEST_F(NotationTest, BorrowedTextOutlivesTheReader) {
  const Message message =
      JsonReader().parseMessage(REMARK + std::string(R"("payload":{"$":["borrowed","kept"]}})"));
  EXPECT_EQ(message.getPayload(), borrowed("kept"));
}

TEST_F(NotationTest, ObjectsWithAnotherFirstMemberAreMaps) {
  EXPECT_EQ(read(R"({"a":1,"$":["custom"]})"),
            data_t(mapOf("a", whole(1), "$", listOf(text("custom")))));
  EXPECT_EQ(read(R"({"$$":1})"), data_t(mapOf("$$", whole(1))));
}

TEST_F(NotationTest, WhiteSpaceIsAllowed) {
  EXPECT_EQ(read(R"({ "$" : [ "decimal" , "00000000000000ff" ] })"), decimal(255));
}

TEST_F(NotationTest, HandWrittenLinesHaveNoNotation) {
  EXPECT_EQ(reader_.parseMessage(R"({"payload":{"$":["custom"]}})").getPayload(),
            data_t(mapOf("$", listOf(text("custom")))));
  EXPECT_EQ(reader_.parseValue(R"({"$":["custom"]})"), data_t(mapOf("$", listOf(text("custom")))));
}

TEST_F(NotationTest, DamagedNotationIsRefused) {
  const std::string needs_kind = R"({"$":[…]} needs the name of a kind)";
  const std::vector<std::pair<const char*, std::string>> rows = {
      {R"({"$":5})", "1: " + needs_kind},
      {R"({"$":[]})", "1: " + needs_kind},
      {R"([{"$":[7]}])", "2: " + needs_kind},
      {R"({"$":["dec\"imal"]})", R"(1: {"$":[…]} has an unknown kind "dec\"imal")"},
      {R"({"$":["custom"],"a":1})", R"(17: member next to "$")"},
      {R"({"$":["custom"],"$":1})", R"(17: member next to "$")"},
      {R"({"$":["custom",1]})", R"(1: {"$":["custom"…]} needs no content)"},
      {R"({"$":["boolean",256]})", R"(1: {"$":["boolean"…]} needs an integer from 0 to 255)"},
      {R"({"$":["boolean",true]})", R"(1: {"$":["boolean"…]} needs an integer from 0 to 255)"},
      {R"({"$":["decimal"]})", R"(1: {"$":["decimal"…]} needs 16 hexadecimal digits)"},
      {R"({"$":["decimal",255]})", R"(1: {"$":["decimal"…]} needs 16 hexadecimal digits)"},
      {R"({"$":["decimal","0ff"]})", R"(1: {"$":["decimal"…]} needs 16 hexadecimal digits)"},
      {R"({"$":["decimal","000000000000000g"]})",
       R"(1: {"$":["decimal"…]} needs 16 hexadecimal digits)"},
      {R"({"$":["decimal",{"$":["string",null]}]})",
       R"(1: {"$":["decimal"…]} needs 16 hexadecimal digits)"},
      {R"({"$":["double","1.5"]})", R"(1: {"$":["double"…]} needs 16 hexadecimal digits)"},
      {R"({"$":["buffer","YQ"]})", R"(1: {"$":["buffer"…]} needs base64)"},
      {R"({"$":["buffer","Y==="]})", R"(1: {"$":["buffer"…]} needs base64)"},
      {R"({"$":["buffer","YQ==YQ=="]})", R"(1: {"$":["buffer"…]} needs base64)"},
      {R"({"$":["buffer","Y Q="]})", R"(1: {"$":["buffer"…]} needs base64)"},
      {R"({"$":["borrowed",[1]]})", R"(1: {"$":["borrowed"…]} needs a string or null)"},
      {R"({"$":["string","a"]})", R"(1: {"$":["string"…]} needs null)"},
      {R"({"$":["borrowed",1]})", R"(1: {"$":["borrowed"…]} needs a string or null)"},
      {R"({"$":["bytes","AA=="]})", R"(1: {"$":["bytes"…]} needs base64 without a NUL)"},
      {R"({"$":["borrowed-bytes","AA=="]})",
       R"(1: {"$":["borrowed-bytes"…]} needs base64 without a NUL)"},
      {R"({"$":["tag",10,"0000000000000000"]})",
       R"(1: {"$":["tag"…]} needs a tag above 10 and 16 hexadecimal digits)"},
      {R"({"$":["tag",4294967296,"0000000000000000"]})",
       R"(1: {"$":["tag"…]} needs a tag above 10 and 16 hexadecimal digits)"},
      {R"({"$":["tag","11","0000000000000000"]})",
       R"(1: {"$":["tag"…]} needs a tag above 10 and 16 hexadecimal digits)"},
      {R"({"$":["map",{}]})", R"(1: {"$":["map"…]} needs a list of pairs [key, value])"},
      {R"({"$":["map",[[1]]]})", R"(1: {"$":["map"…]} needs a list of pairs [key, value])"},
      {R"({"$":["map"]})", R"(1: {"$":["map"…]} needs a list of pairs [key, value])"},
      {R"({"$":["map",[],[]]})", R"(1: {"$":["map"…]} needs a list of pairs [key, value])"},
      {R"({"$":["map",[[1,2,3],[4]]]})", R"(1: {"$":["map"…]} needs a list of pairs [key, value])"},
      {R"({"$":["map",[1]]})", R"(1: {"$":["map"…]} needs a list of pairs [key, value])"},
      {R"({"$":["map",[[1,2],[1,3]]]})", "1: repeated key 1"},
      {R"({"$":["map",[[null,2],[null,3]]]})", "1: repeated key null"}};
  for (const auto& [json, error] : rows) EXPECT_EQ(errorAt(json), error) << json;
}

TEST_F(NotationTest, DeepestMessagesReadBack) {
  for (const bool in_keys : {false, true}) {
    data_t maps = mapOf(whole(0), decimal(1));
    for (std::size_t i = 1; i < RecordedWriter::MAX_DEPTH; ++i) {
      maps = in_keys ? mapOf(std::move(maps), data_t()) : mapOf(whole(0), std::move(maps));
    }
    const Message message(std::move(maps));
    EXPECT_TRUE(isReadBack(message)) << in_keys;
  }
}

// Maps as pairs within lists, on a stack without room for them.
TEST_F(NotationTest, NestingCountsEachMapOnce) {
  const auto nested = [](int maps, int lists) {
    std::string json(static_cast<std::size_t>(lists), '[');
    for (int i = 0; i < maps; ++i) json += R"({"$":["map",[[1,)";
    json += '1';
    for (int i = 0; i < maps; ++i) json += "]]]}";
    return json.append(static_cast<std::size_t>(lists), ']');
  };
  constexpr int LISTS = 5;
  constexpr int MAPS = JsonReader::MAX_EVENT_DEPTH - LISTS; // 16 bytes each
  runOnSmallStack([&] {
    EXPECT_EQ(read(nested(MAPS, LISTS)).type_tag(), std::uint32_t{VLT_TAG_LIST});
    // At the list of pairs, which makes the map a level.
    const int column = LISTS + MAPS * 16 + 13;
    EXPECT_EQ(errorAt(nested(MAPS + 1, LISTS)),
              std::to_string(column) + ": nested deeper than 200001 levels");
  });
}

TEST_F(NotationTest, MetadataMayBeAMapOfPairs) {
  EXPECT_TRUE(isReadBack(Message(data_t(), mapOf(whole(1), text("a")))));
  EXPECT_EQ(errorOf([&] {
              static_cast<void>(
                  reader_.parseMessage(REMARK + std::string(R"("metadata":{"$":["custom"]}})")));
            }),
            R"("metadata" is not an object)");
}

TEST_F(NotationTest, ExhaustedMemoryLeaksNothing) {
  const std::string line = recordedLine(Message(mapOf(
      whole(1), listOf(bytes("abc"), text("\xff"), borrowed("b"), mapOf(listOf(), custom())))));
  const std::int64_t before = standin_live_blocks_total();
  const std::uint64_t allocations =
      failEachAllocation([&] { static_cast<void>(reader_.parseMessage(line)); },
                         [&] { EXPECT_EQ(standin_live_blocks_total(), before); });
  EXPECT_GT(allocations, 10U);
}

} // namespace com::velanto::connectivity::test

#include "ndjson/recorded_writer.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/allocations.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/small_stack.hpp"
#include "tests/support/values.hpp"
#include "value/hashes.hpp"

namespace com::velanto::connectivity::test {

namespace {

class RecordedWriterTest : public HostFixture {
 protected:
  // The members of `message`, or "does not fit".
  static std::string written(RecordedWriter& writer, const Message& message,
                             std::size_t room = 8192) {
    std::string json(room, '#');
    const char* const end = writer.write(message, json.data(), json.data() + room);
    if (end == nullptr) return "does not fit";
    json.resize(static_cast<std::size_t>(end - json.data()));
    return json;
  }
  static std::string payloadOf(data_t&& payload, const FieldSet& omitted = {}) {
    RecordedWriter writer(omitted);
    const std::string json = written(writer, Message(std::move(payload)));
    const std::string before = R"("metadata":{},"payload":)";
    return json.starts_with(before) ? json.substr(before.size()) : json;
  }
  // Rows of a value and its JSON. Moved, not copied: a copy of a borrowed string is an owned one.
  static void expectRows() {}
  template <class... Rest>
  static void expectRows(data_t&& value, const char* json, Rest&&... rest) {
    EXPECT_EQ(payloadOf(std::move(value)), json);
    expectRows(std::forward<Rest>(rest)...);
  }
};

} // namespace

TEST_F(RecordedWriterTest, OrdinaryValuesArePlainJson) {
  expectRows(data_t(), "null", truth(true), "true", truth(false), "false",
             whole(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808", real(5),
             "5.0", real(-0.0), "-0.0", real(1715659331.482), "1715659331.482", real(1e300),
             "1e300", text("a\"b\\c/\n\x01\x0b é"), R"("a\"b\\c/\n\u0001\u000b é")", listOf(), "[]",
             listOf(whole(1), listOf(), mapOf()), "[1,[],{}]", mapOf("a", whole(1)), R"({"a":1})",
             mapOf("", mapOf("b", listOf(text("")))), R"({"":{"b":[""]}})");
}

TEST_F(RecordedWriterTest, ValuesWithoutJsonFormUseTheNotation) {
  expectRows(
      decimal(255), R"({"$":["decimal","00000000000000ff"]})", bytes(std::string("\0\xff\x10", 3)),
      R"({"$":["buffer","AP8Q"]})", tagged(VLT_TAG_BUFFER), R"({"$":["buffer",""]})", custom(),
      R"({"$":["custom"]})", tagged(VLT_TAG_BOOLEAN, 2), R"({"$":["boolean",2]})",
      tagged(VLT_TAG_BOOLEAN, 255), R"({"$":["boolean",255]})", borrowed("a\"é"),
      R"({"$":["borrowed","a\"é"]})", nullText(), R"({"$":["string",null]})",
      tagged(VLT_TAG_BORROWED_STRING), R"({"$":["borrowed",null]})", text("a\xff"),
      R"({"$":["bytes","Yf8="]})", borrowed("\xc3"), R"({"$":["borrowed-bytes","ww=="]})",
      real(std::numeric_limits<double>::infinity()), R"({"$":["double","7ff0000000000000"]})",
      real(std::bit_cast<double>(0xfff8000000000001)), R"({"$":["double","fff8000000000001"]})",
      tagged(11, 0x0123456789abcdef), R"({"$":["tag",11,"0123456789abcdef"]})", tagged(4294967295),
      R"({"$":["tag",4294967295,"0000000000000000"]})");
}

TEST_F(RecordedWriterTest, MapsWithOddKeysAreListsOfPairs) {
  expectRows(mapOf("$", whole(1)), R"({"$":["map",[["$",1]]]})",
             mapOf(whole(1), listOf(), borrowed("a"), mapOf("b", whole(2))),
             R"({"$":["map",[[1,[]],[{"$":["borrowed","a"]},{"b":2}]]]})",
             mapOf(nullText(), data_t()), R"({"$":["map",[[{"$":["string",null]},null]]]})",
             mapOf("\xff", data_t()), R"({"$":["map",[[{"$":["bytes","/w=="]},null]]]})",
             mapOf(mapOf(listOf(), whole(1)), listOf(mapOf())),
             R"({"$":["map",[[{"$":["map",[[[],1]]]},[{}]]]]})");
}

TEST_F(RecordedWriterTest, MetadataUsesTheNotationToo) {
  RecordedWriter writer;
  const Message message(data_t(), mapOf(borrowed("a"), whole(1)));
  EXPECT_EQ(written(writer, message),
            R"("metadata":{"$":["map",[[{"$":["borrowed","a"]},1]]]},"payload":null)");
}

TEST_F(RecordedWriterTest, LongStringsAreCopiedWhole) {
  for (std::size_t length = 0; length < 70; ++length) {
    for (const std::string special : {"", "\"", "é", "😀", "\n"}) {
      for (std::size_t at = 0; at <= length; at += 3) {
        std::string content(length, 'x');
        content.insert(at, special);
        std::string json(length, 'x');
        json.insert(at, special == "\"" ? "\\\"" : special == "\n" ? "\\n" : special);
        EXPECT_EQ(payloadOf(text(content.c_str())), '"' + json + '"');
      }
    }
  }
}

TEST_F(RecordedWriterTest, OmittedStringsBecomeThePlaceholder) {
  FieldSet omitted;
  omitted.add("payload.a");
  omitted.add("payload.list.secret");
  omitted.add("metadata.path");
  RecordedWriter writer(omitted);
  const Message message(mapOf("a", listOf(text("1"), whole(2), borrowed("3"), nullText(),
                                          text("\xff"), mapOf(whole(0), text("4")))),
                        mapOf("path", text("5")));
  EXPECT_EQ(written(writer, message),
            R"("metadata":{"path":"omitted"},"payload":{"a":["omitted",2,)"
            R"({"$":["borrowed","omitted"]},{"$":["string",null]},"omitted",)"
            R"({"$":["map",[[0,"omitted"]]]}]})");
  EXPECT_EQ(payloadOf(mapOf("list", listOf(mapOf("secret", text("1")), text("2"))), omitted),
            R"({"list":[{"secret":"omitted"},"2"]})");
  EXPECT_EQ(payloadOf(mapOf(borrowed("a"), text("1")), omitted),
            R"({"$":["map",[[{"$":["borrowed","a"]},"omitted"]]]})");
  EXPECT_EQ(payloadOf(mapOf(whole(1), text("a")), omitted), R"({"$":["map",[[1,"a"]]]})");
}

TEST_F(RecordedWriterTest, MessagesThatDoNotFitAreRefused) {
  RecordedWriter writer;
  const Message message(mapOf("a", listOf(real(1.5), whole(7), decimal(1), bytes("abc"),
                                          text("long enough for two chunks é \n"))));
  const std::string whole_json = written(writer, message);
  for (std::size_t room = 0; room < whole_json.size() + JsonMemory::SLACK; ++room) {
    std::string memory(room + 1, '#');
    EXPECT_EQ(writer.write(message, memory.data(), memory.data() + room), nullptr) << room;
    EXPECT_EQ(memory[room], '#');
  }
}

TEST_F(RecordedWriterTest, NestingBeyondTheBoundIsRefused) {
  const auto nested = [](std::size_t depth) {
    data_t value = listOf();
    for (std::size_t i = 1; i < depth; ++i) value = listOf(std::move(value));
    return value;
  };
  const std::size_t depth = RecordedWriter::MAX_DEPTH;
  EXPECT_EQ(payloadOf(nested(depth)), std::string(depth, '[') + std::string(depth, ']'));
  EXPECT_EQ(payloadOf(nested(depth + 1)), "does not fit");
  RecordedWriter writer;
  EXPECT_EQ(written(writer, Message(nested(depth + 1))), "does not fit");
  EXPECT_EQ(written(writer, Message()), R"("metadata":{},"payload":null)");
}

} // namespace com::velanto::connectivity::test

#include "tools/explain/change.hpp"

#include <limits>

#include "ndjson/json_reader.hpp"
#include "ndjson/json_writer.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

class ChangeTest : public HostFixture {
 protected:
  // The message with the change, or without the value there when `value` is empty.
  std::string changed(const std::string& line, const tools::path_t& path, const char* value) {
    Message message = reader_.parseMessage(line);
    tools::change_t change = tools::change_t::removal(path);
    if (*value != '\0') change.value = reader_.parseValue(value);
    tools::apply(message, change);
    return toJson(message);
  }
  std::string changesOf(const std::string& json) {
    std::string text;
    for (const data_t& value : tools::changedValues(reader_.parseValue(json))) {
      if (!text.empty()) text += ' ';
      text += toJson(value);
    }
    return text;
  }

  JsonReader reader_;
};

const tools::step_t METADATA = {"metadata"};
const tools::step_t PAYLOAD = {"payload"};

tools::step_t elementAt(std::size_t index) { return {"", index, true}; }

} // namespace

TEST_F(ChangeTest, ValuesAreReplacedInPlace) {
  const std::string line = R"({"metadata":{"p":"a"},"payload":{"l":[1,{"x":2}]}})";
  EXPECT_EQ(changed(line, {METADATA, {"p"}}, "7"),
            R"({"metadata":{"p":7},"payload":{"l":[1,{"x":2}]}})");
  EXPECT_EQ(changed(line, {PAYLOAD, {"l"}, elementAt(1), {"x"}}, "\"y\""),
            R"({"metadata":{"p":"a"},"payload":{"l":[1,{"x":"y"}]}})");
  EXPECT_EQ(changed(line, {PAYLOAD}, "[]"), R"({"metadata":{"p":"a"},"payload":[]})");
}

TEST_F(ChangeTest, ValuesAreLeftOut) {
  const std::string line = R"({"metadata":{"p":"a"},"payload":{"l":[1,2,3]}})";
  EXPECT_EQ(changed(line, {METADATA, {"p"}}, ""), R"({"metadata":{},"payload":{"l":[1,2,3]}})");
  EXPECT_EQ(changed(line, {METADATA}, ""), R"({"metadata":{},"payload":{"l":[1,2,3]}})");
  EXPECT_EQ(changed(line, {PAYLOAD, {"l"}, elementAt(1)}, ""),
            R"({"metadata":{"p":"a"},"payload":{"l":[1,3]}})");
  EXPECT_EQ(changed(line, {PAYLOAD, {"l"}}, ""), R"({"metadata":{"p":"a"},"payload":{}})");
  EXPECT_EQ(changed(line, {PAYLOAD}, ""), R"({"metadata":{"p":"a"}})");
}

TEST_F(ChangeTest, NewEntriesGoIntoMaps) {
  EXPECT_EQ(changed(R"({"payload":{}})", {PAYLOAD, {"k"}}, "1"),
            R"({"metadata":{},"payload":{"k":1}})");
  EXPECT_EQ(changed(R"({"payload":{}})", {METADATA, {"k"}}, "1"),
            R"({"metadata":{"k":1},"payload":{}})");
}

TEST_F(ChangeTest, WhereNothingCanBeNothingIsChanged) {
  const std::string line = R"({"metadata":{},"payload":{"a":1}})";
  EXPECT_EQ(changed(line, {PAYLOAD, {"a"}, {"b"}}, "1"), line);
  EXPECT_EQ(changed(line, {PAYLOAD, {"b"}, {"c"}}, ""), line);
  EXPECT_EQ(changed(line, {PAYLOAD, {"b"}}, ""), line);
  EXPECT_EQ(changed(line, {PAYLOAD, elementAt(0)}, ""), line);
}

TEST_F(ChangeTest, ACopySharesNothing) {
  const Message message = notification("p", mapOf("a", text("x")));
  Message copy = tools::copyOf(message);
  tools::apply(copy, {{PAYLOAD, {"a"}}, text("y")});
  EXPECT_EQ(*tools::valueAt(message, {PAYLOAD, {"a"}}), text("x"));
  EXPECT_EQ(*tools::valueAt(copy, {METADATA, {"pulsarPath"}}), text("p"));
}

TEST_F(ChangeTest, EveryKindHasOtherValues) {
  EXPECT_EQ(changesOf("5"), "6");
  EXPECT_EQ(changesOf("9223372036854775807"), "9223372036854775806");
  EXPECT_EQ(changesOf("0.5"), "1.5");
  EXPECT_EQ(changesOf("1e300"), "5e+299"); // one more is the same
  EXPECT_EQ(changesOf("true"), "false");
  EXPECT_EQ(changesOf("null"), "1");
  EXPECT_EQ(changesOf("\"\""), "\"x\"");
  EXPECT_EQ(changesOf("[]"), "");
  EXPECT_EQ(changesOf("{\"a\":1}"), "");
}

TEST_F(ChangeTest, StringsKeepTheirForm) {
  EXPECT_EQ(changesOf("\"2023-04-05T06:07:08.999Z\""),
            "\"3023-04-05T06:07:08.999Z\" \"2023-04-05T06:07:08.998Z\" "
            "\"2023-04-05U06:07:08.999Z\" \"2023-04-05T06:07:08.999Y\" "
            "\"2023-04-05T06:07:08.999Zx\"");
  EXPECT_EQ(changesOf("\"ab cd\""), "\"bb cd\" \"ab ce\" \"ab dd\" \"ab cdx\"");
}

} // namespace com::velanto::connectivity::test

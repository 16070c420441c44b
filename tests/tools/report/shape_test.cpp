#include "tools/report/shape.hpp"

#include <gtest/gtest.h>

#include "ndjson/json_reader.hpp"

namespace com::velanto::connectivity::test {

namespace {

std::uint64_t shapeOf(const std::string& payload) {
  JsonReader reader;
  return tools::report::shapeOf(reader.parseMessage(R"({"payload":)" + payload + "}"));
}

} // namespace

TEST(Shape, ValuesAndOrderDoNotMatter) {
  EXPECT_EQ(shapeOf(R"({"a":1,"b":{"c":"x"}})"), shapeOf(R"({"b":{"c":"y"},"a":2})"));
  EXPECT_EQ(shapeOf(R"([1,"x",2])"), shapeOf(R"(["y",3])"));
}

TEST(Shape, NamesPlacesAndKindsMatter) {
  const std::string all[] = {
      R"({"a":1})",
      R"({"b":1})",
      R"({"a":1.0})",
      R"({"a":"1"})",
      R"({"a":null})",
      R"({"a":{}})",
      R"({"a":[]})",
      R"({"a":[1]})",
      R"({"a":["1"]})",
      R"({"a":[1,"1"]})",
      R"({"a":[[1]]})",
      R"({"a":{"a":1}})",
      R"({"a":1,"b":1})",
      "{}",
      "1",
  };
  for (const std::string& one : all) {
    for (const std::string& other : all) {
      EXPECT_EQ(shapeOf(one) == shapeOf(other), one == other) << one << other;
    }
  }
}

TEST(Shape, MetadataMatters) {
  JsonReader reader;
  EXPECT_NE(tools::report::shapeOf(reader.parseMessage(R"({"metadata":{"a":"x"},"payload":1})")),
            shapeOf("1"));
}

TEST(Shape, DeepValuesAreNoDanger) {
  const std::string deep = std::string(900, '[') + std::string(900, ']');
  const std::string deeper = std::string(901, '[') + std::string(901, ']');
  EXPECT_EQ(shapeOf(deep), shapeOf(deeper));
}

TEST(Shape, NumbersAreTheSameInEveryRun) {
  EXPECT_EQ(tools::report::hashOf("source"), 0x76DBDC228F782DB8u);
  EXPECT_EQ(shapeOf(R"({"id":"1","count":2})"), 0x77CA6C1A71DB4E42u);
}

} // namespace com::velanto::connectivity::test

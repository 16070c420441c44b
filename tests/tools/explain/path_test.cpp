#include "tools/explain/path.hpp"

#include <gtest/gtest.h>

namespace com::velanto::connectivity::test {

namespace {

tools::step_t key(const char* name) { return {name}; }
tools::step_t element(std::size_t index) { return {"", index, true}; }

std::string jsonOf(const tools::path_t& path) {
  std::string json;
  tools::appendJson(json, path);
  return json;
}

struct path_row_t {
  tools::path_t path;
  const char* text;
  const char* json;
};

const std::vector<path_row_t> ROWS = {
    {{key("payload")}, "payload", R"(["payload"])"},
    {{key("payload"), key("source"), key("id")}, "source.id", R"(["payload","source","id"])"},
    {{key("payload"), key("list"), element(2), key("x")},
     "list[2].x",
     R"(["payload","list",2,"x"])"},
    {{key("payload"), element(0)}, "payload[0]", R"(["payload",0])"},
    {{key("metadata"), key("pulsarPath")}, "metadata.pulsarPath", R"(["metadata","pulsarPath"])"},
    {{key("metadata"), key("vlt.type")}, R"(metadata."vlt.type")", R"(["metadata","vlt.type"])"},
    {{key("payload"), key("metadata"), key("x")},
     R"("metadata".x)",
     R"(["payload","metadata","x"])"},
    {{key("payload"), key("payload")}, R"("payload")", R"(["payload","payload"])"},
    {{key("payload"), key("a"), key("metadata")}, "a.metadata", R"(["payload","a","metadata"])"},
    {{key("payload"), key("")}, R"("")", R"(["payload",""])"},
    {{key("payload"), key("a\"b")}, R"("a\"b")", R"(["payload","a\"b"])"},
    {{key("payload 2"), key("x")}, "payload 2.x", R"(["payload 2","x"])"},
};

} // namespace

TEST(PathTest, PeopleAndProgramsReadIt) {
  for (const path_row_t& row : ROWS) {
    EXPECT_EQ(tools::textOf(row.path), row.text);
    EXPECT_EQ(jsonOf(row.path), row.json);
  }
}

TEST(PathTest, PathIsWithinItselfAndItsAncestors) {
  const tools::path_t list = {key("payload"), key("list")};
  const tools::path_t second = {key("payload"), key("list"), element(1)};
  EXPECT_TRUE(tools::isWithin(list, list));
  EXPECT_TRUE(tools::isWithin(second, list));
  EXPECT_FALSE(tools::isWithin(list, second));
  EXPECT_FALSE(tools::isWithin(second, {key("payload"), key("list"), element(0)}));
  EXPECT_EQ(tools::parentOf(second), list);
}

} // namespace com::velanto::connectivity::test

#include "tools/explain/trace.hpp"

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

using TraceTest = HostFixture;
using Compare = tools::Trace::Compare;

std::string leavesOf(const tools::Trace& trace) {
  std::string text;
  for (const tools::node_t& node : trace.nodes()) {
    text += tools::textOf(node.path) + (node.isLeaf() ? " = " + node.json : ":") + "\n";
  }
  return text;
}

Message messageOf(data_t&& payload) { return Message(std::move(payload)); }

} // namespace

TEST_F(TraceTest, EveryValueIsThereSortedByItsPath) {
  const Message message = notification(
      "t/s", mapOf("z", whole(5), "a", mapOf("y", real(5), "x", listOf(text("5"), data_t())), "e",
                   mapOf(), "l", listOf()));
  EXPECT_EQ(leavesOf(tools::Trace(message)),
            "metadata:\n"
            "metadata.pulsarPath = \"t/s\"\n"
            "payload:\n"
            "a:\n"
            "a.x:\n"
            "a.x[0] = \"5\"\n"
            "a.x[1] = null\n"
            "a.y = 5.0\n"
            "e = {}\n"
            "l = []\n"
            "z = 5\n");
}

TEST_F(TraceTest, AbsentValueIsNoLeaf) {
  EXPECT_EQ(leavesOf(tools::Trace(Message())), "");
  EXPECT_EQ(leavesOf(tools::Trace(messageOf(mapOf()))), "payload = {}\n");
}

TEST_F(TraceTest, FurtherMessagesHaveNumbers) {
  std::vector<Message> messages;
  messages.push_back(notification("a", whole(1)));
  messages.push_back(notification("b", whole(2)));
  EXPECT_EQ(leavesOf(tools::Trace(messages)),
            "metadata:\nmetadata.pulsarPath = \"a\"\nmetadata 2:\nmetadata 2.pulsarPath = \"b\"\n"
            "payload = 1\npayload 2 = 2\n");
}

TEST_F(TraceTest, PathsAreFound) {
  const tools::Trace trace(messageOf(listOf(text("a"), mapOf("k", text("b")))));
  const tools::node_t* const found = trace.find({{"payload"}, {"", 1, true}, {"k"}});
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->json, "\"b\"");
  EXPECT_EQ(trace.find({{"payload"}, {"", 2, true}}), nullptr);
}

TEST_F(TraceTest, BlocksTellEqualValuesApart) {
  Message message = messageOf(mapOf("a", mapOf("x", text("1")), "b", mapOf("x", text("1"))));
  const tools::Trace trace(message);
  const auto number_of = [&](const char* name) {
    return static_cast<std::size_t>(trace.find({{"payload"}, {name}}) - trace.nodes().data());
  };
  EXPECT_TRUE(trace.same(number_of("a"), trace, number_of("b"), Compare::CONTENT));
  EXPECT_FALSE(trace.same(number_of("a"), trace, number_of("b"), Compare::BLOCKS));
  EXPECT_TRUE(trace.same(number_of("a"), tools::Trace(message), number_of("a"), Compare::BLOCKS));
}

TEST_F(TraceTest, KindsAndNamesCountAsContent) {
  const tools::Trace whole_number(messageOf(mapOf("a", whole(5))));
  EXPECT_FALSE(whole_number.sameContent(tools::Trace(messageOf(mapOf("a", real(5))))));
  EXPECT_FALSE(whole_number.sameContent(tools::Trace(messageOf(mapOf("b", whole(5))))));
  EXPECT_FALSE(whole_number.sameContent(tools::Trace(messageOf(mapOf("a", text("5"))))));
  EXPECT_TRUE(whole_number.sameContent(tools::Trace(messageOf(mapOf("a", whole(5))))));
  EXPECT_FALSE(whole_number.sameContent(tools::Trace()));
}

TEST_F(TraceTest, OnePlaceIsCompared) {
  const tools::Trace one(messageOf(mapOf("a", listOf(whole(1)), "b", whole(1))));
  const tools::Trace other(messageOf(mapOf("a", listOf(whole(1)), "b", whole(2))));
  EXPECT_TRUE(one.sameBelow({{"payload"}, {"a"}}, other));
  EXPECT_FALSE(one.sameBelow({{"payload"}, {"b"}}, other));
  EXPECT_TRUE(one.sameBelow({{"payload"}, {"c"}}, other)); // nothing here, nothing there
}

} // namespace com::velanto::connectivity::test

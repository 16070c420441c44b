#include "tools/report/collection.hpp"

#include <gtest/gtest.h>

#include "tests/tools/program.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::Kind;
using tools::Outcome;
using tools::report::Collection;

class CollectionTest : public ::testing::Test {
 protected:
  void drop(const std::string& log, const std::string& line = "{\"payload\":1}") {
    take(Outcome::DROPPED, line, log);
  }
  // A message that comes out as it goes in.
  void pass(const std::string& line) {
    record_.outputs.clear();
    record_.outputs.push_back(reader_.parseMessage(line));
    take(Outcome::PASSED, line, "");
    record_.outputs.clear();
  }
  void take(Outcome outcome, const std::string& line, const std::string& log) {
    ++record_.number;
    record_.file = &file_;
    record_.line_number = record_.number;
    record_.kind = Kind::EVENTS;
    record_.outcome = outcome;
    record_.line = line;
    record_.log.clear();
    if (!log.empty()) record_.log.push_back({3, log});
    collection_.take(record_);
  }

  JsonReader reader_;
  const std::string file_ = "in";
  tools::record_t record_;
  Collection collection_;
};

std::string missing(const std::string& key) {
  return "Required key '" + key + "' missing from message payload";
}

} // namespace

TEST_F(CollectionTest, ReasonsAreRankedWithPlacesAndExamples) {
  drop(missing("text"));
  for (int i = 0; i < 7; ++i) drop(missing("time"));
  const auto reasons = collection_.reasons();
  ASSERT_EQ(reasons.size(), 2u);
  EXPECT_EQ(reasons[0]->key, "time");
  EXPECT_EQ(reasons[0]->count, 7u);
  EXPECT_EQ(reasons[0]->places, (std::vector<std::string>{"in:2", "in:3", "in:4", "in:5", "in:6"}));
  EXPECT_EQ(reasons[0]->examples.size(), Collection::EXAMPLES);
  EXPECT_EQ(reasons[1]->places, std::vector<std::string>{"in:1"});
}

TEST_F(CollectionTest, ReasonsAreBoundedAndTheRestCounted) {
  for (std::size_t i = 0; i < Collection::MOST_REASONS + 3; ++i) drop(missing(std::to_string(i)));
  drop(missing("0"));
  EXPECT_EQ(collection_.reasons().size(), Collection::MOST_REASONS);
  EXPECT_EQ(collection_.otherReasons(), 3u);
  EXPECT_EQ(collection_.reasons().front()->count, 2u);
}

TEST_F(CollectionTest, SameFieldsAndKindsAreOneWay) {
  pass(R"({"payload":{"a":1,"b":"x"}})");
  pass(R"({"payload":{"b":"y","a":2}})");
  pass(R"({"payload":{"a":1.0,"b":"x"}})");
  const auto ways = collection_.ways();
  ASSERT_EQ(ways.size(), 2u);
  EXPECT_EQ(ways[0]->count, 2u);
  EXPECT_EQ(ways[0]->example.place, "in:1");
}

TEST_F(CollectionTest, WaysAreBoundedAndTheRestCounted) {
  for (std::size_t i = 0; i < Collection::MOST_WAYS + 3; ++i) {
    pass("{\"payload\":{\"k" + std::to_string(i) + "\":1}}");
  }
  EXPECT_EQ(collection_.ways().size(), Collection::MOST_WAYS);
  EXPECT_EQ(collection_.otherWays(), 3u);
}

TEST_F(CollectionTest, OfLongMessagesOnlyTheBeginningIsKept) {
  const std::string line = "{\"payload\":\"" + std::string(100'000, 'x') + "\"}";
  pass(line);
  drop(missing("text"), line);
  const tools::report::example_t& way = collection_.ways().front()->example;
  EXPECT_FALSE(way.whole);
  EXPECT_EQ(way.record.line, line.substr(0, Collection::LONGEST_EXAMPLE));
  EXPECT_TRUE(way.record.outputs.empty());
  EXPECT_FALSE(collection_.reasons().front()->examples.front().whole);
}

TEST_F(CollectionTest, ChannelsAreBoundedAndTheRestCounted) {
  for (std::size_t i = 0; i < Collection::MOST_CHANNELS + 2; ++i) {
    const std::string line =
        R"({"metadata":{"vlt.channel":"c)" + std::to_string(i) + R"("},"payload":1})";
    record_.outputs.push_back(reader_.parseMessage(line));
    take(Outcome::CONVERTED, "{\"payload\":1}", "");
    record_.outputs.clear();
  }
  EXPECT_EQ(collection_.channels().size(), Collection::MOST_CHANNELS);
  EXPECT_EQ(collection_.otherChannels(), 2u);
}

TEST_F(CollectionTest, OfMalformedLinesTheFirstAreKept) {
  for (int i = 0; i < 12; ++i) take(Outcome::MALFORMED, "x", "");
  EXPECT_EQ(collection_.malformed().size(), Collection::MOST_MALFORMED);
  EXPECT_EQ(collection_.count(Outcome::MALFORMED), 12u);
  EXPECT_EQ(collection_.count(Kind::EVENTS), 0u); // of messages
}

TEST_F(CollectionTest, MessagesAreCountedByTimeAndPlace) {
  drop(missing("id"), R"({"payload":{"time":"1970-01-01T00:00:05Z"}})");
  pass(R"({"payload":{"time":"soon"}})");
  EXPECT_EQ(collection_.times().messages(), 1u);
  EXPECT_EQ(collection_.times().view().begin, 5);
  EXPECT_EQ(collection_.places().messages(), 2u);
  EXPECT_EQ(collection_.places().view().begin, 0);
}

} // namespace com::velanto::connectivity::test

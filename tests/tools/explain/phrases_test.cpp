#include "tools/explain/phrases.hpp"

#include <gtest/gtest.h>

#include "tools/record/columns.hpp"

namespace com::velanto::connectivity::test {

namespace {

using paths_t = std::vector<tools::path_t>;
using phrases_t = std::vector<std::string>;

tools::path_t path(std::initializer_list<const char*> names) {
  tools::path_t result = {{"payload"}};
  for (const char* const name : names) result.push_back({name});
  return result;
}
tools::path_t element(const char* name, std::size_t index) {
  return {{"payload"}, {name}, {"", index, true}};
}

} // namespace

TEST(PhrasesTest, NeighboursAreOnePhrase) {
  EXPECT_EQ(tools::pathPhrasesOf(
                {path({"a"}), path({"b", "x"}), path({"b", "y"}), path({"c", "x"}), path({"d"})}),
            (phrases_t{"a", "b.{x,y}", "c.x", "d"}));
  EXPECT_EQ(
      tools::pathPhrasesOf({element("l", 0), element("l", 2), element("l", 3), element("l", 4)}),
      (phrases_t{"l[0]", "l[2…4]"}));
  EXPECT_EQ(tools::pathPhrasesOf({}), phrases_t{});
}

TEST(PhrasesTest, TooManyNeighboursAreSeparate) {
  paths_t paths;
  for (int i = 10; i < 40; ++i) paths.push_back(path({"a", ("k" + std::to_string(i)).c_str()}));
  const phrases_t phrases = tools::pathPhrasesOf(paths);
  ASSERT_EQ(phrases.size(), 30u);
  EXPECT_EQ(phrases.front(), "a.k10");
}

TEST(PhrasesTest, StringsLoseTheirEndPathsTheirBeginning) {
  const std::string text(100, 't');
  const std::string name(100, 'n');
  EXPECT_EQ(tools::phraseOf({path({"a"}), "\"" + text + "\""}), "a \"" + text.substr(0, 57) + "…");
  EXPECT_EQ(tools::phraseOf({path({name.c_str()}), "7"}), "…" + name.substr(0, 58) + " 7");
  EXPECT_EQ(tools::phraseOf({path({name.c_str()}), "\"" + text + "\""}),
            "…" + name.substr(0, 35) + " \"" + text.substr(0, 22) + "…");
  EXPECT_EQ(tools::phraseOf({path({name.c_str()}), ""}), "…" + name.substr(0, 60));
}

TEST(PhrasesTest, NumbersAreWhole) {
  const std::string name(100, 'n');
  for (const char* const number : {"-1.7976931348623157e+308", "-9223372036854775808"}) {
    const std::string phrase = tools::phraseOf({path({name.c_str()}), number});
    EXPECT_TRUE(phrase.ends_with(std::string(" ") + number)) << phrase;
    EXPECT_EQ(tools::widthOf(phrase), tools::PHRASE_WIDTH);
  }
}

} // namespace com::velanto::connectivity::test

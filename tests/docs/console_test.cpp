#include "tests/docs/console.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace com::velanto::connectivity::test {

namespace {

std::string commandsOf(const std::string& text) {
  std::string commands;
  for (const session_t& session : sessionsOf(documentOf(text))) {
    commands += session.place + ">" + session.command + ">" + session.shown;
  }
  return commands;
}

} // namespace

TEST(Sessions, AreCommandsWithTheirOutput) {
  EXPECT_EQ(commandsOf("```console\n$ a b\nc\nd\n$ e\n```\n"), "text:1>a b>c\nd\ntext:1>e>");
  EXPECT_EQ(commandsOf("x\n\n    $ a\n    b\n\n    $ c\n"), "text:3>a>b\ntext:6>c>");
}

TEST(Sessions, OtherBlocksHaveNone) {
  EXPECT_EQ(commandsOf("```c\n$ a\n```\n"), "");
  EXPECT_EQ(commandsOf("    a drawing\n    $ in it\n"), "");
}

TEST(Sessions, BlockThatBeginsWithOutputIsRefused) {
  for (const char* const text :
       {"```console\na\n```\n", "```console\n$ a\n```\n\n```console\nb\n```\n"}) {
    EXPECT_THROW(static_cast<void>(sessionsOf(documentOf(text))), std::runtime_error) << text;
  }
}

TEST(Abbreviations, EllipsisEndsTheComparisonOfALine) {
  EXPECT_EQ(abbreviated("abc\nd\n", "a…\nd\n"), "a…\nd\n");
  EXPECT_EQ(abbreviated("bc\nd\n", "a…\nd\n"), "bc\nd\n");
}

TEST(Abbreviations, NumbersSayHowManyLinesAreLeftOut) {
  const std::string expected = "a\n… 2 events and 1 line …\nz\n";
  EXPECT_EQ(abbreviated("a\nb\nc\nd\nz\n", expected), expected);
  EXPECT_NE(abbreviated("a\nb\nc\nz\n", expected), expected) << "too few";
  EXPECT_NE(abbreviated("a\nb\nc\nd\ne\nz\n", expected), expected) << "too many";
  EXPECT_NE(abbreviated("a\nb\n", "a\n… 2 lines …\n"), "a\n… 2 lines …\n") << "too few at the end";
}

TEST(Abbreviations, MissingAndFurtherLinesShow) {
  EXPECT_EQ(abbreviated("a\n", "a\nb\n"), "a\n");
  EXPECT_EQ(abbreviated("a\nb\n", "a\n"), "a\nb\n");
}

} // namespace com::velanto::connectivity::test

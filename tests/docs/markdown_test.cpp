#include "tests/docs/markdown.hpp"

#include <gtest/gtest.h>

#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

const std::string CONFIGURATION = "```json configuration\n{}\n```\n";

std::string block(const std::string& info, const std::string& text) {
  return "```" + info + "\n" + text + "\n```\n";
}

std::string errorOfExamples(const std::string& text) {
  return errorOf([&] { static_cast<void>(readExamples(documentOf(text))); });
}

} // namespace

TEST(Examples, InputIsPairedWithTheOutputThatFollows) {
  const examples_t read = readExamples(
      documentOf(CONFIGURATION + block("json input", "1") + "\n" + block("json output", "2")));
  EXPECT_EQ(read.configuration, "{}\n");
  ASSERT_EQ(read.examples.size(), 1u);
  EXPECT_EQ(read.examples[0].place, "text:4");
  EXPECT_EQ(read.examples[0].input, "1\n");
  EXPECT_EQ(read.examples[0].output, "2\n");
  EXPECT_EQ(read.examples[0].log, "");
}

TEST(Examples, LogLineTakesThePlaceOfAnOutput) {
  const examples_t read =
      readExamples(documentOf(CONFIGURATION + block("json input", "1") + block("log", "<x> y")));
  ASSERT_EQ(read.examples.size(), 1u);
  EXPECT_EQ(read.examples[0].output, "");
  EXPECT_EQ(read.examples[0].log, "<x> y");
}

TEST(Examples, BlockWithoutItsPartnerIsRefused) {
  const std::string lonely = ": the input is not followed by an output or a log line";
  EXPECT_EQ(errorOfExamples(CONFIGURATION + block("json input", "1")), "text:4" + lonely);
  EXPECT_EQ(errorOfExamples(CONFIGURATION + block("json input", "1") + block("json input", "1") +
                            block("log", "x")),
            "text:4" + lonely);
  EXPECT_EQ(errorOfExamples(CONFIGURATION + block("json output", "1")),
            "text:4: there is no input before this block");
  EXPECT_EQ(errorOfExamples(CONFIGURATION + block("json input", "1") + block("log", "x") +
                            block("json output", "1")),
            "text:10: there is no input before this block");
}

TEST(Examples, MisspeltUnclosedAndEarlyBlocksAreRefused) {
  EXPECT_EQ(errorOfExamples(CONFIGURATION + block("json inptu", "1")),
            "text:4: no block 'json inptu' belongs here");
  EXPECT_EQ(errorOfExamples(block("json input", "1")),
            "text:1: no block 'json input' belongs here");
  EXPECT_EQ(errorOfExamples(CONFIGURATION + "```log\nx\n"), "text:4: the block is not closed");
  EXPECT_EQ(errorOfExamples(CONFIGURATION + block("json input", "1") + block("log", "x\ny")),
            "text:7: a log block has one line");
}

TEST(NumberedSpans, SpansHaveTheOrderOfTheirNumbers) {
  EXPECT_EQ(readNumberedSpans(documentOf("# 1 head\n1. a\\\n   `x`\n\n2. b\\\n   `y`\n")),
            (std::vector<std::string>{"x", "y"}));
}

TEST(NumberedSpans, WrongNumberAndMissingSpanAreRefused) {
  const auto error = [](const char* text) {
    return errorOf([&] { static_cast<void>(readNumberedSpans(documentOf(text))); });
  };
  EXPECT_EQ(error("2. a\\\n   `x`\n"), "text:1: number 1 is expected here");
  EXPECT_EQ(error("1. a\\\nx\n"), "text:1: the item has no code span on its next line");
  EXPECT_EQ(error("1. a"), "text:1: the item has no code span on its next line");
}

TEST(Table, RowsAreReadUntilTheTableEnds) {
  const document_t document = documentOf("| A | B |\n|---|---|\n| `x` | 1 |\n| y | |\n\n| z | 2 |");
  const std::vector<std::vector<std::string>> expected = {{"x", "1"}, {"y", ""}};
  EXPECT_EQ(readTable(document, "A"), expected);
}

TEST(Table, SingleSpanOfACellLosesItsMarks) {
  const document_t document = documentOf("| A |\n|---|\n| `x` |\n| `x`, `y` |\n| x `y` |\n");
  const std::vector<std::vector<std::string>> expected = {{"x"}, {"`x`, `y`"}, {"x `y`"}};
  EXPECT_EQ(readTable(document, "A"), expected);
}

TEST(Table, MissingTableAndShortRowAreRefused) {
  const document_t document = documentOf("| A | B |\n|---|---|\n| x |");
  EXPECT_EQ(errorOf([&] { static_cast<void>(readTable(document, "C")); }),
            "text:3: there is no table 'C'");
  EXPECT_EQ(errorOf([&] { static_cast<void>(readTable(document, "A")); }),
            "text:3: the row is not as long as the head");
}

TEST(Patterns, EllipsisMatchesAnyText) {
  EXPECT_TRUE(matches("a", "a"));
  EXPECT_FALSE(matches("a", "ab"));
  EXPECT_TRUE(matches("a '…': b", "a '': b"));
  EXPECT_TRUE(matches("a '…': b", "a 'x': ': b"));
  EXPECT_FALSE(matches("a '…': b", "a 'x': c"));
  EXPECT_TRUE(matches("…m…e", "middle, not the end: me"));
  EXPECT_FALSE(matches("a…m…e", "amd"));
}

} // namespace com::velanto::connectivity::test

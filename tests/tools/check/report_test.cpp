#include "tools/check/report.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "identity/build_name.hpp"
#include "tools/check/selection.hpp"

namespace com::velanto::connectivity::test {

namespace {

using namespace tools::check;

void checksNothing(Trial&) {}
const check_t CHECK = {"suite.name", "what holds", "Heading", checksNothing};
const check_t ADVISED_CHECK = {"suite.other", "advice alone", ADVISED_ONLY, checksNothing};

std::string textOf(const result_t& result, bool coloured = false) {
  std::ostringstream out;
  TextReport(out, {{"lib.so"}, 7, true}, coloured).add(result);
  return out.str();
}

std::string textOf(const verdict_t& verdict) { return textOf({&CHECK, verdict, {}}); }

std::string longestLine(const std::string& text) {
  std::istringstream stream(text);
  std::string longest;
  for (std::string line; std::getline(stream, line);) {
    if (line.size() > longest.size()) longest = line;
  }
  return longest;
}

const std::string NAME_AND_CLAIM = " suite.name                         what holds\n";
const std::string CLAUSE = "        docs/host-interface.md, \"Heading\"\n";

} // namespace

TEST(ReportTest, PassedCheckIsALine) { EXPECT_EQ(textOf(verdict_t{}), "ok   " + NAME_AND_CLAIM); }

TEST(ReportTest, ColourIsAroundTheMark) {
  EXPECT_EQ(textOf({&CHECK, {}, {}}, true), "\x1b[32mok   \x1b[0m" + NAME_AND_CLAIM);
}

TEST(ReportTest, DetailsAreIndentedAndLongOnesStacked) {
  const std::string line(60, 'x');
  const verdict_t verdict = {
      Ending::FAILED, "", {{"here", "4", "3"}, {"there", line, line}, {"log", "a", "b\nc"}}, ""};
  EXPECT_EQ(textOf(verdict), "FAIL " + NAME_AND_CLAIM + CLAUSE +
                                 "        here: expected 4, came 3\n"
                                 "        there:\n"
                                 "          expected  " +
                                 line + "\n          came      " + line +
                                 "\n"
                                 "        log:\n"
                                 "          expected  a\n"
                                 "          came      b\n"
                                 "                    c\n");
}

TEST(ReportTest, CrashShowsReasonAndOutput) {
  EXPECT_EQ(textOf({Ending::CRASHED, "SIGBUS, Bus error", {}, "oh\nno\n"}),
            "CRASH" + NAME_AND_CLAIM + CLAUSE +
                "        SIGBUS, Bus error\n"
                "        printed:\n"
                "        oh\n"
                "        no\n");
}

TEST(ReportTest, ControlCharactersAreVisible) {
  const verdict_t verdict = {Ending::FAILED, "", {{"here", "\xc3\xa9", "\xff\x1b[0m\u202E"}}, ""};
  EXPECT_EQ(textOf(verdict), "FAIL " + NAME_AND_CLAIM + CLAUSE +
                                 "        here: expected \xc3\xa9, came \\xff\\u001b[0m\\u202e\n");
}

TEST(ReportTest, LongLinesGoOnAtTheirIndent) {
  const std::string words = "one two three four five six seven eight nine ten eleven twelve";
  const check_t check = {"suite.name", words.c_str(), "Heading", checksNothing};
  const std::string value(130, 'x');
  const std::string text =
      textOf({&check, {Ending::FAILED, "", {{"there", words + " " + words, value}}, ""}, {}});
  EXPECT_EQ(text,
            "FAIL  suite.name                         one two three four five six seven eight\n"
            "                                         nine ten eleven twelve\n" +
                CLAUSE +
                "        there:\n"
                "          expected  one two three four five six seven eight nine ten eleven\n"
                "                    twelve one two three four five six seven eight nine ten\n"
                "                    eleven twelve\n"
                "          came      " +
                value.substr(0, 60) + "\n                    " + value.substr(0, 60) +
                "\n                    " + value.substr(0, 10) + "\n");
}

TEST(ReportTest, CharactersAreNotCutApart) {
  std::string value;
  for (int i = 0; i < 75; ++i) value += "\xc3\xa9";
  const std::string text = textOf({Ending::FAILED, "", {{"here", value, ""}}, ""});
  EXPECT_NE(text.find("          expected  " + value.substr(0, 120) + "\n"), std::string::npos);
}

TEST(ReportTest, NoLineOfTheListExceeds80Columns) {
  std::ostringstream out;
  writeList(out, allChecks());
  EXPECT_LE(longestLine(out.str()).size(), 80U) << longestLine(out.str());
}

TEST(ReportTest, AdvisedCheckWarnsUnlessStrict) {
  const verdict_t crashed = {Ending::CRASHED, "SIGBUS, Bus error", {}, ""};
  const std::string rest =
      " suite.other                        advice alone\n"
      "        advised, not required by docs/host-interface.md\n"
      "        SIGBUS, Bus error\n";
  EXPECT_EQ(textOf({&ADVISED_CHECK, crashed, {}, false}), "WARN " + rest);
  EXPECT_EQ(textOf({&ADVISED_CHECK, crashed, {}, true}), "CRASH" + rest);
}

TEST(ReportTest, JsonHasTheContentOfTheLine) {
  std::ostringstream out;
  JsonReport report(out, {{"li\"b.so", 9, "5a", "", "b"}, 7, false});
  report.add({&CHECK, {Ending::SKIPPED, "no \xff such", {}, ""}, std::chrono::milliseconds(5)});
  report.add({&ADVISED_CHECK, {Ending::FAILED, "", {{"w", "e", "c"}}, "p"}, {}});
  Counts counts;
  counts.add({&CHECK, {Ending::SKIPPED, "", {}, ""}, {}});
  counts.add({&ADVISED_CHECK, {Ending::FAILED, "", {}, ""}, {}});
  report.close(counts);
  EXPECT_EQ(
      out.str(),
      R"({"version":1,"tool":")" + std::string(VLT_BUILD_NAME) +
          R"(","library":"li\"b.so","size":9,"sha256":"5a","build_id":null,"build":"b",)"
          R"("seed":7,"loads":false,"strict":false,"checks":[)"
          "\n"
          R"({"name":"suite.name","claim":"what holds","level":"required","clause":"Heading",)"
          R"("outcome":"skipped","milliseconds":5,"reason":"no � such"},)"
          "\n"
          R"({"name":"suite.other","claim":"advice alone","level":"advised",)"
          R"("outcome":"failed","milliseconds":0,)"
          R"("differences":[{"where":"w","expected":"e","came":"c"}],"printed":"p"})"
          "\n"
          R"(],"counts":{"warned":1,"ok":0,"failed":0,"crashed":0,"hung":0,"skipped":1}})"
          "\n");
}

TEST(ReportTest, SkippedIsGoodFailedIsNot) {
  Counts counts;
  counts.add({&CHECK, {}, {}});
  counts.add({&CHECK, {Ending::SKIPPED, "", {}, ""}, {}});
  EXPECT_TRUE(counts.allGood());
  for (const Ending bad : {Ending::FAILED, Ending::CRASHED, Ending::HUNG}) {
    const verdict_t verdict = {bad, "", {}, ""};
    Counts worse = counts;
    worse.add({&CHECK, verdict, {}});
    EXPECT_FALSE(worse.allGood());
    Counts warned = counts;
    warned.add({&ADVISED_CHECK, verdict, {}, false});
    EXPECT_TRUE(warned.allGood());
    Counts strict = counts;
    strict.add({&ADVISED_CHECK, verdict, {}, true});
    EXPECT_FALSE(strict.allGood());
  }
}

} // namespace com::velanto::connectivity::test

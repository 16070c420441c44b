#include "tools/check/report.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace com::velanto::connectivity::test {

namespace {

using namespace tools::check;

void checksNothing(Trial&) {}
const check_t CHECK = {"suite.name", "what holds", checksNothing};

std::string textOf(const verdict_t& verdict, bool coloured = false) {
  std::ostringstream out;
  TextReport(out, {"lib.so", 7, true}, coloured).add({&CHECK, verdict, {}});
  return out.str();
}

const std::string NAME_AND_CLAIM = " suite.name                         what holds";

} // namespace

TEST(ReportTest, PassedCheckIsALine) { EXPECT_EQ(textOf({}), "ok   " + NAME_AND_CLAIM + "\n"); }

TEST(ReportTest, ColourIsAroundTheMark) {
  EXPECT_EQ(textOf({}, true), "\x1b[32mok   \x1b[0m" + NAME_AND_CLAIM + "\n");
}

TEST(ReportTest, DetailsAreIndentedAndLongOnesStacked) {
  const std::string line(60, 'x');
  const verdict_t verdict = {
      Ending::FAILED, "", {{"here", "4", "3"}, {"there", line, line}, {"log", "a", "b\nc"}}, ""};
  EXPECT_EQ(textOf(verdict), "FAIL " + NAME_AND_CLAIM +
                                 "\n"
                                 "        here: expected 4, came 3\n"
                                 "        there:\n"
                                 "          expected  " +
                                 line + "\n          came      " + line +
                                 "\n"
                                 "        log:\n"
                                 "          expected  a\n"
                                 "          came      b\n"
                                 "        c\n");
}

TEST(ReportTest, CrashShowsReasonAndOutput) {
  EXPECT_EQ(textOf({Ending::CRASHED, "SIGBUS, Bus error", {}, "oh\nno\n"}),
            "CRASH" + NAME_AND_CLAIM +
                "\n"
                "        SIGBUS, Bus error\n"
                "        printed:\n"
                "        oh\n"
                "        no\n");
}

TEST(ReportTest, BytesOutsideUtf8AreReplaced) {
  const verdict_t verdict = {Ending::FAILED, "", {{"here", "\xc3\xa9", "\xff\x1b[0m"}}, ""};
  EXPECT_EQ(textOf(verdict),
            "FAIL " + NAME_AND_CLAIM + "\n        here: expected \xc3\xa9, came ??[0m\n");
}

TEST(ReportTest, JsonHasTheContentOfTheLine) {
  std::ostringstream out;
  JsonReport report(out, {"li\"b.so", 7, false});
  report.add({&CHECK, {Ending::SKIPPED, "no \xff such", {}, ""}, std::chrono::milliseconds(5)});
  report.add({&CHECK, {Ending::FAILED, "", {{"w", "e", "c"}}, "p"}, {}});
  Counts counts;
  counts.add(Ending::SKIPPED);
  counts.add(Ending::FAILED);
  report.close(counts);
  EXPECT_EQ(out.str(),
            R"({"library":"li\"b.so","seed":7,"loads":false,"checks":[)"
            "\n"
            R"({"name":"suite.name","claim":"what holds","outcome":"skipped","milliseconds":5,)"
            R"("reason":"no ? such"},)"
            "\n"
            R"({"name":"suite.name","claim":"what holds","outcome":"failed","milliseconds":0,)"
            R"("differences":[{"where":"w","expected":"e","came":"c"}],"printed":"p"})"
            "\n"
            R"(],"counts":{"ok":0,"failed":1,"crashed":0,"hung":0,"skipped":1}})"
            "\n");
}

TEST(ReportTest, SkippedIsGoodFailedIsNot) {
  Counts counts;
  counts.add(Ending::OK);
  counts.add(Ending::SKIPPED);
  EXPECT_TRUE(counts.allGood());
  for (const Ending bad : {Ending::FAILED, Ending::CRASHED, Ending::HUNG}) {
    Counts worse = counts;
    worse.add(bad);
    EXPECT_FALSE(worse.allGood());
  }
}

} // namespace com::velanto::connectivity::test

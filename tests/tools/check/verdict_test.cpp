#include "tools/check/verdict.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace com::velanto::connectivity::test {

namespace {

using tools::check::Ending;

// '|' is a record's NUL here.
std::string records(std::string text) {
  for (char& c : text) c = c == '|' ? '\0' : c;
  return text;
}

tools::check::verdict_t judgeExit(const std::string& written, int status = 0) {
  return tools::check::judge({false, status << 8, records(written), "noise"});
}

} // namespace

TEST(VerdictTest, CheckThatCameToItsEndIsOk) {
  const auto verdict = judgeExit("E|");
  EXPECT_EQ(verdict.ending, Ending::OK);
  EXPECT_EQ(verdict.reason, "");
  EXPECT_EQ(verdict.printed, "") << "of no interest";
}

TEST(VerdictTest, DifferencesMakeAFailure) {
  const auto verdict = judgeExit("F|here|4|3|F|there|||E|");
  EXPECT_EQ(verdict.ending, Ending::FAILED);
  ASSERT_EQ(verdict.mismatches.size(), 2U);
  EXPECT_EQ(verdict.mismatches[0], (tools::check::mismatch_t{"here", "4", "3"}));
  EXPECT_EQ(verdict.mismatches[1], (tools::check::mismatch_t{"there", "", ""}));
  EXPECT_EQ(verdict.printed, "noise");
}

TEST(VerdictTest, SkippedKeepsItsReason) {
  const auto verdict = judgeExit("S|not here|E|");
  EXPECT_EQ(verdict.ending, Ending::SKIPPED);
  EXPECT_EQ(verdict.reason, "not here");
}

TEST(VerdictTest, SignalIsACrashAndKeepsEarlierRecords) {
  const auto verdict = tools::check::judge({false, SIGSEGV, records("F|here|4|3|"), ""});
  EXPECT_EQ(verdict.ending, Ending::CRASHED);
  EXPECT_EQ(verdict.reason, "signal 11, SIGSEGV, Segmentation fault");
  EXPECT_EQ(verdict.mismatches.size(), 1U);
}

TEST(VerdictTest, ExitBeforeTheEndIsACrash) {
  for (const int status : {0, 1}) {
    const auto verdict = judgeExit("", status);
    EXPECT_EQ(verdict.ending, Ending::CRASHED);
    EXPECT_EQ(verdict.reason, "the process was ended with exit status " + std::to_string(status) +
                                  " in the middle of the check");
  }
}

TEST(VerdictTest, StoppedIsAlwaysHung) {
  const auto verdict = tools::check::judge({true, SIGKILL, records("E|"), ""});
  EXPECT_EQ(verdict.ending, Ending::HUNG);
  EXPECT_EQ(verdict.reason, "did not end in time");
}

TEST(VerdictTest, RecordThatBreaksOffWasNotWritten) {
  EXPECT_EQ(judgeExit("F|here|4|3").mismatches.size(), 0U);
  EXPECT_EQ(judgeExit("F|here").mismatches.size(), 0U);
  EXPECT_EQ(judgeExit("E").ending, Ending::CRASHED);
}

} // namespace com::velanto::connectivity::test

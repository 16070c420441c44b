#include "tools/check/outcome.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace com::velanto::connectivity::test {

namespace {

using tools::check::Outcome;

// The records' NULs are written as '|' here.
std::string records(std::string text) {
  for (char& c : text) c = c == '|' ? '\0' : c;
  return text;
}

tools::check::verdict_t judgeExit(const std::string& written, int status = 0) {
  return tools::check::judge({false, status << 8, records(written), "noise"});
}

} // namespace

TEST(OutcomeTest, CheckThatCameToItsEndIsOk) {
  const auto verdict = judgeExit("E|");
  EXPECT_EQ(verdict.outcome, Outcome::ok);
  EXPECT_EQ(verdict.reason, "");
  EXPECT_EQ(verdict.printed, "") << "of no interest";
}

TEST(OutcomeTest, DifferencesMakeAFailure) {
  const auto verdict = judgeExit("F|here|4|3|F|there|||E|");
  EXPECT_EQ(verdict.outcome, Outcome::failed);
  ASSERT_EQ(verdict.differences.size(), 2U);
  EXPECT_EQ(verdict.differences[0], (tools::check::difference_t{"here", "4", "3"}));
  EXPECT_EQ(verdict.differences[1], (tools::check::difference_t{"there", "", ""}));
  EXPECT_EQ(verdict.printed, "noise");
}

TEST(OutcomeTest, SkippedKeepsItsReason) {
  const auto verdict = judgeExit("S|not here|E|");
  EXPECT_EQ(verdict.outcome, Outcome::skipped);
  EXPECT_EQ(verdict.reason, "not here");
}

TEST(OutcomeTest, SignalIsACrashAndKeepsWhatWasFoundBefore) {
  const auto verdict = tools::check::judge({false, SIGSEGV, records("F|here|4|3|"), ""});
  EXPECT_EQ(verdict.outcome, Outcome::crashed);
  EXPECT_EQ(verdict.reason, "SIGSEGV, Segmentation fault");
  EXPECT_EQ(verdict.differences.size(), 1U);
}

TEST(OutcomeTest, ExitBeforeTheEndIsACrash) {
  for (const int status : {0, 1}) {
    const auto verdict = judgeExit("", status);
    EXPECT_EQ(verdict.outcome, Outcome::crashed);
    EXPECT_EQ(verdict.reason, "the process was ended with exit status " + std::to_string(status) +
                                  " in the middle of the check");
  }
}

TEST(OutcomeTest, StoppedIsHungWhateverElse) {
  const auto verdict = tools::check::judge({true, SIGKILL, records("E|"), ""});
  EXPECT_EQ(verdict.outcome, Outcome::hung);
  EXPECT_EQ(verdict.reason, "did not end in time");
}

TEST(OutcomeTest, RecordThatBreaksOffWasNotWritten) {
  EXPECT_EQ(judgeExit("F|here|4|3").differences.size(), 0U);
  EXPECT_EQ(judgeExit("F|here").differences.size(), 0U);
  EXPECT_EQ(judgeExit("E").outcome, Outcome::crashed);
}

} // namespace com::velanto::connectivity::test

#include "tools/check/runner.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <stdexcept>
#include <thread>

namespace com::velanto::connectivity::test {

namespace {

using tools::check::Ending;
using tools::check::Trial;
using tools::check::verdict_t;

verdict_t run(const std::function<void(Trial&)>& body, int limit_in_milliseconds = 20'000) {
  return tools::check::runInChild({{"lib.so"}, 7, std::chrono::milliseconds(limit_in_milliseconds)},
                                  body);
}

} // namespace

TEST(RunnerTest, BodyKnowsLibraryAndSeed) {
  const verdict_t verdict = run([](Trial& trial) {
    trial.equal("library", "lib.so", trial.path());
    trial.equal("seed", 7, trial.seed());
  });
  EXPECT_EQ(verdict.ending, Ending::OK);
}

TEST(RunnerTest, DifferencesComeBack) {
  const verdict_t verdict = run([](Trial& trial) { trial.equal("answer", 42, 41); });
  EXPECT_EQ(verdict.ending, Ending::FAILED);
  ASSERT_EQ(verdict.mismatches.size(), 1U);
  EXPECT_EQ(verdict.mismatches[0], (tools::check::mismatch_t{"answer", "42", "41"}));
}

TEST(RunnerTest, DifferencesAreLimitedInNumber) {
  const verdict_t verdict = run([](Trial& trial) {
    for (int i = 0; i < 1000; ++i) trial.equal("answer", 42, i + 100);
  });
  EXPECT_EQ(verdict.mismatches.size(), static_cast<std::size_t>(Trial::MOST_MISMATCHES));
}

TEST(RunnerTest, ExceptionIsADifference) {
  const verdict_t verdict = run([](Trial&) { throw std::runtime_error("jam"); });
  EXPECT_EQ(verdict.ending, Ending::FAILED);
  ASSERT_EQ(verdict.mismatches.size(), 1U);
  EXPECT_EQ(verdict.mismatches[0].actual, "exception: jam");
}

TEST(RunnerTest, ExceptionInAThreadIsADifference) {
  const verdict_t verdict = run([](Trial& trial) {
    std::thread([&] { trial.part([] { throw std::runtime_error("jam"); }); }).join();
  });
  EXPECT_EQ(verdict.ending, Ending::FAILED);
  ASSERT_EQ(verdict.mismatches.size(), 1U);
  EXPECT_EQ(verdict.mismatches[0].actual, "exception: jam");
}

TEST(RunnerTest, SkippingEndsTheBody) {
  const verdict_t verdict = run([](Trial& trial) {
    trial.skip("no such thing here");
    trial.equal("reached", false, true);
  });
  EXPECT_EQ(verdict.ending, Ending::SKIPPED);
  EXPECT_EQ(verdict.reason, "no such thing here");
}

TEST(RunnerTest, SignalIsNamed) {
  const verdict_t verdict = run([](Trial&) { std::raise(SIGTERM); });
  EXPECT_EQ(verdict.ending, Ending::CRASHED);
  EXPECT_EQ(verdict.reason, "signal 15, SIGTERM, Terminated");
}

TEST(RunnerTest, ExitInTheMiddleIsNoSuccess) {
  EXPECT_EQ(run([](Trial&) { _exit(0); }).ending, Ending::CRASHED);
}

TEST(RunnerTest, BodyThatHangsIsStopped) {
  const auto start = std::chrono::steady_clock::now();
  const verdict_t verdict = run([](Trial&) { pause(); }, 50);
  EXPECT_EQ(verdict.ending, Ending::HUNG);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(RunnerTest, OutputIsCaughtAndKnownToTheBody) {
  const verdict_t verdict = run([](Trial& trial) {
    std::cout << "to output\n" << std::flush;
    std::cerr << "to error\n";
    trial.equal("printed", "nothing", trial.printed());
  });
  ASSERT_EQ(verdict.mismatches.size(), 1U);
  EXPECT_EQ(verdict.mismatches[0].actual, "to output\nto error\n");
  EXPECT_EQ(verdict.printed, "to output\nto error\n");
}

TEST(RunnerTest, MuchOutputDoesNotBlock) {
  const verdict_t verdict = run([](Trial& trial) {
    const std::string much(1'000'000, 'x');
    std::cerr << much;
    trial.equal("answer", 42, 41);
  });
  EXPECT_EQ(verdict.ending, Ending::FAILED);
  EXPECT_EQ(verdict.printed.size(), 1'000'000U);
}

} // namespace com::velanto::connectivity::test

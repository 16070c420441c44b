#include "recorder/library_life.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <thread>

namespace com::velanto::connectivity::test {
namespace {

using recorder::BatchNumber;

// The exit status of a child that runs `body`.
int inChild(const std::function<int()>& body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

constexpr std::uint64_t WAY = 2;

TEST(LibraryLifeTest, InnerRecordersUseTheNumberOfTheOutermost) {
  BatchNumber outer(WAY);
  const std::uint64_t number = outer.get();
  {
    BatchNumber inner(WAY);
    EXPECT_EQ(inner.get(), number);
  }
  EXPECT_EQ(outer.get(), number);
}

TEST(LibraryLifeTest, InnerRecorderTakesOneWhenTheOuterHasNot) {
  const BatchNumber outer(WAY);
  std::uint64_t first = 0;
  {
    BatchNumber inner(WAY);
    first = inner.get();
  }
  BatchNumber next(WAY);
  EXPECT_EQ(next.get(), first + 1);
}

TEST(LibraryLifeTest, BatchOnAnotherWayHasItsOwnNumber) {
  BatchNumber outer(WAY);
  const std::uint64_t number = outer.get();
  {
    BatchNumber answer(WAY + 1);
    EXPECT_EQ(answer.get(), number + 1);
    BatchNumber inner(WAY + 1);
    EXPECT_EQ(inner.get(), number + 1);
  }
  {
    BatchNumber answer(WAY + 1);
    EXPECT_EQ(answer.get(), number + 2);
  }
  EXPECT_EQ(outer.get(), number);
}

TEST(LibraryLifeTest, EachBatchHasItsNumber) {
  BatchNumber here(WAY);
  const std::uint64_t number = here.get();
  std::uint64_t there = 0;
  std::thread([&] { there = BatchNumber(WAY).get(); }).join();
  EXPECT_NE(there, number);
}

TEST(LibraryLifeTest, ChildHasARunOfItsOwn) {
  recorder::watchForks();
  const std::uint64_t run = recorder::currentRun();
  EXPECT_NE(run, 0U);
  EXPECT_EQ(inChild([&] { return recorder::currentRun() == run ? 1 : 0; }), 0);
  EXPECT_EQ(recorder::currentRun(), run);
}

} // namespace
} // namespace com::velanto::connectivity::test

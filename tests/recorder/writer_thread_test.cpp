// The recorder's thread: the ends of its sessions, its sleep and its place among the host's threads.
#include "recorder/writer_thread.hpp"

#include <gmock/gmock.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "tests/recorder/recorder_fixture.hpp"

namespace com::velanto::connectivity::test {
namespace {

using recorder::counts_t;
using ::testing::SizeIs;

using WriterThreadTest = RecorderFixture;

TEST_F(WriterThreadTest, EndsAfterItsMessages) {
  const auto recorder = make("stopAfterMessages", whole(3));
  recorder->start();
  sendBatch(*recorder, 2);
  sendBatch(*recorder, 2);
  send(*recorder, event("a"));
  recorder->shutdown();
  EXPECT_EQ(folder_.counts(), (counts_t{5, 3, 2, 0}));
}

TEST_F(WriterThreadTest, EndsAfterItsOnlyMessage) {
  const auto recorder = make("stopAfterMessages", whole(1));
  recorder->start();
  sendBatch(*recorder, 2);
  recorder->shutdown();
  EXPECT_EQ(folder_.counts(), (counts_t{2, 1, 1, 0}));
}

TEST_F(WriterThreadTest, LastsForItsSeconds) {
  const auto recorder = make("stopAfterSeconds", whole(1000));
  recorder->start();
  for (std::size_t recorded = 1; recorded <= 5; ++recorded) {
    send(*recorder, event("a"));
    waitUntil([&] { return folder_.messages().size() == recorded; });
  }
}

TEST_F(WriterThreadTest, EndsAfterItsSeconds) {
  const auto recorder = make("stopAfterSeconds", whole(3));
  recorder->start();
  send(*recorder, event("a"));
  waitUntil([&] {
    const texts_t lines = folder_.lines();
    return !lines.empty() && lines.back().starts_with(R"({"recording":{"foot":)");
  });
  send(*recorder, event("b"));
  recorder->shutdown();
  EXPECT_THAT(folder_.messages(), SizeIs(1));
}

TEST_F(WriterThreadTest, FileSwitchesRecordingOnAndOff) {
  const std::filesystem::path on = folder_.path() / "on";
  const auto recorder = make("whileFileExists", text(on.c_str()));
  recorder->start();
  const auto until = [&](const std::string& last) {
    waitUntil([&] {
      send(*recorder, event("a"));
      const texts_t lines = folder_.lines();
      return !lines.empty() && lines.back().starts_with(last);
    });
  };
  send(*recorder, event("before"));
  std::ofstream(on) << "";
  until(R"({"recorded":)");
  std::filesystem::remove(on);
  until(R"({"recording":{"foot":)");
  EXPECT_GT(folder_.counts().filtered, 0U);
  std::ofstream(on) << "";
  waitUntil([&] {
    send(*recorder, event("a"));
    return folder_.recordings().size() == 2;
  });
  recorder->shutdown();
  const counts_t counts = folder_.counts();
  EXPECT_EQ(counts.seen, counts.recorded + counts.filtered);
  EXPECT_EQ(counts.recorded, folder_.messages().size());
}

TEST_F(WriterThreadTest, WriterHasANameAndSleeps) {
  const auto recorder = make();
  recorder->start();
  std::filesystem::path writer;
  waitUntil([&] {
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
      if (linesOf(thread.path() / "comm") == texts_t{"recorder"}) writer = thread.path();
    }
    return !writer.empty();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  const texts_t nanoseconds = linesOf(writer / "schedstat"); // first those on a processor
  if (nanoseconds.empty()) GTEST_SKIP() << "the kernel does not count";
  EXPECT_LT(std::stoull(nanoseconds[0]), 100'000'000u);
}

TEST_F(WriterThreadTest, SignalsAreForTheHostsThreads) {
  const auto recorder = make();
  recorder->start();
  const auto handler = std::signal(SIGUSR1, [](int) {});
  sigset_t signals;
  sigset_t before;
  sigemptyset(&signals);
  sigaddset(&signals, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &signals, &before);
  EXPECT_EQ(sigismember(&before, SIGUSR1), 0);
  kill(getpid(), SIGUSR1);
  const timespec second{1, 0};
  EXPECT_EQ(sigtimedwait(&signals, nullptr, &second), SIGUSR1); // no other thread has taken it
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  std::signal(SIGUSR1, handler);
}

} // namespace
} // namespace com::velanto::connectivity::test

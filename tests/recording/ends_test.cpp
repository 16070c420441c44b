// Recordings that end in other ways than by a shutdown: a killed process, a full disk, a fork, an
// unloaded library. Messages pass, and the files keep the law of their numbers.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <memory>
#include <thread>

#include "tests/recording/chain.hpp"
#include "tests/recording/child.hpp"
#include "tests/recording/cut_writes.hpp"
#include "tests/recording/recording.hpp"
#include "tests/recording/small_disk.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/plugin_library.hpp"
#include "tests/support/waiting.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {
namespace {

using namespace std::chrono_literals;

void ignoreBatch(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) noexcept {}

// A recorder of a library loaded for it alone.
class LoneRecorder {
 public:
  explicit LoneRecorder(const data_t& settings)
      : library_(VLT_RECORDER_PATH, tools::PluginLibrary::Version::OURS,
                 tools::PluginLibrary::RECORDER_CLASS_NAME),
        plugin_(library_, "r", "c", settings) {
    plugin_.link({nullptr, ignoreBatch}, {nullptr, ignoreBatch});
    plugin_.start();
  }

  // Sends a batch of ten messages of some hundred bytes so many times; false when one fails.
  bool send(int times) {
    bool worked = true;
    for (int i = 0; i < times; ++i) {
      worked = plugin_.send(tools::Direction::TOWARDS_HOST, batch_) && worked;
    }
    return worked;
  }
  tools::HostedPlugin& plugin() { return plugin_; }

 private:
  static std::vector<Message> messages() {
    constexpr int MESSAGES = 10;
    std::vector<Message> batch;
    batch.reserve(MESSAGES);
    for (int i = 0; i < MESSAGES; ++i) {
      batch.push_back(notification(
          "t/s/events/1", mapOf("id", whole(i), "text", text(std::string(300, 'x').c_str()))));
    }
    return batch;
  }

  tools::PluginLibrary library_;
  std::vector<Message> batch_ = messages();
  tools::HostedPlugin plugin_;
};

class RecordingEnds : public HostFixture {
 protected:
  std::vector<recorded_file_t> recording() const {
    std::vector<recorded_file_t> files = readRecording(folder_.path(""), "r-c");
    EXPECT_EQ(breachIn(files), "");
    return files;
  }
  data_t settings() const {
    return recorderSettings(folder_.path(""), "maxFileMebibytes", whole(1), "maxFiles", whole(4));
  }

  const TemporaryFolder folder_;
};

TEST_F(RecordingEnds, KilledProcessLeavesWholeLines) {
  for (const auto life : {20ms, 150ms, 400ms}) {
    const pid_t child = startChild([this] {
      LoneRecorder recorder(settings());
      while (recorder.send(10)) std::this_thread::sleep_for(1ms);
      return 1;
    });
    std::this_thread::sleep_for(life);
    if (life == 400ms) waitUntil([this] { return bytesIn(folder_.path("")) > 100'000; });
    kill(child, SIGKILL);
    EXPECT_EQ(endOf(child), -SIGKILL);
    static_cast<void>(recording());
  }
  EXPECT_GT(recordsIn(recording()), 0);
  const std::optional<foot_t> foot = recording().back().foot;
  EXPECT_TRUE(!foot || foot->next); // it may die between two files
  EXPECT_LE(bytesIn(folder_.path("")), 4U << 20U);
}

TEST_F(RecordingEnds, ProcessKilledWithinAWriteLeavesACutLine) {
  const int end = inChild([this] {
    LoneRecorder recorder(settings());
    dieInNextWrite();
    while (recorder.send(1)) std::this_thread::sleep_for(1ms);
    return 1;
  });
  EXPECT_EQ(end, -SIGKILL);
  ASSERT_EQ(recording().size(), 1U);
  EXPECT_GT(recording()[0].left_over, 0U);
  const std::int64_t before = recordsIn(recording());
  EXPECT_GT(before, 0);
  LoneRecorder next(settings());
  EXPECT_TRUE(next.send(1));
  EXPECT_TRUE(next.plugin().shutdown());
  EXPECT_EQ(recordsIn(recording()), before + 10);
}

TEST_F(RecordingEnds, HalfAWriteIsContinued) {
  const int end = inChild([this] {
    LoneRecorder recorder(settings());
    halveWrites();
    return recorder.send(10) && recorder.plugin().shutdown() ? 0 : 1;
  });
  EXPECT_EQ(end, 0);
  EXPECT_EQ(recordsIn(recording()), 100);
}

// A write beyond the limit also raises a signal, which ends a process by default.
TEST_F(RecordingEnds, LimitOfFileSizesCostsRecordsOnly) {
  const int end = inChild([this] {
    const rlimit limit{200'000, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &limit);
    LoneRecorder recorder(settings());
    bool worked = recorder.send(200);
    waitUntil([&] { return !takeLog().empty(); }); // it fails
    const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &none);
    std::int64_t sent = 2000;
    waitUntil([&] { // until it has tried again and works
      worked = recorder.send(10) && worked;
      sent += 100;
      return !takeLog().empty();
    });
    worked = recorder.plugin().shutdown() && worked;
    return worked && recording().back().foot->seen == sent ? 0 : 1;
  });
  EXPECT_EQ(end, 0);
  const std::vector<recorded_file_t> files = recording();
  ASSERT_FALSE(files.empty());
  ASSERT_TRUE(files.back().foot);
  EXPECT_GT(files.back().foot->lost, 100);
  EXPECT_EQ(files.back().foot->recorded, recordsIn(files));
}

TEST_F(RecordingEnds, FullDiskCostsRecordsOnly) {
  constexpr int NO_DISK = 77;
  const int end = inChild([this] {
    if (!mountedSmallDisk(folder_.path(""), "300k")) return NO_DISK;
    LoneRecorder recorder(settings());
    bool worked = true;
    for (int i = 0; i < 20; ++i) {
      worked = recorder.send(10) && worked;
      std::this_thread::sleep_for(10ms);
    }
    worked = recorder.plugin().shutdown() && worked;
    const std::vector<recorded_file_t> files = readRecording(folder_.path(""), "r-c");
    if (!breachIn(files).empty()) return 2;
    return worked && recordsIn(files) > 100 && recordsIn(files) < 2000 ? 0 : 3;
  });
  if (end == NO_DISK) GTEST_SKIP() << "this system mounts no disk for a test";
  EXPECT_EQ(end, 0);
}

TEST_F(RecordingEnds, ForkedChildPassesMessagesAndRecordsNothing) {
  LoneRecorder recorder(settings());
  EXPECT_TRUE(recorder.send(5));
  const int end = inChild([&] { return recorder.send(100) ? 0 : 1; });
  EXPECT_EQ(end, 0);
  EXPECT_TRUE(recorder.send(5));
  EXPECT_TRUE(recorder.plugin().shutdown());
  ASSERT_EQ(recording().size(), 1U);
  EXPECT_EQ(recording()[0].foot->seen, 100);
  EXPECT_EQ(recordsIn(recording()), 100);
}

TEST_F(RecordingEnds, ForkedChildMayDestroyItsCopy) {
  auto recorder = std::make_unique<LoneRecorder>(settings());
  EXPECT_TRUE(recorder->send(5));
  const int end = inChild([&] {
    const bool worked = recorder->plugin().shutdown();
    recorder.reset();
    return worked ? 0 : 1;
  });
  EXPECT_EQ(end, 0);
  EXPECT_TRUE(recorder->send(5));
  recorder.reset();
  EXPECT_EQ(recordsIn(recording()), 100);
  EXPECT_TRUE(recording().back().foot);
}

TEST_F(RecordingEnds, ThousandLivesLeaveNothing) {
  constexpr int LIVES = 1000;
  const auto descriptors = [] {
    const std::filesystem::directory_iterator open("/proc/self/fd");
    return std::distance(begin(open), end(open));
  };
  const auto before = descriptors();
  for (int i = 0; i < LIVES; ++i) {
    LoneRecorder recorder(settings());
    ASSERT_TRUE(recorder.send(1));
  }
  EXPECT_EQ(descriptors(), before);
  const std::filesystem::directory_iterator threads("/proc/self/task");
  EXPECT_LE(std::distance(begin(threads), end(threads)), 2) << "with a sanitizer's own";
  EXPECT_EQ(recording().size(), 4U);
  EXPECT_EQ(dlopen(VLT_RECORDER_PATH, RTLD_NOLOAD | RTLD_LAZY), nullptr);
}

} // namespace
} // namespace com::velanto::connectivity::test

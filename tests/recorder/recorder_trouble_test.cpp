// The recorder in trouble, and the ways in which it says so: refused creations, lines in the log, the
// status of the host.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <mutex>
#include <thread>

#include "plugin/entry_points.hpp"
#include "tests/recorder/recorder_fixture.hpp"

namespace com::velanto::connectivity::test {
namespace {

using recorder::counts_t;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RecorderTroubleTest : public RecorderFixture {
 protected:
  static log_line_t line(const std::string& text) {
    return {"connectivity.before.site", 3, "<connectivity.before.site> " + text};
  }
};

TEST_F(RecorderTroubleTest, WrongSettingRefusesTheCreationInOneLine) {
  const data_t settings = mapOf("recordingFolder", text("/tmp"), "maxFiles", whole(0));
  EXPECT_EQ(entry_points::create<OstroviaNotificationsRecorder>(
                "before", "site", settings.underlying(), nullptr, nullptr),
            nullptr);
  EXPECT_THAT(takeLog(),
              ElementsAre(log_line_t{"connectivity.before.site", 2,
                                     "<connectivity.before.site> Exception from create: Setting "
                                     "'maxFiles' must be an integer from 1 to 100000, not 0"}));
}

TEST_F(RecorderTroubleTest, HeadAboveTheLongestIsRefused) {
  const map_t settings =
      mapOf("recordingFolder", text(folder_.path().c_str()), "recordingName", text("r"));
  const auto head_with = [&](const std::string& name) {
    const auto recorder = makeNamed(name.c_str(), settings);
    recorder->start();
    send(*recorder, event("a"));
    recorder->shutdown();
    return linesOf(folder_.path() / folder_.recordings().back())[0];
  };
  const std::string longest(131072 - head_with("").size(), 'x');
  EXPECT_EQ(head_with(longest).size(), 131072u); // the file's number for the line's end
  EXPECT_EQ(errorOf([&] { head_with(longest + 'x'); }),
            "Names and settings are too long for a file's head");
}

TEST_F(RecorderTroubleTest, MissingFolderCostsRecordsAndOneLine) {
  std::filesystem::remove(folder_.path());
  const auto recorder = make();
  int passed = 0;
  recorder->setNextTowardsHost(std::make_unique<AnyLink>([&](Message*, Message*) { ++passed; }));
  recorder->start();
  send(*recorder, event("a"));
  std::vector<log_line_t> log;
  waitUntil([&] { return !(log = takeLog()).empty(); });
  EXPECT_THAT(log, ElementsAre(line("Recording fails: cannot make " + folder_.path().string() +
                                    "/before-site.lock: No such file or directory. Messages pass "
                                    "on and are not recorded until it works again")));
  for (int i = 0; i < 15; ++i) { // attempts without a report
    send(*recorder, event("b"));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  std::filesystem::create_directory(folder_.path());
  waitUntil([&] {
    send(*recorder, event("c"));
    return !folder_.recordings().empty();
  });
  recorder->shutdown();
  EXPECT_GE(passed, 3);
  const counts_t counts = folder_.counts();
  EXPECT_EQ(counts.seen, static_cast<std::uint64_t>(passed));
  EXPECT_EQ(counts.seen, counts.recorded + counts.lost);
  EXPECT_EQ(counts.recorded, folder_.messages().size());
  ASSERT_THAT(folder_.gaps(), SizeIs(1));
  EXPECT_EQ(numberIn(folder_.gaps()[0], "lost"), counts.lost);
  EXPECT_THAT(takeLog(), ElementsAre(line("Recording works again; messages lost: " +
                                          std::to_string(counts.lost))));
}

TEST_F(RecorderTroubleTest, LossesJustBeforeTheShutdownAreInAGap) {
  std::filesystem::remove(folder_.path());
  const auto recorder = make();
  recorder->start();
  send(*recorder, event("a"));
  waitUntil([&] { return !takeLog().empty(); });
  std::filesystem::create_directory(folder_.path());
  recorder->shutdown();
  ASSERT_THAT(folder_.gaps(), SizeIs(1));
  EXPECT_EQ(folder_.counts(), (counts_t{1, 0, 0, 1}));
}

TEST_F(RecorderTroubleTest, WithoutAThreadMessagesPassAndAreLost) {
  const auto recorder = make();
  const pid_t child = fork();
  if (child == 0) {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_NPROC, &none);
    static_cast<void>(setuid(65534)); // the limit is not for root
    recorder->start();
    send(*recorder, event("a"));
    recorder->shutdown();
    const std::vector<log_line_t> log = takeLog();
    _exit(log.size() == 1 && log[0] == line("Recording fails: cannot start a thread. Messages pass "
                                            "on and are not recorded until it works again")
              ? 0
              : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_THAT(folder_.recordings(), IsEmpty());
}

TEST_F(RecorderTroubleTest, EachRecoveryTellsItsOwnLosses) {
  const auto recorder = make();
  recorder->start();
  std::uint64_t told = 0;
  const auto fails_until = [&](const std::function<void()>& mend) {
    send(*recorder, event("a"));
    waitUntil([&] { return !takeLog().empty(); });
    mend();
    waitUntil([&] {
      send(*recorder, event("b"));
      const auto log = takeLog();
      if (!log.empty()) told += std::stoull(log[0].text.substr(log[0].text.rfind(' ')));
      return !log.empty();
    });
  };
  std::filesystem::remove_all(folder_.path());
  fails_until([&] { std::filesystem::create_directory(folder_.path()); });
  std::filesystem::remove_all(folder_.path());
  std::ofstream(folder_.path().parent_path());
  fails_until([&] {
    std::filesystem::remove(folder_.path().parent_path());
    std::filesystem::create_directory(folder_.path());
  });
  recorder->shutdown();
  EXPECT_EQ(folder_.counts().lost, told);
}

TEST_F(RecorderTroubleTest, StoppedRecordingLosesTheRest) {
  const auto recorder =
      make("maxFiles", whole(1), "maxFileMebibytes", whole(1), "whenFull", text("stop"));
  recorder->start();
  const std::string large(100'000, 'x');
  for (int i = 0; i < 20; ++i) send(*recorder, event(large.c_str()));
  std::vector<log_line_t> log;
  waitUntil([&] { return !(log = takeLog()).empty(); });
  EXPECT_THAT(
      log, ElementsAre(line("Recording has ended: its files have reached the bound of maxFiles and "
                            "maxFileMebibytes. Messages pass on and are not recorded")));
  send(*recorder, event("late"));
  recorder->shutdown();
  EXPECT_THAT(takeLog(), IsEmpty());
  EXPECT_THAT(folder_.messages(), SizeIs(10));
  EXPECT_EQ(folder_.counts(), (counts_t{10, 10, 0, 0}));
}

TEST_F(RecorderTroubleTest, ChildOfTheProcessOnlyPassesBatchesOn) {
  auto recorder = make();
  int passed = 0;
  recorder->setNextTowardsHost(std::make_unique<AnyLink>([&](Message*, Message*) { ++passed; }));
  recorder->start();
  send(*recorder, event("a"));
  const pid_t child = fork();
  if (child == 0) {
    sendBatch(*recorder, 2);
    recorder->start();
    recorder->shutdown();
    recorder.reset();
    _exit(passed == 2 ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  send(*recorder, event("b"));
  recorder->shutdown();
  EXPECT_EQ(folder_.counts(), (counts_t{2, 2, 0, 0}));
}

TEST_F(RecorderTroubleTest, RecorderFromBeforeAForkStartsInTheChild) {
  const auto recorder = make();
  const pid_t child = fork();
  if (child == 0) {
    recorder->start();
    send(*recorder, event("a"));
    recorder->shutdown();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(folder_.counts(), (counts_t{1, 1, 0, 0}));
}

// ---- status

// The status maps that a host gets.
class StatusTest : public RecorderFixture {
 public:
  StatusTest() {
    handle_ = unreadable(0x10);
    standin_set_status_sink(take, this);
  }
  StatusTest(const StatusTest&) = delete;
  StatusTest& operator=(const StatusTest&) = delete;
  ~StatusTest() override { standin_set_status_sink(nullptr, nullptr); }

 protected:
  texts_t takeStatus() {
    const std::lock_guard guard(mutex_);
    return std::exchange(status_, {});
  }

 private:
  static void take(void* context, void* handle, const vlt_underlying_map_table_t* table) {
    auto& test = *static_cast<StatusTest*>(context);
    const std::lock_guard guard(test.mutex_);
    vlt_underlying_data_t view{};
    view.tag = VLT_TAG_MAP;
    view.value.map = const_cast<vlt_underlying_map_table_t*>(table);
    const auto& status = data_t::view(view).get<map_t>();
    std::string counts;
    for (const char* const name : {"seen", "recorded", "filtered", "lost"}) {
      counts += std::to_string((*status.find(text(name))).second.get<std::int64_t>()) + " ";
    }
    EXPECT_EQ(handle, unreadable(0x10));
    test.status_.push_back(counts + (*status.find(text("file"))).second.get<const char*>());
  }

  std::mutex mutex_;
  texts_t status_;
};

TEST_F(StatusTest, CountersReachTheHost) {
  auto recorder = make("kinds", listOf(text("events")));
  recorder->start();
  send(*recorder, event("a"));
  send(*recorder, Message());
  recorder->shutdown();
  const std::string path = folder_.path().string() + "/before-site.000001.ndjson";
  EXPECT_EQ(takeStatus().back(), "2 1 1 0 " + path);
  send(*recorder, event("late"));
  recorder.reset();
  EXPECT_THAT(takeStatus(), ElementsAre("3 1 1 1 " + path));
}

TEST_F(StatusTest, NextSecondHasTheNextReport) {
  auto recorder = make();
  recorder->start();
  send(*recorder, event("a"));
  texts_t status;
  waitUntil([&] { return !(status = takeStatus()).empty(); });
  EXPECT_THAT(status.back(), testing::StartsWith("1 1 0 0 "));
  send(*recorder, event("b"));
  waitUntil([&] { return !(status = takeStatus()).empty(); });
  EXPECT_THAT(status.back(), testing::StartsWith("2 2 0 0 "));
  recorder->shutdown();
}

TEST_F(StatusTest, UnchangedCountersAreNotReported) {
  auto recorder = make();
  recorder->start();
  recorder->shutdown();
  EXPECT_THAT(takeStatus(), IsEmpty());
  recorder->start();
  send(*recorder, event("a"));
  recorder->shutdown();
  EXPECT_FALSE(takeStatus().empty());
  recorder.reset();
  EXPECT_THAT(takeStatus(), IsEmpty());
}

} // namespace
} // namespace com::velanto::connectivity::test

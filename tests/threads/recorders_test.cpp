// Recorders under several threads: one that all of them send through, and one for each.
#include <gtest/gtest.h>

#include <atomic>

#include "tests/recorder/recorder_fixture.hpp"
#include "tests/threads/parallel.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr std::uint64_t BATCHES = 400;                    // of each thread
constexpr std::uint64_t MESSAGES = 3 * BATCHES * THREADS; // towards the host

class RecordersTest : public RecorderFixture {
 protected:
  // Some of it is filtered, and some does not fit.
  static void sendTraffic(OstroviaNotificationsRecorder& recorder) {
    const std::string large(20'000, 'x');
    for (std::uint64_t i = 0; i < BATCHES; ++i) {
      Message batch[3] = {event("small"), event(large.c_str()), Message()};
      recorder.sendBatchTowardsHost(batch, batch + 3);
      recorder.sendBatchTowardsTransport(batch, batch + 1);
    }
  }
  // Numbers rise from line to line, and each message is in a line, in a gap or filtered.
  void expectLaw(std::uint64_t seen) const {
    const recorder::counts_t counts = folder_.counts();
    EXPECT_EQ(counts.seen, seen);
    EXPECT_EQ(counts.filtered, seen / 4);
    EXPECT_EQ(counts.seen, counts.recorded + counts.filtered + counts.lost);
    std::uint64_t in_gaps = 0;
    for (const std::string& gap : folder_.gaps()) in_gaps += numberIn(gap, "lost");
    EXPECT_EQ(in_gaps, counts.lost);
    const texts_t messages = folder_.messages();
    EXPECT_EQ(messages.size(), counts.recorded);
    std::uint64_t last = 0;
    for (const std::string& message : messages) {
      const std::uint64_t number = numberIn(message, "number");
      EXPECT_GT(number, last);
      last = number;
    }
  }
};

TEST_F(RecordersTest, ThreadsShareARecorder) {
  const auto recorder =
      make("kinds", listOf(text("events")), "maxFileMebibytes", whole(1), "maxFiles", whole(1000));
  std::atomic<std::ptrdiff_t> passed = 0;
  recorder->setNextTowardsHost(std::make_unique<AnyLink>(
      [&](const Message* start, const Message* end) { passed += end - start; }));
  recorder->start();
  inParallel([&](int) { sendTraffic(*recorder); });
  recorder->shutdown();
  EXPECT_EQ(passed, static_cast<std::ptrdiff_t>(MESSAGES));
  EXPECT_GT(folder_.recordings().size(), 1U);
  expectLaw(MESSAGES + BATCHES * THREADS);
}

TEST_F(RecordersTest, EachThreadHasItsRecorder) {
  std::vector<std::unique_ptr<OstroviaNotificationsRecorder>> recorders;
  RecordingFolder folders[THREADS];
  for (const RecordingFolder& folder : folders) {
    recorders.push_back(makeNamed("before", mapOf("recordingFolder", text(folder.path().c_str()))));
  }
  inParallel([&](int i) {
    auto& recorder = *recorders[static_cast<std::size_t>(i)];
    recorder.start();
    sendTraffic(recorder);
    recorder.shutdown();
  });
  for (const RecordingFolder& folder : folders) EXPECT_EQ(folder.counts().seen, 4 * BATCHES);
}

} // namespace
} // namespace com::velanto::connectivity::test

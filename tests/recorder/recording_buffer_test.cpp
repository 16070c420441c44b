#include "recorder/recording_buffer.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <optional>
#include <string>
#include <thread>

#include "tests/support/allocations.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"
#include "tests/support/waiting.hpp"

namespace com::velanto::connectivity::test {
namespace {

using recorder::Direction;
using recorder::Filter;
using recorder::RecordingBuffer;
using State = RecordingBuffer::State;

constexpr std::uint64_t ENDLESS = 1'000'000'000;

class RecordingBufferTest : public HostFixture {
 protected:
  template <class... KeysAndValues>
  static Filter filterOf(KeysAndValues&&... settings) {
    const auto configuration = recorder::readConfiguration(
        mapOf("recordingFolder", text("f"), std::forward<KeysAndValues>(settings)...), "p", "c");
    return Filter(configuration, 1);
  }
  static Message message(std::size_t size) {
    return notification("t/s/events/1", text(std::string(size, 'x').c_str()));
  }
  void add(const Message& one, const Filter& filter) {
    buffer_.add({{&one, 1}, Direction::HOST, 7}, filter);
  }
  void add(const Message& one) { add(one, all_); }

  // Counts everything taken so far, and checks the law.
  recorder::passage_t take() {
    const RecordingBuffer::taken_t taken = buffer_.take();
    lines_ = taken.lines;
    const recorder::passage_t passage = recorder::readPassage(lines_);
    recorded_ += passage.recorded;
    lost_ += passage.lost;
    EXPECT_EQ(taken.seen, recorded_ + taken.filtered + lost_);
    return passage;
  }

  // Whether nobody wakes the writer in that time.
  bool sleeps(unsigned milliseconds) {
    const auto begin = std::chrono::steady_clock::now();
    buffer_.waker().sleep(milliseconds);
    return std::chrono::steady_clock::now() - begin >= std::chrono::milliseconds(milliseconds);
  }

  // Whether the thread of this process waits in the kernel.
  static bool isBlocked(pid_t thread) {
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string number;
    std::string name;
    std::string state;
    status >> number >> name >> state;
    return state == "S";
  }

  static Message deepMessage() {
    data_t deep;
    for (std::size_t i = 0; i <= RecordedWriter::MAX_DEPTH; ++i) deep = listOf(std::move(deep));
    return notification("t/s/events/1", std::move(deep));
  }

  Filter all_ = filterOf();
  RecordingBuffer buffer_{FieldSet(), RecordingBuffer::CAPACITY};
  std::string lines_;
  std::uint64_t recorded_ = 0;
  std::uint64_t lost_ = 0;
};

TEST_F(RecordingBufferTest, LineIsRemarkAndMessage) {
  buffer_.begin(ENDLESS);
  add(notification("t/s/events/1", mapOf("id", text("1"))));
  take();
  const std::string time = lines_.substr(20, 19);
  EXPECT_EQ(lines_, R"({"recorded":{"time":)" + time +
                        R"(,"number":1,"batch":7,"place":0,"of":1,"direction":"host"},)"
                        R"("metadata":{"pulsarPath":"t/s/events/1"},"payload":{"id":"1"}})"
                        "\n");
}

TEST_F(RecordingBufferTest, MessagesAreLostWhileClosed) {
  add(message(1));
  add(message(1));
  EXPECT_EQ(take().lost, 2U);
  EXPECT_EQ(
      lines_,
      "{\"recording\":{\"gap\":{\"first\":1,\"last\":2,\"lost\":2,\"reason\":\"stopped\"}}}\n");
}

TEST_F(RecordingBufferTest, MessagesAreFilteredWhileOff) {
  buffer_.end(State::OFF);
  add(message(1));
  buffer_.skip(3);
  EXPECT_EQ(take().last, 0U);
  buffer_.begin(ENDLESS);
  add(message(1));
  EXPECT_EQ(take().first, 5U);
}

TEST_F(RecordingBufferTest, FilteredMessagesTakeNumbersToo) {
  buffer_.begin(ENDLESS);
  const Filter alarms = filterOf("kinds", listOf(text("alarms")));
  const Message batch[] = {notification("t/s/events/1", data_t()),
                           notification("t/s/alarms/1", data_t())};
  buffer_.add({batch, Direction::TRANSPORT, 1}, alarms);
  const recorder::passage_t passage = take();
  EXPECT_EQ(passage.recorded, 1U);
  EXPECT_EQ(passage.first, 2U);
  EXPECT_NE(lines_.find(R"("place":1,"of":2,"direction":"transport")"), std::string::npos);
}

TEST_F(RecordingBufferTest, FullBufferLosesMessagesAndSaysSo) {
  buffer_.begin(ENDLESS);
  const Message large = message(1'000'000);
  for (int i = 0; i < 6; ++i) add(large);
  const recorder::passage_t passage = take();
  EXPECT_EQ(passage.recorded, 4U);
  EXPECT_EQ(passage.lost, 2U);
  EXPECT_TRUE(lines_.ends_with(
      "{\"recording\":{\"gap\":{\"first\":5,\"last\":6,\"lost\":2,\"reason\":\"buffer\"}}}\n"));
  add(large);
  EXPECT_EQ(take().recorded, 1U);
}

TEST_F(RecordingBufferTest, DepthIsTheFaultOfTheMessageAlone) {
  buffer_.begin(ENDLESS);
  add(message(1'000'000));
  add(deepMessage());
  EXPECT_EQ(take().lost, 1U);
  EXPECT_TRUE(lines_.ends_with(
      "{\"recording\":{\"gap\":{\"first\":2,\"last\":2,\"lost\":1,\"reason\":\"message\"}}}\n"));
}

TEST_F(RecordingBufferTest, GapComesBeforeTheNextLine) {
  buffer_.begin(ENDLESS);
  add(message(3'000'000));
  add(message(3'000'000));
  add(message(1));
  const recorder::passage_t passage = take();
  EXPECT_EQ(passage.recorded, 2U);
  EXPECT_EQ(passage.last, 3U);
  EXPECT_LT(lines_.find("\"gap\""), lines_.find("\"number\":3"));
}

TEST_F(RecordingBufferTest, FullToTheLastByteStillTakesTheGap) {
  buffer_.begin(ENDLESS);
  for (int i = 0; i < 50'000; ++i) add(message(static_cast<std::size_t>(i % 97)));
  EXPECT_LE(buffer_.take().lines.size(), RecordingBuffer::CAPACITY);
}

TEST_F(RecordingBufferTest, LinesLeaveRoomForAGap) {
  buffer_.begin(ENDLESS);
  add(message(5000));
  const std::size_t around = buffer_.take().lines.size() - 5000;
  constexpr std::size_t ROOM = RecordingBuffer::CAPACITY - recorder::GAP_SIZE;
  std::uint64_t lost = 0;
  for (std::size_t excess = 0; excess < 300; excess += 20) {
    add(message(2'000'000));
    add(message(ROOM - 2 * around - 2'000'250 + excess));
    const std::string_view lines = buffer_.take().lines;
    const recorder::passage_t passage = recorder::readPassage(lines);
    EXPECT_TRUE(passage.lost != 0 || lines.size() <= ROOM);
    lost += passage.lost;
  }
  EXPECT_GT(lost, 0u);
  EXPECT_LT(lost, 15u);
}

TEST_F(RecordingBufferTest, TakenLinesOutliveTheNextOnes) {
  buffer_.begin(ENDLESS);
  add(message(1));
  const std::string_view taken = buffer_.take().lines;
  const std::string before(taken);
  add(message(2));
  EXPECT_EQ(taken, before);
}

TEST_F(RecordingBufferTest, LongestLineIsTheLimit) {
  RecordingBuffer small(FieldSet(), 1000);
  small.begin(ENDLESS);
  const Message batch[] = {message(500), message(1000), message(1)};
  small.add({batch, Direction::HOST, 1}, all_);
  const std::string lines(small.take().lines);
  EXPECT_NE(lines.find(R"({"recording":{"gap":{"first":2,"last":2,"lost":1,"reason":"message"}}})"),
            std::string::npos);
  EXPECT_EQ(recorder::readPassage(lines).recorded, 2U);
}

TEST_F(RecordingBufferTest, SessionEndsAfterItsMessages) {
  buffer_.begin(2);
  for (int i = 0; i < 3; ++i) add(message(1));
  EXPECT_EQ(take().recorded, 2U);
  EXPECT_EQ(buffer_.state(), State::OFF);
}

TEST_F(RecordingBufferTest, LostMessagesAreNoneOfTheSession) {
  buffer_.begin(1);
  add(deepMessage());
  add(message(1));
  EXPECT_EQ(take().recorded, 1U);
  EXPECT_EQ(buffer_.state(), State::OFF);
}

TEST_F(RecordingBufferTest, SleepingWriterWakes) {
  std::atomic<pid_t> writer = 0;
  std::jthread thread([&] {
    writer = gettid();
    EXPECT_FALSE(sleeps(600'000)); // or the test ends at its time limit
  });
  waitUntil([&] { return writer != 0 && isBlocked(writer); });
  buffer_.waker().wake();
}

TEST_F(RecordingBufferTest, WriterSleepsUntilHalfIsFull) {
  buffer_.begin(ENDLESS);
  add(message(2'000'000));
  EXPECT_TRUE(sleeps(50));
  EXPECT_TRUE(sleeps(1000));
  add(message(200'000));
  EXPECT_FALSE(sleeps(600'000)); // or the test ends at its time limit
  EXPECT_TRUE(sleeps(50));
}

TEST_F(RecordingBufferTest, LossWakesTheWriterOfAnOpenRecording) {
  add(message(1));
  EXPECT_TRUE(sleeps(50));
  buffer_.begin(ENDLESS);
  add(deepMessage());
  EXPECT_FALSE(sleeps(600'000));
}

TEST_F(RecordingBufferTest, AddingNeitherAllocatesNorCallsTheHost) {
  buffer_.begin(ENDLESS);
  const Message one = message(100);
  const std::int64_t before = allocationsMade();
  standin_reset_calls();
  add(one);
  EXPECT_EQ(allocationsMade(), before);
  EXPECT_EQ(standin_calls_total(), 0);
}

} // namespace
} // namespace com::velanto::connectivity::test

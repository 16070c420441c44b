// The recorder as a whole: batches pass as they came, and are on the disk after the shutdown.
#include "recorder/ostrovia_notifications_recorder.hpp"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/recorder/recorder_fixture.hpp"
#include "tests/support/allocations.hpp"
#include "tests/support/failing_allocations.hpp"

namespace com::velanto::connectivity::test {
namespace {

using recorder::counts_t;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RecorderTest : public RecorderFixture {
 protected:
  // The number under `name` in each message.
  std::vector<std::uint64_t> membersOf(const char* name) const {
    std::vector<std::uint64_t> numbers;
    for (const std::string& message : folder_.messages())
      numbers.push_back(numberIn(message, name));
    return numbers;
  }
};

// ---- passing on

TEST_F(RecorderTest, PassesTheSameRangeOnInBothDirections) {
  const auto recorder = make();
  Message* start = nullptr;
  Message* end = nullptr;
  const auto note = [&](Message* first, Message* last) {
    start = first;
    end = last;
  };
  recorder->setNextTowardsHost(std::make_unique<AnyLink>(note));
  recorder->setNextTowardsTransport(std::make_unique<AnyLink>(note));
  recorder->start();
  Message batch[2] = {event("a"), Message()};
  recorder->sendBatchTowardsHost(batch, batch + 2);
  EXPECT_EQ(start, batch);
  EXPECT_EQ(end, batch + 2);
  recorder->sendBatchTowardsTransport(batch + 1, batch + 1);
  EXPECT_EQ(start, batch + 1);
  EXPECT_EQ(end, batch + 1);
  recorder->sendBatchTowardsHost(nullptr, nullptr);
  EXPECT_EQ(start, nullptr);
}

TEST_F(RecorderTest, LeavesMessagesAsTheyAre) {
  const auto recorder = make();
  recorder->start();
  map_t metadata = mapOf("a", text("1"), "b", tagged(77, 5));
  metadata.erase(metadata.find(text("a")));
  Message message(mapOf("x", custom(), "y", nullText()), std::move(metadata));
  const Message before(data_t(message.getPayload()), message.getMetadataMap().copy());
  recorder->sendBatchTowardsHost(&message, &message + 1);
  EXPECT_EQ(message.getMetadataMap().capacity(), before.getMetadataMap().capacity());
  EXPECT_EQ(to_string(message, false), to_string(before, false));
}

TEST_F(RecorderTest, RecordsBeforeTheLinkTakesTheMessages) {
  const auto recorder = make();
  recorder->setNextTowardsHost(std::make_unique<AnyLink>(
      [](Message* message, Message*) { message->getPayload() = data_t(); }));
  recorder->start();
  send(*recorder, event("kept"));
  recorder->shutdown();
  EXPECT_THAT(folder_.messages(), ElementsAre(HasSubstr(R"({"text":"kept"})")));
}

TEST_F(RecorderTest, ExceptionsOfTheLinkPass) {
  const auto recorder = make();
  recorder->setNextTowardsHost(
      std::make_unique<AnyLink>([](Message*, Message*) { throw std::runtime_error("no"); }));
  recorder->start();
  EXPECT_EQ(errorOf([&] { send(*recorder, event("a")); }), "no");
  EXPECT_EQ(errorOf([&] { send(*recorder, event("b")); }), "no");
  recorder->shutdown();
  const auto batches = membersOf("batch");
  ASSERT_THAT(batches, SizeIs(2));
  EXPECT_EQ(batches[1], batches[0] + 1);
}

TEST_F(RecorderTest, AnswerWithinABatchHasItsOwnNumber) {
  const auto recorder = make();
  recorder->setNextTowardsHost(std::make_unique<AnyLink>(
      [&](Message* first, Message* last) { recorder->sendBatchTowardsTransport(first, last); }));
  recorder->start();
  send(*recorder, event("a"));
  recorder->shutdown();
  const auto batches = membersOf("batch");
  ASSERT_THAT(batches, SizeIs(2));
  EXPECT_EQ(batches[1], batches[0] + 1);
}

TEST_F(RecorderTest, ChainWithinAChainHasItsOwnNumbers) {
  const auto inner = make();
  OstroviaNotificationsRecorder outer(PluginConstructorParameters(
      "before", "other", mapOf("recordingFolder", text(folder_.path().c_str())), nullptr, nullptr));
  outer.setNextTowardsHost(std::make_unique<AnyLink>(
      [&](Message* first, Message* last) { inner->sendBatchTowardsHost(first, last); }));
  outer.start();
  inner->start();
  send(outer, event("a"));
  outer.shutdown();
  inner->shutdown();
  const auto batches = membersOf("batch"); // by the names of the files: the outer chain first
  ASSERT_THAT(batches, SizeIs(2));
  EXPECT_EQ(batches[1], batches[0] + 1);
}

// ---- recording

TEST_F(RecorderTest, SampleHasTheBatchesThatTheFilterTakes) {
  const map_t settings = mapOf("recordingFolder", text(folder_.path().c_str()), "oneIn", whole(2));
  const auto recorder = makeNamed("before", settings);
  const recorder::Filter filter(recorder::readConfiguration(settings, "before", "site"),
                                recorder::currentRun());
  std::vector<std::uint64_t> taken;
  recorder->setNextTowardsHost(std::make_unique<AnyLink>([&](Message*, Message*) {
    const std::uint64_t number = recorder::current_batch.number;
    if (filter.takesBatch(number)) taken.push_back(number);
  }));
  recorder->start();
  for (int i = 0; i < 64; ++i) send(*recorder, event("a"));
  recorder->shutdown();
  EXPECT_EQ(membersOf("batch"), taken);
  EXPECT_EQ(folder_.counts(), (counts_t{64, taken.size(), 64 - taken.size(), 0}));
}

TEST_F(RecorderTest, HeadNamesEverythingAboutTheRecording) {
  const auto recorder = make("oneIn", whole(1), "omit", listOf(text("text")));
  recorder->start();
  send(*recorder, event("a"));
  recorder->shutdown();
  const std::string head = folder_.lines()[0];
  const std::string run = head.substr(head.find(R"("run":")") + 7, 16);
  EXPECT_EQ(run.find_first_not_of("0123456789abcdef"), std::string::npos);
  const std::string started = std::to_string(numberIn(head, "started"));
  EXPECT_EQ(head, R"({"recording":{"head":{"format":1,"recorder":")" VLT_VERSION
                  R"(","plugin":"before","chain":"site","productVersion":"10.15.4.1","run":")" +
                      run + R"(","file":1,"started":)" + started +
                      R"(,"oneIn":1,"omit":["text"],"configuration":{"recordingFolder":")" +
                      folder_.path().string() +
                      R"(","recordingName":"before-site","maxFileMebibytes":64,"maxFiles":16,)"
                      R"("whenFull":"ring","oneIn":1,"omit":["text"]}}}})");
}

TEST_F(RecorderTest, LinesTellBatchPlaceAndNumber) {
  const auto recorder = make();
  recorder->start();
  send(*recorder, event("a"));
  sendBatch(*recorder, 2);
  recorder->shutdown();
  EXPECT_THAT(folder_.recordings(), ElementsAre("before-site.000001.ndjson"));
  EXPECT_THAT(membersOf("number"), ElementsAre(1, 2, 3));
  EXPECT_THAT(membersOf("place"), ElementsAre(0, 0, 1));
  EXPECT_THAT(membersOf("of"), ElementsAre(1, 2, 2));
  const auto batches = membersOf("batch");
  EXPECT_EQ(batches[1], batches[0] + 1);
  EXPECT_EQ(batches[2], batches[1]);
  EXPECT_EQ(folder_.counts(), (counts_t{3, 3, 0, 0}));
}

TEST_F(RecorderTest, RecordersOfAChainGiveABatchOneNumber) {
  const auto before = make();
  auto after = makeNamed("after", mapOf("recordingFolder", text(folder_.path().c_str())));
  before->start();
  after->start();
  auto& second = *after;
  before->setNextTowardsHost(std::make_unique<AnyLink>(
      [&](Message* start, Message* end) { second.sendBatchTowardsHost(start, end); }));
  send(*before, event("a"));
  send(*before, event("b"));
  before->shutdown();
  after->shutdown();
  const auto batches = membersOf("batch"); // after, after, before, before
  ASSERT_THAT(batches, SizeIs(4));
  EXPECT_EQ(batches[0], batches[2]);
  EXPECT_EQ(batches[1], batches[3]);
  EXPECT_NE(batches[0], batches[1]);
}

TEST_F(RecorderTest, OmittedTextsNeverReachTheDisk) {
  const auto recorder = make("omit", listOf(text("payload.text")));
  recorder->start();
  send(*recorder, event("secret"));
  recorder->shutdown();
  const std::string message = folder_.messages().at(0);
  EXPECT_EQ(message.find("secret"), std::string::npos);
  EXPECT_THAT(message, HasSubstr(R"("payload":{"text":"omitted"})"));
}

TEST_F(RecorderTest, SampledRecordersChooseTheSameBatches) {
  const auto make_sampled = [&](const char* name) {
    return makeNamed(name,
                     mapOf("recordingFolder", text(folder_.path().c_str()), "oneIn", whole(3)));
  };
  const auto before = make_sampled("before");
  const auto after = make_sampled("after");
  before->start();
  after->start();
  before->setNextTowardsHost(std::make_unique<AnyLink>(
      [&](Message* start, Message* end) { after->sendBatchTowardsHost(start, end); }));
  for (int i = 0; i < 300; ++i) send(*before, event("a"));
  before->shutdown();
  after->shutdown();
  auto batches = membersOf("batch");
  const std::vector<std::uint64_t> of_after(
      batches.begin(), batches.begin() + static_cast<long>(batches.size() / 2));
  batches.erase(batches.begin(), batches.begin() + static_cast<long>(of_after.size()));
  EXPECT_EQ(batches, of_after);
  EXPECT_THAT(batches, ::testing::Not(IsEmpty()));
  EXPECT_EQ(folder_.counts(), (counts_t{300, batches.size(), 300 - batches.size(), 0}));
}

TEST_F(RecorderTest, RecordingNeitherAllocatesNorCallsTheHost) {
  const auto recorder = make("kinds", listOf(text("events")));
  recorder->start();
  Message message = event("a");
  standin_reset_calls();
  {
    const NoMemory none;
    recorder->sendBatchTowardsHost(&message, &message + 1);
    recorder->sendBatchTowardsTransport(&message, &message + 1);
  }
  EXPECT_EQ(standin_calls_total(), 0);
  recorder->shutdown();
  EXPECT_THAT(folder_.messages(), SizeIs(2));
}

TEST_F(RecorderTest, CreationWithoutMemoryLeavesNothing) {
  const map_t settings =
      mapOf("recordingFolder", text(folder_.path().c_str()), "kinds", listOf(text("alarms")),
            "omit", listOf(text("payload.text")), "whenFull", text("stop"));
  makeNamed("before", settings); // objects of the process
  const auto check = [&, held = allocationsHeld()] { EXPECT_EQ(allocationsHeld(), held); };
  EXPECT_GT(failEachAllocation([&] { makeNamed("before", settings); }, check), 5U);
  for (std::uint64_t n = 1, refused = 1; refused != 0; ++n) {
    failAllocation(n, false);
    bool threw = false;
    try {
      makeNamed("before", settings);
    } catch (const std::bad_alloc&) {
      threw = true;
    }
    refused = refusedAllocations();
    failAllocation(0, false);
    EXPECT_EQ(threw, refused != 0) << "allocation " << n;
    check();
  }
}

// ---- sessions

TEST_F(RecorderTest, OtherDirectionsAreFiltered) {
  const auto recorder = make("directions", listOf(text("transport")));
  recorder->start();
  send(*recorder, event("a"));
  Message message = event("b");
  recorder->sendBatchTowardsTransport(&message, &message + 1);
  recorder->shutdown();
  EXPECT_EQ(folder_.counts(), (recorder::counts_t{2, 1, 1, 0}));
}

TEST_F(RecorderTest, StartsAgainAfterAShutdown) {
  const auto recorder = make();
  for (int i = 0; i < 2; ++i) {
    recorder->start();
    recorder->start();
    send(*recorder, event("a"));
    recorder->shutdown();
    recorder->shutdown();
  }
  EXPECT_THAT(folder_.recordings(), SizeIs(2));
  EXPECT_EQ(folder_.counts(), (counts_t{2, 2, 0, 0}));
}

TEST_F(RecorderTest, DestructionWritesTheFoot) {
  {
    const auto recorder = make();
    recorder->start();
    send(*recorder, event("a"));
  }
  EXPECT_EQ(folder_.counts(), (counts_t{1, 1, 0, 0}));
}

TEST_F(RecorderTest, EndOfTheProcessWritesTheFoot) {
  const pid_t child = fork();
  if (child == 0) {
    // As a host that destroys nothing; static, so that leak checkers find it.
    static auto* const RECORDER = make().release();
    RECORDER->start();
    send(*RECORDER, event("a"));
    std::exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(folder_.counts(), (counts_t{1, 1, 0, 0}));
}

} // namespace
} // namespace com::velanto::connectivity::test

// The chain recorder, codec, recorder: its events are the codec's own, and both recordings fit
// together.
#include <gtest/gtest.h>

#include <map>

#include "ndjson/json_writer.hpp"
#include "tests/recording/chain.hpp"
#include "tests/recording/recording.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/plugin_library.hpp"
#include "tests/support/samples.hpp"
#include "tests/support/stderr_capture.hpp"
#include "tests/tools/temporary_folder.hpp"

namespace com::velanto::connectivity::test {
namespace {

constexpr std::size_t BATCH = 16;

class LibrariesAndSamples {
 protected:
  plugin_libraries_t libraries_;
  const std::vector<sample_t> samples_ = readSamples();
};

class RecordedChain : private LibrariesAndSamples, public HostFixture {
 protected:
  using LibrariesAndSamples::libraries_;

  std::vector<std::vector<Message>> batches() const {
    std::vector<std::vector<Message>> all;
    for (std::size_t i = 0; i < samples_.size(); ++i) {
      if (i % BATCH == 0) all.emplace_back();
      all.back().push_back(copyOf(samples_[i].message));
    }
    return all;
  }

  // Sends all samples into `send` and returns the messages that arrive and the lines of the log.
  template <class Send>
  std::vector<std::string> outcome(Received& received, const Send& send) {
    std::vector<std::string> lines;
    static_cast<void>(stderrOf([&] {
      for (std::vector<Message>& batch : batches()) EXPECT_TRUE(send(std::span(batch)));
    }));
    for (const Message& message : received.messages) lines.push_back(toJson(message));
    for (const log_line_t& line : takeLog()) lines.push_back(line.text);
    received.messages.clear();
    return lines;
  }

  std::vector<recorded_file_t> recording(const char* name) const {
    std::vector<recorded_file_t> files = readRecording(folder_.path(""), name);
    EXPECT_EQ(breachIn(files), "");
    return files;
  }

  const TemporaryFolder folder_;
  Received host_;
  Received transport_;
};

TEST_F(RecordedChain, EventsAreTheCodecsOwn) {
  tools::HostedPlugin codec(libraries_.codecs, "codec", "chain", mapOf("tenantId", text("t1")));
  codec.link({&host_, Received::take}, {&transport_, Received::take});
  const auto alone = outcome(host_, [&](std::span<Message> batch) {
    return codec.send(tools::Direction::TOWARDS_HOST, batch);
  });
  Chain chain(libraries_, recorderSettings(folder_.path("")), {&host_, Received::take},
              {&transport_, Received::take});
  EXPECT_EQ(outcome(host_, [&](auto batch) { return chain.sendTowardsHost(batch); }), alone);
  const auto back =
      outcome(transport_, [&](auto batch) { return chain.sendTowardsTransport(batch); });
  EXPECT_EQ(back.size(), readSamples().size());
  EXPECT_TRUE(chain.shutdown());
  const std::vector<recorded_file_t> before = recording("before-chain");
  const std::vector<recorded_file_t> after = recording("after-chain");
  ASSERT_EQ(before.size(), 1U);
  ASSERT_EQ(after.size(), 1U);
  const auto sent = static_cast<std::int64_t>(readSamples().size());
  EXPECT_EQ(before[0].foot->recorded, 2 * sent);
  EXPECT_GT(after[0].foot->recorded, sent + 400) << "all messages of the way back, and events";
  EXPECT_LT(after[0].foot->recorded, 2 * sent);
}

TEST_F(RecordedChain, BothRecordersNumberABatchAlike) {
  Chain chain(libraries_, recorderSettings(folder_.path("")), {&host_, Received::take},
              {&transport_, Received::take});
  outcome(host_, [&](auto batch) { return chain.sendTowardsHost(batch); });
  EXPECT_TRUE(chain.shutdown());
  const recorded_file_t before = recording("before-chain").at(0);
  const recorded_file_t after = recording("after-chain").at(0);
  EXPECT_EQ(before.run, after.run);
  std::map<std::int64_t, std::size_t> sizes; // of the batches before the codec
  for (const numbers_t& record : before.numbers) ++sizes[record.batch];
  EXPECT_EQ(sizes.size(), batches().size());
  std::map<std::int64_t, std::size_t> events;
  for (const numbers_t& record : after.numbers) ++events[record.batch];
  for (const auto& [batch, count] : events) EXPECT_LE(count, sizes[batch]) << "batch " << batch;
}

void jam(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) {
  throw std::runtime_error("jam");
}

TEST_F(RecordedChain, FailureOfTheHostReachesTheTransport) {
  Chain chain(libraries_, recorderSettings(folder_.path("")), {nullptr, jam},
              {&transport_, Received::take});
  std::vector<Message> batch(1);
  EXPECT_FALSE(chain.sendTowardsHost(batch));
  const std::vector<log_line_t> logged = takeLog();
  std::vector<std::string> lines;
  lines.reserve(logged.size());
  for (const log_line_t& line : logged) lines.push_back(line.text);
  const auto failed = [](const std::string& plugin, const std::string& reason) {
    return "<connectivity." + plugin + ".chain> Exception from sendBatchTowardsHost: " + reason;
  };
  EXPECT_EQ(lines, (std::vector{failed("after", "jam"), failed("codec", "the next plug-in failed"),
                                failed("before", "the next plug-in failed")}));
  EXPECT_TRUE(chain.shutdown());
  EXPECT_EQ(recordsIn(recording("after-chain")), 1) << "recorded before it failed";
}

// ---- links in the middle of a batch

class RecorderLinks : public RecordedChain {
 protected:
  RecorderLinks() {
    recorder_.link({&host_, Received::take}, {&transport_, Received::take});
    recorder_.start();
  }

  tools::HostedPlugin recorder_{libraries_.recorders, "r", "c", recorderSettings(folder_.path(""))};
};

// Replaces itself by the fixture's link before it takes the batch.
struct Replacing {
  const tools::PluginLibrary& functions;
  void* recorder;
  Received& next;
  Received own{};

  static void take(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
    auto& self = *static_cast<Replacing*>(handle);
    EXPECT_EQ(self.functions.setNextTowardsHost(self.recorder, &self.next, Received::take), 0);
    Received::take(&self.own, start, end);
  }
};

TEST_F(RecorderLinks, LinkMayReplaceItself) {
  Replacing link{libraries_.recorders, recorder_.get(), host_};
  libraries_.recorders.setNextTowardsHost(recorder_.get(), &link, Replacing::take);
  for (int i = 0; i < 2; ++i) {
    std::vector<Message> batch(2);
    EXPECT_TRUE(recorder_.send(tools::Direction::TOWARDS_HOST, batch));
  }
  EXPECT_EQ(link.own.messages.size(), 2U) << "the batch under way stays with the old one";
  EXPECT_EQ(host_.messages.size(), 2U);
}

// Sends a batch of its own through the recorder.
struct Sending {
  tools::HostedPlugin& recorder;
  int depth = 0;

  static void take(void* handle, vlt_underlying_message_t*, vlt_underlying_message_t*) {
    auto& self = *static_cast<Sending*>(handle);
    if (++self.depth > 3) return;
    std::vector<Message> inner(1);
    EXPECT_TRUE(self.recorder.send(tools::Direction::TOWARDS_HOST, inner));
  }
};

TEST_F(RecorderLinks, LinkMaySendABatchItself) {
  Sending link{recorder_};
  libraries_.recorders.setNextTowardsHost(recorder_.get(), &link, Sending::take);
  std::vector<Message> outer(1);
  EXPECT_TRUE(recorder_.send(tools::Direction::TOWARDS_HOST, outer));
  EXPECT_TRUE(recorder_.shutdown());
  EXPECT_EQ(recordsIn(recording("r-c")), 4);
}

} // namespace
} // namespace com::velanto::connectivity::test

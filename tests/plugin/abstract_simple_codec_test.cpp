// The batch loop, in both directions: one call per message, the kept ones in front and in order.
#include "plugin/abstract_simple_codec.hpp"

#include <algorithm>
#include <memory>

#include "tests/plugin/links.hpp"
#include "tests/plugin/scripted_codec.hpp"
#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

using texts_t = std::vector<std::string>;

struct direction_t {
  const char* name;
  void (AbstractSimpleCodec::*send)(Message*, Message*);
};
void PrintTo(const direction_t& row, std::ostream* out) { *out << row.name; }

class BatchTest : public HostFixture, public ::testing::WithParamInterface<direction_t> {
 protected:
  BatchTest() {
    codec_.setNextTowardsHost(std::make_unique<RecordingLink>(journal_, "next"));
    codec_.setNextTowardsTransport(std::make_unique<RecordingLink>(journal_, "next"));
  }

  // Messages with these payloads, each with a metadata entry of the same string; "null" is an empty
  // payload.
  void fillBatch(const texts_t& payloads) {
    for (const std::string& payload : payloads) {
      batch_.emplace_back(payload == "null" ? data_t() : text(payload.c_str()),
                          mapOf("of", text(payload.c_str())));
    }
  }
  void send() { (codec_.*GetParam().send)(batch_.data(), batch_.data() + batch_.size()); }
  void send(const texts_t& payloads) {
    fillBatch(payloads);
    send();
  }

  // "DIRECTION: " in front of each string.
  static texts_t inDirection(texts_t texts) {
    for (std::string& text : texts) text.insert(0, ": ").insert(0, GetParam().name);
    return texts;
  }
  // The link's notes for a range with these payloads.
  static texts_t forwarded(const texts_t& payloads) {
    std::string entry = std::string("next towards ") + GetParam().name + ":";
    for (const std::string& payload : payloads) {
      const char* const quote = payload == "null" ? "" : "\"";
      entry.append(" ").append(quote).append(payload).append(quote);
    }
    return {entry};
  }
  // The strings of the batch from message `first` on, told by their metadata, sorted.
  [[nodiscard]] texts_t leftFrom(std::size_t first) {
    texts_t texts;
    for (std::size_t i = first; i < batch_.size(); ++i) {
      texts.emplace_back(at(batch_[i].getMetadataMap(), "of").get<const char*>());
    }
    std::sort(texts.begin(), texts.end());
    return texts;
  }

  journal_t journal_;
  ScriptedCodec codec_;
  std::vector<Message> batch_;
};

INSTANTIATE_TEST_SUITE_P(
    Towards, BatchTest,
    ::testing::Values(direction_t{"host", &AbstractSimpleCodec::sendBatchTowardsHost},
                      direction_t{"transport", &AbstractSimpleCodec::sendBatchTowardsTransport}),
    [](const auto& row) { return row.param.name; });

TEST_P(BatchTest, EachMessageIsTransformedOnceInOrder) {
  send({"keep a", "drop b", "keep c"});
  EXPECT_EQ(codec_.calls, inDirection({"keep a", "drop b", "keep c"}));
}

TEST_P(BatchTest, FailingMiddleOfThreeIsDropped) {
  send({"keep a", "fail b", "keep c"});
  EXPECT_EQ(journal_.entries, forwarded({"keep a", "keep c"}));
  EXPECT_EQ(journal_.start, batch_.data());
  EXPECT_EQ(journal_.end, batch_.data() + 2);
  EXPECT_EQ(codec_.calls, inDirection({"keep a", "fail b", "fail b failed with boom", "keep c"}));
  EXPECT_EQ(leftFrom(2), texts_t{"fail b"});
}

TEST_P(BatchTest, PayloadAndMetadataChangePlacesTogether) {
  send({"drop a", "keep b", "keep c"});
  for (const std::size_t i : {0U, 1U, 2U}) {
    EXPECT_EQ(batch_[i].getPayload(), at(batch_[i].getMetadataMap(), "of")) << "message " << i;
  }
  EXPECT_EQ(journal_.entries, forwarded({"keep b", "keep c"}));
}

TEST_P(BatchTest, RefusedMessagesAreDropped) {
  send({"drop a", "keep b", "drop c", "drop d", "keep e"});
  EXPECT_EQ(journal_.entries, forwarded({"keep b", "keep e"}));
  EXPECT_EQ(leftFrom(2), (texts_t{"drop a", "drop c", "drop d"}));
}

TEST_P(BatchTest, LinkGetsAnEmptyRangeWithoutKeptMessages) {
  send({"drop a", "fail b", "throw c"});
  EXPECT_EQ(journal_.entries, forwarded({}));
  EXPECT_EQ(journal_.start, batch_.data());
  EXPECT_EQ(journal_.end, batch_.data());
  EXPECT_EQ(leftFrom(0), (texts_t{"drop a", "fail b", "throw c"}));
}

TEST_P(BatchTest, EmptyRangeIsPassedOn) {
  fillBatch({"keep a"});
  (codec_.*GetParam().send)(batch_.data(), batch_.data());
  EXPECT_EQ(journal_.entries, forwarded({}));
  EXPECT_EQ(journal_.start, batch_.data());
  EXPECT_TRUE(codec_.calls.empty());
}

TEST_P(BatchTest, NullRangeIsPassedOn) {
  (codec_.*GetParam().send)(nullptr, nullptr);
  EXPECT_EQ(journal_.entries, forwarded({}));
  EXPECT_EQ(journal_.start, nullptr);
  EXPECT_EQ(journal_.end, nullptr);
}

TEST_P(BatchTest, WithoutALinkTheBatchGoesNowhere) {
  codec_.setNextTowardsHost(nullptr);
  codec_.setNextTowardsTransport(nullptr);
  journal_.entries.clear();
  send({"keep a", "fail b"});
  EXPECT_TRUE(journal_.entries.empty());
  EXPECT_EQ(codec_.calls, inDirection({"keep a", "fail b", "fail b failed with boom"}));
  EXPECT_TRUE(takeLog().empty());
}

TEST_P(BatchTest, AnythingThrownReachesTheHookInFlight) {
  send({"throw a"});
  EXPECT_EQ(codec_.calls, inDirection({"throw a", "throw a failed with 42"}));
}

TEST_P(BatchTest, HookMayKeepAFailedMessage) {
  codec_.keeps_failed = true;
  send({"fail a", "drop b", "throw c"});
  EXPECT_EQ(journal_.entries, forwarded({"fail a", "throw c"}));
}

TEST_P(BatchTest, FailureOfTheHookLeavesTheCall) {
  codec_.report_fails = true;
  EXPECT_EQ(errorOf([&] { send({"keep a", "fail b", "keep c"}); }), "no report");
  EXPECT_EQ(codec_.calls, inDirection({"keep a", "fail b", "fail b failed with boom"}));
  EXPECT_TRUE(journal_.entries.empty()) << "nothing may be forwarded then";
  EXPECT_EQ(leftFrom(0), (texts_t{"fail b", "keep a", "keep c"}));
}

TEST_P(BatchTest, FailureOfTheNextLinkLeavesTheCall) {
  struct FailingLink final : HostSide, TransportSide {
    void sendBatchTowardsHost(Message*, Message*) override { throw std::runtime_error("jam"); }
    void sendBatchTowardsTransport(Message*, Message*) override { throw std::runtime_error("jam"); }
  };
  codec_.setNextTowardsHost(std::make_unique<FailingLink>());
  codec_.setNextTowardsTransport(std::make_unique<FailingLink>());
  EXPECT_EQ(errorOf([&] { send({"keep a", "fail b"}); }), "jam");
  EXPECT_EQ(leftFrom(0), (texts_t{"fail b", "keep a"}));
}

TEST_P(BatchTest, EmptyPayloadPassesUnchangedByDefault) {
  send({"drop a", "null", "keep b"});
  EXPECT_EQ(codec_.calls, inDirection({"drop a", "null", "keep b"}));
  EXPECT_EQ(journal_.entries, forwarded({"null", "keep b"}));
  EXPECT_EQ(batch_[0].getMetadataMap(), mapOf("of", text("null")));
}

TEST_P(BatchTest, HookMayDropAnEmptyPayload) {
  codec_.null_verb = "drop";
  send({"null", "keep a"});
  EXPECT_EQ(journal_.entries, forwarded({"keep a"}));
  EXPECT_EQ(leftFrom(1), texts_t{"null"});
}

TEST_P(BatchTest, FailureOnAnEmptyPayloadIsHandledToo) {
  codec_.null_verb = "fail";
  send({"null", "keep a"});
  EXPECT_EQ(codec_.calls, inDirection({"null", "null failed with boom", "keep a"}));
  EXPECT_EQ(journal_.entries, forwarded({"keep a"}));
}

TEST_P(BatchTest, UnknownKindIsNoEmptyPayload) {
  standin_set_default_log_level(0);
  batch_.emplace_back(tagged(11));
  EXPECT_EQ(errorOf([&] { send(); }), "Get from empty") << "the scripted codec reads the payload";
  EXPECT_TRUE(codec_.calls.empty());
}

TEST_P(BatchTest, MovingMessagesDoesNotCallTheHost) {
  fillBatch({"drop a", "keep b", "drop c", "keep d"});
  codec_.setNextTowardsHost(nullptr);
  codec_.setNextTowardsTransport(nullptr);
  standin_reset_calls();
  send();
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(leftFrom(2), (texts_t{"drop a", "drop c"}));
}

TEST_P(BatchTest, ManyMessagesKeepTheirOrder) {
  texts_t payloads;
  texts_t kept;
  for (int i = 0; i < 100; ++i) {
    const char* const verb = i % 3 == 0 ? "keep " : (i % 3 == 1 ? "fail " : "drop ");
    payloads.push_back(verb + std::to_string(i));
    if (i % 3 == 0) kept.push_back(payloads.back());
  }
  send(payloads);
  EXPECT_EQ(journal_.entries, forwarded(kept));
  EXPECT_EQ(leftFrom(34).size(), 66U);
}

} // namespace
} // namespace com::velanto::connectivity::test

// Messages that the codec lets pass: not a byte of them changes and nothing is logged.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

// One of each kind that has no "pulsarPath", or none that counts.
std::vector<Message> plainMessages() {
  std::vector<Message> batch;
  batch.emplace_back(eventPayload());
  batch.emplace_back(eventPayload(), map_of("vlt.channel", text("c")));
  batch.emplace_back(whole(5), map_of("PulsarPath", text(EVENT_PATH)));
  batch.emplace_back(eventPayload(), map_of(borrowed("pulsarPath"), text(EVENT_PATH)));
  batch.emplace_back(text("t"));
  batch.emplace_back(list_of(custom(), bytes("b")));
  batch.emplace_back(tagged(11, 7));
  batch.emplace_back(data_t(), map_of("a", text("b")));
  return batch;
}

class PassingMessagesTest : public EndToEnd {
 protected:
  PassingMessagesTest() { standin_set_default_log_level(6); }

  // Neither a byte of the range nor the number of blocks has changed; no host function was called
  // but those that a lookup needs.
  void expectUntouched(const std::vector<Message>& batch, const std::string& before) {
    EXPECT_EQ(bytesOf(batch), before);
    EXPECT_EQ(standin_calls_total(), standin_calls(STANDIN_HASH_STRING));
    EXPECT_EQ(takeLog(), lines_t{});
  }
  static std::string bytesOf(const std::vector<Message>& batch) {
    return {reinterpret_cast<const char*>(batch.data()), batch.size() * sizeof(Message)};
  }
  // Looks at the range and leaves it alone.
  static void count(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
    *static_cast<std::ptrdiff_t*>(handle) += end - start;
  }

  LoadedCodec codec_{library_, map_of("tenantId", text("t1"))};
  std::ptrdiff_t seen_ = 0;
};

TEST_F(PassingMessagesTest, WithoutAPathTheyAreIdenticalAndNotTraced) {
  library_.setNextTowardsHost(codec_.plugin(), &seen_, count);
  std::vector<Message> batch = plainMessages();
  const std::string before = bytesOf(batch);
  standin_reset_calls();
  EXPECT_EQ(stderr_of([&] { EXPECT_EQ(codec_.sendTowardsHost(batch), 0); }), "");
  expectUntouched(batch, before);
  EXPECT_EQ(seen_, std::ptrdiff_t{8});
}

TEST_F(PassingMessagesTest, EmptyPayloadPassesEvenWithAPath) {
  library_.setNextTowardsHost(codec_.plugin(), &seen_, count);
  std::vector<Message> batch;
  batch.push_back(notification(EVENT_PATH, data_t()));
  batch.push_back(notification(UNKNOWN_PATH, data_t()));
  const std::string before = bytesOf(batch);
  standin_reset_calls();
  EXPECT_EQ(codec_.sendTowardsHost(batch), 0);
  expectUntouched(batch, before);
  EXPECT_EQ(seen_, 2);
}

TEST_F(PassingMessagesTest, TowardsTheTransportEverythingPasses) {
  library_.setNextTowardsTransport(codec_.plugin(), &seen_, count);
  std::vector<Message> batch = plainMessages();
  batch.push_back(notification(EVENT_PATH, eventPayload()));
  batch.push_back(notification(UNKNOWN_PATH, whole(1)));
  batch.push_back(notification(EVENT_PATH, data_t()));
  const std::string before = bytesOf(batch);
  standin_reset_calls();
  EXPECT_EQ(stderr_of([&] { EXPECT_EQ(codec_.sendTowardsTransport(batch), 0); }), "");
  expectUntouched(batch, before);
  EXPECT_EQ(standin_calls_total(), 0);
  EXPECT_EQ(seen_, std::ptrdiff_t{11});
}

} // namespace
} // namespace com::velanto::connectivity::test

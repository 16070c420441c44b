// Replacing links while traffic flows, also by the links themselves in the middle of a batch.
#include <gtest/gtest.h>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

// A link that has itself replaced by `next` before it takes the batch.
struct Replacing {
  const PluginLibrary& functions;
  void* codec;
  int (*PluginLibrary::*set)(void*, void*, vlt_batch_function);
  Received& next;
  Received own{};

  static void take(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
    auto& self = *static_cast<Replacing*>(handle);
    EXPECT_EQ((self.functions.*self.set)(self.codec, &self.next, Received::take), 0);
    Received::take(&self.own, start, end);
  }
};

// A link that sends a batch of its own through the codec before it takes its own messages.
struct Sending {
  LoadedCodec& codec;
  bool sent = false;
  Received own{};

  static void take(void* handle, vlt_underlying_message_t* start, vlt_underlying_message_t* end) {
    auto& self = *static_cast<Sending*>(handle);
    if (!std::exchange(self.sent, true)) {
      Message inner = notification(EVENT_PATH, eventPayload("inner"));
      EXPECT_EQ(self.codec.sendTowardsHost(inner), 0);
    }
    Received::take(&self.own, start, end);
  }
};

class ReplacedLinks : public EndToEnd {
 protected:
  static std::vector<Message> twoEvents() {
    std::vector<Message> batch;
    batch.push_back(notification(EVENT_PATH, eventPayload("1")));
    batch.push_back(notification(EVENT_PATH, eventPayload("2")));
    return batch;
  }

  LoadedCodec codec_{library_, mapOf("tenantId", text("t1"))};
  Received next_;
};

TEST_F(ReplacedLinks, NextBatchGoesToTheNewOne) {
  std::vector<Message> first = twoEvents();
  std::vector<Message> second = twoEvents();
  codec_.sendTowardsHost(first);
  EXPECT_EQ(library_.setNextTowardsHost(codec_.plugin(), &next_, Received::take), 0);
  codec_.sendTowardsHost(second);
  EXPECT_EQ(codec_.host.messages.size(), 2U);
  EXPECT_EQ(next_.messages.size(), 2U);
}

TEST_F(ReplacedLinks, LinkTowardsTheHostMayReplaceItself) {
  Replacing link{library_, codec_.plugin(), &PluginLibrary::setNextTowardsHost, next_};
  library_.setNextTowardsHost(codec_.plugin(), &link, Replacing::take);
  for (int i = 0; i < 2; ++i) {
    std::vector<Message> batch = twoEvents();
    EXPECT_EQ(codec_.sendTowardsHost(batch), 0);
  }
  EXPECT_EQ(link.own.messages.size(), 2U) << "the batch under way stays with the old one";
  EXPECT_EQ(next_.messages.size(), 2U);
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_F(ReplacedLinks, LinkTowardsTheTransportMayReplaceItself) {
  Replacing link{library_, codec_.plugin(), &PluginLibrary::setNextTowardsTransport, next_};
  library_.setNextTowardsTransport(codec_.plugin(), &link, Replacing::take);
  for (int i = 0; i < 2; ++i) {
    std::vector<Message> batch = twoEvents();
    EXPECT_EQ(codec_.sendTowardsTransport(batch), 0);
  }
  EXPECT_EQ(link.own.messages.size(), 2U);
  EXPECT_EQ(next_.messages.size(), 2U);
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_F(ReplacedLinks, LinkMaySendABatchItself) {
  Sending link{codec_};
  library_.setNextTowardsHost(codec_.plugin(), &link, Sending::take);
  std::vector<Message> outer = twoEvents();
  EXPECT_EQ(codec_.sendTowardsHost(outer), 0);
  ASSERT_EQ(link.own.messages.size(), 3U);
  EXPECT_EQ(at(link.own.messages[0].getPayload().get<map_t>(), "id"), text("inner"));
  EXPECT_EQ(takeLog(), lines_t{});
}

} // namespace
} // namespace com::velanto::connectivity::test

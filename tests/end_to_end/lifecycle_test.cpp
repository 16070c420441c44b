// A codec's life from load to unload, in the order in which a host goes through it.
#include <gtest/gtest.h>

#include "tests/end_to_end/loaded_codec.hpp"

namespace com::velanto::connectivity::test {
namespace {

class LifecycleTest : public EndToEnd {};
class LoadingTest : public HostFixture {};

TEST_F(LoadingTest, UnloadingFreesAllThatLoadingMade) {
  const std::int64_t before = standin_live_blocks_total();
  {
    const PluginLibrary library(VLT_PLUGIN_PATH);
    EXPECT_GT(standin_live_blocks_total(), before) << "the constants are blocks of the host";
  }
  EXPECT_EQ(standin_live_blocks_total(), before);
}

TEST_F(LifecycleTest, VersionsAreTold) {
  EXPECT_EQ(library_.apiVersion(), 4U);
  EXPECT_STREQ(library_.productVersion(), "10.15.4.1");
  library_.checkIsCodec();
}

TEST_F(LifecycleTest, EveryCallSucceedsInTheHostsOrder) {
  const data_t settings = map_of("tenantId", text("t1"));
  void* const plugin = library_.create("codec", "chain", settings.underlying(), nullptr, nullptr);
  ASSERT_NE(plugin, nullptr);
  Received host;
  Received transport;
  EXPECT_EQ(library_.setNextTowardsHost(plugin, &host, Received::take), 0);
  EXPECT_EQ(library_.setNextTowardsTransport(plugin, &transport, Received::take), 0);
  EXPECT_EQ(library_.start(plugin), 0);
  EXPECT_EQ(library_.hostReady(plugin), 0);
  Message up = notification(EVENT_PATH, eventPayload());
  EXPECT_EQ(library_.sendBatchTowardsHost(plugin, &up, &up + 1), 0);
  Message down(whole(1));
  EXPECT_EQ(library_.sendBatchTowardsTransport(plugin, &down, &down + 1), 0);
  EXPECT_EQ(library_.shutdown(plugin), 0);
  EXPECT_EQ(library_.destroy(plugin), 0);
  EXPECT_EQ(host.messages.size(), 1U);
  EXPECT_EQ(transport.messages.size(), 1U);
  EXPECT_EQ(takeLog(), lines_t{});
}

TEST_F(LifecycleTest, HooksDoNotCallTheHost) {
  LoadedCodec codec(library_, map_of("tenantId", text("")));
  standin_reset_calls();
  library_.start(codec.plugin());
  library_.hostReady(codec.plugin());
  library_.shutdown(codec.plugin());
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(LifecycleTest, DestroyHandsNoStatusOver) {
  standin_reset_calls();
  { const LoadedCodec codec(library_, map_of("tenantId", text(""))); }
  EXPECT_EQ(standin_calls(STANDIN_SET_USER_STATUS_MAP), 0);
}

TEST_F(LifecycleTest, BatchesBeforeAnyLinkGoNowhere) {
  const data_t settings = map_of("tenantId", text(""));
  void* const plugin = library_.create("codec", "chain", settings.underlying(), nullptr, nullptr);
  Message message = notification(EVENT_PATH, eventPayload());
  EXPECT_EQ(library_.sendBatchTowardsHost(plugin, &message, &message + 1), 0);
  EXPECT_EQ(library_.sendBatchTowardsTransport(plugin, &message, &message + 1), 0);
  EXPECT_EQ(at(message.getMetadataMap(), "vlt.type"), text("com.tivra.ostrovia.Event"));
  EXPECT_EQ(takeLog(), lines_t{});
  library_.destroy(plugin);
}

TEST_F(LifecycleTest, TwoCodecsDoNotShareTheirSettings) {
  LoadedCodec first(library_,
                    map_of("tenantId", text("t1"), "towardsHostChannelPrefix", text("a.")), "codec",
                    "one");
  auto second = std::make_unique<LoadedCodec>(
      library_, map_of("tenantId", text("t2"), "towardsHostChannelPrefix", text("b.")), "codec",
      "two");
  Message of_second = second->converted(notification(EVENT_PATH, eventPayload()));
  Message failing = notification(UNKNOWN_PATH, eventPayload());
  second->sendTowardsHost(failing);
  second.reset();
  Message of_first = first.converted(notification(EVENT_PATH, eventPayload()));
  EXPECT_EQ(at(of_first.getPayload().get<map_t>(), "tenantId"), text("t1"));
  EXPECT_EQ(at(of_first.getMetadataMap(), "vlt.channel"), text("a.ostrovia.devices"));
  EXPECT_EQ(at(of_second.getPayload().get<map_t>(), "tenantId"), text("t2"));
  EXPECT_EQ(at(of_second.getMetadataMap(), "vlt.channel"), text("b.ostrovia.devices"));
  const lines_t lines = takeLog();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].category, "connectivity.codec.two");
}

} // namespace
} // namespace com::velanto::connectivity::test

#include "tools/host/hosted_plugin.hpp"

#include <gtest/gtest.h>

#include <array>

#include "tests/support/host_fixture.hpp"
#include "tests/support/plugin_library.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {

namespace {

using tools::Direction;
using tools::HostedPlugin;

const char* const CATEGORY = "connectivity.name.chain";

data_t tenant(const char* id) { return mapOf("tenantId", text(id)); }

class HostedPluginTest : public HostFixture {
 protected:
  // The error when the faulty plug-in fails in `operation`, and its log line.
  void expectFailure(const char* operation, const char* error) {
    EXPECT_EQ(errorOf([&] {
                HostedPlugin plugin(faulty_, "name", "chain", tenant(operation));
                plugin.link({&host_, &Received::take}, {&transport_, &Received::take});
                plugin.start();
              }),
              error);
    const std::vector<log_line_t> log = takeLog();
    ASSERT_EQ(log.size(), 1u) << operation;
    EXPECT_EQ(log[0].category, CATEGORY);
  }

  tools::PluginLibrary library_{VLT_PLUGIN_PATH};
  tools::PluginLibrary faulty_{VLT_FAULTY_PLUGIN_PATH};
  Received host_;
  Received transport_;
};

} // namespace

TEST_F(HostedPluginTest, MessagesReachTheLinkOfTheirDirection) {
  HostedPlugin plugin(library_, "name", "chain", tenant(""));
  plugin.link({&host_, &Received::take}, {&transport_, &Received::take});
  plugin.start();
  std::array<Message, 2> messages = {Message(whole(1)), Message(whole(2))};
  EXPECT_TRUE(plugin.send(Direction::TOWARDS_HOST, messages));
  ASSERT_EQ(host_.messages.size(), 2u);
  EXPECT_EQ(host_.messages[1].getPayload(), whole(2));
  std::array<Message, 1> other = {Message(whole(3))};
  EXPECT_TRUE(plugin.send(Direction::TOWARDS_TRANSPORT, other));
  ASSERT_EQ(transport_.messages.size(), 1u);
  EXPECT_EQ(host_.calls, 1);
  EXPECT_TRUE(plugin.shutdown());
}

TEST_F(HostedPluginTest, NamesMakeTheLogCategory) {
  HostedPlugin plugin(library_, "name", "chain", tenant(""));
  std::array<Message, 1> messages = {notification("t1/sub/unknown/7", mapOf())};
  EXPECT_TRUE(plugin.send(Direction::TOWARDS_HOST, messages));
  const std::vector<log_line_t> log = takeLog();
  ASSERT_EQ(log.size(), 1u);
  EXPECT_EQ(log[0].category, CATEGORY);
}

TEST_F(HostedPluginTest, RefusedConfigurationIsAnError) {
  EXPECT_EQ(errorOf([&] { HostedPlugin plugin(library_, "name", "chain", mapOf()); }),
            "the plug-in refused its configuration");
  EXPECT_EQ(takeLog().size(), 1u);
}

TEST_F(HostedPluginTest, FailingCallIsNamed) {
  expectFailure("create", "the plug-in refused its configuration");
  expectFailure("setNextTowardsHost", "the plug-in failed in setNextTowardsHost");
  expectFailure("setNextTowardsTransport", "the plug-in failed in setNextTowardsTransport");
  expectFailure("start", "the plug-in failed in start");
  expectFailure("hostReady", "the plug-in failed in hostReady");
}

TEST_F(HostedPluginTest, FailingBatchAndShutdownAreResults) {
  HostedPlugin batch(faulty_, "name", "chain", tenant("sendBatchTowardsHost"));
  EXPECT_FALSE(batch.send(Direction::TOWARDS_HOST, {}));
  EXPECT_TRUE(batch.shutdown());
  HostedPlugin shutdown(faulty_, "name", "chain", tenant("shutdown"));
  EXPECT_TRUE(shutdown.send(Direction::TOWARDS_HOST, {}));
  EXPECT_FALSE(shutdown.shutdown());
  EXPECT_EQ(takeLog().size(), 2u);
}

} // namespace com::velanto::connectivity::test

// The base of every plug-in: hooks, logger, handles, and the status for the host at the end.
#include "plugin/plugin.hpp"

#include <memory>

#include "tests/support/host_fixture.hpp"
#include "tests/support/values.hpp"

namespace com::velanto::connectivity::test {
namespace {

void* const FIRST_HANDLE = unreadable(1);
void* const SECOND_HANDLE = unreadable(2);
void* const STATUS_HANDLE = unreadable(3);

class BarePlugin : public Plugin {
 public:
  BarePlugin()
      : Plugin(
            PluginConstructorParameters("codec", "chain", map_t(), FIRST_HANDLE, SECOND_HANDLE)) {}
  using Plugin::handle1;
  using Plugin::handle2;
  using Plugin::userStatusReporter;
};

// Notes the calls of the host.
struct statuses_t {
  std::vector<void*> handles;
  std::vector<std::string> texts;

  static void take(void* context, void* handle, const vlt_underlying_map_table_t* table) {
    auto& statuses = *static_cast<statuses_t*>(context);
    statuses.handles.push_back(handle);
    vlt_underlying_data_t view{};
    view.tag = VLT_TAG_MAP;
    view.value.map = const_cast<vlt_underlying_map_table_t*>(table);
    statuses.texts.push_back(to_string(data_t::view(view)));
  }
};

class PluginTest : public HostFixture {
 protected:
  void SetUp() override { standin_set_status_sink(&statuses_t::take, &statuses_); }
  void TearDown() override { standin_set_status_sink(nullptr, nullptr); }

  statuses_t statuses_;
};

TEST_F(PluginTest, HooksDoNothing) {
  BarePlugin plugin;
  standin_reset_calls();
  plugin.start();
  plugin.hostReady();
  plugin.shutdown();
  EXPECT_EQ(standin_calls_total(), 0);
}

TEST_F(PluginTest, HooksAreVirtual) {
  struct Recording : BarePlugin {
    explicit Recording(std::string& calls) : calls_(calls) {}
    ~Recording() override { calls_ += "destroyed"; }
    void start() override { calls_ += "start "; }
    void hostReady() override { calls_ += "hostReady "; }
    void shutdown() override { calls_ += "shutdown "; }
    std::string& calls_;
  };
  std::string calls;
  std::unique_ptr<Plugin> plugin = std::make_unique<Recording>(calls);
  plugin->start();
  plugin->hostReady();
  plugin->shutdown();
  plugin.reset();
  EXPECT_EQ(calls, "start hostReady shutdown destroyed");
}

TEST_F(PluginTest, LoggerIsNamedAfterPluginAndChain) {
  const BarePlugin plugin;
  plugin.getLogger().log(3, "%s", "text");
  EXPECT_EQ(takeLog(), (std::vector<log_line_t>{
                           {"connectivity.codec.chain", 3, "<connectivity.codec.chain> text"}}));
}

TEST_F(PluginTest, LevelIsAskedForOnce) {
  standin_reset_calls();
  const BarePlugin plugin;
  EXPECT_EQ(standin_calls(STANDIN_GET_LOG_LEVEL), 1);
}

TEST_F(PluginTest, HandlesAreKeptUnread) {
  const BarePlugin plugin;
  EXPECT_EQ(plugin.handle1, FIRST_HANDLE);
  EXPECT_EQ(plugin.handle2, SECOND_HANDLE);
}

TEST_F(PluginTest, HasNoStatusReporterUntilItMakesOne) {
  {
    const BarePlugin plugin;
    EXPECT_EQ(plugin.userStatusReporter, nullptr);
  }
  EXPECT_TRUE(statuses_.handles.empty());
}

TEST_F(PluginTest, PendingStatusIsHandedOverOnceAtDestruction) {
  auto plugin = std::make_unique<BarePlugin>();
  plugin->userStatusReporter = std::make_unique<UserStatusReporter>(
      UserStatusReporter{STATUS_HANDLE, mapOf("state", text("up"))});
  EXPECT_TRUE(statuses_.handles.empty());
  standin_reset_calls();
  plugin.reset();
  EXPECT_EQ(statuses_.handles, std::vector<void*>{STATUS_HANDLE});
  EXPECT_EQ(statuses_.texts, std::vector<std::string>{R"({"state": "up"})"});
  EXPECT_EQ(standin_calls(STANDIN_SET_USER_STATUS_MAP), 1);
}

TEST_F(PluginTest, StatusWithoutEntriesIsNotHandedOver) {
  auto plugin = std::make_unique<BarePlugin>();
  plugin->userStatusReporter =
      std::make_unique<UserStatusReporter>(UserStatusReporter{STATUS_HANDLE, map_t()});
  plugin.reset();
  EXPECT_TRUE(statuses_.handles.empty());
}

TEST_F(PluginTest, ErasedStatusIsNotHandedOver) {
  auto plugin = std::make_unique<BarePlugin>();
  map_t emptied = mapOf("state", text("up"));
  emptied.erase(emptied.begin());
  plugin->userStatusReporter =
      std::make_unique<UserStatusReporter>(UserStatusReporter{STATUS_HANDLE, std::move(emptied)});
  plugin.reset();
  EXPECT_TRUE(statuses_.handles.empty());
}

} // namespace
} // namespace com::velanto::connectivity::test

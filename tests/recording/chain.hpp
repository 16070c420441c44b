// A chain as production has it: a recorder, the codec, another recorder. Sends batches from either
// end, and keeps the messages that reach the other one.
#ifndef VLT_TESTS_RECORDING_CHAIN_HPP
#define VLT_TESTS_RECORDING_CHAIN_HPP

#include <span>
#include <string>

#include "tests/support/values.hpp"
#include "tools/host/hosted_plugin.hpp"

namespace com::velanto::connectivity::test {

// Both libraries of a chain, loaded.
struct plugin_libraries_t {
  tools::PluginLibrary codecs{VLT_PLUGIN_PATH};
  tools::PluginLibrary recorders{VLT_RECORDER_PATH, tools::PluginLibrary::Version::OURS,
                                 tools::PluginLibrary::RECORDER_CLASS_NAME};
};

// The settings of a recorder with this folder and more of them.
template <class... KeysAndValues>
data_t recorderSettings(const std::string& folder, KeysAndValues&&... more) {
  return mapOf("recordingFolder", text(folder.c_str()), std::forward<KeysAndValues>(more)...);
}

class Chain {
 public:
  // Makes, links and starts the plug-ins; the ends of the chain are the given links. Both recorders
  // have these settings; their files are named "before-chain" and "after-chain".
  Chain(const plugin_libraries_t& libraries, const data_t& settings, const tools::link_t& host,
        const tools::link_t& transport)
      : before_(libraries.recorders, "before", "chain", settings),
        codec_(libraries.codecs, "codec", "chain", mapOf("tenantId", text("t1"))),
        after_(libraries.recorders, "after", "chain", settings) {
    before_.link({&codec_, towardsHost}, transport);
    codec_.link({&after_, towardsHost}, {&before_, towardsTransport});
    after_.link(host, {&codec_, towardsTransport});
    for (tools::HostedPlugin* const plugin : {&before_, &codec_, &after_}) plugin->start();
  }

  [[nodiscard]] bool sendTowardsHost(std::span<Message> batch) {
    return before_.send(tools::Direction::TOWARDS_HOST, batch);
  }
  [[nodiscard]] bool sendTowardsTransport(std::span<Message> batch) {
    return after_.send(tools::Direction::TOWARDS_TRANSPORT, batch);
  }
  [[nodiscard]] bool shutdown() {
    return before_.shutdown() && codec_.shutdown() && after_.shutdown();
  }

 private:
  static void pass(tools::Direction direction, void* plugin, vlt_underlying_message_t* start,
                   vlt_underlying_message_t* end) {
    const std::span batch(reinterpret_cast<Message*>(start), reinterpret_cast<Message*>(end));
    if (!static_cast<tools::HostedPlugin*>(plugin)->send(direction, batch)) {
      throw std::runtime_error("the next plug-in failed");
    }
  }
  static void towardsHost(void* plugin, vlt_underlying_message_t* start,
                          vlt_underlying_message_t* end) {
    pass(tools::Direction::TOWARDS_HOST, plugin, start, end);
  }
  static void towardsTransport(void* plugin, vlt_underlying_message_t* start,
                               vlt_underlying_message_t* end) {
    pass(tools::Direction::TOWARDS_TRANSPORT, plugin, start, end);
  }

  tools::HostedPlugin before_;
  tools::HostedPlugin codec_;
  tools::HostedPlugin after_;
};

} // namespace com::velanto::connectivity::test

#endif

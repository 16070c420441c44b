#include "tools/host/hosted_plugin.hpp"

namespace com::velanto::connectivity::tools {

namespace {

void require(int result, const char* call) {
  if (result != 0) throw PluginError(std::string("the plug-in failed in ") + call);
}

} // namespace

HostedPlugin::HostedPlugin(const PluginLibrary& library, const char* name, const char* chain,
                           const data_t& configuration)
    : library_(library),
      plugin_(library.create(name, chain, configuration.underlying(), nullptr, nullptr)) {
  if (plugin_ == nullptr) throw PluginError("the plug-in refused its configuration");
}

HostedPlugin::~HostedPlugin() { library_.destroy(plugin_); }

void HostedPlugin::link(const link_t& towards_host, const link_t& towards_transport) {
  require(library_.setNextTowardsHost(plugin_, towards_host.handle, towards_host.function),
          "setNextTowardsHost");
  require(library_.setNextTowardsTransport(plugin_, towards_transport.handle,
                                           towards_transport.function),
          "setNextTowardsTransport");
}

void HostedPlugin::start() {
  require(library_.start(plugin_), "start");
  require(library_.hostReady(plugin_), "hostReady");
}

bool HostedPlugin::send(Direction direction, std::span<Message> messages) noexcept {
  auto* const send = direction == Direction::TOWARDS_HOST ? library_.sendBatchTowardsHost
                                                          : library_.sendBatchTowardsTransport;
  return send(plugin_, messages.data(), messages.data() + messages.size()) == 0;
}

bool HostedPlugin::shutdown() noexcept { return library_.shutdown(plugin_) == 0; }

} // namespace com::velanto::connectivity::tools

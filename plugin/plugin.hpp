// The base of every plug-in: its names, its logger, and the lifecycle hooks that the host drives in
// the order start, hostReady, shutdown, destruction.
#ifndef VLT_PLUGIN_PLUGIN_HPP
#define VLT_PLUGIN_PLUGIN_HPP

#include <memory>
#include <string>

#include "plugin/logger.hpp"
#include "plugin/plugin_constructor_parameters.hpp"
#include "value/data_t.hpp"

namespace com::velanto::connectivity {

// Status entries for the host, under its handle.
struct UserStatusReporter {
  void* handle;
  map_t pending;
};

class Plugin {
 public:
  explicit Plugin(const PluginConstructorParameters& params);
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;
  // Hands pending status entries to the host.
  virtual ~Plugin();

  virtual void start() {}
  virtual void hostReady() {}
  virtual void shutdown() {}

  [[nodiscard]] const Logger& getLogger() const noexcept { return logger; }

 protected:
  // The host's two opaque handles, as create received them; never dereferenced.
  void* handle1;
  void* handle2;
  Logger logger;
  // For a plug-in that reports a status; none until it makes one.
  std::unique_ptr<UserStatusReporter> userStatusReporter;
};

} // namespace com::velanto::connectivity

#endif

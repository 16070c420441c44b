// One plug-in of a chain, driven as a host drives it. The calls come in this order:
//
//   construction   create
//   link           setNextTowardsHost, setNextTowardsTransport
//   start          start, hostReady
//   send           sendBatchTowardsHost or sendBatchTowardsTransport, any number of times
//   shutdown       shutdown
//   destruction    destroy
//
// A plug-in that fails logs the reason itself; the errors here say only which call it was.
#ifndef VLT_TOOLS_HOST_HOSTED_PLUGIN_HPP
#define VLT_TOOLS_HOST_HOSTED_PLUGIN_HPP

#include <span>

#include "tools/host/plugin_library.hpp"
#include "value/message.hpp"

namespace com::velanto::connectivity::tools {

enum class Direction { TOWARDS_HOST, TOWARDS_TRANSPORT };

// The link of one direction. Neither may be null; `function` must not throw. Both must live as long
// as the plug-in.
struct link_t {
  void* handle;
  vlt_batch_function function;
};

class HostedPlugin {
 public:
  // Creates the plug-in with no host handles. `library` must outlive it; it only reads the strings
  // and the configuration. Throws PluginError when the plug-in refuses.
  HostedPlugin(const PluginLibrary& library, const char* name, const char* chain,
               const data_t& configuration);
  HostedPlugin(const HostedPlugin&) = delete;
  HostedPlugin& operator=(const HostedPlugin&) = delete;
  ~HostedPlugin();

  // Throw PluginError when the plug-in reports failure.
  void link(const link_t& towards_host, const link_t& towards_transport);
  void start();

  // False: the plug-in reported failure. The messages stay the caller's, changed as the plug-in
  // likes, in either case.
  [[nodiscard]] bool send(Direction direction, std::span<Message> messages) noexcept;
  [[nodiscard]] bool shutdown() noexcept;

  // The handle that the library's functions take.
  [[nodiscard]] void* get() const noexcept { return plugin_; }

 private:
  const PluginLibrary& library_;
  void* plugin_;
};

} // namespace com::velanto::connectivity::tools

#endif

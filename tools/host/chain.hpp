// A plug-in in a chain of its own, seen from both ends: what is sent in, and of each call what came
// out and what was logged.
#ifndef VLT_TOOLS_HOST_CHAIN_HPP
#define VLT_TOOLS_HOST_CHAIN_HPP

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/host/hosted_plugin.hpp"
#include "tools/host/log_capture.hpp"
#include "tools/host/received.hpp"

namespace com::velanto::connectivity::tools {

// The result of one call. The messages belong to whoever takes them.
struct call_result_t {
  bool failed = false; // the plug-in reported failure
  std::vector<Message> outputs;
  std::vector<log_line_t> log;
  std::chrono::nanoseconds time{}; // the call alone
};

class Chain {
 public:
  // Creates, links and starts the plug-in. `library` must outlive the chain. Throws PluginError; the
  // lines logged until then are in `log`, in either case.
  Chain(const PluginLibrary& library, const data_t& configuration, Direction direction,
        std::vector<log_line_t>& log);
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;
  ~Chain() = default;

  // The result is valid until the next call; `messages` are left as the plug-in likes. Throws
  // std::bad_alloc when there is no room for what came out.
  call_result_t& send(std::span<Message> messages);

  // The last call; also tells what came out without having been asked for.
  call_result_t& shutdown();

 private:
  template <class Call>
  call_result_t& record(const Call& call);

  Direction direction_;
  Received received_;
  call_result_t result_;
  std::optional<HostedPlugin> plugin_; // points at received_
};

} // namespace com::velanto::connectivity::tools

#endif

// A plug-in in a chain of its own, seen from both ends: the messages for it, and the messages, log
// lines and text on standard error of each call.
#ifndef VLT_TOOLS_HOST_REPLAY_CHAIN_HPP
#define VLT_TOOLS_HOST_REPLAY_CHAIN_HPP

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/host/hosted_plugin.hpp"
#include "tools/host/log_capture.hpp"
#include "tools/host/received.hpp"

namespace com::velanto::connectivity::tools {

// The result of one call. The caller may take the messages.
struct call_result_t {
  bool failed = false; // the plug-in reported failure
  std::vector<Message> outputs;
  std::vector<log_line_t> log;
  std::string printed;             // on standard error, past the log, as far as it is caught
  std::chrono::nanoseconds time{}; // the call alone
};

class ReplayChain {
 public:
  // Creates, links and starts the plug-in. `library` must outlive the chain. Throws PluginError; the
  // lines logged until then are in `log`, in either case.
  ReplayChain(const PluginLibrary& library, const data_t& configuration, Direction direction,
              std::vector<log_line_t>& log);
  ReplayChain(const ReplayChain&) = delete;
  ReplayChain& operator=(const ReplayChain&) = delete;
  ~ReplayChain() = default;

  // Sends in the direction of the chain, or in another one; the outputs came out in
  // the same direction. The result is valid until the next call; `messages` are in any state after
  // it. Throws std::bad_alloc without memory for the result.
  call_result_t& send(std::span<Message> messages) { return send(messages, direction_); }
  call_result_t& send(std::span<Message> messages, Direction direction);

  // The last call; its result also has messages that came out unasked, in the chain's direction.
  call_result_t& shutdown();

 private:
  template <class Call>
  call_result_t& record(Direction direction, const Call& call);

  Direction direction_;
  Received at_host_;
  Received at_transport_;
  call_result_t result_;
  std::optional<HostedPlugin> plugin_; // points at both
};

} // namespace com::velanto::connectivity::tools

#endif

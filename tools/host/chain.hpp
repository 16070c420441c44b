// A plug-in in a chain of its own, seen from both ends: what is sent in, and of each call what came
// out and what was logged.
#ifndef VLT_TOOLS_HOST_CHAIN_HPP
#define VLT_TOOLS_HOST_CHAIN_HPP

#include <chrono>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/host/hosted_plugin.hpp"
#include "tools/host/log_capture.hpp"

namespace com::velanto::connectivity::tools {

// The result of one call. The messages belong to whoever takes them.
struct passage_t {
  bool failed = false; // the plug-in reported failure
  std::vector<Message> outputs;
  std::vector<log_line_t> log;
  std::chrono::nanoseconds time{}; // the call alone

  void clear() noexcept;
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
  passage_t& send(std::span<Message> messages);

  // The last call; also tells what came out without having been asked for.
  passage_t& shutdown();

 private:
  static void take(void* handle, vlt_underlying_message_t* start,
                   vlt_underlying_message_t* end) noexcept;

  Direction direction_;
  passage_t passage_;
  std::exception_ptr failure_; // in the link: no exception may cross the plug-in
  std::optional<HostedPlugin> plugin_;
};

} // namespace com::velanto::connectivity::tools

#endif

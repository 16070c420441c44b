// Sends recorded messages through a plug-in and writes down what comes out on the other side:
//
//   inputs, a message a line ─ JsonReader → batch → plug-in → next link ─ JsonWriter → events
//
// The plug-in runs inside this process and is driven through its C functions from creation to
// destruction. A batch is kept only while it is under way, so memory depends on the batch size and
// on the longest line, not on how much there is to read.
#ifndef VLT_TOOLS_REPLAY_REPLAY_HPP
#define VLT_TOOLS_REPLAY_REPLAY_HPP

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "host/types.h"
#include "tools/plugin_host/hosted_plugin.hpp"
#include "tools/replay/inputs.hpp"

namespace com::velanto::connectivity::tools {

inline constexpr const char* REPLAY_NAME = "ostrovia-replay"; // how its diagnostics begin
inline constexpr std::size_t DEFAULT_BATCH_SIZE = 256;        // messages
inline constexpr vlt_log_level_t DEFAULT_LOG_LEVEL = 3;       // failures and dropped messages

struct ReplayOptions {
  std::string plugin_path;
  std::string tenant_id;                          // empty: no tenant
  std::optional<std::string> channel_prefix;      // without it the plug-in's default
  std::optional<std::string> measurement_channel; // the same
  std::size_t batch_size = DEFAULT_BATCH_SIZE;    // at least 1
  std::optional<vlt_log_level_t> log_level;       // without it DEFAULT_LOG_LEVEL
  Direction direction = Direction::towardsHost;
};

// Exit statuses; the largest that applies is the one returned.
enum replay_status_t {
  REPLAY_DONE = 0,     // also when messages were dropped
  REPLAY_IMPAIRED = 1, // lines were malformed, or the plug-in reported that a batch failed
  REPLAY_FAILED = 2,   // nothing, or not everything, could be replayed
  REPLAY_LEAKED = 3    // blocks of the host were not given back
};

// Writes to `events` one line for each message that reaches the link in the chosen direction, and
// to `diagnostics` lines about what went wrong and, unless it failed, one with the figures. The
// plug-in's own log lines go where the host's library sends them. Does not throw.
int replay(const ReplayOptions& options, const std::vector<input_t>& inputs, std::ostream& events,
           std::ostream& diagnostics) noexcept;

} // namespace com::velanto::connectivity::tools

#endif

// The options of ostrovia-replay.
#ifndef VLT_TOOLS_OPTIONS_REPLAY_OPTIONS_HPP
#define VLT_TOOLS_OPTIONS_REPLAY_OPTIONS_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/types.h"
#include "tools/options/options.hpp"

namespace com::velanto::connectivity::tools {

inline constexpr const char* REPLAY_NAME = "ostrovia-replay"; // how its diagnostics begin
inline constexpr vlt_log_level_t DEFAULT_LOG_LEVEL = 3;       // failures and dropped messages
inline constexpr vlt_log_level_t QUIET_LOG_LEVEL = 2;         // failures alone
inline constexpr std::size_t MOST_THREADS = 1024;             // more than a machine has use for

struct ReplayOptions {
  std::vector<std::string> paths; // of the inputs; none: standard input

  std::string plugin_path;
  std::optional<std::string> config;              // path of a file with the configuration
  bool check_config = false;                      // look at it instead of replaying
  std::optional<std::string> tenant_id;           // empty: no tenant
  std::optional<std::string> channel_prefix;      // without it the plug-in's default
  std::optional<std::string> measurement_channel; // the same

  std::size_t batch_size = 1;               // messages, at least 1
  std::size_t repeat = 1;                   // number of readings of the input, at least 1
  std::size_t threads = 1;                  // chains, each with a thread, 1 to MOST_THREADS
  std::string direction = "host";           // or "transport"
  std::string log_format = "plain";         // or "json"
  std::size_t max_line = 64;                // MiB of a line of input
  bool as_recorded = false;                 // direction and batches of the recording
  bool follow = false;                      // wait for more input
  std::optional<vlt_log_level_t> log_level; // without it one of the two above
  bool strict = false;                      // dropped messages are a failure

  bool quiet = false;                    // no progress, no closing line, QUIET_LOG_LEVEL
  std::optional<std::string> summary;    // "text" or "json"
  std::optional<std::string> explain;    // the same
  std::optional<std::string> report;     // path of the page
  std::optional<std::string> dropped;    // path of the file of dead letters
  std::vector<std::string> redact;       // lists of fields,
  std::optional<std::string> redacted;   // path of the copy with stand-ins for them,
  std::optional<std::string> redact_key; // and of the file with the key for these

  std::optional<std::string> record;        // path of the golden file to write,
  std::optional<std::string> expect;        // and of the one to compare with
  std::optional<std::string> expect_events; // path of a recording of events to compare with
  std::optional<std::string> against;       // path of another plug-in library
  std::optional<std::string> suite;         // path of a folder of cases
  bool update = false;                      // make the suite's golden files again
  std::optional<std::string> junit;         // path of the suite's report

  bool merge_summaries = false; // add up summaries, instead of replaying
};

// The largest level of log lines on standard error. An explanation has the lines of its message
// itself.
[[nodiscard]] inline vlt_log_level_t shownLogLevel(const ReplayOptions& options) {
  return options.log_level.value_or(options.quiet || options.explain ? QUIET_LOG_LEVEL
                                                                     : DEFAULT_LOG_LEVEL);
}

// The tool; its options set `options`.
[[nodiscard]] tool_t replayTool(ReplayOptions& options);

} // namespace com::velanto::connectivity::tools

#endif

#include "tools/replay/command_line.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <charconv>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/replay/replay.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr const char* EXAMPLES =
    "Examples:\n"
    "  ostrovia-replay recorded.ndjson\n"
    "  zcat recorded.ndjson.gz | ostrovia-replay --tenant-id t1 --log-level 6 - > events.ndjson\n"
    "\n"
    "Sends recorded messages through the plug-in and prints what reaches the host, both as lines "
    "of\n"
    "JSON: {\"metadata\": {\"pulsarPath\": \"t1/sub/events/7\"}, \"payload\": {...}}\n";

constexpr const char* EXIT_STATUSES =
    "Exit status: 0 done, dropped messages included; 1 malformed lines, or a batch or the "
    "shutdown\n"
    "failed; 2 the replay could not be done, or not to its end; 3 the plug-in leaked blocks.\n";

// Nothing, or what is wrong with `text` as a number of messages. The library's own check lets -1
// through, as a very large number.
std::string checkCount(const std::string& text) {
  std::size_t count = 0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, count);
  if (result.ec == std::errc() && result.ptr == end && count > 0) return "";
  return "'" + text + "' is not a number of at least 1";
}

// What a command line asks for.
struct command_t {
  ReplayOptions options;
  std::string direction = "host";
  std::vector<std::string> paths;
};

void addPluginOptions(CLI::App& app, ReplayOptions& options) {
  app.add_option("--plugin", options.plugin_path,
                 "Plug-in library; default: the one beside this program")
      ->type_name("PATH");
  app.add_option("--tenant-id", options.tenant_id, "Tenant in every event; empty: none")
      ->type_name("TEXT")
      ->capture_default_str();
  app.add_option("--channel-prefix", options.channel_prefix,
                 "Prefix of the channel of all events but measurements");
  app.add_option("--measurement-channel", options.measurement_channel, "Channel of measurements");
  app.add_option("--log-level", options.log_level,
                 "Level of the log on standard error: 2 failures of the plug-in, 3 also dropped\n"
                 "messages, 6 also every message; default: 3")
      ->type_name("LEVEL");
}

void addReplayOptions(CLI::App& app, command_t& command) {
  app.add_option("FILES", command.paths, "Recorded messages, one a line; - or none: standard input")
      ->type_name("");
  app.add_option("--batch-size", command.options.batch_size, "Messages in a batch")
      ->type_name("COUNT")
      ->check(CLI::Validator(&checkCount, ""))
      ->capture_default_str();
  app.add_option("--direction", command.direction, "Side that the messages are sent to")
      ->type_name("SIDE")
      ->check(CLI::IsMember({"host", "transport"}))
      ->capture_default_str();
}

// Nothing: the arguments are done with, by help, version or a complaint; `status` tells which.
std::optional<command_t> parse(int count, const char* const* arguments, std::ostream& out,
                               std::ostream& diagnostics, int& status) {
  command_t command;
  CLI::App app(EXAMPLES, REPLAY_NAME);
  app.footer(EXIT_STATUSES);
  app.set_version_flag("--version", std::string(REPLAY_NAME) + " " + VLT_VERSION);
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string(REPLAY_NAME) + ": " + error.what() + "\n";
  });
  addReplayOptions(app, command);
  addPluginOptions(app, command.options);
  try {
    app.parse(count, arguments);
  } catch (const CLI::ParseError& error) {
    status = app.exit(error, out, diagnostics) == 0 ? REPLAY_DONE : REPLAY_FAILED;
    if (!out.flush()) throw std::runtime_error("cannot write to standard output");
    return std::nullopt;
  }
  if (command.direction == "transport") command.options.direction = Direction::towardsTransport;
  if (command.options.plugin_path.empty()) {
    command.options.plugin_path = PluginLibrary::defaultPath();
  }
  return command;
}

} // namespace

int runReplay(int count, const char* const* arguments, std::ostream& out,
              std::ostream& diagnostics) noexcept {
  try {
    int status = REPLAY_DONE;
    const std::optional<command_t> command = parse(count, arguments, out, diagnostics, status);
    if (!command) return status;
    return replay(command->options, inputsFrom(command->paths), out, diagnostics);
  } catch (const std::exception& error) {
    diagnostics << REPLAY_NAME << ": " << error.what() << '\n';
    return REPLAY_FAILED;
  }
}

} // namespace com::velanto::connectivity::tools

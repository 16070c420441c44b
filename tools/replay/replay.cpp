#include "tools/replay/replay.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "tools/host_library.hpp"
#include "tools/ndjson/json_reader.hpp"
#include "tools/replay/event_writer.hpp"

namespace com::velanto::connectivity::tools {

namespace {

using clock_t = std::chrono::steady_clock;
using milliseconds_t = std::chrono::duration<double, std::milli>;

constexpr const char* CHAIN_NAME = "replay";

data_t configurationOf(const ReplayOptions& options) {
  map_t map;
  const auto set = [&map](const char* key, const std::string& text) {
    map[data_t(key)] = data_t(text.c_str());
  };
  set("tenantId", options.tenant_id);
  if (options.channel_prefix) set("towardsHostChannelPrefix", *options.channel_prefix);
  if (options.measurement_channel) set("measurementSplittingChannel", *options.measurement_channel);
  return map;
}

// The link of the direction in which nothing is sent.
void ignore(void*, vlt_underlying_message_t*, vlt_underlying_message_t*) noexcept {}

bool isBlank(std::string_view line) noexcept {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

class Replay {
 public:
  Replay(const ReplayOptions& options, std::ostream& events, std::ostream& diagnostics)
      : options_(options), events_(events), diagnostics_(diagnostics) {}

  int run(const std::vector<input_t>& inputs);

 private:
  void setLevel();
  void drive(const std::vector<input_t>& inputs);
  void readAll(const input_t& input, HostedPlugin& plugin);
  void readLine(std::string_view line, const std::string& name, std::uint64_t number);
  void sendBatch(HostedPlugin& plugin);
  void report(const char* text) { diagnostics_ << REPLAY_NAME << ": " << text << '\n'; }
  void impair() { status_ = std::max<int>(status_, REPLAY_IMPAIRED); }
  void writeFigures(std::optional<std::int64_t> blocks);

  const ReplayOptions& options_;
  EventWriter events_;
  std::ostream& diagnostics_;
  JsonReader reader_;
  std::vector<Message> batch_;
  std::uint64_t read_ = 0; // messages; what is malformed is none
  std::uint64_t malformed_ = 0;
  milliseconds_t elapsed_{};
  int status_ = REPLAY_DONE;
};

int Replay::run(const std::vector<input_t>& inputs) {
  setLevel();
  // The caller may hold blocks; the plug-in library makes some when it is loaded and gives them
  // back only when it is unloaded.
  const std::optional<std::int64_t> before = liveBlocks();
  drive(inputs);
  std::optional<std::int64_t> blocks = liveBlocks();
  if (blocks) *blocks -= before.value_or(0);
  if (blocks.value_or(0) != 0) status_ = REPLAY_LEAKED;
  writeFigures(blocks);
  return status_;
}

void Replay::setLevel() {
  const bool set = setLogLevel(options_.log_level.value_or(DEFAULT_LOG_LEVEL));
  if (!set && options_.log_level) {
    report("this host library does not let its log level be set; --log-level is ignored");
  }
}

// The plug-in's whole life. An error ends it without the rest of the input and without shutdown.
void Replay::drive(const std::vector<input_t>& inputs) {
  const PluginLibrary library(options_.plugin_path);
  HostedPlugin plugin(library, "OstroviaNotifications2Codec", CHAIN_NAME,
                      configurationOf(options_));
  const link_t nowhere{nullptr, &ignore};
  const bool to_host = options_.direction == Direction::towardsHost;
  plugin.link(to_host ? events_.link() : nowhere, to_host ? nowhere : events_.link());
  plugin.start();
  const clock_t::time_point start = clock_t::now();
  for (const input_t& input : inputs) readAll(input, plugin);
  if (!batch_.empty()) sendBatch(plugin);
  elapsed_ = clock_t::now() - start;
  if (!plugin.shutdown()) {
    report("the plug-in failed in shutdown");
    impair();
  }
}

void Replay::readAll(const input_t& input, HostedPlugin& plugin) {
  const std::unique_ptr<std::istream> stream = input.open();
  std::string line;
  for (std::uint64_t number = 1; std::getline(*stream, line); ++number) {
    if (isBlank(line)) continue;
    readLine(line, input.name, number);
    if (batch_.size() == options_.batch_size) sendBatch(plugin);
  }
  if (stream->bad()) throw std::runtime_error(input.name + ": cannot be read to its end");
}

// Adds the line's message to the batch, or reports why it has none.
void Replay::readLine(std::string_view line, const std::string& name, std::uint64_t number) {
  try {
    batch_.push_back(reader_.parseMessage(line));
    ++read_;
  } catch (const MalformedJson& e) {
    diagnostics_ << name << ':' << number << ": " << e.what() << '\n';
    ++malformed_;
    impair();
  }
}

void Replay::sendBatch(HostedPlugin& plugin) {
  if (!plugin.send(options_.direction, batch_)) {
    diagnostics_ << REPLAY_NAME << ": the plug-in failed on a batch, messages " << batch_.size()
                 << '\n';
    impair();
  }
  batch_.clear();
  events_.finishBatch();
}

void Replay::writeFigures(std::optional<std::int64_t> blocks) {
  std::array<char, 400> digits{}; // room for any double
  const std::to_chars_result end =
      std::to_chars(digits.begin(), digits.end(), elapsed_.count(), std::chars_format::fixed, 3);
  // A plug-in may send more than it was sent.
  const std::uint64_t dropped = read_ - std::min(read_, events_.count());
  diagnostics_ << "read " << read_ << ", reached the "
               << (options_.direction == Direction::towardsHost ? "host " : "transport ")
               << events_.count() << ", dropped " << dropped << ", malformed " << malformed_ << ", "
               << std::string_view(digits.begin(), end.ptr) << " ms, ";
  if (blocks) {
    diagnostics_ << *blocks << " blocks live\n";
  } else {
    diagnostics_ << "live blocks not counted by this host library\n";
  }
}

} // namespace

int replay(const ReplayOptions& options, const std::vector<input_t>& inputs, std::ostream& events,
           std::ostream& diagnostics) noexcept {
  try {
    return Replay(options, events, diagnostics).run(inputs);
  } catch (const std::exception& e) {
    diagnostics << REPLAY_NAME << ": " << e.what() << '\n';
    return REPLAY_FAILED;
  }
}

} // namespace com::velanto::connectivity::tools

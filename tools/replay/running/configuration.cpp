#include "tools/replay/running/configuration.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "tools/host/replay_chain.hpp"
#include "tools/options/exit_status.hpp"
#include "tools/options/guess.hpp"
#include "tools/replay/input/configuration_file.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr const char* TENANT = "tenantId";
constexpr const char* PREFIX = "towardsHostChannelPrefix";
constexpr const char* CHANNEL = "measurementSplittingChannel";

constexpr std::array<std::string_view, 3> KEYS = {TENANT, PREFIX, CHANNEL};

// The mistake in an entry that the plug-in accepts, or nothing.
std::string faultOf(const configuration_entry_t& entry) {
  const data_t& value = entry.value;
  const std::string kind = value.empty() ? "nothing" : kind_name(value.type_tag());
  if (std::find(KEYS.begin(), KEYS.end(), entry.key) == KEYS.end()) {
    return "unknown key '" + entry.key + "' is ignored" + guessFor(entry.key, KEYS);
  }
  if (entry.key == CHANNEL && !value.is_string()) {
    return "'" + entry.key + "' is " + kind +
           ", not string, and silently becomes the default 'ostrovia.measurements'";
  }
  // The codec takes numbers and booleans as strings.
  const bool has_text = value.is_string() || value.type_tag() == VLT_TAG_BOOLEAN ||
                        value.type_tag() == VLT_TAG_INTEGER || value.type_tag() == VLT_TAG_DOUBLE;
  if (entry.key == PREFIX && !has_text) {
    return "'" + entry.key + "' is " + kind + ", not string, and silently becomes no prefix";
  }
  return "";
}

bool isEmptyTenant(const configuration_entry_t& entry) {
  return entry.key == TENANT && entry.value.is_string() &&
         *text_or_empty(entry.value.get<const char*>()) == '\0';
}

// Whether a host would get its codec; says why not.
bool canBeCreated(const ReplayOptions& options, std::ostream& diagnostics) {
  const LogCapture capture;
  const PluginLibrary library(options.plugin_path);
  std::vector<log_line_t> log;
  std::string failure;
  try {
    ReplayChain chain(library, configurationOf(options), Direction::TOWARDS_HOST, log);
    const call_result_t& last = chain.shutdown();
    log.insert(log.end(), last.log.begin(), last.log.end());
    if (last.failed) failure = "the plug-in failed in shutdown";
  } catch (const PluginError& e) {
    failure = e.what();
  }
  for (const log_line_t& line : log) diagnostics << line.text << '\n';
  if (!failure.empty()) diagnostics << REPLAY_NAME << ": " << failure << '\n';
  return failure.empty();
}

} // namespace

data_t configurationOf(const ReplayOptions& options) {
  map_t map;
  if (options.config) {
    for (configuration_entry_t& entry : readConfiguration(*options.config)) {
      map[data_t(entry.key.c_str())] = std::move(entry.value);
    }
  } else {
    map[data_t(TENANT)] = data_t("");
  }
  const auto set = [&map](const char* key, const std::optional<std::string>& text) {
    if (text) map[data_t(key)] = data_t(text->c_str());
  };
  set(TENANT, options.tenant_id);
  set(PREFIX, options.channel_prefix);
  set(CHANNEL, options.measurement_channel);
  return map;
}

int checkConfiguration(const ReplayOptions& options, std::ostream& out, std::ostream& diagnostics) {
  bool fine = true;
  for (const configuration_entry_t& entry : readConfiguration(*options.config)) {
    const std::string place = *options.config + ":" + std::to_string(entry.line) + ": ";
    const std::string fault = faultOf(entry);
    if (!fault.empty()) diagnostics << place << fault << '\n';
    fine = fine && fault.empty();
    if (isEmptyTenant(entry)) {
      diagnostics << place << "'tenantId' is empty: events get no tenant\n";
    }
  }
  fine = canBeCreated(options, diagnostics) && fine;
  if (!fine) return EXIT_PLUGIN;
  out << *options.config << ": fine\n";
  if (!out.flush()) throw ReplayError(EXIT_IO, "cannot write to standard output");
  return EXIT_FINE;
}

} // namespace com::velanto::connectivity::tools

#include "tools/replay/running/configuration.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "ndjson/visible_text.hpp"
#include "tools/host/replay_chain.hpp"
#include "tools/options/exit_status.hpp"
#include "tools/options/guess.hpp"
#include "tools/replay/input/configuration_file.hpp"
#include "value/convert_to.hpp"
#include "value/get_visitor.hpp"

namespace com::velanto::connectivity::tools {

namespace {

constexpr const char* TENANT = "tenantId";
constexpr const char* PREFIX = "towardsHostChannelPrefix";
constexpr const char* CHANNEL = "measurementSplittingChannel";

constexpr std::array<std::string_view, 3> KEYS = {TENANT, PREFIX, CHANNEL};

bool isEmptyText(const data_t& text) { return *text_or_empty(text.get<const char*>()) == '\0'; }

bool isNumberOrBoolean(const data_t& value) {
  return value.type_tag() == VLT_TAG_BOOLEAN || value.type_tag() == VLT_TAG_INTEGER ||
         value.type_tag() == VLT_TAG_DOUBLE;
}

// What becomes of the value of a known key that is no string.
std::string fateOf(const configuration_entry_t& entry) {
  if (entry.key == TENANT) return "so a host gets no codec";
  if (entry.key == CHANNEL) return "and silently becomes the default 'ostrovia.measurements'";
  if (!isNumberOrBoolean(entry.value)) return "and silently becomes no prefix";
  return "and becomes '" + convert_to<std::string>(entry.value) + "'";
}

// The mistake in an entry, after its place, or nothing.
std::string faultOf(const configuration_entry_t& entry) {
  const data_t& value = entry.value;
  const std::string name = "'" + visible(entry.key) + "'";
  if (std::find(KEYS.begin(), KEYS.end(), entry.key) == KEYS.end()) {
    return entry.key_place + ": unknown key " + name + " is ignored" + guessFor(entry.key, KEYS);
  }
  if (value.is_string()) {
    const bool nameless = entry.key == CHANNEL && isEmptyText(value);
    return nameless
               ? entry.place + ": " + name + " is empty: measurements get a channel without a name"
               : "";
  }
  const std::string kind = value.empty() ? "nothing" : kind_name(value.type_tag());
  return entry.place + ": " + name + " is " + kind + ", not string, " + fateOf(entry) +
         (isNumberOrBoolean(value) ? "; put it in quotes" : "");
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
  const std::string& path = *options.config;
  bool usable = true;
  bool warned = false;
  for (const configuration_entry_t& entry : readConfiguration(path)) {
    const std::string fault = faultOf(entry);
    if (!fault.empty()) diagnostics << path << ':' << fault << '\n';
    usable = usable && fault.empty();
    if (entry.key == TENANT && entry.value.is_string() && isEmptyText(entry.value)) {
      diagnostics << path << ':' << entry.place
                  << ": warning: 'tenantId' is empty: events get no tenant\n";
      warned = true;
    }
  }
  usable = canBeCreated(options, diagnostics) && usable;
  if (!usable) return EXIT_PLUGIN;
  out << visible(path) << (warned ? ": usable, with a warning\n" : ": fine\n");
  if (!out.flush()) throw ReplayError(EXIT_IO, "cannot write to standard output");
  return EXIT_FINE;
}

} // namespace com::velanto::connectivity::tools

#include "bench/plugin_contender.hpp"

#include <algorithm>
#include <stdexcept>

#include "bench/settings.hpp"
#include "ndjson/json_writer.hpp"

namespace com::velanto::connectivity::bench {

namespace {

data_t configuration() {
  map_t settings;
  settings[data_t("tenantId")] = data_t(TENANT);
  return settings;
}

} // namespace

PluginContender::PluginContender(const std::string& library, const lines_t& lines,
                                 std::size_t batch, tables_t tables)
    : BatchContender(batch),
      prototypes_(readMessages(lines, tables)),
      messages_(prototypes_.size()),
      library_(library),
      plugin_(library_, PLUGIN_NAME, CHAIN_NAME, configuration()) {
  plugin_.link({this, &PluginContender::take}, {this, &PluginContender::take});
  plugin_.start();
}

// The messages stay in the array; its owner releases them.
void PluginContender::take(void* context, vlt_underlying_message_t* start,
                           vlt_underlying_message_t* end) {
  static_cast<PluginContender*>(context)->passed_on_ = static_cast<std::size_t>(end - start);
}

void PluginContender::convert(std::size_t first, std::size_t end) {
  if (!plugin_.send(tools::Direction::TOWARDS_HOST,
                    std::span(messages_).subspan(first, end - first))) {
    throw std::runtime_error("the plug-in failed with a batch");
  }
}

lines_t PluginContender::render() {
  lines_t lines;
  for (std::size_t i = 0; i < passed_on_; ++i) lines.push_back(toJson(messages_[i]));
  return lines;
}

} // namespace com::velanto::connectivity::bench

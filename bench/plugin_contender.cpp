#include "bench/plugin_contender.hpp"

#include <algorithm>
#include <stdexcept>

#include "bench/settings.hpp"

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
    : prototypes_(readMessages(lines, tables)),
      messages_(prototypes_.size()),
      batch_(batch),
      library_(library),
      plugin_(library_, PLUGIN_NAME, CHAIN_NAME, configuration()) {
  plugin_.link({this, &PluginContender::take}, {this, &PluginContender::take});
  plugin_.start();
}

// The messages stay in the array; whoever owns it releases them.
void PluginContender::take(void* context, vlt_underlying_message_t* start,
                           vlt_underlying_message_t* end) {
  lines_t* const rendered = static_cast<PluginContender*>(context)->rendered_;
  if (rendered == nullptr) return;
  for (auto* message = start; message != end; ++message) {
    rendered->push_back(renderMessage(reinterpret_cast<const Message&>(*message)));
  }
}

void PluginContender::run() {
  for (std::size_t at = 0; at < messages_.size(); at += batch_) {
    const std::span batch =
        std::span(messages_).subspan(at, std::min(batch_, messages_.size() - at));
    if (!plugin_.send(tools::Direction::towardsHost, batch)) {
      throw std::runtime_error("the plug-in failed with a batch");
    }
    for (Message& message : batch) message = Message();
  }
}

lines_t PluginContender::outcome() {
  lines_t result;
  fill(ownOrder(size()));
  rendered_ = &result;
  run();
  rendered_ = nullptr;
  return result;
}

} // namespace com::velanto::connectivity::bench

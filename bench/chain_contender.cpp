#include "bench/chain_contender.hpp"

#include <chrono>
#include <stdexcept>

#include "bench/settings.hpp"
#include "ndjson/json_writer.hpp"

namespace com::velanto::connectivity::bench {

namespace {

data_t codecSettings() {
  map_t settings;
  settings[data_t("tenantId")] = data_t(TENANT);
  return settings;
}

void sendInto(tools::HostedPlugin& plugin, std::span<Message> batch) {
  if (!plugin.send(tools::Direction::TOWARDS_HOST, batch)) {
    throw std::runtime_error("a plug-in failed with a batch");
  }
}

} // namespace

ChainContender::ChainContender(const chain_libraries_t& libraries, const data_t& recorder_settings,
                               const lines_t& lines, std::size_t batch)
    : BatchContender(batch),
      prototypes_(readMessages(lines, tables_t::GROWN)),
      messages_(prototypes_.size()),
      batch_(batch),
      codecs_(libraries.codec),
      recorders_(libraries.recorder, tools::PluginLibrary::Version::OURS,
                 tools::PluginLibrary::RECORDER_CLASS_NAME),
      codec_(codecs_, PLUGIN_NAME, CHAIN_NAME, codecSettings()) {
  codec_.link({this, &ChainContender::take}, {this, &ChainContender::take});
  codec_.start();
  if (recorder_settings.type_tag() == VLT_TAG_EMPTY) return;
  recorder_.emplace(recorders_, "recorder", CHAIN_NAME, recorder_settings);
  recorder_->link({&codec_, &ChainContender::intoCodec}, {this, &ChainContender::take});
  recorder_->start();
}

void ChainContender::intoCodec(void* codec, vlt_underlying_message_t* start,
                               vlt_underlying_message_t* end) {
  sendInto(*static_cast<tools::HostedPlugin*>(codec),
           {reinterpret_cast<Message*>(start), reinterpret_cast<Message*>(end)});
}

// The messages stay in the array; its owner releases them.
void ChainContender::take(void* context, vlt_underlying_message_t* start,
                          vlt_underlying_message_t* end) {
  static_cast<ChainContender*>(context)->passed_on_ = static_cast<std::size_t>(end - start);
}

void ChainContender::convert(std::size_t first, std::size_t end) {
  const std::span<Message> batch = std::span(messages_).subspan(first, end - first);
  if (recorder_) {
    sendInto(*recorder_, batch);
  } else {
    intoCodec(&codec_, reinterpret_cast<vlt_underlying_message_t*>(batch.data()),
              reinterpret_cast<vlt_underlying_message_t*>(batch.data() + batch.size()));
  }
}

std::vector<double> ChainContender::timeBatches(const order_t& order) {
  using clock_t = std::chrono::steady_clock;
  fill(order);
  std::vector<double> times;
  for (std::size_t first = 0; first < size(); first += batch_) {
    const std::size_t end = std::min(first + batch_, size());
    const clock_t::time_point start = clock_t::now();
    convert(first, end);
    times.push_back(std::chrono::duration<double, std::nano>(clock_t::now() - start).count());
    release(first, end);
  }
  return times;
}

lines_t ChainContender::render() {
  lines_t lines;
  for (std::size_t i = 0; i < passed_on_; ++i) lines.push_back(toJson(messages_[i]));
  return lines;
}

} // namespace com::velanto::connectivity::bench
